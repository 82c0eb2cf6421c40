#!/usr/bin/env python3
"""Runs every SMT-LIB 2 script of the shared benchmark set through zenlo.

usage: run_smt2_corpus.py ZENLO [--bench DIR] [--timeout SEC] [--jobs N]
                          [--known FILE] [--only SUBSTRING] [--args ARGS]
                          [--verbose]

Each script runs with -timeout=SEC (CPU seconds per run; the wall clock is
cut at 10 * SEC + 20) and the options of --args, by default
-allow_bool_function_args=true: many scripts of the set give functions and
arrays Boolean arguments, which the term store refuses under its default
settings, and that refusal is a setting, not a limit of the reader. The run
fails when a script

  - kills zenlo with a signal, makes it hang, or ends it with a nonzero
    status;
  - answers an error that names a line (a parse error) and is not listed,
    with the text of its reason, in the file of known reader errors;
  - is listed there but reads without that error now (the list is stale);
  - answers sat where the expected answer (index.tsv) is unsat, or the
    other way round. Answers are compared up to the first error that may
    have changed what the later checks mean (a failed assert, push or pop);
    after it they are counted but not compared.

The figures of the run are printed at the end; the exit status is 1 when
anything failed.
"""
import argparse
import concurrent.futures
import os
import re
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))

# Errors that leave the meaning of the later checks as it was: queries that
# could not be answered and settings refused.
HARMLESS = (
    "model not available",
    "no reason to give",
    "too late for setting",
    "invalid value for :timeout option",
    "unsupported command: .internal-parse-terms",
)
ANSWERS = ("sat", "unsat", "unknown")
STATUS_ERROR = re.compile(r'^\(error "expected status was \w+, got (\w+) '
                          r'instead"\)$')


def read_index(bench):
    rows = []
    with open(os.path.join(bench, "index.tsv"), encoding="utf-8") as f:
        next(f)
        for line in f:
            path, _logic, expected, _checks = line.rstrip("\n").split("\t")[:4]
            if path.endswith(".smt2"):
                rows.append((path, expected.split(";")))
    return rows


def read_known(path):
    """{file path: reason} of the known reader errors."""
    known = {}
    with open(path, encoding="utf-8") as f:
        for line in f:
            if line.strip() and not line.startswith("#"):
                file, reason = line.rstrip("\n").split("\t", 1)
                known[file] = reason
    return known


def run_one(zenlo, args, bench, path, timeout):
    start = time.time()
    try:
        proc = subprocess.run(
            [zenlo, "-timeout=%d" % timeout] + args
            + [os.path.join(bench, path)],
            capture_output=True, text=True, errors="replace",
            timeout=10 * timeout + 20)
    except subprocess.TimeoutExpired:
        return path, None, "", time.time() - start
    return path, proc.returncode, proc.stdout, time.time() - start


def analyse(out):
    """Answers compared (in order), answers after a meaningful error,
    parse error lines, other error lines."""
    compared, later, parse_errors, errors = [], [], [], []
    clean = True
    for line in out.split("\n"):
        line = line.strip()
        status = STATUS_ERROR.match(line)
        answer = line if line in ANSWERS else (status and status.group(1))
        if answer:
            (compared if clean else later).append(answer)
            continue
        if not line.startswith("(error "):
            continue
        if "(line: " in line:
            parse_errors.append(line)
        else:
            errors.append(line)
        if not any(h in line for h in HARMLESS):
            clean = False
    return compared, later, parse_errors, errors


class Report:
    def __init__(self):
        self.failures = []
        self.counts = {}

    def count(self, key, n=1):
        self.counts[key] = self.counts.get(key, 0) + n

    def fail(self, path, why):
        self.failures.append("%s: %s" % (path, why))


def judge(report, known, path, expected, status, out):
    if status is None:
        report.count("hangs")
        return report.fail(path, "no end within the wall-clock limit")
    if status < 0:
        report.count("crashes")
        return report.fail(path, "killed by signal %d" % -status)
    if status != 0:
        report.fail(path, "exit status %d" % status)
    compared, later, parse_errors, errors = analyse(out)
    judge_parse_errors(report, known, path, parse_errors)
    report.count("other error lines", len(errors))
    report.count("answers after a meaningful error", len(later))
    for got, want in zip(compared, expected):
        report.count("answers " + got)
        if {got, want} == {"sat", "unsat"}:
            report.count("contradictions")
            report.fail(path, "answered %s, expected %s" % (got, want))
        elif got == want:
            report.count("definite answers confirmed")


def judge_parse_errors(report, known, path, parse_errors):
    reason = known.get(path)
    if reason is None:
        if parse_errors:
            report.count("unexpected parse errors")
            report.fail(path, "parse error: " + parse_errors[0])
        return
    if any(reason in e for e in parse_errors):
        report.count("known reader errors")
    else:
        report.count("stale known errors")
        report.fail(path, "listed with `%s', but no such error now" % reason)


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("zenlo")
    ap.add_argument("--bench", default=os.environ.get("ZENLO_BENCH_DIR",
                                                      "/work/shared/bench"))
    ap.add_argument("--timeout", type=int, default=2)
    ap.add_argument("--jobs", type=int, default=2)
    ap.add_argument("--known",
                    default=os.path.join(HERE, "known_reader_errors.tsv"))
    ap.add_argument("--only", default="")
    ap.add_argument("--args", default="-allow_bool_function_args=true")
    ap.add_argument("--verbose", action="store_true")
    args = ap.parse_args()
    if not os.path.isdir(args.bench):
        print("no benchmark set at %s; nothing to do" % args.bench)
        return 0
    rows = [r for r in read_index(args.bench) if args.only in r[0]]
    expected = dict(rows)
    known = {k: v for k, v in read_known(args.known).items()
             if args.only in k}
    report = Report()
    start = time.time()
    slowest = []
    with concurrent.futures.ThreadPoolExecutor(args.jobs) as pool:
        runs = [pool.submit(run_one, args.zenlo, args.args.split(), args.bench,
                            p, args.timeout)
                for p, _ in rows]
        for fut in concurrent.futures.as_completed(runs):
            path, status, out, secs = fut.result()
            slowest.append((secs, path))
            judge(report, known, path, expected[path], status, out)
            if args.verbose:
                print("%6.2fs %s" % (secs, path))
    for path in sorted(set(known) - set(expected)):
        report.fail(path, "listed as a known error, but not in the set")
    print_figures(report, len(rows), time.time() - start, slowest)
    return 1 if report.failures else 0


def print_figures(report, files, seconds, slowest):
    print("%d scripts in %.1f s" % (files, seconds))
    for key in sorted(report.counts):
        print("  %-36s %d" % (key, report.counts[key]))
    slowest.sort(reverse=True)
    print("  slowest: " + ", ".join("%s %.1fs" % (os.path.basename(p), s)
                                    for s, p in slowest[:3]))
    for f in sorted(report.failures):
        print("FAIL " + f)


if __name__ == "__main__":
    sys.exit(main())
