#!/usr/bin/env python3
"""Writes an incremental QF_UF script with a large base: N constants, N-1
unit facts at the bottom level (equalities along a chain, with every third
link a disequality through f), then R rounds of push, one clause over a
fresh constant, check-sat, pop. Every answer is sat. What it measures is
what a round costs beside a big base: a solver that hears the base again
at every check or pop pays for it in every round."""
import argparse
import random
import sys


def main():
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--constants", type=int, default=8000)
    ap.add_argument("--rounds", type=int, default=3000)
    ap.add_argument("--seed", type=int, default=3)
    ap.add_argument("--out", default="-", help="output file (- for stdout)")
    args = ap.parse_args()
    rng = random.Random(args.seed)
    n, rounds = args.constants, args.rounds
    lines = ["(set-logic QF_UF)", "(declare-sort U 0)",
             "(declare-fun f (U) U)"]
    lines += ["(declare-fun c%d () U)" % i for i in range(n)]
    for i in range(n - 1):
        if i % 3:
            lines.append("(assert (= c%d c%d))" % (i, i + 1))
        else:
            lines.append("(assert (not (= (f c%d) c%d)))" % (i, i + 1))
    lines += ["(declare-fun d%d () U)" % r for r in range(rounds)]
    for r in range(rounds):
        a, b = rng.randrange(n), rng.randrange(n)
        lines += ["(push 1)",
                  "(assert (or (= d%d c%d) (= (f d%d) c%d)))" % (r, a, r, b),
                  "(check-sat)", "(pop 1)"]
    out = sys.stdout if args.out == "-" else open(args.out, "w")
    out.write("\n".join(lines) + "\n")
    if out is not sys.stdout:
        out.close()


if __name__ == "__main__":
    main()
