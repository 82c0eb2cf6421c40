"""Models in zenlo's SMT-LIB 2 output, and their independent check.

A model shows up in two forms: the pairs that -model prints under a sat
answer, "( (x true)\\n  (y false) )", and the define-funs of get-model,
"(model\\n  (define-fun x () Bool true)\\n)".

The define-fun form is checked strictly: every symbol declared at the check
must have a definition of the declared sort, and the script with those
definitions in place of its declarations must make every assertion (and
every assumption of a check-sat-assuming) true. Values of uninterpreted
sorts are abstract constants that the model leaves undeclared; they become
fresh constants, pairwise distinct per sort. The pairs form only pins the
printed terms down and asks whether the script stays satisfiable.

z3 does the deciding; nothing here trusts zenlo's own evaluation. Used by
tests/regress/run_regress.py, bench/run (--check-models) and bench/fuzz.
"""
import re
import shutil
import subprocess
import sys

# Terms nest as deep as the scripts do; reading is iterative, but printing
# and the walks over values recurse.
sys.setrecursionlimit(max(sys.getrecursionlimit(), 200000))

CHECKS = ("check-sat", "check-sat-assuming", "check-sat-assumptions")
# Commands that do not change what a later check decides.
DROPPED = CHECKS + ("echo", "exit", "set-option", "set-info", "set-logic",
                    "get-info", "get-option", "get-value", "get-model",
                    "get-assignment", "get-unsat-core", "get-proof",
                    "get-assertions", "get-unsat-assumptions", "gc",
                    "print-stats")
SORT_COMMANDS = ("declare-sort", "define-sort", "declare-datatype",
                 "declare-datatypes")
DECLARATIONS = ("declare-fun", "declare-const")
# Leaves that are built-in constants, never abstract values.
BUILTIN_LEAVES = {"true", "false", "RNE", "RNA", "RTP", "RTN", "RTZ",
                  "roundNearestTiesToEven", "roundNearestTiesToAway",
                  "roundTowardPositive", "roundTowardNegative",
                  "roundTowardZero"}
BOOL_OPS = ("and", "or", "not", "=>", "xor")

# ------------------------------------------------------------------ reading


_TOKEN = re.compile(r'\(|\)|"(?:[^"]|"")*"|\|[^|]*\||;[^\n]*|[^\s()"|;]+')


def tokens(text):
    """Parentheses, strings, quoted symbols and atoms of `text`; comments
    are skipped."""
    return [t for t in _TOKEN.findall(text) if t[0] != ";"]


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


def without_comments(text):
    """`text` without ;-comments; strings and quoted symbols kept whole."""
    return re.sub(r'("(?:[^"]|"")*"?|\|[^|]*\|?)|;[^\n]*',
                  lambda m: m.group(1) or "", text)


def split_commands(text):
    """The top-level commands of a comment-free script, as S-expressions."""
    return [c for c in parse(text) if isinstance(c, list) and c]


def responses(out):
    """The top-level responses of an output: one per balanced S-expression
    or bare line. Lines that never balance (an echo of a lone '(') are
    taken as they stand."""
    lines, items, i = out.split("\n"), [], 0
    while i < len(lines):
        line = lines[i].strip()
        end = i
        if line.startswith("("):
            end = _balancing_line(lines, i)
            if end is None:
                end = i
        if line:
            block = "\n".join(lines[i:end + 1])
            items.append(parse(block)[0] if closes(lines[i:end + 1])
                         and block.strip().startswith("(") else line)
        i = end + 1
    return items


def _balancing_line(lines, start):
    """The index of the line from `start` on where the parentheses opened
    since `start` are all closed, or None. One pass over the characters
    (strings, quoted symbols and comments skipped): re-parsing the block
    at every line made a model of 10^4 lines take minutes."""
    depth, in_string, in_bars = 0, False, False
    for n in range(start, len(lines)):
        line = lines[n]
        k = 0
        while k < len(line):
            c = line[k]
            if in_string:
                if c == '"':
                    if k + 1 < len(line) and line[k + 1] == '"':
                        k += 1
                    else:
                        in_string = False
            elif in_bars:
                in_bars = c != "|"
            elif c == '"':
                in_string = True
            elif c == "|":
                in_bars = True
            elif c == ";":
                break
            elif c == "(":
                depth += 1
            elif c == ")":
                depth -= 1
                if depth <= 0:
                    return n
            k += 1
    return None


def closes(block_lines):
    try:
        return len(parse("\n".join(block_lines))) == 1
    except ValueError:
        return False


ANSWERS = ("sat", "unsat", "unknown")


def is_model(item):
    """A get-model text, or the pairs of -model."""
    if not isinstance(item, list):
        return False
    if item and item[0] == "model":
        return True
    return all(isinstance(p, list) and len(p) == 2 for p in item)


def models_in_output(out):
    """[(index of the check among all answers, model S-expression)] for
    each model the output shows right after an answer."""
    models, answers = [], -1
    for item in responses(out):
        if item in ANSWERS:
            answers += 1
        elif item != "success" and is_model(item) and answers >= 0:
            models.append((answers, item))
    return models


def model_replies(out):
    """Per check-sat answer: (answer, the next response or None). Meant for
    output of a script with a (get-model) behind every check."""
    replies, items = [], [i for i in responses(out) if i != "success"]
    for n, item in enumerate(items):
        if item in ANSWERS:
            nxt = items[n + 1] if n + 1 < len(items) else None
            replies.append((item, None if nxt in ANSWERS else nxt))
    return replies


def with_model_queries(text):
    """The script, as written, asking for a model behind every check.
    Models are switched on first, since later it is too late."""
    lexeme = re.compile(
        r';[^\n]*|\(|\)|"(?:[^"]|"")*"|\|[^|]*\||[^\s()"|;]+')
    out, depth, head, last = ["(set-option :produce-models true)\n"], 0, \
        None, 0
    for m in lexeme.finditer(text):
        tok = m.group(0)
        if tok == "(":
            depth += 1
            head = "" if depth == 1 else head
        elif tok == ")":
            depth -= 1
            if depth == 0 and head in CHECKS:
                out.append(text[last:m.end()] + "\n(get-model)")
                last = m.end()
        elif depth == 1 and head == "" and not tok.startswith(";"):
            head = tok
    out.append(text[last:])
    return "".join(out)


# ----------------------------------------------------------- the script


class Snapshot:
    """What a check decides: the sort and definition commands, the
    declarations and the assertions in force, in order, and its own
    assumptions."""

    def __init__(self, items, assumptions):
        # (kind, command), kind one of "sort", "decl", "def", "assert"
        self.items = items
        self.assumptions = assumptions

    def declared(self):
        return {c[1]: c for k, c in self.items if k == "decl"}


def snapshots(commands):
    """A Snapshot per check command of the script, in order."""
    frames, shots, global_decls = [[]], [], False
    # The names declared or defined in each frame, beside it.
    names = [set()]
    for c in commands:
        head = c[0]
        if head == "set-option" and len(c) > 2 \
                and c[1] in (":global-declarations", ":global-decls"):
            global_decls = c[2] == "true"
        elif head == "push":
            frames += [[] for _ in range(_count(c))]
            names += [set() for _ in range(_count(c))]
        elif head == "pop":
            for _ in range(min(_count(c), len(frames) - 1)):
                gone = frames.pop()
                gone_names = names.pop()
                if global_decls:
                    frames[0] += [i for i in gone if i[0] != "assert"]
                    names[0] |= gone_names
        elif head == "reset":
            frames, names, global_decls = [[]], [set()], False
        elif head == "reset-assertions":
            kept = [i for f in frames for i in f if i[0] != "assert"]
            frames = [kept if global_decls else []]
            names = [set().union(*names) if global_decls else set()]
        elif head in CHECKS:
            if head == "check-sat":
                lits = c[1:]  # the extension that lists assumptions bare
            else:
                lits = c[1] if len(c) > 1 and isinstance(c[1], list) else []
            shots.append(Snapshot([i for f in frames for i in f], lits))
        elif head in SORT_COMMANDS:
            frames[-1].append(("sort", c))
        elif head in DECLARATIONS:
            # A name already declared or defined in scope cannot be
            # declared again: the solver refuses it and the first stands.
            if len(c) < 2 or not any(c[1] in n for n in names):
                frames[-1].append(("decl", _as_fun(c)))
                if len(c) > 1:
                    names[-1].add(c[1])
        elif head == "assert":
            frames[-1].append(("assert", c))
        elif head not in DROPPED:
            frames[-1].append(("def", c))
            if len(c) > 1 and isinstance(c[1], str):
                names[-1].add(c[1])
    return shots


def _count(c):
    return int(c[1]) if len(c) > 1 and str(c[1]).isdigit() else 1


def _as_fun(c):
    if c[0] == "declare-const":
        return ["declare-fun", c[1], [], c[2]]
    return c


# ------------------------------------------------------------ the check


class ModelError(Exception):
    """The model is not a model of the script; the message says why."""


class MissingValue(ModelError):
    """A declared symbol has no value in the model."""


class ScriptRejected(ModelError):
    """z3 refuses the check script (an ill-sorted input refused by zenlo
    too stays in it)."""


def _plain(name):
    """|x| and x are one symbol when x needs no bars."""
    if len(name) > 2 and name[0] == "|" and name[-1] == "|" \
            and re.fullmatch(r"[A-Za-z~!@$%^&*_+=<>.?/-][\w~!@$%^&*+=<>.?/-]*",
                             name[1:-1]):
        return name[1:-1]
    return name


def _plain_sort(sort):
    """A sort as text with every symbol in its plain form."""
    if isinstance(sort, list):
        return "(" + " ".join(_plain_sort(x) for x in sort) + ")"
    return _plain(sort)


def strict_check_script(shot, model):
    """The z3 script that answers unsat exactly when the define-fun model
    `model` satisfies the snapshot. Raises ModelError for missing or
    ill-sorted definitions."""
    defs = {_plain(e[1]): e for e in model[1:] if isinstance(e, list)
            and len(e) == 5 and e[0] == "define-fun"}
    defs.update({n: defs[_plain(n)] for n in shot.declared()
                 if _plain(n) in defs})
    declared = shot.declared()
    missing = [n for n in declared if n not in defs]
    if missing:
        raise MissingValue("no value for %s" % ", ".join(missing[:5]))
    values = AbstractValues(declared)
    body = []
    aliases = any(c[0] == "define-sort" for k, c in shot.items
                  if k == "sort")
    for n, d in declared.items():
        e = defs[n]
        if not aliases and ([_plain_sort(p[1]) for p in e[2]]
                            != [_plain_sort(s) for s in d[2]]
                            or _plain_sort(e[3]) != _plain_sort(d[3])):
            raise ModelError("value of %s has sort %s, declared %s" % (
                n, _signature(e[2], e[3]), _signature(d[2], d[3])))
        values.scan(e[4], show(e[3]), {p[0]: show(p[1]) for p in e[2]})
    for kind, c in shot.items:
        if kind == "decl":
            e = defs[c[1]]
            body.append("(define-fun %s %s %s %s)" % (
                c[1], show(e[2]), show(e[3]), show(values.rename(e[4]))))
        elif kind == "def":
            body.append(show(c))
    facts = [show(_for_z3(c[1])) for k, c in shot.items if k == "assert"]
    facts += [show(_for_z3(a)) for a in shot.assumptions]
    sorts = [show(c) for k, c in shot.items if k == "sort"]
    query = "(assert (and true %s))" if partial_division(shot) \
        else "(assert (not (and true %s)))"
    return "\n".join(sorts + values.declarations() + body + [
        query % " ".join(facts), "(check-sat)", ""])


def _for_z3(e):
    """`e` with ((_ divisible n) t), which Debian's z3 does not read, as
    (= (mod t n) 0)."""
    if not isinstance(e, list):
        return e
    if (len(e) == 2 and isinstance(e[0], list) and len(e[0]) == 3
            and e[0][:2] == ["_", "divisible"]):
        return ["=", ["mod", _for_z3(e[1]), e[0][2]], "0"]
    return [_for_z3(x) for x in e]


def _divides_by_maybe_zero(e):
    if not isinstance(e, list) or not e:
        return False
    if e[0] in ("div", "mod", "/") and len(e) >= 3:
        d = e[2]
        if not (isinstance(d, str) and re.fullmatch(r"[0-9.]+", d)
                and float(d) != 0):
            return True
    return any(_divides_by_maybe_zero(x) for x in e)


def partial_division(shot):
    """Whether an assertion of `shot` divides by something that may be
    zero. A model cannot show what division by zero gives, so its check
    asks whether some choice for it makes the assertions true (z3 then
    answers sat), instead of whether every choice does."""
    return any(_divides_by_maybe_zero(c[1]) for k, c in shot.items
               if k == "assert") \
        or any(_divides_by_maybe_zero(a) for a in shot.assumptions)


def _signature(params, ret):
    args = [show(p[1]) if isinstance(p, list) and len(p) == 2 else show(p)
            for p in params]
    return "(%s) %s" % (" ".join(args), show(ret)) if args else show(ret)


def _is_const_array(head):
    """Whether `head` is the `(as const S)` of a constant array."""
    return (isinstance(head, list) and len(head) == 3 and head[0] == "as"
            and head[1] == "const")


def _array_sorts(sort):
    """The index and element sorts (as text) of an array sort, or Nones."""
    if isinstance(sort, list) and len(sort) == 3 and sort[0] == "Array":
        return show(sort[1]), show(sort[2])
    return None, None


class AbstractValues:
    """The undeclared constants of model values, with the sorts that their
    places give them, renamed apart from every name of the script."""

    def __init__(self, declared):
        self.declared = declared
        self.sort = {}  # value text -> sort text
        self.name = {}

    def scan(self, term, want, params):
        if isinstance(term, str):
            if self._is_value(term, params):
                self._record(term, want)
            return
        if not term:
            return
        head = term[0]
        if head == "as" and len(term) == 3 and term[1] != "const":
            self._record(show(term), show(term[2]))
        elif head == "ite" and len(term) == 4:
            self.scan(term[1], "Bool", params)
            self.scan(term[2], want, params)
            self.scan(term[3], want, params)
        elif head in BOOL_OPS:
            for a in term[1:]:
                self.scan(a, "Bool", params)
        elif head in ("=", "distinct"):
            known = next((s for s in (self._sort_of(a, params)
                                      for a in term[1:]) if s), None)
            for a in term[1:]:
                self.scan(a, known, params)
        elif isinstance(head, str) and head in self.declared:
            for a, s in zip(term[1:], self.declared[head][2]):
                self.scan(a, show(s), params)
        elif _is_const_array(head) and len(term) == 2:
            self.scan(term[1], _array_sorts(head[2])[1], params)
        elif head == "store" and len(term) == 4:
            sort = want or self._sort_of(term[1], params)
            index, element = _array_sorts(parse(sort)[0]) if sort else (None,
                                                                        None)
            self.scan(term[1], sort, params)
            self.scan(term[2], index, params)
            self.scan(term[3], element, params)
        elif head == "select" and len(term) == 3:
            sort = self._sort_of(term[1], params)
            index = _array_sorts(parse(sort)[0])[0] if sort else None
            self.scan(term[1], sort, params)
            self.scan(term[2], index, params)
        elif head not in ("_", "!"):
            for a in term[1:]:
                self.scan(a, None, params)

    def _is_value(self, leaf, params):
        return not (leaf in params or leaf in self.declared
                    or leaf in BUILTIN_LEAVES or leaf[0] in "#\"0123456789")

    def _sort_of(self, term, params):
        if isinstance(term, list):
            if term and _is_const_array(term[0]):
                return show(term[0][2])
            if len(term) == 4 and term[0] == "store":
                return self._sort_of(term[1], params)
            if term and isinstance(term[0], str) \
                    and term[0] in self.declared:
                return show(self.declared[term[0]][3])
            if len(term) == 3 and term[0] == "as":
                return show(term[2])
            return None
        if term in params:
            return params[term]
        if term in self.declared and not self.declared[term][2]:
            return show(self.declared[term][3])
        return self.sort.get(term)

    def _record(self, text, sort):
        if sort is None:
            raise ModelError("cannot tell the sort of the value %s" % text)
        if self.sort.setdefault(text, sort) != sort:
            raise ModelError("value %s stands for both %s and %s"
                             % (text, self.sort[text], sort))
        self.name.setdefault(text, "|zenlo value %d|" % len(self.name))

    def rename(self, term):
        text = show(term)
        if text in self.name:
            return self.name[text]
        if isinstance(term, list):
            return [self.rename(t) for t in term]
        return term

    def declarations(self):
        out, by_sort = [], {}
        for text, name in self.name.items():
            out.append("(declare-fun %s () %s)" % (name, self.sort[text]))
            by_sort.setdefault(self.sort[text], []).append(name)
        for names in by_sort.values():
            if len(names) > 1:
                out.append("(assert (distinct %s))" % " ".join(names))
        return out


def pairs_check_script(shot, pairs):
    """For the pairs of -model: the script with the printed values asserted
    must stay satisfiable (z3 answers sat)."""
    values = AbstractValues(shot.declared())
    # Bare names other than declared constants (:named terms, definitions)
    # are left out: the sort of an abstract value they show is unknown
    # here, and a name whose assertion a pop removed still answers
    # get-assignment under global declarations, though the checking
    # script no longer has it.
    declared = shot.declared()
    pairs = [(t, v) for t, v in pairs
             if not isinstance(t, str) or t in declared]
    for term, value in pairs:
        # -model prints function points with abstract arguments too; bare
        # names (definitions, :named terms) are no values.
        sort = values._sort_of(term, {})
        if not isinstance(term, str):
            values.scan(term, sort, {})
        values.scan(value, sort, {})
    body = [show(c) for k, c in shot.items if k != "sort"]
    body += ["(assert %s)" % show(a) for a in shot.assumptions]
    body += ["(assert (= %s %s))" % (show(values.rename(t)),
                                      show(values.rename(v)))
             for t, v in pairs]
    sorts = [show(c) for k, c in shot.items if k == "sort"]
    return "\n".join(sorts + values.declarations() + body
                     + ["(check-sat)", ""])


def check_model(shot, model, z3=None, timeout=60):
    """None when `model` holds at the snapshot, else the reason it does
    not. Raises ModelError for a model that is malformed."""
    z3 = z3 or shutil.which("z3")
    if z3 is None:
        raise RuntimeError("z3 is needed to check models")
    strict = model and model[0] == "model"
    script = strict_check_script(shot, model) if strict \
        else pairs_check_script(shot, model)
    try:
        proc = subprocess.run([z3, "-in", "-smt2"], input=script,
                              capture_output=True, text=True,
                              timeout=timeout)
    except subprocess.TimeoutExpired:
        return None  # no verdict is no evidence either way
    words = proc.stdout.split()
    last = words[-1] if words else ""
    good, bad = ("unsat", "sat") if strict and not partial_division(shot) \
        else ("sat", "unsat")
    if "(error" in proc.stdout:
        raise ScriptRejected("z3 rejects the model: %s"
                         % proc.stdout.strip().splitlines()[0])
    if last == bad:
        return ("an assertion is false in the model" if strict
                else "the printed values contradict the assertions") \
            + "\n--- check script\n" + script
    return None


class Checked:
    """What check_output found: the models that fail, as (check number
    from 1, reason), how many held, and why some sat answer had no model
    to check ("" when every one had)."""

    def __init__(self):
        self.problems, self.checked, self.skipped = [], 0, ""


def check_output(script_text, out, z3=None, probed=False):
    """Checks every model that zenlo's output `out` shows behind a sat
    answer to the script. With `probed`, the script ran with a (get-model)
    behind every check (with_model_queries), so each sat answer must be
    followed by a model, or by word that models are not there yet."""
    shots = snapshots(split_commands(without_comments(script_text)))
    result = Checked()
    replies = model_replies(out)
    # A run that reported errors may have refused a declaration, which
    # then has no value; the run counts as an error already.
    refused = re.search(r"^\(error ", out, re.M) is not None
    for index, model in models_in_output(out):
        if index >= len(shots) or replies[index][0] != "sat":
            continue
        try:
            why = check_model(shots[index], model, z3)
        except ModelError as e:
            why = str(e)
            if refused and isinstance(e, (MissingValue, ScriptRejected)):
                result.skipped = result.skipped or why
                continue
        if why:
            result.problems.append((index + 1, why))
        else:
            result.checked += 1
    for index, (answer, reply) in enumerate(replies if probed else []):
        if answer != "sat":
            continue
        if not_available(reply):
            result.skipped = result.skipped or show(reply or "no reply")
        elif not is_model(reply):
            result.problems.append(
                (index + 1, "get-model after sat answered %s" % show(reply)))
    result.problems.sort(key=lambda p: p[0])
    return result


def not_available(reply):
    """Whether a get-model reply says that models are not there to ask
    for, rather than that this one failed."""
    text = show(reply) if reply is not None else ""
    return reply is None or text == "unsupported"
