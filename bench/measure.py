"""Runs commands as whole processes and keeps the operating system's account of each."""
import os
import shutil
import statistics
import subprocess
import time


class Run:
    """What one run of a command took."""

    def __init__(self, wall, cpu, memory):
        self.wall, self.cpu, self.memory = wall, cpu, memory  # seconds, seconds, MiB (largest process)


def run(command):
    """Run a command to its end; it must succeed."""
    os.sync()  # what the run before left must not be written at this one's cost
    begin = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    message = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{' '.join(command)}: {message.decode(errors='replace')}")
    return Run(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024)


def median(runs):
    """The run of medians."""
    return Run(*(statistics.median(getattr(one, field) for one in runs) for field in ("wall", "cpu", "memory")))


def in_turn(commands, times, prepare):
    """Run several commands in turn (A B C A B C …), so that a change of the machine's speed meets all alike.

    `commands` maps a name to a command; `prepare` is called with the name before each run.
    """
    runs = {name: [] for name in commands}
    for _ in range(times):
        for name, command in commands.items():
            prepare(name)
            runs[name].append(run(command))
    return {name: median(of_one) for name, of_one in runs.items()}


def remove(path):
    """Remove a file or a folder if it is there."""
    if os.path.isdir(path):
        shutil.rmtree(path)
    elif os.path.exists(path):
        os.unlink(path)


def size_of(path):
    """Bytes of a file, or of all files below a folder."""
    if os.path.isfile(path):
        return os.path.getsize(path)
    return sum(os.path.getsize(os.path.join(folder, name)) for folder, _, names in os.walk(path) for name in names)


class Table:
    """Rows of text, printed with aligned columns."""

    def __init__(self, title, *columns):
        self._title, self._rows = title, [columns]

    def add(self, *cells):
        self._rows.append([cell if isinstance(cell, str) else f"{cell:.3g}" if cell < 1000 else f"{cell:.0f}"
                           for cell in cells])

    def print(self):
        widths = [max(len(row[i]) for row in self._rows) for i in range(len(self._rows[0]))]
        print(f"\n{self._title}")
        for row in self._rows:
            print("  " + "  ".join(cell.ljust(width) if i == 0 else cell.rjust(width)
                                   for i, (cell, width) in enumerate(zip(row, widths))))
