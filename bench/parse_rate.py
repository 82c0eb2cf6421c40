#!/usr/bin/env python3
"""How fast zenlo reads SMT-LIB 2, next to z3.

Generates a seeded script of about --size MB: many declarations (Bool, Int,
Real, 32-bit vectors) and assertions that mix linear arithmetic, Boolean
structure, bit-vector operations, let bindings and subterms shared between
assertions. Then times bench/smt2_parse (the library's reader, no solving)
and z3 on the same file, z3 without check-sat so that it only parses and
asserts, and reports MB/s and the ratio of the times. Best of --runs.

  bench/parse_rate.py [--size 50] [--seed 1] [--runs 3] [--parser PATH]

Build the reader with -DZENLO_BENCH=ON; its default path is
build/bench/smt2_parse.
"""
import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time


class Generator:
    def __init__(self, seed):
        self.r = random.Random(seed)
        self.ints = [f"x{i}" for i in range(20000)]
        self.reals = [f"r{i}" for i in range(5000)]
        self.bools = [f"b{i}" for i in range(10000)]
        self.bvs = [f"v{i}" for i in range(10000)]
        self.shared_int = []   # subterm texts reused across assertions
        self.shared_bv = []

    def declarations(self):
        out = ["(set-logic ALL)\n"]
        for names, sort in ((self.bools, "Bool"), (self.ints, "Int"),
                            (self.reals, "Real"),
                            (self.bvs, "(_ BitVec 32)")):
            out.extend(f"(declare-fun {n} () {sort})\n" for n in names)
        return "".join(out)

    def linear(self):
        r = self.r
        if self.shared_int and r.random() < 0.4:
            return r.choice(self.shared_int)
        terms = []
        for _ in range(r.randint(2, 5)):
            c = r.randint(-20, 20) or 1
            x = r.choice(self.ints)
            terms.append(x if c == 1 else
                         f"(* {c} {x})" if c > 0 else f"(* (- {-c}) {x})")
        t = f"(+ {' '.join(terms)})"
        if len(self.shared_int) < 5000:
            self.shared_int.append(t)
        return t

    def bv(self):
        r = self.r
        if self.shared_bv and r.random() < 0.4:
            return r.choice(self.shared_bv)
        a, b, c = (r.choice(self.bvs) for _ in range(3))
        k = r.getrandbits(32)
        t = r.choice([
            f"(bvadd {a} (bvmul {b} #x{k:08x}))",
            f"(bvxor {a} (bvlshr {b} (_ bv{k % 32} 32)))",
            f"((_ extract 31 0) (concat {a} {b}))",
            f"(bvor (bvand {a} {b}) (bvnot {c}))",
        ])
        if len(self.shared_bv) < 5000:
            self.shared_bv.append(t)
        return t

    def atom(self):
        r = self.r
        kind = r.randrange(6)
        if kind == 0:
            return f"(<= {self.linear()} {r.randint(-100, 100)})"
        if kind == 1:
            return f"(= {self.linear()} {self.linear()})"
        if kind == 2:
            x, y = r.choice(self.reals), r.choice(self.reals)
            return f"(< (+ {x} (* {r.randint(1, 9)}.5 {y})) {r.random():.4f})"
        if kind == 3:
            return f"(bvult {self.bv()} {self.bv()})"
        if kind == 4:
            return f"(= {self.bv()} {self.bv()})"
        return r.choice(self.bools)

    def formula(self):
        r = self.r
        kind = r.randrange(4)
        if kind == 0:
            return self.atom()
        if kind == 1:
            lits = [self.atom() if r.random() < 0.7 else f"(not {self.atom()})"
                    for _ in range(r.randint(2, 4))]
            return f"(or {' '.join(lits)})"
        if kind == 2:
            s, t = self.linear(), self.linear()
            return (f"(let ((?a {s}) (?b {t})) "
                    f"(and (< ?a ?b) (or {r.choice(self.bools)} "
                    f"(>= (+ ?a ?b) {r.randint(0, 50)}))))")
        c = r.choice(self.bools)
        return f"(ite {c} {self.atom()} (and {self.atom()} {self.atom()}))"

    def write(self, path, size_mb):
        limit = size_mb * 1_000_000
        count = 0
        with open(path, "w") as f:
            written = f.write(self.declarations())
            while written < limit:
                chunk = "".join(f"(assert {self.formula()})\n"
                                for _ in range(1000))
                written += f.write(chunk)
                count += 1000
        return written, count


def best_time(cmd, runs):
    best = None
    for _ in range(runs):
        start = time.perf_counter()
        p = subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                           text=True)
        elapsed = time.perf_counter() - start
        if p.returncode != 0 or "error" in p.stdout:
            sys.exit(f"{cmd[0]} failed: {p.stdout[:300]} {p.stderr[:300]}")
        best = elapsed if best is None else min(best, elapsed)
    return best


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--size", type=int, default=50, help="MB of script")
    ap.add_argument("--seed", type=int, default=1)
    ap.add_argument("--runs", type=int, default=3)
    here = os.path.dirname(os.path.abspath(__file__))
    ap.add_argument("--parser", default=os.path.join(
        here, "..", "build", "bench", "smt2_parse"))
    ap.add_argument("--z3", default=shutil.which("z3"))
    ap.add_argument("--keep", help="write the script here and keep it")
    args = ap.parse_args()
    if not os.path.exists(args.parser):
        sys.exit(f"no reader at {args.parser}: build with -DZENLO_BENCH=ON")

    path = args.keep or tempfile.mktemp(suffix=".smt2")
    try:
        size, count = Generator(args.seed).write(path, args.size)
        mb = size / 1e6
        print(f"script: {mb:.1f} MB, {count} assertions, seed {args.seed}")
        t_zenlo = best_time([args.parser, "-q", path], args.runs)
        print(f"zenlo: {t_zenlo:7.2f} s  {mb / t_zenlo:6.1f} MB/s")
        if args.z3:
            t_z3 = best_time([args.z3, "-smt2", path], args.runs)
            print(f"z3:    {t_z3:7.2f} s  {mb / t_z3:6.1f} MB/s")
            print(f"ratio: z3 takes {t_z3 / t_zenlo:.2f} times as long")
    finally:
        if not args.keep and os.path.exists(path):
            os.remove(path)


if __name__ == "__main__":
    main()
