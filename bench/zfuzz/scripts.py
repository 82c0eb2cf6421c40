"""Random SMT-LIB 2 scripts from a theory's signature and atoms.

A theory module (gen_bool, gen_uf, ...) says which sorts and symbols a
script declares and how to build an atom over them; everything else is
shared here: the Boolean structure above the atoms, and the shape of the
script, a single query or an incremental one with backtrack points,
declarations inside them and check-sat-assuming. A new theory adds its own
module and registers it in LOGICS of generators.py; nothing here changes.

Everything draws from the one random.Random it is given, so a seed fixes
the script.
"""
import copy


class Signature:
    """Sorts and function symbols in scope; a push copies it."""

    def __init__(self):
        self.sorts = []  # declared sort names
        self.funs = {}  # name -> ([argument sorts], result sort)
        self.fresh = 0
        self.bool_args = False  # some function takes a Bool argument

    def declare(self, prefix, args, result):
        """Declares a new symbol; returns its declaration command."""
        name = "%s%d" % (prefix, self.fresh)
        self.fresh += 1
        self.funs[name] = (list(args), result)
        if any(a == "Bool" for a in args):
            self.bool_args = True
        return "(declare-fun %s (%s) %s)" % (name, " ".join(args), result)

    def constants(self, sort):
        return [n for n, (a, r) in self.funs.items() if not a and r == sort]

    def functions(self, sort):
        return [n for n, (a, r) in self.funs.items() if a and r == sort]


# ------------------------------------------------------- Boolean structure

CONNECTIVES = ("and", "or", "not", "=>", "xor", "=", "ite", "distinct")


def formula(rng, atom, depth):
    """A Boolean formula of at most `depth` connectives above atoms made by
    atom(rng)."""
    if depth <= 0 or rng.random() < 0.3:
        return atom(rng)
    op = rng.choice(CONNECTIVES)
    sub = lambda: formula(rng, atom, depth - 1)  # noqa: E731
    if op == "not":
        return "(not %s)" % sub()
    if op == "ite":
        return "(ite %s %s %s)" % (sub(), sub(), sub())
    if op in ("=>", "xor", "distinct"):
        return "(%s %s %s)" % (op, sub(), sub())
    n = rng.choice((2, 2, 3, 4)) if op != "=" else rng.choice((2, 2, 3))
    return "(%s %s)" % (op, " ".join(sub() for _ in range(n)))


def literal_clause(rng, atom):
    """A short disjunction of atoms and negated atoms: clause-shaped
    assertions are what makes unsat scripts common."""
    lits = []
    for _ in range(rng.choice((1, 2, 2, 3, 3))):
        a = atom(rng)
        lits.append(a if rng.random() < 0.5 else "(not %s)" % a)
    return lits[0] if len(lits) == 1 else "(or %s)" % " ".join(lits)


def assertion(rng, atom):
    r = rng.random()
    if r < 0.5:
        return "(assert %s)" % literal_clause(rng, atom)
    if r < 0.9:
        return "(assert %s)" % formula(rng, atom, rng.randint(1, 4))
    # A let and a name, so the reader's binders are fuzzed too.
    body = formula(rng, atom, 2)
    if rng.random() < 0.5:
        return "(assert (let ((_let0 %s)) (or _let0 %s)))" % (
            body, formula(rng, atom, 2))
    return "(assert (! %s :named _n%d))" % (body, rng.randrange(1 << 30))


# ------------------------------------------------------------------ scripts


def script(rng, theory, incremental):
    """A script of `theory` (a generator module) as a list of commands."""
    sig = Signature()
    # A generator may need a wider logic than the one it stands for.
    cmds = ["(set-logic %s)" % getattr(theory, "SCRIPT_LOGIC", theory.LOGIC)]
    cmds += theory.declare(rng, sig)
    cmds += [sig.declare("b", [], "Bool") for _ in range(rng.randint(1, 3))]
    atom = lambda r: theory.atom(r, sig)  # noqa: E731
    if not incremental:
        low, high = getattr(theory, "ASSERTIONS", (1, 9))
        cmds += [assertion(rng, atom)
                 for _ in range(rng.randint(low, high))]
        cmds.append("(check-sat)")
        return cmds, sig
    cmds += [assertion(rng, atom) for _ in range(rng.randint(0, 4))]
    scopes = [sig]
    for _ in range(rng.randint(2, 6)):
        cmds += _step(rng, theory, scopes)
    return cmds, sig


def _step(rng, theory, scopes):
    """Backtrack points, new declarations and assertions, then a check."""
    out = []
    r = rng.random()
    if r < 0.35 and len(scopes) > 1:
        n = rng.randint(1, len(scopes) - 1)
        out.append("(pop %d)" % n)
        del scopes[-n:]
    elif r < 0.8:
        n = rng.choice((1, 1, 2))
        out.append("(push %d)" % n)
        for _ in range(n):
            scopes.append(copy.deepcopy(scopes[-1]))
    sig = scopes[-1]
    if rng.random() < 0.4:
        out += theory.declare_more(rng, sig)
    atom = lambda r: theory.atom(r, sig)  # noqa: E731
    out += [assertion(rng, atom) for _ in range(rng.randint(0, 3))]
    bools = sig.constants("Bool")
    if rng.random() < 0.4 and bools:
        lits = [b if rng.random() < 0.5 else "(not %s)" % b
                for b in rng.sample(bools, rng.randint(1, len(bools)))]
        out.append("(check-sat-assuming (%s))" % " ".join(lits))
    else:
        out.append("(check-sat)")
    # A theory may need its options in every run; they follow the deepest
    # signature, so the script's own is updated as it grows.
    scopes[0].bool_args |= sig.bool_args
    return out
