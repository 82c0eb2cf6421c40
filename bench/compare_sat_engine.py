#!/usr/bin/env python3
"""Times the SAT engine's driver against a peer SAT solver on DIMACS files.

  compare_sat_engine.py --zenlo build/bench/sat_engine_main FILE_OR_DIR...

Both solvers run one after the other on each file under a time limit; the
CPU time (user + system) of each run is measured. Answers must agree (and
match "sat"/"unsat" in the file's path when one of them appears there);
the engine's driver checks its own models. Prints a table per family (the
part of the file name before "__", else the directory name): files solved,
total time of each solver on the files both solved, and the ratio.
"""
import argparse
import os
import resource
import subprocess
import sys
from collections import defaultdict


def cpu_run(cmd, timeout):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    try:
        p = subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                           timeout=timeout, text=True)
        out = p.stdout
    except subprocess.TimeoutExpired:
        out = None
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    t = (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)
    if out is None:
        return "timeout", t
    for line in out.splitlines():
        if line.startswith("s "):
            return ("unsat" if "UNSAT" in line else "sat"), t
        if "UNSATISFIABLE" in line:
            return "unsat", t
        if "SATISFIABLE" in line:
            return "sat", t
        if "model check failed" in line:
            return "badmodel", t
    return "error", t


def family(path):
    base = os.path.basename(path)
    if "__" in base:
        return base.split("__")[0]
    return os.path.basename(os.path.dirname(path)) or "."


def expected_of(path):
    parts = path.replace("\\", "/").split("/")
    if "unsat" in parts:
        return "unsat"
    if "sat" in parts:
        return "sat"
    return None


def files_of(args):
    out = []
    for a in args:
        if os.path.isdir(a):
            for root, _, names in os.walk(a):
                out += [os.path.join(root, n) for n in names
                        if n.endswith(".cnf")]
        else:
            out.append(a)
    return sorted(out)


def main():
    ap = argparse.ArgumentParser(description=__doc__,
                                 formatter_class=argparse.RawTextHelpFormatter)
    ap.add_argument("--zenlo", required=True)
    ap.add_argument("--peer", default="minisat")
    ap.add_argument("--peer-args", default="-verb=0")
    ap.add_argument("--timeout", type=float, default=60)
    ap.add_argument("-v", "--verbose", action="store_true")
    ap.add_argument("inputs", nargs="+")
    args = ap.parse_args()

    fam = defaultdict(lambda: [0, 0, 0, 0.0, 0.0])  # n, z ok, p ok, tz, tp
    wrong = 0
    for f in files_of(args.inputs):
        rz, tz = cpu_run([args.zenlo, f], args.timeout)
        rp, tp = cpu_run([args.peer] + args.peer_args.split() + [f],
                         args.timeout)
        exp = expected_of(f)
        bad = rz in ("badmodel", "error") or (
            rz in ("sat", "unsat") and rp in ("sat", "unsat") and rz != rp
        ) or (exp is not None and rz in ("sat", "unsat") and rz != exp)
        if bad:
            wrong += 1
            print("WRONG %s: zenlo %s, peer %s, expected %s" % (f, rz, rp, exp))
        s = fam[family(f)]
        s[0] += 1
        zok = rz in ("sat", "unsat") and not bad
        pok = rp in ("sat", "unsat")
        s[1] += zok
        s[2] += pok
        if zok and pok:
            s[3] += tz
            s[4] += tp
        if args.verbose:
            print("%-50s %-7s %8.3f  %-7s %8.3f" % (os.path.basename(f), rz, tz,
                                                   rp, tp))
    print("%-22s %5s %7s %7s %10s %10s %6s" % ("family", "files", "zenlo",
                                              "peer", "t zenlo", "t peer",
                                              "ratio"))
    tot = [0, 0, 0, 0.0, 0.0]
    for name in sorted(fam):
        s = fam[name]
        tot = [a + b for a, b in zip(tot, s)]
        print("%-22s %5d %7d %7d %10.2f %10.2f %6.2f" % (
            name, s[0], s[1], s[2], s[3], s[4], s[3] / s[4] if s[4] else 0))
    print("%-22s %5d %7d %7d %10.2f %10.2f %6.2f" % (
        "total", tot[0], tot[1], tot[2], tot[3], tot[4],
        tot[3] / tot[4] if tot[4] else 0))
    if wrong:
        print("%d WRONG ANSWERS" % wrong)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
