"""How each solver is called and how its answers are read.

A Solver knows which inputs it takes, the command line for one input, and
how to turn its output into answers (sat/unsat/unknown per query), error
lines and, for DIMACS, a model. Judging those answers is left to judge.py.

What the peers really do (Debian's builds, checked by hand):
  z3 -smt2 FILE       one answer line per check-sat; reports `(error ...)`
                      and carries on; exits 1 when an answer contradicts the
                      file's :status, with an error line saying so.
  cvc5 --lang=smt2    stops at the first parse error; needs --incremental
                      for more than one query and for push/pop.
  minisat -verb=0     SATISFIABLE / UNSATISFIABLE / INDETERMINATE, exit
                      10 / 20 / 0; "PARSE ERROR!" and exit 3 on bad input.
  cadical -q -n       s SATISFIABLE / s UNSATISFIABLE / s UNKNOWN, exit
                      10 / 20 / 0; errors on stderr, exit 1.
  yices FILE          (../shared/peers/yices, a wrapper of yices_smt2 that
                      adds --incremental for scripts with several checks)
                      rejects check-sat-assuming, define-sort and some
                      logics; stops at its first error.
  opensmt FILE        (../shared/peers/opensmt) stops at its first error.
  boolector --smt2    one query only, no push/pop, set-option or
                      declare-const; a result contradicting :status is
                      printed as "[btormain] ERROR: 'unsat' but status ...".
"""
import os
import re
from dataclasses import dataclass, field
from typing import Callable, List, Optional

from .inputs import SAT, UNSAT, UNKNOWN


@dataclass
class Parsed:
    answers: List[str] = field(default_factory=list)
    errors: List[str] = field(default_factory=list)
    model: Optional[List[int]] = None  # DIMACS "v" literals, if printed


@dataclass
class Options:
    check_models: bool = False
    zenlo_args: List[str] = field(default_factory=list)


@dataclass
class Solver:
    name: str
    binary: str
    takes: Callable  # Bench -> bool
    command: Callable  # (binary, Bench, Options) -> argv
    parse: Callable  # (stdout text, Bench) -> Parsed
    strict: bool = False  # any error line makes the run an error

    def argv(self, bench, options):
        return self.command(self.binary, bench, options)


# ------------------------------------------------------------------ parsers

SMT_ANSWERS = (SAT, UNSAT, UNKNOWN)
DIMACS_ANSWERS = {"SATISFIABLE": SAT, "UNSATISFIABLE": UNSAT,
                  "UNKNOWN": UNKNOWN, "INDETERMINATE": UNKNOWN}


def parse_smtlib(out, bench=None):
    p = Parsed()
    for line in out.splitlines():
        s = line.strip()
        if s in SMT_ANSWERS:
            p.answers.append(s)
        elif s.startswith("(error"):
            p.errors.append(s)
    return p


def parse_z3(out, bench=None):
    # z3 checks :status itself; whether an answer contradicts the status is
    # judged here, uniformly for all solvers, so its complaint is dropped.
    p = parse_smtlib(out)
    p.errors = [e for e in p.errors if "check annotation" not in e]
    return p


_BTOR_CONTRADICTION = re.compile(r"ERROR: '(sat|unsat|unknown)' but status")


def parse_boolector(out, bench=None):
    p = parse_smtlib(out)
    for line in out.splitlines():
        m = _BTOR_CONTRADICTION.search(line)
        if m:
            p.answers.append(m.group(1))
    return p


def parse_dimacs_output(out, bench=None):
    p = Parsed()
    model = []
    for line in out.splitlines():
        if line.startswith("s "):
            ans = DIMACS_ANSWERS.get(line[2:].strip())
            if ans is None:
                p.errors.append("unknown solution line: " + line.strip())
            else:
                p.answers.append(ans)
        elif line.startswith("v "):
            p.model = model
            for tok in line[2:].split():
                try:
                    lit = int(tok)
                except ValueError:
                    p.errors.append("bad model literal: " + tok)
                    break
                if lit != 0:
                    model.append(lit)
        elif line.startswith("c ERROR"):
            p.errors.append(line.strip())
    return p


def parse_minisat(out, bench=None):
    p = Parsed()
    for line in out.splitlines():
        s = line.strip()
        if s in DIMACS_ANSWERS:
            p.answers.append(DIMACS_ANSWERS[s])
        elif "ERROR!" in s:
            p.errors.append(s)
    return p


def parse_zenlo(out, bench):
    if bench.fmt == "cnf":
        return parse_dimacs_output(out)
    return parse_smtlib(out)


# ----------------------------------------------------------------- commands


def zenlo_command(binary, bench, options):
    if bench.fmt == "cnf":
        extra = ["-model"] if options.check_models else []
        return [binary, "-input=dimacs"] + extra + options.zenlo_args \
            + [bench.path]
    return [binary] + options.zenlo_args + [bench.path]


def cvc5_command(binary, bench, options):
    extra = ["--incremental"] if bench.incremental else []
    return [binary, "--lang=smt2"] + extra + [bench.path]


def is_smt2(bench):
    return bench.fmt == "smt2"


def is_cnf(bench):
    return bench.fmt == "cnf"


def boolector_takes(bench):
    # Older boolector answers a script with several check-sats once, for
    # the conjunction of all assertions: wrong per query, so not asked.
    return is_smt2(bench) and not bench.incremental \
        and re.fullmatch(r"QF_(A|UF|AUF)?BV", bench.logic) is not None


def _simple(*flags):
    return lambda binary, bench, options: [binary, *flags, bench.path]


# The peers built from source live beside the project's root.
PEERS_DIR = os.path.normpath(os.path.join(
    os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "shared",
    "peers"))


def make_solvers(zenlo_path, paths):
    """All known solvers, zenlo first, peers with binaries from `paths`
    (name -> path) or their usual names on PATH."""
    def b(name):
        return paths.get(name, name)
    return [
        Solver("zenlo", zenlo_path, lambda bench: True, zenlo_command,
               parse_zenlo, strict=True),
        Solver("z3", b("z3"), is_smt2, _simple("-smt2"), parse_z3),
        Solver("cvc5", b("cvc5"), is_smt2, cvc5_command, parse_smtlib),
        Solver("boolector", b("boolector"), boolector_takes,
               _simple("--smt2"), parse_boolector),
        Solver("minisat", b("minisat"), is_cnf, _simple("-verb=0"),
               parse_minisat),
        Solver("cadical", b("cadical"), is_cnf, _simple("-q", "-n"),
               parse_dimacs_output),
        Solver("yices", paths.get("yices", os.path.join(PEERS_DIR, "yices")),
               is_smt2, _simple(), parse_smtlib),
        Solver("opensmt", paths.get("opensmt",
                                    os.path.join(PEERS_DIR, "opensmt")),
               is_smt2, _simple(), parse_smtlib),
    ]


DEFAULT_PEERS = ("z3", "cvc5", "minisat", "cadical")
