"""Runs zenlo and the reference solver on one input and says whether, and
how, zenlo failed.

A failure has a kind and a signature; the reducer keeps a smaller input
only when it fails with the same signature, so it cannot drift from a
wrong answer to, say, a parse error of its own making. Kinds:

  answer   zenlo answered sat where the reference said unsat, or back
  model    a sat answer's model does not hold (or get-model failed)
  error    zenlo printed an error the reference did not
  crash    zenlo died, or left with a non-zero status (sanitizers do that)
  timeout  zenlo ran out of time where the reference answered
  unknown  zenlo gave up where the reference answered
  unsupported  zenlo answered `unsupported` to a command
The generators write only what zenlo serves, so the last two are
regressions into refusals, not passes.
"""
import os
import re
import subprocess
import tempfile
from dataclasses import dataclass, field
from typing import List, Optional

from zbench import judge, smt2_models, solvers
from zbench.inputs import parse_dimacs

ANSWERS = ("sat", "unsat", "unknown")
MODEL_FAULTS = ("no value", "has sort", "is false", "contradict",
                "get-model after sat", "z3 rejects", "cannot tell")


@dataclass
class Verdict:
    kind: Optional[str] = None  # None: no failure
    detail: str = ""
    zenlo: List[str] = field(default_factory=list)
    reference: List[str] = field(default_factory=list)
    unsupported: str = ""  # the first refusal, if any
    models_checked: int = 0
    invalid: bool = False  # the reference rejects the input itself

    def signature(self):
        if self.kind == "error":
            return (self.kind, re.sub(r"\(line: \d+\)|\d+", "#", self.detail))
        if self.kind == "model":
            # A false assertion must not shrink into a missing value.
            return (self.kind, next((w for w in MODEL_FAULTS
                                     if w in self.detail), ""))
        return (self.kind,)


@dataclass
class Run:
    out: str
    err: str
    status: Optional[int]  # None on timeout


def run(argv, text, suffix, timeout):
    with tempfile.NamedTemporaryFile("w", suffix=suffix) as f:
        f.write(text)
        f.flush()
        try:
            p = subprocess.run(argv + [f.name], capture_output=True,
                               text=True, timeout=timeout,
                               stdin=subprocess.DEVNULL)
        except subprocess.TimeoutExpired:
            return Run("", "", None)
    return Run(p.stdout, p.stderr, p.returncode)


def _run_failed(r, v, timeout):
    """Records a timeout or a crash of zenlo's run `r` in `v`."""
    if r.status is None:
        v.kind, v.detail = "timeout", "no answer in %gs" % timeout
    elif r.status != 0:
        why = next((l for l in r.err.splitlines() if "ERROR" in l
                    or "runtime error" in l), r.err.strip()[:200])
        v.kind, v.detail = "crash", "exit status %d: %s" % (r.status, why)
    return v.kind is not None


# ------------------------------------------------------------------ SMT-LIB


class SmtOracle:
    def __init__(self, zenlo, zenlo_args, z3="z3", timeout=10.0,
                 models=True):
        self.zenlo, self.args, self.z3 = zenlo, zenlo_args, z3
        self.timeout, self.models = timeout, models

    def judge(self, text, extra_args=()):
        v = Verdict()
        ref = run([self.z3, "-smt2"], text, ".smt2", self.timeout)
        if ref.status is None:
            v.invalid = True
            return v
        v.reference = [l.strip() for l in ref.out.splitlines()
                       if l.strip() in ANSWERS]
        self.ref_refusals = sum(1 for l in ref.out.splitlines()
                                if l.strip() == "unsupported")
        if "(error" in ref.out:
            v.invalid = True
            return v
        probe = smt2_models.with_model_queries(text) if self.models else text
        z = run([self.zenlo] + self.args + list(extra_args), probe, ".smt2",
                self.timeout)
        if _run_failed(z, v, self.timeout):
            return v
        self._read(z.out, v)
        if v.kind is None:
            self._compare(v)
        if v.kind is None and self.models:
            self._check_models(text, z.out, v)
        return v

    def _read(self, out, v):
        """Answers and error lines of zenlo; the reply to each injected
        get-model is left to the model check."""
        after_answer = False
        refusals = 0
        for item in smt2_models.responses(out):
            if item == "success":
                continue
            if item == "unsupported" and not after_answer:
                # Refusals the reference makes too (a logic name it does
                # not know) are no regression of ours.
                refusals += 1
                if refusals > getattr(self, "ref_refusals", 0):
                    v.unsupported = v.unsupported or "answered unsupported " \
                        "after %d check(s)" % len(v.zenlo)
                    if v.kind is None:
                        v.kind, v.detail = "unsupported", v.unsupported
                continue
            if item in ANSWERS:
                v.zenlo.append(item)
                after_answer = self.models
                continue
            is_error = isinstance(item, list) and item and item[0] == "error"
            if is_error and not after_answer:
                msg = str(item[1]).strip('"') if len(item) > 1 else ""
                if v.kind is None and not v.unsupported:
                    # After a refused push or pop, errors are its echoes.
                    v.kind, v.detail = "error", msg
            after_answer = False

    def _compare(self, v):
        if v.unsupported:
            return  # answers after a refused command prove nothing
        for i, (z, r) in enumerate(zip(v.zenlo, v.reference)):
            if z in judge.DEFINITE and r in judge.DEFINITE and z != r:
                v.kind = "answer"
                v.detail = "query %d: zenlo %s, z3 %s" % (i + 1, z, r)
                return
            if z == "unknown" and r in judge.DEFINITE:
                # The generators stay inside what zenlo decides: giving up
                # (a refused term) is a regression, not a pass.
                v.kind = "unknown"
                v.detail = "query %d: zenlo unknown, z3 %s" % (i + 1, r)
                return
        if len(v.zenlo) != len(v.reference):
            v.kind = "error"
            v.detail = "%d answers, z3 gave %d" % (len(v.zenlo),
                                                   len(v.reference))

    def _check_models(self, text, out, v):
        result = smt2_models.check_output(text, out, self.z3, probed=True)
        if result.problems:
            index, why = result.problems[0]
            v.kind, v.detail = "model", "query %d: %s" % (index, why)
        v.models_checked = result.checked
        v.unsupported = v.unsupported or result.skipped


# ------------------------------------------------------------------- DIMACS


class CnfOracle:
    def __init__(self, zenlo, zenlo_args, reference, timeout=10.0):
        self.zenlo, self.args = zenlo, zenlo_args
        self.reference, self.timeout = reference, timeout

    def judge(self, text, extra_args=()):
        v = Verdict()
        name = os.path.basename(self.reference)
        if name == "minisat":
            ref = run([self.reference, "-verb=0"], text, ".cnf",
                      self.timeout)
            parsed = solvers.parse_minisat(ref.out)
        else:
            ref = run([self.reference, "-q", "-n"], text, ".cnf",
                      self.timeout)
            parsed = solvers.parse_dimacs_output(ref.out)
        if ref.status is None or len(parsed.answers) != 1:
            v.invalid = True
            return v
        v.reference = parsed.answers
        z = run([self.zenlo, "-input=dimacs", "-model"] + self.args
                + list(extra_args), text, ".cnf", self.timeout)
        if _run_failed(z, v, self.timeout):
            return v
        mine = solvers.parse_dimacs_output(z.out)
        v.zenlo = mine.answers
        if mine.errors:
            v.kind, v.detail = "error", mine.errors[0]
        elif v.zenlo != v.reference and "unknown" not in v.zenlo:
            v.kind = "answer"
            v.detail = "zenlo %s, %s %s" % (" ".join(v.zenlo) or "nothing",
                                            name, v.reference[0])
        elif v.zenlo == ["sat"]:
            why = judge.check_dimacs_model(parse_dimacs(text), mine.model)
            if why:
                v.kind, v.detail = "model", why
            else:
                v.models_checked = 1
        return v
