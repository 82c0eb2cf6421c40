"""Runs one command under a wall-clock limit and an address-space limit.

Each child leads its own process group, so a timeout kills whatever it
started too (a shell wrapper's solver, say). The child is reaped with
wait4 in a helper thread: that gives its exact end time, CPU time and peak
memory without polling. Output goes to temporary files, not pipes, so a
chatty solver never blocks on a full pipe while nobody reads it.
"""
import os
import resource
import signal
import subprocess
import tempfile
import threading
import time
from dataclasses import dataclass
from typing import Optional

# Messages by which programs, runtimes and the loader say they ran out of
# memory under an address-space limit.
MEMORY_SIGNS = ("out of memory", "bad_alloc", "MemoryError",
                "Cannot allocate memory", "failed to map segment",
                "memory exhausted")


@dataclass
class RunResult:
    stdout: str
    stderr: str
    exit_code: Optional[int]  # None when killed by a signal
    signal: Optional[int]
    wall: float  # seconds
    cpu: float  # seconds, user + system
    max_rss_mb: float
    timed_out: bool
    launch_error: Optional[str] = None
    interrupted: bool = False  # ended by ProcessTable.kill_all

    def memory_out(self):
        """The line saying memory ran out, or None."""
        text = self.stderr[-4000:] + "\n" + self.stdout[-4000:]
        for line in text.splitlines():
            if any(sign in line for sign in MEMORY_SIGNS):
                return line.strip()
        return None


class ProcessTable:
    """Process groups still running, so an interrupt can end them all."""

    def __init__(self):
        self.lock = threading.Lock()
        self.groups = set()
        self.stopping = False

    def add(self, pgid):
        with self.lock:
            self.groups.add(pgid)
            return not self.stopping

    def remove(self, pgid):
        with self.lock:
            self.groups.discard(pgid)

    def kill_all(self):
        with self.lock:
            self.stopping = True
            groups = list(self.groups)
        for g in groups:
            kill_group(g)


def kill_group(pgid):
    try:
        os.killpg(pgid, signal.SIGKILL)
    except (ProcessLookupError, PermissionError):
        pass


def _limiter(time_limit, mem_mb):
    # Runs in the child between fork and exec: no allocation-heavy work.
    cpu = int(time_limit) + 2  # a backstop should this runner die
    mem = mem_mb * 1024 * 1024 if mem_mb else None

    def apply():
        resource.setrlimit(resource.RLIMIT_CPU, (cpu, cpu))
        if mem:
            resource.setrlimit(resource.RLIMIT_AS, (mem, mem))
    return apply


def run(argv, time_limit, mem_mb, table):
    """Runs argv with stdin closed; never raises for the child's faults."""
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        start = time.monotonic()
        try:
            proc = subprocess.Popen(argv, stdin=subprocess.DEVNULL,
                                    stdout=out, stderr=err,
                                    start_new_session=True,
                                    preexec_fn=_limiter(time_limit, mem_mb))
        except OSError as e:
            return RunResult("", "", None, None, 0.0, 0.0, 0.0, False,
                             "cannot run %s: %s" % (argv[0], e.strerror))
        reaped = {}

        def reap():
            _, status, usage = os.wait4(proc.pid, 0)
            reaped.update(end=time.monotonic(), status=status, usage=usage)

        waiter = threading.Thread(target=reap, daemon=True)
        waiter.start()
        if not table.add(proc.pid):
            kill_group(proc.pid)
        waiter.join(time_limit)
        timed_out = waiter.is_alive()
        # Also ends anything the solver left behind after it exited.
        kill_group(proc.pid)
        waiter.join()
        table.remove(proc.pid)
        status, usage = reaped["status"], reaped["usage"]
        proc.returncode = os.waitstatus_to_exitcode(status)
        sig = os.WTERMSIG(status) if os.WIFSIGNALED(status) else None
        if sig == signal.SIGXCPU:
            timed_out = True
        return RunResult(
            _read(out), _read(err),
            None if sig else os.WEXITSTATUS(status), sig,
            min(reaped["end"] - start, time_limit) if timed_out
            else reaped["end"] - start,
            usage.ru_utime + usage.ru_stime,
            usage.ru_maxrss / 1024.0, timed_out,
            interrupted=table.stopping and sig == signal.SIGKILL)


def _read(f):
    f.seek(0)
    return f.read().decode("utf-8", errors="replace")
