#!/usr/bin/env python3
"""Runs zenlo with the given arguments and checks its exit status and output.

usage: run_cli.py ZENLO STATUS REGEX [ARG...]

The standard output must match REGEX (Python syntax, searched with
re.MULTILINE) and the standard error must stay empty: the driver writes
every message to its standard output.
"""
import re
import subprocess
import sys


def main():
    zenlo, status, regex = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    run = subprocess.run([zenlo] + sys.argv[4:], capture_output=True,
                         text=True, timeout=60, stdin=subprocess.DEVNULL)
    problems = []
    if run.returncode != status:
        problems.append(f"exit status {run.returncode}, expected {status}")
    if not re.search(regex, run.stdout, re.MULTILINE):
        problems.append(f"output does not match {regex!r}")
    if run.stderr:
        problems.append("unexpected standard error output")
    if problems:
        print("\n".join(problems))
        print("--- stdout\n" + run.stdout + "--- stderr\n" + run.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
