"""Turns runs into outcomes and finds the answers that cannot be right.

A run first gets a status from its own output (ok, unknown, timeout,
memout, error). Then all runs on one file are compared: zenlo contradicting
the expected answer, or a peer that answered when none is expected, is a
wrong answer and fails the run; a peer contradicting the expected answer is
a disagreement, reported but not held against anyone, since peers are
fallible too. A sat answer whose model does not hold is wrong as well.
"""
import re
from dataclasses import dataclass
from typing import List, Optional

from . import smt2_models
from .inputs import DEFINITE, SAT, UNKNOWN, read_text

OK, UNKNOWN_STATUS = "ok", "unknown"
TIMEOUT, MEMOUT, ERROR = "timeout", "memout", "error"
WRONG, DISAGREE = "wrong", "disagree"
ZENLO = "zenlo"


@dataclass
class Outcome:
    bench: object
    solver: str
    answers: List[str]
    status: str
    wall: float
    cpu: float = 0.0
    max_rss_mb: float = 0.0
    note: str = ""
    model: Optional[List[int]] = None
    # Set when the solver reported errors: z3 drops an assertion it cannot
    # parse and answers anyway, so such answers are no evidence against
    # zenlo.
    complained: bool = False

    def solved(self):
        return self.status == OK


@dataclass
class Finding:
    """One wrong answer or disagreement, ready to print."""
    kind: str  # WRONG or DISAGREE
    solver: str
    file: str
    text: str


def first_line(text, limit=160):
    for line in text.splitlines():
        if line.strip():
            s = line.strip()
            return s if len(s) <= limit else s[:limit - 3] + "..."
    return ""


_COMPLAINT = re.compile(r"error|unsupported|expected|cannot|can't|fail",
                       re.I)


def explain(result):
    """The line of a run's output that most likely says what went wrong:
    warnings often come first, so a line that complains wins."""
    text = result.stdout + "\n" + result.stderr
    line = next((l for l in text.splitlines() if _COMPLAINT.search(l)), "")
    return first_line(line) or first_line(result.stderr) \
        or first_line(result.stdout) \
        or "no output, exit code %s" % result.exit_code


def classify(bench, solver, result, parsed):
    """The outcome of one run judged on its own output."""
    o = Outcome(bench, solver.name, parsed.answers, OK, result.wall,
                result.cpu, result.max_rss_mb, model=parsed.model,
                complained=bool(parsed.errors))
    n, q = len(parsed.answers), bench.queries
    if result.launch_error:
        o.status, o.note = ERROR, result.launch_error
    elif result.timed_out:
        o.status, o.note = TIMEOUT, "answered %d of %d" % (n, q) if q else ""
    elif n < q and result.memory_out():
        o.status, o.note = MEMOUT, first_line(result.memory_out())
    elif result.signal:
        o.status, o.note = ERROR, "killed by signal %d" % result.signal
    elif parsed.errors and (solver.strict or n < q):
        o.status, o.note = ERROR, first_line(parsed.errors[0])
    elif parsed.errors:
        o.note = first_line(parsed.errors[0])
    if o.status == OK and n != q:
        o.status = ERROR
        o.note = "%d answers to %d queries: %s" % (n, q, explain(result))
    elif o.status == OK and UNKNOWN in parsed.answers:
        o.status = UNKNOWN_STATUS
    return o


def _mark(o, kind, text, findings):
    if o.status not in (WRONG, DISAGREE):
        o.note = text
    if o.status != WRONG:
        o.status = kind
    findings.append(Finding(kind, o.solver, o.bench.name, text))


def _query(bench, i):
    return "query %d: " % (i + 1) if bench.queries > 1 else ""


def cross_check(outcomes, findings):
    """Compares the outcomes of all solvers on one file (a list sharing the
    same bench) against the expected answers and against each other."""
    bench = outcomes[0].bench
    zenlo = next((o for o in outcomes if o.solver == ZENLO), None)
    peers = [o for o in outcomes if o.solver != ZENLO]
    for o in outcomes:
        for i, (got, want) in enumerate(zip(o.answers, bench.expected)):
            if got in DEFINITE and want in DEFINITE and got != want:
                kind = WRONG if o is zenlo else DISAGREE
                _mark(o, kind, "%sanswered %s, expected %s"
                      % (_query(bench, i), got, want), findings)
    for i in range(bench.queries):
        if bench.expected[i] in DEFINITE:
            continue
        said = [(p.solver, p.answers[i]) for p in peers
                if i < len(p.answers) and p.answers[i] in DEFINITE
                and not p.complained]
        if len({a for _, a in said}) > 1:
            # No telling which peer is right: reported, no one marked.
            findings.append(Finding(
                DISAGREE, "/".join(s for s, _ in said), bench.name,
                "%speers disagree: %s" % (
                    _query(bench, i), ", ".join("%s %s" % s for s in said))))
        if zenlo and i < len(zenlo.answers) \
                and zenlo.answers[i] in DEFINITE:
            against = [(s, a) for s, a in said if a != zenlo.answers[i]]
            if against:
                _mark(zenlo, WRONG, "%sanswered %s, but %s" % (
                    _query(bench, i), zenlo.answers[i],
                    ", ".join("%s answered %s" % s for s in against)),
                    findings)


# ------------------------------------------------------------ model checks


def check_model(o, findings, rerun=None):
    """Checks the model behind each sat answer of zenlo's; a model that
    does not hold makes the answer wrong. `rerun(script text)` runs zenlo
    again on a script and returns its output (None when it timed out); the
    SMT-LIB check needs it. Returns whether a check ran."""
    if SAT not in o.answers:
        return False
    if o.bench.fmt == "cnf":
        problem = check_dimacs_model(o.bench.clauses(), o.model)
    else:
        problem = check_smt_model(o, rerun)
        if problem is None:
            return False
    if problem:
        _mark(o, WRONG, "model: " + problem, findings)
    return True


def check_dimacs_model(clauses, model):
    """None if `model` (true literals) satisfies every clause, else why
    not. A literal absent from the model counts as false."""
    if model is None:
        return "sat answer without a model"
    true = set(model)
    clash = next((lit for lit in true if -lit in true), None)
    if clash is not None:
        return "variable %d is both true and false" % abs(clash)
    for n, clause in enumerate(clauses):
        if not any(lit in true for lit in clause):
            return "clause %d (%s 0) is false" % (
                n + 1, " ".join(map(str, clause)))
    return None


def check_smt_model(o, rerun):
    """Runs zenlo again with a (get-model) behind every check and has z3
    confirm each model of a sat answer. Returns None when no model could
    be checked (the reason goes to the note), "" when all hold, or the
    reason one does not."""
    text = read_text(o.bench.path)
    out = rerun(smt2_models.with_model_queries(text)) if rerun else None
    if out is None:
        o.note = o.note or "model not checked: no second run"
        return None
    try:
        result = smt2_models.check_output(text, out, probed=True)
    except RuntimeError as e:  # no z3
        o.note = o.note or "model not checked: %s" % e
        return None
    if result.problems:
        index, why = result.problems[0]
        return _query(o.bench, index - 1) + why
    if result.skipped and not o.note:
        o.note = "model not checked: %s" % first_line(result.skipped)
    return "" if result.checked else None
