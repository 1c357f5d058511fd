"""All processes that this one has started, and those that they have started, also when their parents are gone."""

import ctypes
import os
import pathlib
import signal

PR_SET_CHILD_SUBREAPER = 36


def adopt():
    """From here on a process whose parent ends becomes a child of this one instead of the system's first."""
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "orphans cannot be adopted")


def children():
    """The numbers of this process's children."""
    found = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            # The name, in parentheses, may hold anything; behind it stand the state and the parent.
            parent = (folder / "stat").read_text().rpartition(")")[2].split()[1]
        except (FileNotFoundError, ProcessLookupError):
            continue
        if int(parent) == os.getpid():
            found.append(int(folder.name))
    return found


def living_in(home):
    """The names of all processes anywhere whose home is this folder."""
    names = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if f"HOME={home}".encode() in (folder / "environ").read_bytes().split(b"\0"):
                names.append((folder / "comm").read_text().strip())
        except OSError:  # it has ended, or is another user's
            continue
    return names


def end():
    """Ends them all: the orphans of those that end become children in their turn."""
    while found := children():
        for child in found:
            os.kill(child, signal.SIGKILL)
        for child in found:
            os.waitpid(child, 0)
