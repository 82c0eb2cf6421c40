"""Bit-vectors under uninterpreted functions (QF_UFBV): the bit-vector
generator's shapes with applications of a few functions between the
declared widths among their leaves, predicates over words, and
equalities between applications, so that the bits and congruence must
agree on which arguments are equal. Few constants and edge numbers make
arguments collide."""
from . import gen_bv

LOGIC = "QF_UFBV"
ASSERTIONS = (3, 12)
zenlo_args = gen_bv.zenlo_args
sort = gen_bv.sort


def _function(rng, sig, result):
    args = [sort(rng.choice(sig.sorts)) for _ in range(rng.choice((1, 1, 2)))]
    return sig.declare("f" if result != "Bool" else "p", args, result)


def declare(rng, sig):
    out = gen_bv.declare(rng, sig)
    for _ in range(rng.randint(1, 3)):
        out.append(_function(rng, sig, sort(rng.choice(sig.sorts))))
    if rng.random() < 0.5:
        out.append(_function(rng, sig, "Bool"))
    return out


def declare_more(rng, sig):
    if rng.random() < 0.6:
        return gen_bv.declare_more(rng, sig)
    return [_function(rng, sig, sort(rng.choice(sig.sorts)))]


def atom(rng, sig, depth=2):
    r = rng.random()
    preds = sig.functions("Bool")
    if r < 0.15 and preds:
        a = gen_bv.application(rng, sig, rng.choice(preds), depth)
        return a if rng.random() < 0.6 else "(not %s)" % a
    if r < 0.35:
        # f(s) = f(t) or its negation: the pair congruence must decide
        # from the bits.
        fs = [f for w in sig.sorts for f in sig.functions(sort(w))]
        if fs:
            f = rng.choice(fs)
            eq = "(= %s %s)" % (gen_bv.application(rng, sig, f, 1),
                                gen_bv.application(rng, sig, f, 1))
            return eq if rng.random() < 0.5 else "(not %s)" % eq
    return gen_bv.atom(rng, sig, depth)
