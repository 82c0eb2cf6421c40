"""Pure Boolean scripts: a handful of Bool constants, so that random
formulas over them are sat about as often as unsat."""
LOGIC = "QF_BOOL"
ASSERTIONS = (2, 14)


def declare(rng, sig):
    return [sig.declare("p", [], "Bool") for _ in range(rng.randint(2, 6))]


def declare_more(rng, sig):
    return [sig.declare("p", [], "Bool")]


def atom(rng, sig):
    r = rng.random()
    names = sig.constants("Bool")
    if r < 0.04:
        return rng.choice(("true", "false"))
    return rng.choice(names)


def zenlo_args(sig):
    return []
