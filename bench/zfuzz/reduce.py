"""Shrinks a failing input while it keeps failing the same way.

Delta debugging first removes whole commands (clauses for DIMACS), in
chunks that halve down to single ones; then each assertion is simplified
term by term: a subterm is replaced by true, by false, or by one of its own
arguments. Replacements of the wrong sort are made and thrown away: the
`fails` test rejects anything the reference solver does not accept.
`fails(candidate)` is all the reducer knows of solvers; a budget of calls
bounds the work.
"""
from zbench.smt2_models import parse, show, without_comments


class Budget:
    def __init__(self, calls):
        self.left = calls

    def test(self, fails, candidate):
        if self.left <= 0:
            return False
        self.left -= 1
        return fails(candidate)


def ddmin(items, fails, budget, keep=lambda items: True):
    """A smaller list for which fails(list) still holds; `keep` rejects
    candidates that must not be tried (a script without a check-sat)."""
    n = 2
    while len(items) >= 2 and budget.left > 0:
        chunk = max(1, len(items) // n)
        reduced = False
        for start in range(0, len(items), chunk):
            rest = items[:start] + items[start + chunk:]
            if rest and keep(rest) and budget.test(fails, rest):
                items, n, reduced = rest, max(n - 1, 2), True
                break
        if not reduced:
            if chunk == 1:
                break
            n = min(len(items), n * 2)
    return items


# ------------------------------------------------------------------ SMT-LIB


def reduce_script(text, fails, calls=600):
    """The smallest script found that still fails; `fails(text)`."""
    budget = Budget(calls)
    cmds = [show(c) for c in parse(without_comments(text))
            if isinstance(c, list)]
    as_text = lambda cs: "\n".join(cs) + "\n"  # noqa: E731
    has_check = lambda cs: any(c.startswith("(check-sat") for c in cs)  # noqa
    cmds = ddmin(cmds, lambda cs: fails(as_text(cs)), budget, has_check)
    for i in range(len(cmds)):
        if cmds[i].startswith(("(assert", "(check-sat-assuming")):
            cmds[i] = _shrink_command(cmds, i, fails, as_text, budget)
    # Terms that became trivial may leave commands that are now unneeded.
    cmds = ddmin(cmds, lambda cs: fails(as_text(cs)), budget, has_check)
    return as_text(cmds)


def _shrink_command(cmds, i, fails, as_text, budget):
    tree = parse(cmds[i])[0]
    changed = True
    while changed and budget.left > 0:
        changed = False
        for path in _paths(tree):
            for repl in _replacements(_at(tree, path)):
                cand = _put(tree, path, repl)
                trial = cmds[:i] + [show(cand)] + cmds[i + 1:]
                if budget.test(fails, as_text(trial)):
                    tree, changed = cand, True
                    break
            if changed:
                break
    return show(tree)


def _paths(tree, prefix=()):
    """Paths to the subterms below the command head, outermost first."""
    out, level = [], [(tree, prefix)]
    while level:
        nxt = []
        for node, path in level:
            if isinstance(node, list):
                for k, child in enumerate(node[1:], 1):
                    out.append(path + (k,))
                    nxt.append((child, path + (k,)))
        level = nxt
    return out


def _replacements(node):
    if not isinstance(node, list):
        return [] if node in ("true", "false") else ["true", "false"]
    if node and node[0] in ("!", "let", "_", "as"):
        return ["true", "false"]
    return ["true", "false"] + [c for c in node[1:]]


def _at(tree, path):
    for k in path:
        tree = tree[k]
    return tree


def _put(tree, path, value):
    if not path:
        return value
    copy = list(tree)
    copy[path[0]] = _put(tree[path[0]], path[1:], value)
    return copy


# ------------------------------------------------------------------- DIMACS


def reduce_cnf(n, clauses, fails, calls=600):
    """Fewer clauses, then fewer literals in each; `fails(n, clauses)`."""
    budget = Budget(calls)
    test = lambda cs: fails(n, cs)  # noqa: E731
    clauses = ddmin(clauses, test, budget)
    for i in range(len(clauses)):
        lits = ddmin(clauses[i], lambda ls: test(
            clauses[:i] + [ls] + clauses[i + 1:]), budget)
        clauses = clauses[:i] + [lits] + clauses[i + 1:]
    return clauses
