#!/usr/bin/env python3
"""Runs zenlo with the given arguments and checks its exit status and output.

usage: run_cli.py ZENLO STATUS REGEX [ARG...]

The standard output must match REGEX (Python syntax, searched with
re.MULTILINE) and the standard error must stay empty: the driver writes
every message to its standard output.

Two pseudo-arguments are not passed on: STDIN=PATH makes the file the
standard input (else it is empty), and SIGINT_AFTER=SECONDS sends SIGINT to
the run after that many seconds.
"""
import re
import signal
import subprocess
import sys
import time


def wait_for_handler(pid, sig, limit=30.0):
    """Waits until process `pid` catches `sig`: a slow start (a sanitizer
    build on a busy machine) must not turn the test into one of the default
    action. Where /proc is missing, the fixed delay has to do."""
    deadline = time.monotonic() + limit
    while time.monotonic() < deadline:
        try:
            with open("/proc/%d/status" % pid) as f:
                caught = next((l.split()[1] for l in f
                               if l.startswith("SigCgt:")), None)
        except OSError:
            return
        if caught is None or (int(caught, 16) >> (sig - 1)) & 1:
            return
        time.sleep(0.02)


def main():
    zenlo, status, regex = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    args, stdin_path, sigint_after, hold = [], None, None, False
    for a in sys.argv[4:]:
        if a.startswith("STDIN="):
            stdin_path = a[len("STDIN="):]
        elif a.startswith("STDIN_HOLD="):
            # The file's text, then standard input stays open: zenlo waits
            # in read(), where a signal meets no half-done allocation.
            stdin_path, hold = a[len("STDIN_HOLD="):], True
        elif a.startswith("SIGINT_AFTER="):
            sigint_after = float(a[len("SIGINT_AFTER="):])
        else:
            args.append(a)
    stdin = open(stdin_path, "rb") if stdin_path else subprocess.DEVNULL
    if hold:
        stdin = subprocess.PIPE
    # A child of a non-interactive shell may inherit SIGINT as ignored.
    proc = subprocess.Popen(
        [zenlo] + args, stdin=stdin, stdout=subprocess.PIPE,
        stderr=subprocess.PIPE, text=True,
        preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
    if hold:
        with open(stdin_path) as f:
            proc.stdin.write(f.read())
        proc.stdin.flush()
    if sigint_after is not None:
        time.sleep(sigint_after)
        wait_for_handler(proc.pid, signal.SIGINT)
        proc.send_signal(signal.SIGINT)
    out, err = proc.communicate(timeout=60)
    problems = []
    if proc.returncode != status:
        problems.append(f"exit status {proc.returncode}, expected {status}")
    if not re.search(regex, out, re.MULTILINE):
        problems.append(f"output does not match {regex!r}")
    if err:
        problems.append("unexpected standard error output")
    if problems:
        print("\n".join(problems))
        print("--- stdout\n" + out + "--- stderr\n" + err)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
