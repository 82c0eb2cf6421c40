#!/usr/bin/env python3
"""Writes uniform random 3-SAT instances in DIMACS form.

Each clause has three distinct variables with random signs. At a
clause/variable ratio near 4.26 about half of the instances are
satisfiable, and they are hardest for complete solvers.

  gen_random_cnf.py --vars 250 --ratio 4.26 --seed 1 --count 24 --out DIR
"""
import argparse
import os
import random


def instance(rng, num_vars, num_clauses, k):
    clauses = []
    for _ in range(num_clauses):
        vs = rng.sample(range(1, num_vars + 1), k)
        clauses.append([v if rng.random() < 0.5 else -v for v in vs])
    return clauses


def main():
    ap = argparse.ArgumentParser(description=__doc__,
                                 formatter_class=argparse.RawTextHelpFormatter)
    ap.add_argument("--vars", type=int, default=250)
    ap.add_argument("--ratio", type=float, default=4.26)
    ap.add_argument("--k", type=int, default=3)
    ap.add_argument("--seed", type=int, default=1)
    ap.add_argument("--count", type=int, default=1)
    ap.add_argument("--out", default=".")
    args = ap.parse_args()
    os.makedirs(args.out, exist_ok=True)
    num_clauses = round(args.vars * args.ratio)
    for i in range(args.count):
        seed = args.seed + i
        rng = random.Random(seed)
        clauses = instance(rng, args.vars, num_clauses, args.k)
        name = os.path.join(args.out, "uf%d-s%d.cnf" % (args.vars, seed))
        with open(name, "w") as f:
            f.write("c uniform random %d-SAT, seed %d\n" % (args.k, seed))
            f.write("p cnf %d %d\n" % (args.vars, num_clauses))
            for c in clauses:
                f.write(" ".join(map(str, c)) + " 0\n")
        print(name)


if __name__ == "__main__":
    main()
