"""What a run leaves behind: the printed report, the CSV and the plots.

The report puts wrong answers first, then disagreements among peers, then
one table per logic. Everything that the plots need is in the CSV, so a
plot can be redrawn later from it, by another interpreter if this one
lacks matplotlib.
"""
import csv
import os
import statistics
from collections import OrderedDict

from .inputs import SAT, UNSAT
from .judge import (DISAGREE, ERROR, MEMOUT, OK, TIMEOUT, UNKNOWN_STATUS,
                    WRONG, ZENLO)

CSV_FIELDS = ("file", "logic", "solver", "answers", "expected", "time",
              "status", "cpu", "mem_mb", "note")


# ------------------------------------------------------------------ findings


def print_findings(findings, out):
    wrong = [f for f in findings if f.kind == WRONG]
    other = [f for f in findings if f.kind == DISAGREE]
    if wrong:
        out.write("WRONG ANSWERS (%d):\n" % len(wrong))
        for f in wrong:
            out.write("  %s  %s  %s\n" % (f.solver, f.file, f.text))
        out.write("\n")
    if other:
        out.write("Peer disagreements (%d, not held against zenlo):\n"
                  % len(other))
        for f in other:
            out.write("  %s  %s  %s\n" % (f.solver, f.file, f.text))
        out.write("\n")


# --------------------------------------------------------------------- table


class Stats:
    def __init__(self, outcomes, limit):
        self.files = len(outcomes)
        self.solved = sum(o.solved() for o in outcomes)
        # Answers of runs that crashed, timed out or were wrong prove
        # nothing, whatever they printed first.
        counted = [o for o in outcomes
                   if o.status in (OK, UNKNOWN_STATUS)]
        self.sat = sum(o.answers.count(SAT) for o in counted)
        self.unsat = sum(o.answers.count(UNSAT) for o in counted)
        by = {s: sum(o.status == s for o in outcomes) for s in (
            UNKNOWN_STATUS, TIMEOUT, MEMOUT, ERROR, WRONG, DISAGREE)}
        self.unknown, self.timeout = by[UNKNOWN_STATUS], by[TIMEOUT]
        self.memout, self.error = by[MEMOUT], by[ERROR]
        self.wrong = by[WRONG] + by[DISAGREE]
        self.total = sum(o.wall for o in outcomes)
        solved = [o.wall for o in outcomes if o.solved()]
        self.median = statistics.median(solved) if solved else None
        self.par2 = sum(o.wall if o.solved() else 2 * limit
                        for o in outcomes)


COLUMNS = (("solver", 9), ("files", 6), ("solved", 7), ("sat", 6),
           ("unsat", 6), ("unknown", 8), ("timeout", 8), ("memout", 7),
           ("error", 6), ("wrong", 6), ("total[s]", 10), ("median[s]", 10),
           ("PAR-2[s]", 10), ("z/PAR-2", 8), ("z/time", 7))


def _ratio(a, b):
    return "%.2f" % (a / b) if b > 0 else "-"


def _cells(name, s, ratios):
    median = "%.3f" % s.median if s.median is not None else "-"
    return [name, s.files, s.solved, s.sat, s.unsat, s.unknown, s.timeout,
            s.memout, s.error, s.wrong, "%.2f" % s.total, median,
            "%.1f" % s.par2] + ratios


def _line(cells, widths):
    first = str(cells[0]).ljust(widths[0])
    rest = "".join(str(c).rjust(w) for c, w in zip(cells[1:], widths[1:]))
    return (first + rest).rstrip()


def print_table(title, outcomes, solvers, limit, out):
    """One block: a row per solver over `outcomes` (all of one logic, or
    all logics). The last two columns are zenlo's PAR-2 and total time
    divided by the peer's, over the files both ran."""
    by_solver = OrderedDict((s, []) for s in solvers)
    for o in outcomes:
        by_solver.setdefault(o.solver, []).append(o)
    rows = [(s, os_) for s, os_ in by_solver.items() if os_]
    if not rows:
        return
    compare = ZENLO in by_solver and len(rows) > 1
    cols = COLUMNS if compare else COLUMNS[:-2]
    widths = [w for _, w in cols]
    files = len({o.bench.name for o in outcomes})
    out.write("%s: %d file%s, limit %gs\n" % (title, files,
                                             "" if files == 1 else "s", limit))
    out.write(_line([c for c, _ in cols], widths) + "\n")
    zenlo = {o.bench.name: o for o in by_solver.get(ZENLO, [])}
    for name, mine in rows:
        ratios = []
        if compare:
            ratios = ["", ""]
            both = [o for o in mine if o.bench.name in zenlo]
            if name != ZENLO and both:
                z = Stats([zenlo[o.bench.name] for o in both], limit)
                p = Stats(both, limit)
                ratios = [_ratio(z.par2, p.par2), _ratio(z.total, p.total)]
        out.write(_line(_cells(name, Stats(mine, limit), ratios), widths)
                  + "\n")
    out.write("\n")


def print_tables(outcomes, solvers, limit, out):
    logics = sorted({o.bench.logic for o in outcomes})
    for logic in logics:
        print_table(logic, [o for o in outcomes if o.bench.logic == logic],
                    solvers, limit, out)
    if len(logics) > 1:
        print_table("All logics", outcomes, solvers, limit, out)


# ----------------------------------------------------------------------- CSV


def write_csv(path, outcomes):
    with open(path, "w", newline="", encoding="utf-8") as f:
        w = csv.writer(f)
        w.writerow(CSV_FIELDS)
        for o in outcomes:
            w.writerow([o.bench.name, o.bench.logic, o.solver,
                        ";".join(o.answers), ";".join(o.bench.expected),
                        "%.3f" % o.wall, o.status, "%.3f" % o.cpu,
                        "%.1f" % o.max_rss_mb, o.note])


def read_csv(path):
    with open(path, newline="", encoding="utf-8") as f:
        return list(csv.DictReader(f))


# --------------------------------------------------------------------- plots


def plot_cactus(rows, outdir):
    """Draws cactus.png (and cactus_<logic>.png when there are several
    logics) from CSV rows. Returns the files written; raises ImportError
    when matplotlib is missing."""
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    from matplotlib.ticker import MaxNLocator

    logics = sorted({r["logic"] for r in rows})
    groups = [("cactus.png", "all files", rows)]
    if len(logics) > 1:
        groups += [("cactus_%s.png" % l.replace("/", "_"), l,
                    [r for r in rows if r["logic"] == l]) for l in logics]
    written = []
    for fname, title, group in groups:
        fig, ax = plt.subplots(figsize=(7, 4.5))
        for solver in OrderedDict((r["solver"], 0) for r in group):
            times = sorted(max(float(r["time"]), 1e-3) for r in group
                           if r["solver"] == solver and r["status"] == "ok")
            ax.step(times, range(1, len(times) + 1), where="post",
                    label="%s (%d)" % (solver, len(times)))
        ax.set_xscale("log")
        ax.set_xlabel("time per file [s]")
        ax.set_ylabel("files solved")
        ax.set_title("Solved within a time: %s" % title)
        ax.grid(True, alpha=0.3)
        ax.set_ylim(bottom=0)
        ax.yaxis.set_major_locator(MaxNLocator(integer=True))
        ax.legend(loc="best")
        path = os.path.join(outdir, fname)
        fig.savefig(path, dpi=110, bbox_inches="tight")
        plt.close(fig)
        written.append(path)
    return written
