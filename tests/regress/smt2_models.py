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
    """The text of `sexp`; iterative, since scripts nest deeply."""
    out, stack = [], [(sexp, 0)]
    while stack:
        node, i = stack.pop()
        if not isinstance(node, list):
            out.append(node)
            continue
        if i == 0:
            out.append("(")
        if i == len(node):
            out.append(")")
            continue
        if i > 0:
            out.append(" ")
        stack.append((node, i + 1))
        stack.append((node[i], 0))
    return "".join(out)


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
            models.append((answers, parse(block)[0]))
            i = end
        i += 1
    return models


def closes(block_lines):
    try:
        return len(parse("\n".join(block_lines))) == 1
    except ValueError:
        return False


def model_entries(model):
    entries = model[1:] if model and model[0] == "model" else model
    return entries


def model_assertions(model):
    """For the pairs of -model: assertions that pin the model down. For the
    define-funs of get-model: the definitions themselves, which take the
    place of the declarations (see check_script)."""
    out = []
    for e in model_entries(model):
        if e[0] == "define-fun":
            out.append(e)
        else:
            out.append("(assert (= %s %s))" % (show(e[0]), show(e[1])))
    return out


def abstract_values(model):
    """The abstract values "@N.S" of the model, by sort name S."""
    found = {}
    for tok in tokens(show(model_entries(model))):
        m = re.match(r"^@\d+\.(.+)$", tok)
        if m:
            found.setdefault(m.group(1), set()).add(tok)
    return found


def is_scope_option(command):
    """Whether `command` changes what a pop forgets."""
    return command[0] == "set-option" and len(command) > 1 \
        and command[1] in (":global-declarations", ":global-decls")


def check_script(commands, check_index, model):
    """The commands before check number `check_index`, with the model's
    definitions in place of the declarations they define, the abstract
    values declared (distinct) after their sort, the check's own
    assumptions, the pairs of -model as assertions, and a check. z3 must
    find it satisfiable: with every symbol defined, the assertions must
    simply hold."""
    items = model_assertions(model)
    defs = {e[1]: e for e in items if isinstance(e, list)}
    pinned = [e for e in items if not isinstance(e, list)]
    values = abstract_values(model)
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
        if head in ("declare-fun", "declare-const") and c[1] in defs:
            body.append(show(defs[c[1]]))
            continue
        if head not in DROPPED or is_scope_option(c):
            body.append(show(c))
        if head == "declare-sort" and c[1] in values:
            names = sorted(values.pop(c[1]))
            body.extend("(declare-fun %s () %s)" % (v, c[1]) for v in names)
            if len(names) > 1:
                body.append("(assert (distinct %s))" % " ".join(names))
    return "\n".join(body + pinned + ["(check-sat)", ""])
