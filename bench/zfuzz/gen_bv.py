"""Bit-vectors: words of 1 to 64 bits, every operator of SMT-LIB's
QF_BV (arithmetic, division and remainder, including by zero, shifts by
amounts up to and past the width, comparisons, extract, concat,
extensions, rotations, repeat, bvcomp, ite). Few constants per width and
numbers drawn from the edges (0, 1, the minimum, -1), so that equalities
collide and unsat is common."""
LOGIC = "QF_BV"
ASSERTIONS = (2, 10)
WIDTHS = (1, 1, 2, 3, 4, 4, 5, 7, 8, 8, 12, 16, 31, 32, 33, 64)
# Multiplication and division build quadratic circuits: wide ones make a
# script slow without finding more.
WIDE_ARITH = 24

UNARY = ("bvnot", "bvneg")
BINARY = ("bvand", "bvor", "bvxor", "bvnand", "bvnor", "bvxnor", "bvadd",
          "bvsub", "bvshl", "bvlshr", "bvashr")
ARITH = ("bvmul", "bvudiv", "bvurem", "bvsdiv", "bvsrem", "bvsmod")
PREDICATES = ("bvult", "bvule", "bvugt", "bvuge", "bvslt", "bvsle", "bvsgt",
              "bvsge")


def sort(w):
    return "(_ BitVec %d)" % w


def declare(rng, sig):
    out = []
    for w in sorted(set(rng.choice(WIDTHS) for _ in range(rng.randint(1, 3)))):
        sig.sorts.append(w)
        out += [sig.declare("x", [], sort(w))
                for _ in range(rng.randint(2, 4))]
    return out


def declare_more(rng, sig):
    return [sig.declare("x", [], sort(rng.choice(sig.sorts)))]


def number(rng, w):
    r = rng.random()
    if r < 0.5:
        v = rng.choice((0, 1, (1 << w) - 1, 1 << (w - 1), (1 << (w - 1)) - 1,
                        w, w - 1))
    else:
        v = rng.randrange(1 << w)
    v %= 1 << w
    if rng.random() < 0.5:
        return "(_ bv%d %d)" % (v, w)
    return "#b" + format(v, "0%db" % w)


def term(rng, sig, w, depth):
    """A term of width `w`."""
    names = sig.constants(sort(w))
    r = rng.random()
    if depth <= 0 or r < 0.3:
        apps = sig.functions(sort(w))  # none in QF_BV
        if apps and depth > 0 and rng.random() < 0.4:
            return application(rng, sig, rng.choice(apps), depth - 1)
        if names and rng.random() < 0.8:
            return rng.choice(names)
        return number(rng, w)
    sub = lambda v=w: term(rng, sig, v, depth - 1)  # noqa: E731
    if r < 0.4:
        return "(%s %s)" % (rng.choice(UNARY), sub())
    if r < 0.6:
        return "(%s %s %s)" % (rng.choice(BINARY), sub(), sub())
    if r < 0.68 and w <= WIDE_ARITH:
        return "(%s %s %s)" % (rng.choice(ARITH), sub(), sub())
    if r < 0.74:
        k = rng.randint(0, w + 1)
        op = rng.choice(("rotate_left", "rotate_right"))
        return "((_ %s %d) %s)" % (op, k, sub())
    if r < 0.8:
        wide = rng.choice([v for v in sig.sorts if v >= w] + [w + 3])
        low = rng.randint(0, wide - w)
        return "((_ extract %d %d) %s)" % (low + w - 1, low, sub(wide))
    if r < 0.86 and w >= 2:
        k = rng.randint(1, w - 1)
        return "(concat %s %s)" % (sub(w - k), sub(k))
    if r < 0.9 and w >= 2:
        k = rng.randint(1, w - 1)
        op = rng.choice(("zero_extend", "sign_extend"))
        return "((_ %s %d) %s)" % (op, w - k, sub(k))
    if r < 0.92 and w >= 2 and w % 2 == 0:
        return "((_ repeat 2) %s)" % sub(w // 2)
    if r < 0.95 and w == 1:
        v = rng.choice(sig.sorts)
        return "(bvcomp %s %s)" % (sub(v), sub(v))
    return "(ite %s %s %s)" % (atom(rng, sig, depth - 1), sub(), sub())


def application(rng, sig, f, depth):
    """f applied to terms of its argument widths."""
    return "(%s %s)" % (f, " ".join(term(rng, sig, _width(a), depth)
                                    for a in sig.funs[f][0]))


def _width(s):
    return int(s.split()[-1].rstrip(")"))


def atom(rng, sig, depth=2):
    w = rng.choice(sig.sorts)
    r = rng.random()
    if r < 0.4:
        return "(= %s %s)" % (term(rng, sig, w, depth), term(rng, sig, w, depth))
    if r < 0.9:
        return "(%s %s %s)" % (rng.choice(PREDICATES),
                               term(rng, sig, w, depth),
                               term(rng, sig, w, depth))
    if r < 0.95:
        return "(distinct %s)" % " ".join(term(rng, sig, w, depth)
                                          for _ in range(rng.randint(2, 3)))
    return rng.choice(sig.constants("Bool") or ["true"])


def zenlo_args(sig):
    return []
