"""A stand-in solver for the runner's self-test, called as
`fake_solver.py MODE [options] FILE` by the fake_MODE links.

It cannot solve anything: for SMT-LIB it answers the file's :status per
check-sat (or a "; truth: sat;unsat" comment), for DIMACS it tries every
assignment, which is enough for the tiny files next to it.
"""
import itertools
import os
import re
import signal
import sys
import time


def smt_truth(text):
    m = re.search(r"^; truth: (\S+)", text, re.M)
    if m:
        return m.group(1).split(";")
    truth, status = [], "unknown"
    for m in re.finditer(r"\((set-info :status (\w+)|check-sat)", text):
        if m.group(2):
            status = m.group(2)
        else:
            truth.append(status)
    return truth


def cnf_truth(text):
    clauses = [[int(t) for t in l.split()[:-1]] for l in text.splitlines()
               if l.strip() and l[0] not in "cp"]
    n = max((abs(l) for c in clauses for l in c), default=0)
    for bits in itertools.product((False, True), repeat=n):
        model = [v if bits[v - 1] else -v for v in range(1, n + 1)]
        if all(any(l in model for l in c) for c in clauses):
            return "sat", model, clauses
    return "unsat", None, clauses


def falsify_first_clause(model, clauses):
    false = {-l for l in clauses[0]}
    return [l if -l not in false else -l for l in model]


def smt_model(mode, text):
    """All Bool constants true: a model of the sat files here; all false
    for badmodel; no model at all for the error mode."""
    if mode == "error":
        return 'unsupported'
    value = "false" if mode == "badmodel" else "true"
    names = re.findall(r"\(declare-const (\w+) Bool\)", text)
    return "(model\n%s)" % "".join("  (define-fun %s () Bool %s)\n"
                                   % (n, value) for n in names)


def flip(answer):
    return {"sat": "unsat", "unsat": "sat"}.get(answer, answer)


def main():
    mode = sys.argv[1]
    path = [a for a in sys.argv[2:] if not a.startswith("-")][-1]
    text = open(path).read()
    if mode == "sleep":
        time.sleep(60)
    if mode == "garbage":
        print("Segmentation fault? no: just noise")
        return 0
    if mode == "memhog":
        hog = [bytearray(64 << 20) for _ in range(1000)]
        return len(hog)
    if path.endswith(".cnf"):
        answer, model, clauses = cnf_truth(text)
        if mode == "wrong":
            answer = flip(answer)
        if mode == "badmodel" and model:
            model = falsify_first_clause(model, clauses)
        print("s SATISFIABLE" if answer == "sat" else "s UNSATISFIABLE")
        if answer == "sat" and "-model" in sys.argv:
            print("v " + " ".join(map(str, model or [])) + " 0")
    else:
        for a in smt_truth(text):
            print(flip(a) if mode == "wrong" else a)
            if "(get-model)" in text:
                print(smt_model(mode, text) if a == "sat"
                      else '(error "model not available")')
        if mode == "error":
            print('(error "fake failure")')
    sys.stdout.flush()
    if mode == "crash":
        os.kill(os.getpid(), signal.SIGSEGV)
    return 0


if __name__ == "__main__":
    sys.exit(main())
