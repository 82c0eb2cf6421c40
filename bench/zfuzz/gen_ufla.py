"""Arithmetic under uninterpreted functions (QF_UFLIA, QF_UFLRA): the
arithmetic generators' shapes with applications of a few functions over
the number sort among their leaves, and equalities between applications,
so that the integer or real solver and congruence must agree on which
arguments are equal. Arguments range over few constants and small
numbers, so that they collide."""
import types

from . import gen_lia, gen_lra


def _logic(base, logic, sort):
    def function(rng, sig):
        arity = rng.choice((1, 1, 1, 2))
        return sig.declare("f", [sort] * arity, sort)

    def declare(rng, sig):
        out = base.declare(rng, sig)
        return out + [function(rng, sig) for _ in range(rng.randint(1, 3))]

    def declare_more(rng, sig):
        if rng.random() < 0.6:
            return base.declare_more(rng, sig)
        return [function(rng, sig)]

    def atom(rng, sig, depth=2):
        if rng.random() < 0.2:
            # f(s) = f(t) or its negation: the pair congruence must decide
            # from arithmetic.
            f = rng.choice(sig.functions(sort))
            app = lambda: "(%s %s)" % (f, " ".join(  # noqa: E731
                base.term(rng, sig, 1) for _ in sig.funs[f][0]))
            eq = "(= %s %s)" % (app(), app())
            return eq if rng.random() < 0.5 else "(not %s)" % eq
        return base.atom(rng, sig, depth)

    return types.SimpleNamespace(LOGIC=logic, ASSERTIONS=(4, 16),
                                 declare=declare, declare_more=declare_more,
                                 atom=atom, zenlo_args=base.zenlo_args)


UFLIA = _logic(gen_lia, "QF_UFLIA", "Int")
UFLRA = _logic(gen_lra, "QF_UFLRA", "Real")
