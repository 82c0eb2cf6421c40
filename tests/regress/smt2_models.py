"""Models in zenlo's SMT-LIB 2 output, and scripts that check them.

A model shows up in two forms: the pairs that -model prints under a sat
answer, "( (x true)\\n  (y false) )", and the define-funs of get-model,
"(model\\n  (define-fun x () Bool true)\\n)". Either becomes a list of
assertions; the script up to the check, with these assertions, must then
be satisfiable for an independent solver.
"""
import re

CHECKS = ("check-sat", "check-sat-assuming", "check-sat-assumptions")
# Commands that do not change what a later check decides.
DROPPED = CHECKS + ("echo", "exit", "set-option", "set-info", "set-logic",
                    "get-info", "get-option", "get-value", "get-model",
                    "get-assignment", "get-unsat-core", "get-proof",
                    "get-assertions", "get-unsat-assumptions", "gc",
                    "print-stats")


def tokens(text):
    """Parentheses, strings, quoted symbols and atoms of `text`."""
    pattern = re.compile(r'\(|\)|"(?:[^"]|"")*"|\|[^|]*\||[^\s()"|]+')
    return pattern.findall(text)


def parse(text):
    """The S-expressions of `text`: lists as Python lists, atoms as str."""
    stack = [[]]
    for tok in tokens(text):
        if tok == "(":
            stack.append([])
        elif tok == ")":
            if len(stack) == 1:
                raise ValueError("unbalanced ')'")
            done = stack.pop()
            stack[-1].append(done)
        else:
            stack[-1].append(tok)
    if len(stack) != 1:
        raise ValueError("unbalanced '('")
    return stack[0]


def show(sexp):
    if isinstance(sexp, list):
        return "(" + " ".join(show(s) for s in sexp) + ")"
    return sexp


def split_commands(text):
    """The top-level commands of a comment-free script, as S-expressions."""
    return [c for c in parse(text) if isinstance(c, list) and c]


def models_in_output(out):
    """[(index of the check among all answers, assertions)] for each model
    the output shows."""
    lines = out.split("\n")
    models, answers, i = [], -1, 0
    while i < len(lines):
        line = lines[i].strip()
        if line in ("sat", "unsat", "unknown"):
            answers += 1
        elif line.startswith("( (") or line == "( )" \
                or line.startswith("(model"):
            end = i
            while end < len(lines) and not closes(lines[i:end + 1]):
                end += 1
            block = "\n".join(lines[i:end + 1])
            models.append((answers, model_assertions(parse(block)[0])))
            i = end
        i += 1
    return models


def closes(block_lines):
    try:
        return len(parse("\n".join(block_lines))) == 1
    except ValueError:
        return False


def model_assertions(model):
    """Assertions that pin the model down."""
    out = []
    entries = model[1:] if model and model[0] == "model" else model
    for e in entries:
        if e[0] != "define-fun":
            out.append("(assert (= %s %s))" % (show(e[0]), show(e[1])))
            continue
        name, params, body = e[1], e[2], e[4]
        if not params:
            out.append("(assert (= %s %s))" % (name, show(body)))
        else:
            names = " ".join(p[0] for p in params)
            out.append("(assert (forall %s (= (%s %s) %s)))"
                       % (show(params), name, names, show(body)))
    return out


def check_script(commands, check_index, assertions):
    """The commands before check number `check_index`, the check's own
    assumptions, the model's assertions, and a check."""
    seen, body = -1, []
    for c in commands:
        head = c[0]
        if head in CHECKS:
            seen += 1
            if seen == check_index:
                if head != "check-sat" and len(c) > 1 and c[1]:
                    body.append("(assert (and true %s))"
                                % " ".join(show(a) for a in c[1]))
                break
        if head not in DROPPED:
            body.append(show(c))
    return "\n".join(body + assertions + ["(check-sat)", ""])
