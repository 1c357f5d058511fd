"""A screen of its own with a window manager, and a person's hands on it."""

import os
import pathlib
import subprocess
import tempfile
import time

import descendants

PATIENCE = 60  # seconds until a window that should come counts as missing

# A session bus that starts no service, so that nothing runs here but what a story starts.
BUS_CONFIGURATION = """<busconfig>
  <type>session</type>
  <listen>unix:path={home}/bus</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Screen:
    """Xvfb with openbox and a session bus; programs started here live in a home of their own. At the end all of them
    are gone, with whatever they have started in their turn."""

    width, height = 1280, 900

    def __init__(self):
        descendants.adopt()
        self.folder = tempfile.TemporaryDirectory(prefix="quorvant-story-")
        self.home = pathlib.Path(self.folder.name)
        self.server, number = self.start_telling("Xvfb", "-displayfd", "{}", "-screen", "0",
                                                 f"{self.width}x{self.height}x24", "-nolisten", "tcp")
        self.environment = {**os.environ, "DISPLAY": f":{number}", "HOME": str(self.home),
                            "XDG_CONFIG_HOME": str(self.home), "XDG_CACHE_HOME": str(self.home),
                            "XDG_RUNTIME_DIR": str(self.home), "QT_QPA_PLATFORM": "xcb", "LC_ALL": "C.UTF-8"}
        configuration = self.home / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(home=self.home))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.start_telling(
            "dbus-daemon", "--nofork", "--nopidfile", f"--config-file={configuration}", "--print-address={}")[1]
        self.start_window_manager()

    def start_window_manager(self):
        """A window that is shown while openbox takes over would be shown by nobody."""
        ready = self.home / "openbox-is-ready"
        subprocess.Popen(["openbox", "--startup", f"touch {ready}"], env=self.environment, stderr=subprocess.DEVNULL)
        self.wait_for("The window manager", ready.exists)

    def __enter__(self):
        return self

    def __exit__(self, *ignored):
        self.server.terminate()  # asked to, it takes its lock and its socket along
        self.server.wait()
        descendants.end()
        self.folder.cleanup()

    @staticmethod
    def start_telling(*command):
        """Starts a program that writes one line to the descriptor given for {} once it is ready: the program and its
        line."""
        reading, writing = os.pipe()
        program = subprocess.Popen([word.format(writing) for word in command], pass_fds=[writing],
                                   stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as line:
            return program, line.readline().strip()

    def start(self, *command, folder=None, output=None):
        return subprocess.Popen(list(map(str, command)), env=self.environment, cwd=folder, stdout=output)

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

    def place_of_active(self):
        """Left, top, width and height of the inside of the window that has the keyboard."""
        told = self.do("getactivewindow", "getwindowgeometry", "--shell")
        numbers = dict(line.split("=") for line in told.splitlines())
        return [int(numbers[name]) for name in ("X", "Y", "WIDTH", "HEIGHT")]

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
