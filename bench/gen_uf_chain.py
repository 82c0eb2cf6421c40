#!/usr/bin/env python3
"""Writes a QF_UF script whose answer rests on a congruence chain of depth N:
f^N(a) differs from f^N(b) and from f^N(c), while a = b or a = c. It is
unsat, and only congruence through all N applications shows it. The terms
are written out nested, so the reader meets the depth too."""
import argparse
import sys


def main():
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--depth", type=int, default=100000)
    ap.add_argument("--out", default="-", help="output file (- for stdout)")
    args = ap.parse_args()
    n = args.depth

    def chain(x):
        return "(f " * n + x + ")" * n

    out = sys.stdout if args.out == "-" else open(args.out, "w")
    out.write("(set-logic QF_UF)\n(set-info :status unsat)\n"
              "(declare-sort U 0)\n(declare-fun f (U) U)\n")
    for c in "abc":
        out.write("(declare-fun %s () U)\n" % c)
    out.write("(assert (or (= a b) (= a c)))\n")
    out.write("(assert (not (= %s %s)))\n" % (chain("a"), chain("b")))
    out.write("(assert (not (= %s %s)))\n" % (chain("a"), chain("c")))
    out.write("(check-sat)\n")
    if out is not sys.stdout:
        out.close()


if __name__ == "__main__":
    main()
