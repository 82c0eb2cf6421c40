#!/usr/bin/env python3
"""Incremental QF_UF benchmark: one long script of push/assert/check/pop
rounds over a fixed base problem, solved incrementally by zenlo, z3 and
cvc5 in the same run, and by zenlo once more with every query in a file of
its own (one-shot). All answers must agree; the report gives the times and
the ratios zenlo/z3 (incremental) and zenlo incremental/zenlo one-shot.

    bench/incremental_uf.py [--rounds N] [--seed S] [--zenlo PATH]

The script is generated from the seed, so a run is repeatable: constants
of one uninterpreted sort, two unary functions, a binary one and a
predicate; a base of random clauses over equalities of small terms, and per
round a few more clauses and literals, about half of the rounds
unsatisfiable. Each solver is run several times and the fastest run
counts.
"""
import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))


class Gen:
    def __init__(self, rng, n_consts):
        self.rng = rng
        self.consts = ["c%d" % i for i in range(n_consts)]

    def term(self, depth):
        r = self.rng.random()
        if depth == 0 or r < 0.5:
            return self.rng.choice(self.consts)
        if r < 0.75:
            return "(f %s)" % self.term(depth - 1)
        if r < 0.9:
            return "(g %s)" % self.term(depth - 1)
        return "(h %s %s)" % (self.term(depth - 1), self.term(depth - 1))

    def atom(self):
        if self.rng.random() < 0.15:
            return "(p %s)" % self.term(2)
        return "(= %s %s)" % (self.term(1), self.term(2))

    def literal(self, p_neg):
        a = self.atom()
        return "(not %s)" % a if self.rng.random() < p_neg else a

    def clause(self, width, p_neg):
        lits = [self.literal(p_neg) for _ in range(width)]
        return lits[0] if width == 1 else "(or %s)" % " ".join(lits)


def header(n_consts):
    out = ["(set-logic QF_UF)", "(declare-sort U 0)"]
    out += ["(declare-fun c%d () U)" % i for i in range(n_consts)]
    out += ["(declare-fun f (U) U)", "(declare-fun g (U) U)",
            "(declare-fun h (U U) U)", "(declare-fun p (U) Bool)"]
    return out


def generate(rounds, seed, n_consts=10, base_clauses=50):
    """Returns (incremental script, [one-shot scripts])."""
    rng = random.Random(seed)
    gen = Gen(rng, n_consts)
    base = ["(assert %s)" % gen.clause(rng.choice((1, 2, 3)), 0.8)
            for _ in range(base_clauses)]
    inc = header(n_consts) + base
    shots = []
    for _ in range(rounds):
        extra = ["(assert %s)" % gen.clause(rng.choice((1, 1, 2)), 0.25)
                 for _ in range(rng.randint(8, 16))]
        inc += ["(push 1)"] + extra + ["(check-sat)", "(pop 1)"]
        shots.append("\n".join(header(n_consts) + base + extra
                               + ["(check-sat)", ""]))
    inc.append("(exit)")
    return "\n".join(inc) + "\n", shots


def answers(text):
    return [w for w in text.split() if w in ("sat", "unsat", "unknown")]


def run_timed(cmd, repeat):
    best, out = None, ""
    for _ in range(repeat):
        t0 = time.perf_counter()
        proc = subprocess.run(cmd, capture_output=True, text=True)
        dt = time.perf_counter() - t0
        if proc.returncode != 0 or "(error" in proc.stdout:
            sys.exit("%s failed:\n%s%s" % (cmd[0], proc.stdout[-2000:],
                                           proc.stderr[-2000:]))
        out = proc.stdout
        best = dt if best is None else min(best, dt)
    return best, answers(out)


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--rounds", type=int, default=3000)
    ap.add_argument("--seed", type=int, default=1)
    ap.add_argument("--repeat", type=int, default=3)
    ap.add_argument("--zenlo",
                    default=os.path.join(HERE, "..", "build", "zenlo"))
    ap.add_argument("--keep", help="write the scripts into this folder")
    args = ap.parse_args()

    inc, shots = generate(args.rounds, args.seed)
    tmp = args.keep or tempfile.mkdtemp(prefix="zenlo_incr_")
    os.makedirs(tmp, exist_ok=True)
    inc_path = os.path.join(tmp, "incremental.smt2")
    with open(inc_path, "w") as f:
        f.write(inc)
    shot_paths = []
    for i, s in enumerate(shots):
        p = os.path.join(tmp, "query%05d.smt2" % i)
        with open(p, "w") as f:
            f.write(s)
        shot_paths.append(p)

    times, results = {}, {}
    times["zenlo"], results["zenlo"] = run_timed([args.zenlo, inc_path],
                                                 args.repeat)
    peers = {"z3": ["z3", inc_path],
             "cvc5": ["cvc5", "--incremental", "--lang=smt2", inc_path]}
    for name, cmd in peers.items():
        if shutil.which(cmd[0]):
            times[name], results[name] = run_timed(cmd, args.repeat)

    t0 = time.perf_counter()
    one_shot = []
    for p in shot_paths:
        one_shot += run_timed([args.zenlo, p], 1)[1]
    times["zenlo one-shot"] = time.perf_counter() - t0
    results["zenlo one-shot"] = one_shot

    ref = results["zenlo"]
    n_sat = ref.count("sat")
    print("%d queries (%d sat, %d unsat), seed %d, best of %d runs"
          % (len(ref), n_sat, ref.count("unsat"), args.seed, args.repeat))
    wrong = False
    for name, res in results.items():
        agree = res == ref
        wrong = wrong or not agree
        print("  %-15s %8.3f s%s" % (name, times[name],
                                     "" if agree else "  ANSWERS DIFFER"))
    if "z3" in times:
        print("zenlo/z3 (incremental):          %.2f"
              % (times["zenlo"] / times["z3"]))
    if "cvc5" in times:
        print("zenlo/cvc5 (incremental):        %.2f"
              % (times["zenlo"] / times["cvc5"]))
    print("zenlo incremental/zenlo one-shot: %.3f"
          % (times["zenlo"] / times["zenlo one-shot"]))
    if not args.keep:
        shutil.rmtree(tmp)
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
