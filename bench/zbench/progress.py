"""The progress display: one line rewritten in place on a terminal, showing
the slowest run still going; a plain line per finished run otherwise (logs,
CI). Both go to stderr, so stdout carries only the report."""
import shutil
import sys
import threading
import time

from .inputs import DEFINITE
from .judge import ERROR, MEMOUT, TIMEOUT, ZENLO


class Progress:
    def __init__(self, total, quiet, stream=sys.stderr):
        self.total, self.done, self.quiet = total, 0, quiet
        self.stream = stream
        self.tty = stream.isatty()
        self.start = time.monotonic()
        self.unsolved = self.wrong = 0
        self.running = {}  # (file, solver) -> start time
        self.lock = threading.Lock()

    def started(self, bench, solver):
        with self.lock:
            self.running[(bench.name, solver)] = time.monotonic()

    def finished(self, o):
        with self.lock:
            self.running.pop((o.bench.name, o.solver), None)
        self.done += 1
        self.unsolved += o.status in (TIMEOUT, MEMOUT, ERROR)
        # Only the cheap check against the expected answers: peers are
        # compared once all runs are in.
        self.wrong += o.solver == ZENLO and any(
            a in DEFINITE and e in DEFINITE and a != e
            for a, e in zip(o.answers, o.bench.expected))
        if self.quiet:
            return
        if self.tty:
            self.tick()
        else:
            self.stream.write("[%*d/%d] %s %s: %s %s %.2fs\n" % (
                len(str(self.total)), self.done, self.total, o.solver,
                o.bench.name, o.status, ";".join(o.answers) or "-", o.wall))
            self.stream.flush()

    def tick(self):
        """Redraws the terminal line; called on every run's end and a few
        times a second, so the clock moves during long runs."""
        if self.quiet or not self.tty:
            return
        now = time.monotonic()
        line = "[%*d/%d] %s  unsolved %d  wrong %d" % (
            len(str(self.total)), self.done, self.total,
            _clock(now - self.start), self.unsolved, self.wrong)
        with self.lock:
            if self.running:
                (name, solver), t0 = min(self.running.items(),
                                         key=lambda kv: kv[1])
                line += "  | %s %s %.0fs" % (solver, name, now - t0)
        width = shutil.get_terminal_size((100, 20)).columns - 1
        self.stream.write("\r\x1b[K" + line[:width])
        self.stream.flush()

    def finish(self):
        if self.tty and not self.quiet:
            self.stream.write("\r\x1b[K")
            self.stream.flush()


def _clock(seconds):
    s = int(seconds)
    return "%d:%02d:%02d" % (s // 3600, s // 60 % 60, s % 60)
