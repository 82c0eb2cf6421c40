#!/usr/bin/env python3
"""Runs zenlo with -debug.dump_theory_lemmas=true on SMT-LIB files, in a
scratch folder, and checks what it wrote: at least one tlemma_N.smt2 per
file, and each of them, read back by zenlo and by z3 when there is one,
unsatisfiable. A dump that does not parse, or a theory fact that does not
hold, fails the test.

usage: check_tlemma_dumps.py ZENLO FILE...
"""
import os
import shutil
import subprocess
import sys
import tempfile


def answer(cmd, path):
    r = subprocess.run(cmd + [path], capture_output=True, text=True,
                       timeout=60)
    lines = [l.strip() for l in r.stdout.splitlines() if l.strip()]
    return lines[-1] if lines else "(no output) " + r.stderr.strip()


def main():
    zenlo = os.path.abspath(sys.argv[1])
    z3 = shutil.which("z3")
    problems = []
    for src in sys.argv[2:]:
        with tempfile.TemporaryDirectory() as work:
            subprocess.run([zenlo, "-allow_bool_function_args=true",
                            "-debug.dump_theory_lemmas=true",
                            os.path.abspath(src)],
                           cwd=work, capture_output=True, timeout=120,
                           check=False)
            dumps = sorted(f for f in os.listdir(work)
                           if f.startswith("tlemma_"))
            if not dumps:
                problems.append("%s: nothing dumped" % src)
            for d in dumps:
                path = os.path.join(work, d)
                checkers = [("zenlo", [zenlo])]
                if z3:
                    checkers.append(("z3", [z3]))
                for name, cmd in checkers:
                    got = answer(cmd, path)
                    if got != "unsat":
                        with open(path) as f:
                            text = f.read()
                        problems.append("%s: %s says %s on %s:\n%s"
                                        % (src, name, got, d, text))
            print("%s: %d dumps" % (src, len(dumps)))
    if problems:
        print("\n".join(problems))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
