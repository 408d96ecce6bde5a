"""The window host as a user has it: a real window on a virtual screen, with the pointer and the keys of that screen; under Wine with
--wine, else by the module for Linux desktops, on X11 or with --wayland; about scales with --sway.

Nothing here knows how the window is built. Where the axes and comments stand is read off its picture; what has happened is waited
for, in the window's title, its picture or a file, however long a busy machine takes, and never guessed by
time. The pictures of each flow are kept in --pictures, to be looked at.
"""
import argparse
import atexit
import math
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import simulated_line
import window_screens
from session_writer import write_session
from simulated_line import SimulatedLine
from window_screens import Unseen, until

options = screen = None

BLUE, ORANGE, COMMENT = (0, 114, 178), (213, 94, 0), (255, 252, 232)  # two channels, a comment's paper
CHOSEN = (53, 132, 228)  # the paper of a row that is chosen in the desktop's own dialogs
# Rows at the top with the window's title, where its frame is Wine's, and at the bottom with what the pointer can do: not looked at.
TITLE, STATUS = 24, 32


class Picture:
    """The pixels of a window without its last line."""

    def __init__(self, window):
        file = screen.picture(window)
        fields, at = [], 0
        while len(fields) < 4:
            end = min(i for i in (file.find(b" ", at), file.find(b"\n", at)) if i >= 0) if file else 0
            if end <= 0:
                raise Unseen
            fields.append(file[at:end])
            at = end + 1
        self.width, height = int(fields[1]), int(fields[2])
        self.height = height - STATUS
        self.pixels = file[at:at + self.width * self.height * 3]

    def __eq__(self, other):
        return self.pixels[TITLE * self.width * 3:] == other.pixels[TITLE * other.width * 3:]

    def is_at(self, x, y, colour):
        at = (y * self.width + x) * 3
        return self.pixels[at:at + 3] == bytes(colour)

    def difference(self, other):
        rows = [y for y in range(TITLE, self.height) if self.row(y) != other.row(y)]
        return f"{len(rows)} rows differ, from {rows[0]} to {rows[-1]}" if rows else "none"

    def row(self, y):
        return self.pixels[y * self.width * 3:(y + 1) * self.width * 3]

    def beside(self, x):
        """What is to the right of that."""
        return [self.row(y)[x * 3:] for y in range(TITLE, self.height)]

    def column(self, x):
        """The colours of an upright line of pixels."""
        step = self.width * 3
        return list(zip(*(self.pixels[x * 3 + part::step] for part in range(3))))

    def axis(self, colour):
        """Where an axis of this colour stands: x, top and bottom of its upright line; nothing without one."""
        for x in range(self.width):
            column = [y for y, pixel in enumerate(self.column(x)) if pixel == colour]
            # Curves and ticks may lie over some of it.
            if len(column) > self.height / 2 and len(column) > 0.9 * (column[-1] - column[0]):
                return x, column[0], column[-1]
        return None

    def bar(self):
        """The left edge of the split bar: six upright lines, the outer two of one colour, the inner ones of another."""
        tall = [column[0] if len(set(column)) == 1 else None for column in (self.column(x)[60:-10] for x in range(self.width))]
        for x in range(self.width - 5):
            edge, face = tall[x], tall[x + 1]
            if edge and face and edge != face and tall[x:x + 6] == [edge, face, face, face, face, edge]:
                return x
        return None

    def comment(self):
        """The middle of the only comment."""
        found = [(x, y) for y in range(self.height) for x in range(0, self.width, 4) if self.is_at(x, y, COMMENT)]
        return (sum(x for x, _ in found) // len(found), sum(y for _, y in found) // len(found)) if found else None


class Window:
    """OrvikHost.exe and the hands of its user. Places are those of the window's picture."""

    def __init__(self, folder, words, title, language="C.UTF-8", environment=None):
        self.process = subprocess.Popen([*([options.wine] if options.wine else []), options.gui, *map(str, words)], cwd=folder, stdout=subprocess.DEVNULL,
                                        stderr=screen.errors(folder),
                                        env={**os.environ, **screen.environment, "LC_ALL": language, "XDG_STATE_HOME": str(folder / "state"), **(environment or {})})
        self.title_start = title
        try:
            self.id = until(self.find, "a window called " + title)
        except AssertionError:
            self.abandon()
            raise
        screen.focus(self.id)

    def find(self):
        return self.shown("^" + self.title_start)

    def shown(self, title):
        """A window of this program that is on the screen."""
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended with {self.process.returncode}")
        return screen.find(title)

    def dialog(self, name, other_than=None):
        """The dialog of this name when it has come up, with the keys of the screen."""
        def another():
            found = self.shown("^" + name + "$")
            return found if found != other_than else None

        dialog = until(another, "a dialog called " + name)
        screen.focus(dialog)
        return dialog

    def title(self):
        return screen.title(self.id)

    def is_modified(self):
        return self.title().startswith(self.title_start + "*")

    def picture(self):
        return Picture(self.id)

    def keep(self, name, whole_screen=False):
        screen.save(None if whole_screen else self.id, options.pictures / (name + ".png"))

    def settled(self, other_than=None):
        """The picture when it has become another one, and changes no more."""
        last, same = None, 0

        def settles():
            nonlocal last, same
            now = self.picture()
            same = same + 1 if last is not None and now == last else 0
            last = now
            return same >= screen.calm and (other_than is None or now != other_than)

        until(settles, "a picture that is another one and stays")
        return last

    def steady(self, measure, what):
        """What is measured of the picture when it is there and stays, whatever else changes."""
        seen = []

        def stays():
            seen.append(measure(self.picture()))
            return len(seen) > screen.calm and seen[-1] is not None and len(set(seen[-screen.calm:])) == 1

        until(stays, what)
        return seen[-1]

    def becomes(self, picture, what):
        last = None

        def same():
            nonlocal last
            last = self.picture()
            return last == picture

        try:
            until(same, what)
        except AssertionError as error:
            self.keep("failed")
            raise AssertionError(f"{error}: {picture.difference(last)}") from None

    def key(self, *names):
        screen.key(*names)

    def point(self, x, y):
        screen.point(self.id, x, y)

    def press(self, a, b):
        """Down at a, over to b by way of a place between; what it does can be seen by then."""
        before = self.settled()
        self.point(*a)
        screen.button(True)
        self.point((a[0] + b[0]) // 2, (a[1] + b[1]) // 2)
        self.point(*b)
        return self.settled(other_than=before)

    def release(self):
        screen.button(False)

    def drag(self, a, b, holding=None):
        """A whole drag, with a key held; gives the picture that it leads to. It changes the view."""
        before = self.settled()
        if holding:
            screen.hold(holding, True)
        self.press(a, b)
        self.release()
        if holding:
            screen.hold(holding, False)
        self.key("Escape")  # no comment stays marked
        screen.away()
        # The list shows its own values again, and not those of the pointer's last place.
        edge = before.bar()
        until(lambda: self.picture().beside(edge) == before.beside(edge), "a list without the pointer's values")
        return self.settled(other_than=before)

    def close(self, keeping=None, ending=None):
        """As a user closes it, with a picture of the question whether to save, which is then answered with no; gives the exit code. Before
        that stands the question whether to end a download, whose picture `ending` names."""
        self.key("alt+F4")
        asked = None
        if ending:
            asked = self.dialog("OrvikHost")
            self.keep(ending, whole_screen=True)
            self.key("y")
        if keeping:
            self.dialog("OrvikHost", other_than=asked)
            self.keep(keeping, whole_screen=True)
            self.key("n")
        until(lambda: self.process.poll() is not None, "the program's end")
        screen.ended(self.process.returncode)
        return self.process.returncode

    def abandon(self):
        screen.release_all()
        if self.process.poll() is None:
            screen.save(None, options.pictures / "left-open.png")
            self.process.kill()
            self.process.wait(timeout=20)


class Flow(unittest.TestCase):
    """A session to look at."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-window-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.file = self.folder / "week.odb"
        minutes = range(400)
        write_session(self.file, [(1_780_000_000 + 60 * i) * 1_000_000 for i in minutes],
                      [("Air temperature", "\u00b0C", [15 + 8 * math.sin(i / 40) for i in minutes]),
                       ("Humidity", "%", [60 + 20 * math.cos(i / 55) for i in minutes])],
                      Chart={"Tags": {"Comment #0": {"sText": "Rain begins", "fLeft": ("r32", [0.3]), "fTop": ("r32", [0.2])}}})

    def open(self, *words, title="week.odb", **more):
        screen.away()
        window = Window(self.folder, words or [self.file], title, **more)
        self.addCleanup(window.abandon)
        return window

    def charted(self, window):
        """The window's picture once its chart is there, and where that stands."""
        until(lambda: window.picture().axis(BLUE) and window.picture().axis(ORANGE), "a chart with both axes")
        picture = window.settled()
        self.left, self.top, self.bottom = picture.axis(BLUE)
        self.right = picture.axis(ORANGE)[0]
        return picture

    def at(self, x, y):
        """A place of the plot, by its parts."""
        return self.left + int((self.right - self.left) * x), self.top + int((self.bottom - self.top) * y)


class WindowFlow(Flow):
    def test_a_view_is_made_undone_saved_and_restored(self):
        window = self.open()
        first = self.charted(window)
        window.keep("1-opened")
        self.assertFalse(window.is_modified())
        beside_left, below = self.left - 18, self.bottom + 24

        views = [first]
        views.append(window.drag(self.at(0.15, 0.1), self.at(0.75, 0.7)))
        until(window.is_modified, "the title's sign of a change")
        window.keep("2-zoomed")
        middle = (self.top + self.bottom) // 2
        views.append(window.drag((beside_left, middle), (beside_left, middle - 60), holding="ctrl"))
        window.keep("3-axis-panned")
        views.append(window.drag(((self.left + self.right) // 2, below), ((self.left + self.right) // 2 + 50, below)))
        window.keep("4-time-stretched")
        comment = views[-1].comment()
        self.assertIsNotNone(comment)
        views.append(window.drag(comment, (comment[0] + 70, comment[1] + 120)))
        window.keep("5-comment-moved")

        # Each step back shows what was there before it, and the first picture comes back whole.
        for earlier in reversed(views[:-1]):
            window.key("ctrl+z")
            window.becomes(earlier, "a step back")
        until(lambda: not window.is_modified(), "a title without a change")
        window.keep("6-all-undone")
        for later in views[1:]:
            window.key("ctrl+y")
            window.becomes(later, "a step done again")

        written = self.file.stat().st_mtime_ns
        window.key("ctrl+s")
        until(lambda: not window.is_modified(), "a saved session")
        self.assertNotEqual(self.file.stat().st_mtime_ns, written)
        self.assertEqual(window.close(), 0)

        again = self.open()
        again.becomes(views[-1], "the view that was saved")
        again.keep("7-reopened")
        self.assertEqual(again.close(), 0)

    def test_every_letter_can_be_typed(self):
        """Into a comment, a channel's name and a file's name."""
        omega = self.folder / "\u03a9\u6e29.odb"
        shutil.copy(self.file, omega)
        window = self.open()
        self.charted(window)
        window.key("ctrl+o")
        window.dialog("Open a session")
        if options.wine:
            screen.type("Z:" + str(omega).replace("/", "\\"))
        else:
            screen.key("slash")  # brings up the field for a path, which takes a moment
            time.sleep(1)
            screen.type(str(omega)[1:])
        screen.key("Return")
        window.title_start = omega.name
        until(window.find, "the title of the other file")
        screen.focus(window.id)
        self.charted(window)

        window.point(*self.at(0.6, 0.8))
        screen.double_click()
        window.settled()
        screen.type("k\u03a9 \u6e29")
        screen.key("Return")
        until(window.is_modified, "the comment")
        window.keep("15-comment-of-every-letter")

        window.key("alt+Return")
        properties = window.dialog("Properties of \u00b0C")
        screen.key(*4 * ["Down"])  # from the axis's near end to the channel's name
        screen.type("R\u03a9")
        screen.key("Return")
        screen.save(properties, options.pictures / "16-name-of-every-letter.png")
        screen.key("Escape")
        screen.focus(window.id)
        window.key("ctrl+s")
        until(lambda: not window.is_modified(), "a saved session")
        window.keep("17-every-letter")
        self.assertEqual(window.close(), 0)
        saved = omega.read_bytes()
        for text in ("k\u03a9 \u6e29", "R\u03a9"):
            self.assertTrue(b"\xff\xfe\xff" + bytes([len(text)]) + text.encode("utf-16-le") in saved, text)

    def test_another_name_readings_as_text_and_the_files_of_before(self):
        other, text = self.folder / "other.odb", self.folder / "readings.csv"
        named = lambda path: "Z:" + str(path).replace("/", "\\") if options.wine else str(path)
        window = self.open()
        self.charted(window)
        window.key("ctrl+shift+s")
        window.dialog("Save the session")
        screen.key("ctrl+a")
        screen.type(named(other))
        screen.key("Return")
        window.title_start = other.name
        until(window.find, "the title of the new file")
        self.assertTrue(other.exists())
        screen.focus(window.id)

        window.key("ctrl+e")
        window.dialog("Export Values")
        screen.type(named(text))
        window.keep("18-export", whole_screen=True)
        screen.key("Return")
        until(lambda: text.exists() and text.read_bytes().count(b"\n") == 401, "the readings as text")

        # Of the files in the menu the second one is the one from before.
        screen.focus(window.id)
        window.settled()
        for key in ("alt+f", "r"):
            screen.open_menu(key)
            window.settled()
        window.keep("19-recent", whole_screen=True)
        window.key("2")
        window.title_start = self.file.name
        until(window.find, "the title of the first file")
        screen.focus(window.id)
        self.assertEqual(window.close(), 0)

    def test_what_is_copied_goes_to_other_programs_and_comes_from_them(self):
        if not screen.has_clipboard:
            self.skipTest("what is copied is only for who has the keys")
        window = self.open()
        self.charted(window)
        window.key("ctrl+c")

        def copied():
            found = screen.copied()
            if found.count(b"\n") > 400:
                return found.decode()
            if options.wine:
                window.key("ctrl+c")  # docs/wine.md: what was copied does not always come to other programs

        table = until(copied, "the readings as a table")
        self.assertEqual(table.splitlines()[0], "time\tAir temperature [\u00b0C]\tHumidity [%]")
        self.assertIn(b"<th>Humidity [%]</th>", screen.copied("-t", "text/html"))
        picture = self.folder / "copied"
        picture.write_bytes(screen.copied("-t", "image/bmp" if options.wine else "image/png"))
        self.assertGreater(int(window_screens.run("identify", "-format", "%w", picture) or 0), 400)

        # A name from elsewhere goes into a field, and back.
        text = self.folder / "c\u03a9pied.csv"
        name = "Z:" + str(text).replace("/", "\\") if options.wine else str(text)
        screen.copy(name)
        window.key("ctrl+e")
        window.dialog("Export Values")
        screen.key("ctrl+a", "ctrl+v", "ctrl+a", "ctrl+x")
        until(lambda: screen.copied().decode() == name, "the name that was cut")
        screen.key("shift+Insert", "Return")
        until(lambda: text.exists() and text.read_bytes().count(b"\n") == 401, "the readings as text")
        screen.focus(window.id)
        self.assertEqual(window.close(), 0)

    def test_the_chart_is_printed_on_a_page(self):
        if options.wine or options.wayland:
            self.skipTest("printers are asked for by the desktop's dialog, whose list is found by its look on X11")
        window = self.open(environment={"HOME": str(self.folder)})
        first = self.charted(window)
        window.key("ctrl+p")
        dialog = window.dialog("Print")
        before = Picture(dialog).pixels.count(bytes(CHOSEN))

        def chosen():
            screen.key("Down")
            return Picture(dialog).pixels.count(bytes(CHOSEN)) > before + 5000

        screen.key("Tab")  # from the page's name to the list, where there may be nothing yet
        until(chosen, "a file in place of a printer")
        screen.save(dialog, options.pictures / "25-print.png")
        screen.key("Return")
        page = self.folder / "week.pdf"
        until(page.exists, "the printed page")
        printed = page.read_bytes()
        self.assertIn(b"/MediaBox [0 0 841.89 595.28]", printed)
        self.assertTrue(printed.endswith(b"%%EOF\n"))
        for text in (b"week.odb", b"Air temperature", b"Rain begins"):
            self.assertIn(text, printed)
        screen.focus(window.id)
        window.becomes(first, "the window as it was")
        window.keep("26-printed")
        self.assertFalse(window.is_modified())
        self.assertEqual(window.close(), 0)

    def test_a_logger_is_tried_before_it_is_downloaded(self):
        line = SimulatedLine(options, self.folder, [])
        self.addCleanup(line.stop)
        window = self.open(environment=simulated_line.environment(options))
        self.charted(window)
        window.key("ctrl+d")
        dialog = window.dialog("Download")
        screen.key("alt+p", "Home", "shift+End")
        screen.type(line.port)
        before = Picture(dialog)
        screen.key("alt+t")
        tried = []

        def settles():
            tried.append(Picture(dialog))
            return len(tried) > 12 and tried[-1] != before and all(one == tried[-1] for one in tried[-8:])

        until(settles, "the reading that was tried")
        window.keep("20-tried", whole_screen=True)
        if screen.pictures_windows and not options.wine:  # Windows' own list takes the press that closes it for itself
            self.close_list_by_a_press(dialog)
        screen.key("alt+r", "Return")  # on the button Test it would try again
        window.title_start = "Demo logger"
        until(window.find, "the title of the download")
        until(window.is_modified, "its readings")
        until(lambda: window.picture().axis(ORANGE), "their chart")
        screen.focus(window.id)
        self.assertEqual(window.close(keeping="21-downloaded", ending="22-ending"), 0)

    def close_list_by_a_press(self, dialog):
        """What a press on its arrow has opened is closed by the next press, wherever that lies in the dialog."""
        whole = Picture(dialog)

        def press(x, y):  # in the template's units
            screen.point(dialog, whole.width * x // 250, (whole.height + STATUS) * y // 178)
            screen.button(True)
            screen.button(False)

        def settled(other_than=None):
            seen = [Picture(dialog)]
            until(lambda: seen.append(Picture(dialog)) or (len(seen) > screen.calm and seen[-1] != other_than
                                                           and all(one == seen[-1] for one in seen[-screen.calm:])), "a dialog at rest")
            return seen[-1]

        press(100, 125)  # the number of readings
        before = settled(other_than=whole)
        press(181, 33)  # the port's arrow
        settled(other_than=before)
        press(100, 125)
        until(lambda: Picture(dialog) == before, "the dialog without its list")

    def download(self, *words, title, faults=()):
        line = SimulatedLine(options, self.folder, faults)
        self.addCleanup(line.stop)
        return self.open("--port", line.port, *words, title=title, environment=simulated_line.environment(options))

    def move_bar(self, window):
        """The bar between chart and list to another place, and back by a step back."""
        start = window.steady(lambda picture: picture.bar(), "the split bar")
        window.point(start + 3, 300)
        before = window.picture()
        screen.button(True)
        window.point(start - 60, 300)
        # A window manager holds a press back until it has looked at it, and the screen lets go of the button where the pointer is
        # by then: on a busy machine it must be seen that the drag goes on.
        until(lambda: window.picture() != before, "the bar on its way")
        window.settled()
        window.point(start - 97, 300)
        window.release()
        screen.away()
        until(lambda: window.picture().bar() == start - 100, "the bar at its new place")
        window.key("ctrl+z")
        until(lambda: window.picture().bar() == start, "the bar at its old place")

    def test_it_can_be_used_while_it_downloads(self):
        window = self.download("--interval", "50", title="Demo logger")
        until(window.is_modified, "the first reading")
        until(lambda: window.picture().axis(ORANGE), "a chart")
        self.move_bar(window)
        before = window.picture()
        until(lambda: window.picture() != before, "more readings")
        # Readings wait for the end of a drag.
        window.point(300, 300)
        screen.button(True)
        window.point(340, 330)
        window.point(400, 360)
        shown = window.settled()
        window.keep("10-downloading")
        window.key("Escape")
        window.release()
        until(lambda: window.picture() != shown, "the readings that waited")
        before = window.picture()
        until(lambda: window.picture() != before, "more readings still")
        # Closing asks; the answer no lets the download go on, and dialogs have their say meanwhile.
        window.key("alt+F4")
        window.dialog("OrvikHost")
        window.key("n")
        screen.focus(window.id)
        window.key("ctrl+d")
        window.dialog("Download")
        before = window.picture()
        until(lambda: window.picture() != before, "readings beside a dialog")
        window.key("Escape")
        screen.focus(window.id)
        window.key("ctrl+b")
        window.settled()
        self.assertEqual(window.close(keeping="11-question"), 0)

    def test_a_recording_of_another_program_is_followed(self):
        if options.wine:
            self.skipTest("what records is a program of the other home, whose locks are not seen")
        line = SimulatedLine(options, self.folder, [])
        self.addCleanup(line.stop)
        recording = self.folder / "other.odb.rec"
        recorder = subprocess.Popen([options.simulator, "download", "--port", line.port, "--interval", "100", "--for", "1 h", "--out", "other.odb"],
                                    cwd=self.folder, env={**os.environ, **simulated_line.environment(options)}, stdout=subprocess.DEVNULL)
        self.addCleanup(recorder.wait)
        self.addCleanup(recorder.kill)
        until(recording.exists, "a recording")
        window = self.open(recording, title=recording.name)
        until(lambda: window.picture().axis(ORANGE), "a chart")
        for _ in range(3):
            before = window.picture()
            until(lambda: window.picture() != before, "more readings")
        window.keep("23-followed")
        self.assertFalse(window.is_modified())
        recorder.kill()
        self.assertEqual(window.close(), 0)

    def test_it_can_be_used_while_a_logger_keeps_silent(self):
        # The first answer is awaited for ten minutes; nothing else waits for it.
        window = self.download("--timeout", "600000", title="Demo logger", faults=["--fault", "silent"])
        self.move_bar(window)
        self.assertEqual(window.close(), 0)


class ScaleFlow(Flow):
    """On a screen whose scale changes while the window is there."""

    def setUp(self):
        super().setUp()
        screen.scale(1)

    def test_the_window_follows_the_scale(self):
        window = self.open()
        first = self.charted(window)
        for factor in (2, 1.25, 1.5):
            with self.subTest(factor=factor):
                screen.scale(factor)
                scaled = window.settled(other_than=first)
                window.keep(f"30-scale-{factor}")
                if factor == 2:
                    # Drawn anew, not blown up: of the lines some are one pixel high, or begin at an odd one.
                    self.assertIsNotNone(scaled.axis(BLUE))
                    self.assertTrue(any(scaled.row(y) != scaled.row(y + 1) for y in range(TITLE, scaled.height - 1, 2)))
                    self.assertTrue(any(scaled.row(y) != scaled.row(y + 1) for y in range(TITLE + 1, scaled.height - 1, 2)))
                # A menu lies on it, and leaves nothing behind.
                screen.open_menu("alt+f")
                window.settled(other_than=scaled)
                window.keep(f"31-menu-{factor}")
                window.key("Escape", "Escape")
                window.becomes(scaled, "the window without its menu")
                screen.scale(1)
                window.becomes(first, "the first picture")
        self.close_by_the_screen(window)

    def test_letters_dialogs_and_unsaved_work(self):
        window = self.open()
        first = self.charted(window)
        screen.scale(2)
        scaled = window.settled(other_than=first)
        window.key("Insert")
        window.settled(other_than=scaled)
        screen.type("k\u03a9 \u6e29")
        window.key("Return")
        until(window.is_modified, "the comment")
        window.key("ctrl+d")
        window.dialog("Download")
        window.keep("32-dialog", whole_screen=True)
        window.key("Escape")
        until(lambda: not window.shown("^Download$"), "the dialog's end")
        screen.focus(window.id)
        window.key("ctrl+s")
        until(lambda: not window.is_modified(), "a saved session")
        self.assertIn(b"\xff\xfe\xff\x04" + "k\u03a9 \u6e29".encode("utf-16-le"), self.file.read_bytes())
        window.key("ctrl+z")
        until(window.is_modified, "a change")
        self.close_by_the_screen(window, keeping="33-question")

    def close_by_the_screen(self, window, keeping=None):
        screen.ask_to_close(window.id)
        if keeping:
            window.dialog("OrvikHost")
            window.keep(keeping, whole_screen=True)
            window.key("n")
        until(lambda: window.process.poll() is not None, "the program's end")
        self.assertEqual(window.process.returncode, 0)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--gui", required=True)
    parser.add_argument("--wine")
    parser.add_argument("--wayland", action="store_true")
    parser.add_argument("--sway", action="store_true", help="the flows about scales alone")
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--preload")
    parser.add_argument("--pictures", required=True, type=pathlib.Path)
    parser.add_argument("--patience", type=float, default=90, help="seconds that a busy machine may need for a step that takes a tenth of one")
    options, rest = parser.parse_known_args()
    if not os.environ.get("DISPLAY") and not options.sway:
        sys.exit("test_window.py needs a screen that is nobody's: tools/with-wine test_window.py ...")
    options.pictures = options.pictures.absolute()
    options.pictures.mkdir(parents=True, exist_ok=True)
    window_screens.patience = options.patience
    kind = "Wine" if options.wine else "Sway" if options.sway else "Weston" if options.wayland else "X"
    screen = getattr(window_screens, kind + "Screen")()
    atexit.register(screen.close)
    with tempfile.TemporaryDirectory(prefix="orvik-records-") as options.records:
        unittest.main(argv=[sys.argv[0], *(rest or ["ScaleFlow" if options.sway else "WindowFlow"])], verbosity=1)
