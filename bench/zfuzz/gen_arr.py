"""Arrays (QF_AX, QF_ALIA, QF_AUFLIA): reads through nested stores,
equalities and disequalities between arrays (extensionality), constant
arrays, and term-level ite over arrays. Indices come from few constants
(and, over the integers, small offsets of them), so that stores shadow
each other and read over write must split on whether indices meet.

The Bool variants put Bool at the index (two cells: extensionality over a
finite index) or at the element (reads are atoms); they need the option
that lets functions take Bool arguments."""
import types


def _logic(logic, index, element, functions=False, name=None):
    """With functions, constant arrays too, in a script of logic ALL: z3
    takes them in no array logic."""
    array = "(Array %s %s)" % (index, element)
    sorts = [s for s in (index, element) if s not in ("Int", "Bool")]
    has_bool = "Bool" in (index, element)

    def boolean(rng, sig, depth, sub):
        # A Bool index or element: a constant, a read, or a formula of them.
        r = rng.random()
        if r < 0.15:
            return rng.choice(("true", "false"))
        if depth > 0 and r < 0.3:
            return "(not %s)" % sub(rng, sig, depth - 1)
        return rng.choice(sig.constants("Bool"))

    def declare(rng, sig):
        out = []
        for s in sorts:
            if s not in sig.sorts:
                sig.sorts.append(s)
                out.append("(declare-sort %s 0)" % s)
        if index == "Int" and "Int" not in sig.sorts:
            sig.sorts.append("Int")
        out += [sig.declare("a", [], array) for _ in range(rng.randint(2, 4))]
        out += [sig.declare("i", [], index) for _ in range(rng.randint(2, 4))]
        if element != index:
            out += [sig.declare("e", [], element)
                    for _ in range(rng.randint(1, 3))]
        if functions:
            out.append(sig.declare("f", [array], element))
            out.append(sig.declare("g", [element], element))
        return out

    def declare_more(rng, sig):
        r = rng.random()
        if r < 0.5:
            return [sig.declare("a", [], array)]
        if r < 0.8 or element == index:
            return [sig.declare("i", [], index)]
        return [sig.declare("e", [], element)]

    def lin(rng, sig):
        # i + k or i - j: offsets that read over write must compare.
        x, y = rng.choice(sig.constants("Int")), rng.choice(
            sig.constants("Int"))
        if rng.random() < 0.6:
            return "(+ %s %d)" % (x, rng.randint(1, 2))
        return "(- %s %s)" % (x, y)

    def idx(rng, sig, depth):
        if index == "Bool":
            if depth > 0 and element == "Bool" and rng.random() < 0.2:
                return "(select %s %s)" % (arr(rng, sig, depth - 1),
                                           idx(rng, sig, depth - 1))
            return boolean(rng, sig, depth, idx)
        if index == "Int":
            if depth > 0 and rng.random() < 0.2:
                return lin(rng, sig)
            if rng.random() < 0.15:
                return str(rng.randint(0, 3))
        return rng.choice(sig.constants(index))

    def elem(rng, sig, depth):
        r = rng.random()
        if depth > 0 and r < 0.45:
            return "(select %s %s)" % (arr(rng, sig, depth - 1),
                                       idx(rng, sig, depth - 1))
        if functions and depth > 0 and r < 0.6:
            f = rng.choice(sig.functions(element))
            arg = (arr(rng, sig, depth - 1) if sig.funs[f][0] == [array]
                   else elem(rng, sig, depth - 1))
            return "(%s %s)" % (f, arg)
        if element == "Int":
            if depth > 0 and r < 0.7:
                return lin(rng, sig)
            if r < 0.8:
                return str(rng.randint(0, 5))
        if element == "Bool":
            return boolean(rng, sig, depth, elem)
        return rng.choice(sig.constants(element))

    def arr(rng, sig, depth):
        r = rng.random()
        if depth <= 0 or r < 0.4:
            return rng.choice(sig.constants(array))
        if r < 0.85:
            return "(store %s %s %s)" % (arr(rng, sig, depth - 1),
                                         idx(rng, sig, depth - 1),
                                         elem(rng, sig, depth - 1))
        if functions and r < 0.93:
            return "((as const %s) %s)" % (array, elem(rng, sig, 0))
        return "(ite %s %s %s)" % (atom(rng, sig, 0),
                                   arr(rng, sig, depth - 1),
                                   arr(rng, sig, depth - 1))

    def atom(rng, sig, depth=2):
        r = rng.random()
        if r < 0.3:
            return "(= %s %s)" % (arr(rng, sig, depth), arr(rng, sig, depth))
        if r < 0.7:
            return "(= %s %s)" % (elem(rng, sig, depth + 1),
                                  elem(rng, sig, depth))
        if r < 0.8:
            if element == "Bool":
                return elem(rng, sig, depth + 1)
            return "(= %s %s)" % (idx(rng, sig, depth), idx(rng, sig, depth))
        if element == "Int" and r < 0.95:
            return "(%s %s %s)" % (rng.choice(("<", "<=")),
                                   elem(rng, sig, depth + 1),
                                   elem(rng, sig, depth))
        return "(distinct %s)" % " ".join(arr(rng, sig, depth)
                                          for _ in range(rng.randint(2, 3)))

    args = ["-allow_bool_function_args=true"] if has_bool else []
    return types.SimpleNamespace(LOGIC=name or logic, ASSERTIONS=(3, 12),
                                 SCRIPT_LOGIC="ALL" if functions else logic,
                                 declare=declare, declare_more=declare_more,
                                 atom=atom, zenlo_args=lambda sig: args)


AX = _logic("QF_AX", "I", "E")
ALIA = _logic("QF_ALIA", "Int", "Int")
AUFLIA = _logic("QF_AUFLIA", "Int", "Int", functions=True)
AX_BOOL = _logic("QF_AX", "Bool", "Bool", name="QF_AX_BOOL")
ALIA_BOOL = _logic("QF_ALIA", "Int", "Bool", name="QF_ALIA_BOOL")
