#!/usr/bin/env python3
"""Whole stories of the editor on a screen, with keys and clicks as a person makes them.

stories.py BUILD_FOLDER STORY [PICTURE_FOLDER]: tells one story and fails with what did not happen.
"""

import json
import pathlib
import socket
import subprocess
import sys
import tempfile

import numpy
from PIL import Image, ImageChops

import descendants
from screen import Screen

BUILD = pathlib.Path(sys.argv[1]).resolve()
EDITOR = BUILD / "quorvant-studio"
ATLAVEX = BUILD / "atlavex"


def atlavex(*arguments):
    return subprocess.run([ATLAVEX, *map(str, arguments)], check=True, capture_output=True, text=True).stdout


def make_library(folder):
    """A scaled map of 900 x 700 pixels and an icon, saved."""
    sheet = Image.new("RGB", (900, 700))
    sheet.putdata([(x % 256, y % 256, (x * y) % 256) for y in range(700) for x in range(900)])
    sheet.save(folder / "sheet.png")
    sheet.crop((0, 0, 32, 32)).save(folder / "icon.png")
    library = folder / "story.Atlavex"
    atlavex("new", library)
    atlavex("add-map", library, folder / "sheet.png", "--name", "Sheet", "--grid", "UTM North (wgs84)", "--zone", "33",
            "--point", "0,0=500000,6000000", "--point", "100,0=501000,6000000", "--point", "0,100=500000,5999000")
    atlavex("add-icon", library, folder / "icon.png", "--name", "Icon")
    return library


def differ(first, second):
    return ImageChops.difference(Image.open(first).convert("RGB"), Image.open(second).convert("RGB")).getbbox() is not None


def open_library(screen, folder):
    library = make_library(folder)
    editor = screen.start(EDITOR, library)
    screen.wait_for_active(f"Quorvant Studio - {library}")
    return library, editor


def change_the_offset(screen):
    """Icons, Offset..., X = 7, OK: something to save."""
    screen.key("alt+i", "o")
    screen.wait_for_active("Offset")
    screen.key("Tab", "shift+Tab")
    screen.type("7")
    screen.key("Return")


def offset_of(library):
    offset = json.loads(atlavex("info", library, "--json"))["icons"][0]["offset"]
    return offset["x"], offset["y"]


def tell_look_around(screen, folder, pictures):
    """Open, zoom with the wheel, scroll by keys, read out a position, see the icon. The window fills most of the screen
    and is whole on it."""
    open_library(screen, folder)
    x, y, width, height = screen.place_of_active()
    assert x >= 0 and y >= 0 and x + width <= screen.width and y + height <= screen.height, (x, y, width, height)
    assert width * height > screen.width * screen.height * 3 / 4, (width, height)
    screen.move(400, 400)
    first = screen.picture(pictures / "opened.png")
    screen.do("keydown", "ctrl")
    screen.do("click", "--repeat", "3", "4")
    screen.do("keyup", "ctrl")
    screen.wait_for("Zooming", lambda: differ(first, screen.picture(pictures / "zoomed.png")))
    zoomed = screen.picture(pictures / "zoomed.png")
    screen.key("ctrl+Right", "ctrl+Down", "Right")
    screen.wait_for("Scrolling", lambda: differ(zoomed, screen.picture(pictures / "scrolled.png")))
    scrolled = screen.picture(pictures / "scrolled.png")
    screen.move(420, 410)
    screen.wait_for("Reading out", lambda: differ(scrolled, screen.picture(pictures / "read-out.png")))


def tell_close_with_cancel_no_and_yes(screen, folder, pictures):
    """The window manager's close button with each answer to the question."""
    library, editor = open_library(screen, folder)
    title = f"Quorvant Studio - {library}"
    change_the_offset(screen)
    screen.wait_for_active(title)
    screen.key("alt+F4")
    screen.wait_for_active("Quorvant Studio")
    screen.picture(pictures / "question.png")
    screen.key("Escape")
    screen.wait_for_active(title)
    screen.key("alt+F4")
    screen.wait_for_active("Quorvant Studio")
    screen.key("alt+n")
    screen.wait_for("The end of the program", lambda: editor.poll() is not None)
    assert editor.returncode == 0, editor.returncode
    assert offset_of(library) == (0, 0), offset_of(library)

    editor = screen.start(EDITOR, library)
    screen.wait_for_active(title)
    change_the_offset(screen)
    screen.wait_for_active(title)
    screen.key("alt+F4")
    screen.wait_for_active("Quorvant Studio")
    screen.key("Return")
    screen.wait_for("The end of the program", lambda: editor.poll() is not None)
    assert editor.returncode == 0, editor.returncode
    assert offset_of(library)[0] == 7, offset_of(library)


def tell_open_from_the_menu(screen, folder, pictures):
    """Start empty, open through the file dialog, pick the library up again after New."""
    library = make_library(folder)
    screen.start(EDITOR)
    screen.wait_for_active("Quorvant Studio v2.31")
    for _ in range(2):
        screen.key("ctrl+o")
        screen.wait_for_active("Open Atlavex")
        screen.type(str(library))
        screen.key("Return")
        screen.wait_for_active(f"Quorvant Studio - {library}")
        screen.key("ctrl+n")
        screen.wait_for_active("Quorvant Studio - ")
    screen.picture(pictures / "empty.png")


def quit_editor(screen, editor):
    screen.key("ctrl+q")
    screen.wait_for("The end of the program", lambda: editor.poll() is not None)
    assert editor.returncode == 0, editor.returncode


def tell_start_with_a_library(screen, folder, pictures):
    """Named by words that nobody quoted, by a relative path, in quotes, and by a name that leads nowhere."""
    home = folder / "two words"
    home.mkdir()
    library = make_library(folder).rename(home / "a small library.Atlavex")
    words = str(library).split(" ")
    for arguments, where in (((library,), None), (words, None), ((f'"{library}"',), None),
                             (("two words/a small library.Atlavex",), folder),
                             (("a", "small", "library.Atlavex"), home)):
        editor = screen.start(EDITOR, *arguments, folder=where)
        screen.wait_for_active(f"Quorvant Studio - {library}")
        quit_editor(screen, editor)
    editor = screen.start(EDITOR, "no", "library.Atlavex", folder=home)
    screen.wait_for_active("Quorvant Studio")
    screen.picture(pictures / "missing.png")
    screen.key("Return")
    screen.wait_for_active("Quorvant Studio v2.31")
    quit_editor(screen, editor)


def tell_two_programs_with_one_library(screen, folder, pictures):
    """Both open it, both change it: the second to save is told so and saves under another name."""
    library, first = open_library(screen, folder)
    title = f"Quorvant Studio - {library}"
    second = screen.start(EDITOR, library)
    screen.wait_for("The second window", lambda: screen.windows().count(title) == 2)
    screen.wait_for_active(title)
    change_the_offset(screen)
    screen.wait_for_active(title)
    screen.key("ctrl+s")
    screen.wait_for("The second program's save", lambda: offset_of(library) == (7, 0))
    quit_editor(screen, second)
    screen.wait_for_active(title)
    change_the_offset(screen)
    screen.wait_for_active(title)
    screen.key("ctrl+s")
    screen.wait_for_active("Quorvant Studio")
    screen.picture(pictures / "changed.png")
    screen.key("Return")
    screen.wait_for_active(title)
    mine = folder / "mine.Atlavex"
    screen.key("ctrl+shift+s")
    screen.wait_for_active("Save Atlavex As")
    screen.type(str(mine))
    screen.key("Return")
    screen.wait_for_active(f"Quorvant Studio - {mine}")
    quit_editor(screen, first)
    assert offset_of(mine) == (7, 0), offset_of(mine)


def tell_cancel_a_load(screen, folder, pictures):
    """Opening from a slow disk: Escape and the close button do nothing, Cancel ends it and nothing is loaded."""
    library = make_library(folder)
    editor = screen.start("strace", "-f", "-qq", "-o", "/dev/null", "-P", library, "-e", "trace=pread64",
                          "-e", "inject=pread64:delay_enter=400000", EDITOR)
    screen.wait_for_active("Quorvant Studio v2.31")
    screen.key("ctrl+o")
    screen.wait_for_active("Open Atlavex")
    screen.type(str(library))
    screen.key("Return")
    screen.wait_for_active("Loading raster map...")
    screen.picture(pictures / "loading.png")
    screen.key("Escape", "alt+F4")
    assert "Loading raster map..." in screen.windows(), screen.windows()
    screen.key("space")
    screen.wait_for_active("Quorvant Studio")
    screen.picture(pictures / "cancelled.png")
    screen.key("Return")
    screen.wait_for_active("Quorvant Studio v2.31")
    quit_editor(screen, editor)


def tell_ask_for_the_guide(screen, folder, pictures):
    """F1 hands the guide's address to the user's browser."""
    asked = folder / "asked"
    browser = folder / "xdg-open"
    browser.write_text(f'#!/bin/sh\necho "$1" > {asked}\n')
    browser.chmod(0o755)
    screen.environment["PATH"] = f"{folder}:{screen.environment['PATH']}"
    editor = screen.start(EDITOR)
    screen.wait_for_active("Quorvant Studio v2.31")
    screen.key("F1")
    screen.wait_for("The browser", lambda: asked.exists() and asked.read_text())
    address = asked.read_text().strip()
    assert address.endswith("/quorvant/guide.asp?section=Studio&ref=app"), address
    screen.wait_for_active("Quorvant Studio v2.31")
    quit_editor(screen, editor)


class Sheet:
    """The sample sheet, and where its pixels are on the screen."""

    def __init__(self):
        self.file = pathlib.Path(__file__).resolve().parents[2] / "samples" / "sheet" / "sheet.tif"
        self.pixels = numpy.asarray(Image.open(self.file).convert("RGB"))

    def on(self, picture, x, y, reach=14):
        """The screen position of the sheet's pixel, found by the pixels around it."""
        screen = numpy.asarray(Image.open(picture).convert("RGB")).astype(numpy.int32)
        patch = self.pixels[y - reach:y + reach, x - reach:x + reach].astype(numpy.int32)
        rows, columns = (numpy.array(screen.shape[:2]) - 2 * reach).tolist()
        fits = numpy.ones((rows, columns), bool)
        for dy in range(0, 2 * reach, 2):
            for dx in range(0, 2 * reach, 2):
                fits &= (screen[dy:dy + rows, dx:dx + columns] == patch[dy, dx]).all(axis=2)
        found = numpy.argwhere(fits)
        assert len(found) == 1, f"The surroundings of pixel {x}, {y} are {len(found)} times on the screen"
        return found[0][1] + reach, found[0][0] + reach


def tell_scale_the_sample_sheet(screen, folder, pictures):
    """Add the sheet, give three printed crossings, save, and read out others."""
    sheet = Sheet()
    library = folder / "scaled.Atlavex"
    screen.start(EDITOR)
    screen.wait_for_active("Quorvant Studio v2.31")
    screen.key("alt+m", "n")
    screen.wait_for_active("Open new bitmap")
    screen.type(str(sheet.file))
    screen.key("Return")
    screen.wait_for_active("New map settings...")
    screen.key("Return")
    screen.wait_for_active("Quorvant Studio")  # a worldfile is there; it is not used
    screen.key("Return")
    screen.wait_for_active("Wizard Step 1: Select Datum or Grid")
    screen.type("Int")
    screen.key("Tab", "Right", "Tab", "Tab")  # Easting / Northing, the first grid, its zone
    screen.type("33")
    screen.picture(pictures / "step-1.png")
    screen.key("Return")
    screen.wait_for_active("Wizard Step 2: Projection")
    screen.key("space")
    screen.picture(pictures / "step-2.png")
    screen.key("Return")
    screen.wait_for_active("Quorvant Studio v2.31")

    # The printed crossings lie 400 pixels, which are 1000 metres, apart; Ctrl with an arrow scrolls by a tenth.
    place_point(screen, sheet, pictures, 1, (900, 530), (381000, 5158000))
    screen.key(*["ctrl+Right"] * 6)
    place_point(screen, sheet, pictures, 2, (1700, 530), (383000, 5158000))
    screen.key(*["ctrl+Down"] * 6, *["ctrl+Left"] * 6)
    place_point(screen, sheet, pictures, 3, (900, 1330), (381000, 5156000))
    screen.wait_for_active("Quorvant Studio")  # "Scaling completed!"
    screen.picture(pictures / "completed.png")
    screen.key("Return")

    screen.wait_for_active("Quorvant Studio v2.31")
    screen.key("ctrl+s")
    screen.wait_for_active("Save Atlavex As")
    screen.type(str(library))
    screen.key("Return")
    screen.wait_for_active(f"Quorvant Studio - {library}")
    for pixel, place in (((500, 530), (380000, 5158000)), ((1300, 930), (382000, 5157000))):
        easting, northing = map(float, atlavex("locate", library, 1, *pixel).split())
        assert abs(easting - place[0]) < 1e-6 and abs(northing - place[1]) < 1e-6, (pixel, easting, northing)


def place_point(screen, sheet, pictures, number, pixel, place):
    """Click on a printed crossing and type its coordinate."""
    screen.wait_for("The map", lambda: is_shown(sheet, screen.picture(pictures / "map.png"), pixel))
    at = sheet.on(pictures / "map.png", *pixel)
    screen.do("mousemove", *at, "click", "1")
    screen.wait_for("The coordinate dialog",
                    lambda: screen.do("getactivewindow", "getwindowname").startswith("Wizard step"))
    screen.type(str(place[0]))
    screen.key("Tab")
    screen.type(str(place[1]))
    screen.picture(pictures / f"point-{number}.png")
    screen.key("Return")


def is_shown(sheet, picture, pixel):
    try:
        sheet.on(picture, *pixel)
        return True
    except AssertionError:
        return False


def tell_work_without_home_and_bus(screen, folder, pictures):
    """No folder for settings, cache and run-time files can be made, and there is no bus: nothing is lost by it, so
    nothing is said. A library is opened and a map added."""
    library = make_library(folder)
    file = folder / "file"
    file.write_text("no folder")
    for name in ("HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"):
        screen.environment[name] = str(file / "below")
    screen.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={file}/bus"
    editor = screen.start(EDITOR, library)
    screen.wait_for_active(f"Quorvant Studio - {library}")
    screen.key("alt+m", "n")
    screen.wait_for_active("Open new bitmap")
    screen.type(str(folder / "icon.png"))
    screen.key("Return")
    screen.wait_for_active("New map settings...")
    screen.key("Return")
    screen.wait_for_active("Wizard Step 1: Select Datum or Grid")
    screen.picture(pictures / "added.png")
    screen.key("Escape")
    screen.wait_for_active("Quorvant Studio")  # the wizard was cancelled
    screen.key("Return")
    screen.wait_for_active(f"Quorvant Studio - {library}")
    screen.key("ctrl+q")
    screen.wait_for_active("Quorvant Studio")  # to save? first by the command, then by the window
    screen.key("alt+n")
    screen.wait_for_active("Quorvant Studio")
    screen.key("alt+n")
    screen.wait_for("The end of the program", lambda: editor.poll() is not None)
    assert not list(pathlib.Path("/var/tmp").glob(f"unsaved-{editor.pid}-*")), "The scratch file stays"


def tell_have_the_prompt_spoken(screen, folder, pictures):
    """A screen reader is told of the wizard's prompt when it is shown, wherever the focus is."""
    prompt = "Wizard step 3: Click on a known coordinate"
    library = make_library(folder)
    editor = screen.start(EDITOR, library)
    screen.wait_for_active(f"Quorvant Studio - {library}")
    screen.key("alt+m", "w")
    screen.wait_for_active("Wizard Step 1: Select Datum or Grid")
    screen.type("Int")
    screen.key("Return")
    screen.wait_for_active("Wizard Step 2: Projection")
    screen.key("space")

    # From now on every key takes a way round by the screen reader.
    spoken = folder / "spoken"
    with open(spoken, "w") as lines:
        screen.start(BUILD / "tests" / "screen_reader", output=lines)

    def said(line):
        return spoken.read_text().splitlines().count(line)

    screen.wait_for("The registering of the editor", lambda: said("registered"))
    assert not said(prompt)
    screen.key("Return")
    screen.wait_for("The prompt", lambda: said(prompt))
    screen.wait_for_active(f"Quorvant Studio - {library}")
    screen.key("Escape")
    screen.wait_for_active("Quorvant Studio")  # the wizard was cancelled
    screen.key("Return")
    screen.wait_for_active(f"Quorvant Studio - {library}")
    quit_editor(screen, editor)
    assert said(prompt) == 1, spoken.read_text()


def tell_start_beside_a_silent_bus(screen, folder, pictures):
    """Somebody listens where the session bus should be, and never says a word: a bus that hangs. The window comes, and
    goes when it is told to."""
    library = make_library(folder)
    with socket.socket(socket.AF_UNIX) as bus:
        bus.bind(str(folder / "bus"))
        bus.listen()
        screen.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={folder}/bus"
        editor = screen.start(EDITOR, library)
        screen.wait_for_active(f"Quorvant Studio - {library}")
        screen.picture(pictures / "window.png")
        quit_editor(screen, editor)


def tell_leave_no_program_behind(screen, folder, pictures):
    """What the editor has started may start others and end before them; with the screen all of them go."""
    asked = folder / "asked"
    browser = folder / "xdg-open"
    browser.write_text(f'#!/bin/sh\nsetsid sleep 1000 &\necho "$1" > {asked}\n')
    browser.chmod(0o755)
    screen.environment["PATH"] = f"{folder}:{screen.environment['PATH']}"
    screen.start(EDITOR)
    screen.wait_for_active("Quorvant Studio v2.31")
    screen.key("F1")
    screen.wait_for("The browser", asked.exists)


STORIES = {name[len("tell_"):]: story for name, story in list(globals().items()) if name.startswith("tell_")}


def main():
    story = STORIES[sys.argv[2]]
    with tempfile.TemporaryDirectory(prefix="quorvant-story-") as scrap, Screen() as screen:
        folder = pathlib.Path(scrap)
        pictures = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else folder
        pictures.mkdir(parents=True, exist_ok=True)
        try:
            story(screen, folder, pictures)
        except BaseException:
            subprocess.run(["import", "-window", "root", str(BUILD / f"story-{sys.argv[2]}.png")], env=screen.environment)
            raise
    left = descendants.living_in(screen.home)
    assert not left, f"Programs that were left behind: {left}"


if __name__ == "__main__":
    main()
