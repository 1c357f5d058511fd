"""A shell on a terminal of its own, to press keys in and to see what the command line became."""

import os
import pty
import re
import select
import signal
import time


class Shell:
    """An interactive shell in which the line `setup` was run."""

    def __init__(self, command, environment, folder, setup):
        self._process, self._terminal = pty.fork()
        if self._process == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, environment)
        self._run("stty cols 500 rows 200; " + setup)

    def close(self):
        """End the shell."""
        os.kill(self._process, signal.SIGKILL)
        os.waitpid(self._process, 0)
        os.close(self._terminal)

    def _read_until(self, text, seconds=60):
        seen, end = "", time.monotonic() + seconds
        while text not in seen:
            ready, _, _ = select.select([self._terminal], [], [], max(0, end - time.monotonic()))
            if not ready:
                raise AssertionError(f"{text!r} did not come; the terminal shows {seen!r}")
            seen += os.read(self._terminal, 65536).decode("utf-8", "replace")
        return seen

    def _run(self, line):
        os.write(self._terminal, (line + "; printf '<%s>\\n' ready\r").encode())
        self._read_until("<ready>\r\n")

    def arguments_after(self, typed):
        """What atlavex is called with when the keys, tabs among them, are typed and the line is entered. `atlavex` is
        to print its arguments as `PRINTING` does."""
        os.write(self._terminal, typed.encode() + b"\r")
        shown = self._read_until("<end>\r\n")
        return re.findall(r"<word ([^\r\n]*)>\r\n", shown[shown.rindex("<begin>\r\n"):])

    def list_after(self, typed, awaited):
        """What the terminal shows from the keys on until it shows the awaited text; the line is given up then."""
        os.write(self._terminal, typed.encode())
        seen = self._read_until(awaited)
        os.write(self._terminal, b"\x03")
        self._run("true")
        return seen


# A program that answers shells as the real one does, and otherwise says what it was called with.
PRINTING = """#!/bin/sh
[ "$1" = complete ] && exec {atlavex} "$@"
echo "<begin>"
for word; do echo "<word $word>"; done
echo "<end>"
"""
