"""A screen of its own with a window manager, and a person's hands on it."""

import os
import pathlib
import subprocess
import tempfile
import time

PATIENCE = 60  # seconds until a window that should come counts as missing


class Screen:
    """Xvfb with openbox; programs started here live in a home of their own."""

    def __init__(self, size="1280x900x24"):
        self.folder = tempfile.TemporaryDirectory(prefix="quorvant-story-")
        self.home = pathlib.Path(self.folder.name)
        reading, writing = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", size, "-nolisten", "tcp"],
            pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            self.display = ":" + number.readline().strip()
        self.environment = {**os.environ, "DISPLAY": self.display, "HOME": str(self.home),
                            "XDG_CONFIG_HOME": str(self.home), "XDG_CACHE_HOME": str(self.home),
                            "XDG_RUNTIME_DIR": str(self.home), "QT_QPA_PLATFORM": "xcb", "LC_ALL": "C.UTF-8"}
        self.programs = [subprocess.Popen(["openbox"], env=self.environment, stderr=subprocess.DEVNULL)]

    def __enter__(self):
        return self

    def __exit__(self, *ignored):
        for program in self.programs + [self.server]:
            program.kill()
            program.wait()
        self.folder.cleanup()

    def start(self, *command, folder=None):
        program = subprocess.Popen(list(map(str, command)), env=self.environment, cwd=folder)
        self.programs.append(program)
        return program

    def do(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment,
                              capture_output=True, text=True).stdout.rstrip("\n")

    def windows(self):
        """The titles of all windows on the screen, topmost last."""
        found = self.do("search", "--onlyvisible", "--class", "quorvant-studio").split()
        return [self.do("getwindowname", window) for window in found]

    def wait_for(self, what, happened):
        deadline = time.monotonic() + PATIENCE
        while not happened():
            if time.monotonic() > deadline:
                raise AssertionError(f"{what} did not happen; windows: {self.windows()}")
            time.sleep(0.05)

    def wait_for_active(self, title):
        """Until the window with this title (or whose title ends so, after an asterisk) has the keyboard."""
        def is_active():
            name = self.do("getactivewindow", "getwindowname")
            return name.endswith(title[1:]) if title.startswith("*") else name == title
        self.wait_for(f"The window {title!r}", is_active)
        time.sleep(0.15)  # the window has the keyboard, its field a moment later

    def key(self, *keys):
        for key in keys:
            self.do("key", "--clearmodifiers", key)
            time.sleep(0.05)

    def type(self, text):
        self.do("type", "--delay", "8", text)

    def click(self, x, y, button=1):
        """Relative to the active window's inside."""
        self.move(x, y)
        self.do("click", button)
        time.sleep(0.1)

    def move(self, x, y):
        window = self.do("getactivewindow")
        self.do("mousemove", "--window", window, x, y)
        time.sleep(0.1)

    def picture(self, file):
        subprocess.run(["import", "-window", "root", str(file)], env=self.environment, check=True)
        return file
