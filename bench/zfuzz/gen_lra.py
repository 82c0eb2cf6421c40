"""Linear real arithmetic: sums of a few Real constants with small and
occasionally huge rational coefficients, written every way SMT-LIB allows
((/ 1 3), (- 2), 0.5, (* 2 x), (* x 2), (- x y)), compared with <, <=, >,
>=, =, distinct, under term-level ite; difference constraints x - y <= c
as the RDL files have them. Few constants and small numbers, so that
bounds meet and unsat is common."""
LOGIC = "QF_LRA"
ASSERTIONS = (2, 10)

HUGE = (1 << 64) + 13


def declare(rng, sig):
    sig.sorts.append("Real")
    return [sig.declare("x", [], "Real") for _ in range(rng.randint(2, 4))]


def declare_more(rng, sig):
    return [sig.declare("x", [], "Real")]


def _integer(rng):
    r = rng.random()
    if r < 0.05:
        return rng.choice((HUGE, HUGE * 3 + 1, (1 << 62) + 1))
    return rng.choice((0, 1, 1, 2, 3, 5, 7, 10))


def number(rng):
    """A rational constant in one of its spellings."""
    n = _integer(rng)
    r = rng.random()
    if r < 0.15:
        text = "(/ %d %d)" % (n, rng.choice((2, 3, 7, HUGE)))
    elif r < 0.25:
        text = "%d.%d" % (n, rng.choice((0, 5, 25)))
    else:
        text = "%d" % n if r < 0.85 else "%d.0" % n
    return "(- %s)" % text if rng.random() < 0.3 and n != 0 else text


def term(rng, sig, depth):
    names = sig.constants("Real")
    r = rng.random()
    sub = lambda: term(rng, sig, depth - 1)  # noqa: E731
    funs = sig.functions("Real")
    if funs and depth > 0 and rng.random() < 0.3:
        f = rng.choice(funs)
        return "(%s %s)" % (f, " ".join(sub() for _ in sig.funs[f][0]))
    if depth <= 0 or r < 0.35:
        return rng.choice(names) if rng.random() < 0.8 else number(rng)
    if r < 0.6:
        return "(+ %s)" % " ".join(sub() for _ in range(rng.randint(2, 3)))
    if r < 0.7:
        return "(- %s %s)" % (sub(), sub())
    if r < 0.75:
        return "(- %s)" % sub()
    if r < 0.88:
        k = number(rng)
        return "(* %s %s)" % ((k, sub()) if rng.random() < 0.7
                              else (sub(), k))
    if r < 0.93:
        return "(/ %s %s)" % (sub(), rng.choice(("2", "3", "(- 4)", "0.5")))
    return "(ite %s %s %s)" % (atom(rng, sig, depth - 1), sub(), sub())


def atom(rng, sig, depth=2):
    r = rng.random()
    if r < 0.2:
        # x - y <= c, the shape of difference logic.
        x, y = rng.sample(sig.constants("Real"), 2)
        return "(%s (- %s %s) %s)" % (rng.choice(("<=", "<")), x, y,
                                      number(rng))
    t = lambda: term(rng, sig, depth)  # noqa: E731
    if r < 0.8:
        op = rng.choice(("<", "<=", ">", ">=", "<=", "<"))
        return "(%s %s %s)" % (op, t(), t())
    if r < 0.92:
        return "(= %s %s)" % (t(), t())
    if r < 0.97:
        return "(distinct %s)" % " ".join(t() for _ in range(rng.randint(2, 3)))
    return rng.choice(sig.constants("Bool") or ["true"])


def zenlo_args(sig):
    return []
