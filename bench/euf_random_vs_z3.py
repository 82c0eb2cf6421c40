#!/usr/bin/env python3
"""Random QF_UF scripts, answered by zenlo and by z3, compared query by query.

Each script declares an uninterpreted sort, a few constants, unary and binary
functions, a predicate and a function with a Boolean argument, then asserts a
random clause set over equalities and predicate atoms, with backtrack points
and several check-sat commands. A disagreement is written to the output
folder as a reproducer and fails the run.

  bench/euf_random_vs_z3.py --zenlo build/bench/euf_smt2_driver -n 500
"""

import argparse
import os
import random
import subprocess
import sys


def term(rng, depth, consts):
    k = rng.randrange(7)
    if depth == 0 or k < 3:
        return rng.choice(consts)
    if k < 5:
        return "(f %s)" % term(rng, depth - 1, consts)
    if k < 6:
        return "(g %s %s)" % (term(rng, depth - 1, consts),
                              term(rng, depth - 1, consts))
    return "(h %s)" % atom(rng, depth - 1, consts)


def atom(rng, depth, consts):
    k = rng.randrange(8)
    if k == 0:
        return "(p %s)" % term(rng, depth, consts)
    if k == 1:
        return rng.choice(["b0", "b1"])
    a = term(rng, depth, consts)
    b = term(rng, depth, consts)
    return "(= %s %s)" % (a, b)


def literal(rng, atoms):
    a = rng.choice(atoms)
    return a if rng.randrange(2) else "(not %s)" % a


def script(rng, nconsts, natoms, nclauses, queries):
    consts = ["c%d" % i for i in range(nconsts)]
    lines = ["(set-logic QF_UF)", "(declare-sort U 0)"]
    lines += ["(declare-fun %s () U)" % c for c in consts]
    lines += ["(declare-fun b0 () Bool)", "(declare-fun b1 () Bool)",
              "(declare-fun f (U) U)", "(declare-fun g (U U) U)",
              "(declare-fun h (Bool) U)", "(declare-fun p (U) Bool)"]
    atoms = sorted({atom(rng, 2, consts) for _ in range(natoms)})
    depth = 0
    for q in range(queries):
        if q > 0 and rng.randrange(3) == 0 and depth > 0:
            lines.append("(pop 1)")
            depth -= 1
        if rng.randrange(2) == 0:
            lines.append("(push 1)")
            depth += 1
        for _ in range(nclauses if q == 0 else max(1, nclauses // 4)):
            lits = [literal(rng, atoms) for _ in range(rng.randint(1, 3))]
            lines.append("(assert (or %s))" % " ".join(lits))
        lines.append("(check-sat)")
    lines.append("(exit)")
    return "\n".join(lines) + "\n"


def answers(cmd, path, timeout):
    try:
        out = subprocess.run(cmd + [path], capture_output=True, text=True,
                             timeout=timeout).stdout
    except subprocess.TimeoutExpired:
        return None
    return [w for w in out.split() if w in ("sat", "unsat", "unknown")]


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--zenlo", required=True, help="zenlo or a driver")
    ap.add_argument("--z3", default="z3")
    ap.add_argument("-n", type=int, default=200, help="number of scripts")
    ap.add_argument("--seed", type=int, default=1)
    ap.add_argument("-t", type=float, default=20.0, help="seconds per run")
    ap.add_argument("-o", default="bench/out/euf_random")
    args = ap.parse_args()
    os.makedirs(args.o, exist_ok=True)
    bad = 0
    counts = {"sat": 0, "unsat": 0}
    for i in range(args.n):
        rng = random.Random(args.seed * 1000003 + i)
        text = script(rng, rng.randint(3, 6), rng.randint(6, 16),
                      rng.randint(6, 30), rng.randint(1, 4))
        path = os.path.join(args.o, "r%05d.smt2" % i)
        with open(path, "w") as f:
            f.write(text)
        mine = answers([args.zenlo], path, args.t)
        ref = answers([args.z3], path, args.t)
        if mine is None or ref is None:
            print("timeout on %s" % path)
            continue
        if mine != ref:
            bad += 1
            print("DIFFERENT on %s: zenlo %s, z3 %s" % (path, mine, ref))
            continue
        for a in mine:
            counts[a] = counts.get(a, 0) + 1
        os.remove(path)
    print("%d scripts, %d sat and %d unsat answers, %d disagreements"
          % (args.n, counts["sat"], counts["unsat"], bad))
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
