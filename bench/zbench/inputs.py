"""What the runner knows about an input file before any solver sees it.

For every file: its format, its logic, how many queries it makes and what
each one should answer. Answers come from a benchmark index when the file is
listed in one (an `index.tsv` at the root of the benchmark folder), else from
the file itself: the `(set-info :status ...)` in force at each check-sat, or
a `c status sat|unsat` comment in DIMACS. Nothing here runs a solver.
"""
import csv
import os
import re
from dataclasses import dataclass, field
from typing import Dict, List, Optional

SAT, UNSAT, UNKNOWN = "sat", "unsat", "unknown"
DEFINITE = (SAT, UNSAT)
SUFFIXES = (".smt2", ".cnf")


@dataclass
class Bench:
    path: str  # as opened
    name: str  # as shown in reports: relative to the index root if any
    fmt: str  # "smt2" or "cnf"
    logic: str
    expected: List[str]
    queries: int
    incremental: bool  # several queries or push/pop: some solvers need a flag
    _clauses: Optional[list] = field(default=None, repr=False)

    def clauses(self):
        """The clauses of a DIMACS file, parsed once on first use."""
        if self._clauses is None:
            self._clauses = parse_dimacs(read_text(self.path))
        return self._clauses


class InputError(Exception):
    """A file or index the runner cannot use; the message says why."""


def read_text(path):
    try:
        with open(path, encoding="utf-8", errors="replace") as f:
            return f.read()
    except OSError as e:
        raise InputError("cannot read %s: %s" % (path, e.strerror))


# ---------------------------------------------------------------- collecting


def collect(paths):
    """Input files named directly or found under directories, sorted and
    without repeats. Named files are taken whatever their suffix."""
    found, seen = [], set()
    for p in paths:
        if os.path.isdir(p):
            batch = []
            for root, dirs, files in os.walk(p):
                dirs.sort()
                batch += [os.path.join(root, f) for f in files
                          if f.endswith(SUFFIXES)]
            batch.sort()
        elif os.path.isfile(p):
            batch = [p]
        else:
            raise InputError("no such file or directory: %s" % p)
        for f in batch:
            key = os.path.realpath(f)
            if key not in seen:
                seen.add(key)
                found.append(f)
    return found


# ------------------------------------------------------------------- index


@dataclass
class IndexRow:
    logic: str
    expected: List[str]
    queries: int


class Index:
    """One index.tsv: rows keyed by path relative to the folder holding it."""

    def __init__(self, path):
        self.root = os.path.dirname(os.path.realpath(path))
        self.rows: Dict[str, IndexRow] = {}
        try:
            with open(path, encoding="utf-8", newline="") as f:
                for n, row in enumerate(csv.DictReader(f, delimiter="\t")):
                    self.rows[row["path"]] = self._row(path, n + 2, row)
        except OSError as e:
            raise InputError("cannot read index %s: %s" % (path, e.strerror))
        except KeyError as e:
            raise InputError("index %s lacks column %s" % (path, e))

    @staticmethod
    def _row(path, line, row):
        expected = [a.strip() for a in row["expected"].split(";")]
        if any(a not in (SAT, UNSAT, UNKNOWN) for a in expected):
            raise InputError("%s:%d: bad expected answer %r"
                             % (path, line, row["expected"]))
        try:
            queries = int(row["check_sats"])
        except ValueError:
            raise InputError("%s:%d: bad check_sats %r"
                             % (path, line, row["check_sats"]))
        return IndexRow(row["logic"], expected, queries)

    def lookup(self, path):
        rel = os.path.relpath(os.path.realpath(path), self.root)
        if rel.startswith(".."):
            return None, None
        return rel, self.rows.get(rel)


class IndexFinder:
    """Finds the index that covers a file: a fixed one, none, or the nearest
    index.tsv in the file's ancestors (looked up once per directory)."""

    def __init__(self, fixed=None, disabled=False):
        self.fixed = Index(fixed) if fixed else None
        self.disabled = disabled
        self.by_dir = {}

    def for_file(self, path):
        if self.disabled:
            return None
        if self.fixed:
            return self.fixed
        d = os.path.dirname(os.path.realpath(path))
        trail = []
        while d not in self.by_dir:
            trail.append(d)
            cand = os.path.join(d, "index.tsv")
            if os.path.isfile(cand):
                self.by_dir[d] = Index(cand)
                break
            parent = os.path.dirname(d)
            if parent == d:
                self.by_dir[d] = None
                break
            d = parent
        for t in trail:
            self.by_dir[t] = self.by_dir[d]
        return self.by_dir[d]


# ------------------------------------------------------------- file scanning

# Comments, string literals and quoted symbols, found in one pass so that
# a ";" inside a string or a "|" inside a comment is read right.
_LEXEMES = re.compile(r'"(?:[^"]|"")*"?|\|[^|]*\|?|;[^\n]*')
_SMT_EVENTS = re.compile(
    r"\(\s*(?:set-info\s+:status\s+([a-z]+)|(check-sat)\b|(push|pop)\b"
    r"|set-logic\s+([A-Za-z_0-9]+))")


def strip_comments(text):
    """The script without comments and with strings and quoted symbols
    emptied, so "(check-sat)" inside any of them is not taken for one."""
    blank = {";": "", '"': '""', "|": "||"}
    return _LEXEMES.sub(lambda m: blank[m.group(0)[0]], text)


def scan_smt2(text):
    """(logic, expected answer per check-sat, uses push/pop) of a script."""
    logic, status, expected, stack = None, UNKNOWN, [], False
    for m in _SMT_EVENTS.finditer(strip_comments(text)):
        if m.group(1):
            status = m.group(1) if m.group(1) in DEFINITE else UNKNOWN
        elif m.group(2):
            expected.append(status)
        elif m.group(3):
            stack = True
        elif logic is None:
            logic = m.group(4)
    return logic, expected, stack


def scan_cnf(text):
    m = re.search(r"^c\s+status\s+(sat|unsat)\b", text, re.M)
    return [m.group(1) if m else UNKNOWN]


def parse_dimacs(text):
    """Clauses as lists of ints; comment, header and '%' lines skipped."""
    clauses, cur = [], []
    for line in text.splitlines():
        s = line.strip()
        if not s or s[0] in "cp%":
            continue
        for tok in s.split():
            try:
                v = int(tok)
            except ValueError:
                raise InputError("bad DIMACS literal %r" % tok)
            if v == 0:
                clauses.append(cur)
                cur = []
            else:
                cur.append(v)
    if cur:
        clauses.append(cur)
    return clauses


def describe(path, finder):
    """A Bench for one file, with expected answers from the best source."""
    fmt = "cnf" if path.endswith(".cnf") else "smt2"
    index = finder.for_file(path)
    rel, row = index.lookup(path) if index else (None, None)
    name = rel if rel else os.path.normpath(path)
    text = read_text(path)
    if fmt == "cnf":
        logic, expected, stack = "DIMACS", scan_cnf(text), False
    else:
        logic, expected, stack = scan_smt2(text)
    if row:
        logic, expected = row.logic, row.expected
    if not logic:
        logic = os.path.basename(os.path.dirname(os.path.realpath(path)))
    queries = row.queries if row else len(expected)
    expected = (expected + [UNKNOWN] * queries)[:queries]
    return Bench(path, name, fmt, logic, expected, queries,
                 fmt == "smt2" and (queries > 1 or stack))
