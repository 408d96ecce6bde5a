"""The window host as a screen reader finds it: by the desktop's accessibility bus, with the bus's own tools.

Needs a session bus and a screen that are nobody's: tools/with-screen --frames --bus test_accessible.py ...
What has happened is waited for, however long a busy machine takes.
"""
import argparse
import math
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import pyatspi
from gi.repository import GLib

import window_screens
from session_writer import write_session

options = None


def until(condition, what):
    def look():
        while GLib.MainContext.default().iteration(False):
            pass
        try:
            return condition()
        except GLib.Error:  # what was there a moment ago has gone
            return None

    return window_screens.until(look, what)


def below(accessible):
    """All that is in it."""
    for child in accessible:
        if child is not None:
            yield child
            yield from below(child)


def is_in(accessible, state):
    return accessible.getState().contains(state)


def key(*names):
    subprocess.run(["xdotool", "key", *names], check=True, stdout=subprocess.DEVNULL)


class AccessibleFlow(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orvik-accessible-"))
        self.addCleanup(shutil.rmtree, self.folder)
        file = self.folder / "week.odb"
        minutes = range(400)
        write_session(file, [(1_780_000_000 + 60 * i) * 1_000_000 for i in minutes],
                      [("Air temperature", "\u00b0C", [15 + 8 * math.sin(i / 40) for i in minutes]),
                       ("Humidity", "%", [60 + 20 * math.cos(i / 55) for i in minutes])],
                      Chart={"Tags": {"Comment #0": {"sText": "Rain begins", "fLeft": ("r32", [0.3]), "fTop": ("r32", [0.2])}}})
        self.heard = []
        pyatspi.Registry.registerEventListener(self.listen, "object:state-changed:focused", "object:text-changed")
        self.addCleanup(pyatspi.Registry.deregisterEventListener, self.listen, "object:state-changed:focused", "object:text-changed")
        self.addCleanup(self.end)
        # On a machine that is busy enough the bus gives up a program that has just come, for good.
        until(lambda: self.start(file), "the program on the bus")

    def start(self, file):
        self.said = self.folder / "said"
        with open(self.said, "wb") as said:
            self.process = subprocess.Popen([options.gui, file], cwd=self.folder, stdout=subprocess.DEVNULL, stderr=said,
                                            env={**os.environ, "LC_ALL": "C.UTF-8", "XDG_STATE_HOME": str(self.folder / "state")})
        refused = lambda: b"Couldn't register with accessibility bus" in self.said.read_bytes()
        until(lambda: self.program() or self.process.poll() is not None or refused(), "the program")
        if refused():
            self.end()
            return False
        return True

    def listen(self, event):
        try:
            self.heard.append((event.type, event.detail1, event.source.name, event.any_data))
        except GLib.Error:
            pass  # it has gone already

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait(timeout=20)

    def program(self):
        return next((each for each in pyatspi.Registry.getDesktop(0)
                     if each is not None and each.get_process_id() == self.process.pid), None)

    def find(self, role, name="", window=None):
        """Something of this role, whose name begins so, when it is there."""
        def found():
            if self.process.poll() is not None:
                raise AssertionError(f"the program ended with {self.process.returncode}: " + self.said.read_text(errors="replace")[-4000:])
            program = self.program()
            tops = [each for each in program or [] if each is not None and (window is None or each.name.startswith(window))]
            return next((each for top in tops for each in [top, *below(top)]
                         if each.getRoleName() == role and each.name.startswith(name)), None)

        return until(found, f"a {role} called {name}")

    def focused(self, name):
        """Waits until the focus is said to have come to what is called so."""
        def told():
            return any(kind.startswith("object:state-changed:focused") and on and source.startswith(name)
                       for kind, on, source, _ in self.heard)

        until(told, "the focus on " + name)
        self.heard.clear()

    def active(self, role, name):
        """Waits until the desktop gives the keys to this window."""
        until(lambda: is_in(self.find(role, name), pyatspi.STATE_ACTIVE), f"the keys for the {role} {name}")

    def press(self, accessible):
        self.assertTrue(accessible.queryAction().doAction(0))

    def test_the_window_says_what_it_shows(self):
        chart = self.find("chart", "Chart of 2 channels")
        self.assertIn("Air temperature from 7.", chart.name)
        self.assertIn("\u00b0C; Humidity from 40", chart.name)
        self.assertEqual(self.find("menu item", "Open...").queryAction().getKeyBinding(0), "Ctrl+O")
        row = self.find("table row", "Humidity, ")
        self.assertEqual([cell.name for cell in row][0::2], ["Humidity", "%"])
        table = self.find("table", "Channels").queryTable()
        self.assertEqual((table.nRows, table.nColumns, table.getColumnDescription(1)), (2, 3, "Value"))
        self.assertEqual(table.getAccessibleAt(1, 0).name, "Humidity")
        chart_place, row_place = (each.queryComponent().getExtents(pyatspi.DESKTOP_COORDS) for each in (chart, row))
        self.assertLessEqual(chart_place.x + chart_place.width, row_place.x)
        # The keys walk through axes and comments.
        self.focused("Chart of 2 channels")
        self.active("frame", "week.odb")
        key("Tab")
        self.focused("Time axis from ")
        key("shift+Tab", "shift+Tab")
        self.focused("Comment: Rain begins")
        # Pointed at, the values of that time are told.
        place = self.find("chart").queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        subprocess.run(["xdotool", "mousemove", str(place.x + place.width // 2), str(place.y + place.height // 2)], check=True)
        until(lambda: ": Air temperature " in self.find("chart").description, "the values at the pointer")
        self.assertRegex(self.find("status bar").name, r"\d:\d\d")

    def test_a_dialog_is_filled_in_and_answered(self):
        before = self.find("chart", "Chart of 2 channels").name
        self.press(self.find("menu item", "Time range..."))
        self.find("dialog", "Time Range")
        self.focused("From:")
        self.active("dialog", "Time Range")
        key("End")
        self.heard.clear()
        subprocess.run(["xdotool", "type", "7"], check=True)
        until(lambda: any(kind == "object:text-changed:insert" and text == "7" for kind, _, _, text in self.heard), "the letter")
        key("BackSpace")
        self.press(self.find("radio button", "Span:"))
        span = self.find("entry", "Span:")
        until(lambda: is_in(span, pyatspi.STATE_SENSITIVE), "the field of the span")
        span.queryEditableText().setTextContents("10 min")
        until(lambda: span.queryText().getText(0, -1) == "10 min", "the new text")
        span.queryText().setCaretOffset(2)
        until(lambda: span.queryText().caretOffset == 2, "the caret")
        self.assertEqual(span.queryText().getStringAtOffset(4, 1)[0], "min")
        self.press(self.find("push button", "OK"))
        until(lambda: self.find("chart").name != before, "another chart")
        self.assertEqual(len([each for each in self.program() if each is not None]), 1)

    def test_properties_are_rows_and_menus_open(self):
        self.focused("Chart of 2 channels")
        self.active("frame", "week.odb")
        key("alt+Return")
        self.active("dialog", "Properties of \u00b0C")
        row = self.find("table row", "Name, Air temperature")
        self.press(row)
        self.focused("Name")
        self.find("entry", "Name").queryEditableText().setTextContents("Luft \u03a9")
        until(lambda: self.find("entry", "Name").queryText().getText(0, -1) == "Luft \u03a9", "the name")
        key("Return")
        self.find("table row", "Name, Luft \u03a9")
        self.heard.clear()
        key("Escape")
        self.focused("Chart of 2 channels")
        self.find("table row", "Luft \u03a9, ", window="week.odb*")
        self.active("frame", "week.odb*")
        key("alt+f")
        self.focused("Open...")
        key("Down")
        self.focused("Open recent")
        key("Escape", "Escape")
        self.focused("Chart of 2 channels")
        self.active("frame", "week.odb*")
        # Closed with unsaved work, it asks; the question can be read and answered.
        key("alt+F4")
        self.find("label", "", window="OrvikHost")
        self.press(self.find("push button", "No"))
        until(lambda: self.process.poll() is not None, "the program's end")
        self.assertEqual(self.process.returncode, 0)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--gui", required=True)
    parser.add_argument("--patience", type=float, default=90, help="seconds that a busy machine may need for a step that takes a tenth of one")
    options, rest = parser.parse_known_args()
    window_screens.patience = options.patience
    pyatspi.setTimeout(30_000, 60_000)  # ms that a busy program may take to say its name
    unittest.main(argv=[sys.argv[0], *rest], verbosity=1, warnings="ignore")  # the bus's own tools warn of themselves
