"""Uninterpreted sorts and functions: equalities, distinct, predicates,
term-level ite, and functions of several arities, some over two sorts and
some with a Bool argument. Few constants per sort, so that equalities
collide and unsat is common."""
LOGIC = "QF_UF"
SORTS = ("U", "V")
ASSERTIONS = (3, 16)


def declare(rng, sig):
    out = []
    for s in SORTS[:rng.randint(1, 2)]:
        sig.sorts.append(s)
        out.append("(declare-sort %s 0)" % s)
    for s in sig.sorts:
        out += [sig.declare("c", [], s) for _ in range(rng.randint(2, 5))]
    out += [_function(rng, sig) for _ in range(rng.randint(1, 4))]
    return out


def declare_more(rng, sig):
    if rng.random() < 0.6:
        return [sig.declare("c", [], rng.choice(sig.sorts))]
    return [_function(rng, sig)]


def _function(rng, sig):
    arity = rng.choice((1, 1, 2, 2, 3))
    domain = sig.sorts + ["Bool"] if rng.random() < 0.15 else sig.sorts
    args = [rng.choice(domain) for _ in range(arity)]
    result = rng.choice(sig.sorts + ["Bool"])
    return sig.declare("f" if result != "Bool" else "q", args, result)


def term(rng, sig, sort, depth):
    """A term of `sort`: a constant, an application, or an ite."""
    if sort == "Bool":
        return atom(rng, sig, depth)
    funs = sig.functions(sort)
    r = rng.random()
    if depth <= 0 or r < 0.45 or not funs:
        return rng.choice(sig.constants(sort))
    if r < 0.9:
        f = rng.choice(funs)
        args = sig.funs[f][0]
        return "(%s %s)" % (f, " ".join(term(rng, sig, a, depth - 1)
                                        for a in args))
    return "(ite %s %s %s)" % (atom(rng, sig, depth - 1),
                               term(rng, sig, sort, depth - 1),
                               term(rng, sig, sort, depth - 1))


def atom(rng, sig, depth=2):
    r = rng.random()
    sort = rng.choice(sig.sorts)
    preds = sig.functions("Bool")
    if r < 0.55 or depth <= 0:
        return "(= %s %s)" % (term(rng, sig, sort, depth),
                              term(rng, sig, sort, depth))
    if r < 0.68:
        n = rng.randint(2, 4)
        return "(distinct %s)" % " ".join(term(rng, sig, sort, depth)
                                          for _ in range(n))
    if r < 0.88 and preds:
        p = rng.choice(preds)
        return "(%s %s)" % (p, " ".join(term(rng, sig, a, depth - 1)
                                        for a in sig.funs[p][0]))
    return rng.choice(sig.constants("Bool") or ["true"])


def zenlo_args(sig):
    # zenlo refuses Bool arguments of functions unless asked to take them.
    return ["-allow_bool_function_args=true"] if sig.bool_args else []
