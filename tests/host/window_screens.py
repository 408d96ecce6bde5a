"""The screens on which test_window.py has windows: what is there and looks how, pointer and keys. One class a kind of screen.

A window of a screen is what its `find` gives for a part of its title. Places are those of the window's picture.
"""
import collections
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

patience = 90  # seconds that a busy machine may need for a step that takes a tenth of one
AWAY = (1279, 1023)


class Unseen(Exception):
    """A window that cannot be looked at, because it has just appeared, or is about to vanish."""


def until(condition, what):
    end = time.monotonic() + patience
    while True:
        try:
            found = condition()
        except Unseen:
            found = None
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError("waited in vain for " + what)
        time.sleep(0.05)


def run(*words, **more):
    return subprocess.run(list(map(str, words)), stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env={**os.environ, "LC_ALL": "C.UTF-8"}, **more).stdout


def xdotool(*words):
    return run("xdotool", *words).decode("utf-8", "replace").strip()


# Letters that no keyboard of the United States has, on a key that it has not either: programs know keys that are there when they start.
LETTERS = "key <LSGT> { [ Greek_OMEGA, U6E29 ] };"
KEYS = """xkb_keymap {
    xkb_keycodes { include "evdev+aliases(qwerty)" };
    xkb_types { include "complete" };
    xkb_compat { include "complete" };
    xkb_symbols { include "pc+us+inet(evdev)" %s };
};
""" % LETTERS


class XScreen:
    """X11 with a window manager."""
    environment = {}
    pictures_windows = True  # each one alone, and a place is one of the window
    calm = 3  # pictures alike in a row, after which nothing more is to come

    def __init__(self):
        subprocess.run(["xkbcomp", "-w0", "-", os.environ["DISPLAY"]], input=KEYS.encode(), stderr=subprocess.DEVNULL, check=True)

    def close(self):
        self.away()

    def errors(self, folder):
        """Where the errors of a program go that is about to start."""
        return None

    def ended(self, code):
        """The program has."""

    def titles(self):
        """What is on the screen: xdotool itself asks by an old name that holds few letters."""
        found = {}
        for each in xdotool("search", "--onlyvisible", "--name", "").split():
            said = run("xprop", "-id", each, "-notype", "_NET_WM_NAME").decode("utf-8", "replace")
            if ' = "' in said:
                found[each] = said.split(' = "', 1)[1].rsplit('"', 1)[0]
        return found

    def find(self, title):
        return next((window for window, name in self.titles().items() if re.search(title, name)), None)

    def title(self, window):
        return self.titles().get(window, "")

    def focus(self, window):
        """Gives it the keys: there is nobody else who would."""
        xdotool("windowfocus", "--sync", window)

    def picture(self, window):
        """As a PPM file; nothing for one that cannot be seen."""
        return run("import", "-window", window, "-depth", "8", "ppm:-")

    def save(self, window, file):
        """Of the whole screen for None."""
        run("import", "-window", "root" if window is None else window, file)

    def away(self):
        xdotool("mousemove", *AWAY)

    def point(self, window, x, y):
        xdotool("mousemove", "--window", window, x, y)

    def button(self, down):
        xdotool("mousedown" if down else "mouseup", 1)

    def double_click(self):
        xdotool("click", "--repeat", 2, "--delay", 50, 1)

    def key(self, *names):
        xdotool("key", *names)

    def hold(self, name, down):
        xdotool("keydown" if down else "keyup", name)

    def open_menu(self, name):
        """A key that opens a menu."""
        self.key(name)

    def type(self, text):
        xdotool("type", text)

    has_clipboard = True  # that other programs can be asked for without a window of theirs

    def copied(self, *kind):
        # An owner that does not answer would be waited for without an end.
        return run("timeout", 5, "xclip", "-selection", "clipboard", *kind, "-o")

    def copy(self, text):
        subprocess.run(["xclip", "-selection", "clipboard"], input=text.encode(), check=True)

    def release_all(self):
        for button in (1, 3):
            xdotool("mouseup", button)
        xdotool("keyup", "ctrl", "keyup", "shift", "keyup", "alt")


class WineScreen(XScreen):
    """Wine's windows on X11, without a window manager."""

    def find(self, title):
        return xdotool("search", "--onlyvisible", "--name", title).split("\n")[0]

    def title(self, window):
        return xdotool("getwindowname", window)


class WaylandLog:
    """What a program and its compositor have said to each other so far (WAYLAND_DEBUG)."""
    SAID = re.compile(r"^\[ *[\d.]+\] +(?:-> )?(\w+)@(\d+)\.(\w+)\((.*)\)$")

    def __init__(self, file):
        self.file, self.rest = open(file, "rb"), b""
        self.surfaces, self.toplevels, self.names = {}, {}, {}  # surface of an xdg_surface, xdg_surface of a toplevel, its title
        self.called, self.made = {}, 0  # toplevels by their numbers now, which are given again to later ones; how many there were
        self.others = []  # lines of the program's own
        self.tail = collections.deque(maxlen=60)  # what was said last
        self.keys = None  # the surface that has the keyboard
        self.popups = 0   # how many have been given a place
        self.pointer = None

    def read(self):
        lines = (self.rest + self.file.read()).split(b"\n")
        self.rest = lines.pop()
        for line in lines:
            self.tail.append(line.decode("utf-8", "replace"))
            said = self.SAID.match(line.decode("utf-8", "replace"))
            if said:
                self.take(*said.groups())
            elif not line.startswith(b"["):
                self.others.append(line.decode("utf-8", "replace"))
        return self

    def take(self, kind, number, what, words):
        new = re.search(r"new id \w+@(\d+)", words)
        if what == "get_xdg_surface":
            self.surfaces[new[1]] = re.search(r"wl_surface@(\d+)", words)[1]
        elif what == "get_toplevel":
            self.made += 1
            self.called[new[1]] = self.made
            self.toplevels[self.made] = number
        elif kind == "xdg_toplevel" and what == "set_title":
            self.names[self.called.get(number)] = words[1:-1]
        elif kind == "xdg_toplevel" and what == "destroy":
            gone = self.called.pop(number, None)
            self.toplevels.pop(gone, None)
            self.names.pop(gone, None)
        elif kind == "wl_keyboard" and what == "enter":
            self.keys = re.search(r"wl_surface@(\d+)", words)[1]
        elif kind == "wl_keyboard" and what == "leave":
            self.keys = None
        elif kind == "xdg_popup" and what == "configure":
            self.popups += 1
        elif kind == "wl_pointer" and what in ("enter", "motion"):
            self.pointer = tuple(int(float(each)) for each in words.split(", ")[-2:])

    def surface(self, toplevel):
        return self.surfaces.get(self.toplevels.get(toplevel))


class WestonScreen(XScreen):
    """Wayland by weston, which fills an X11 screen and takes its pointer and keys from there: one window fills it all, dialogs lie above
    without a frame of their own. It tells nobody its windows' titles: they are read off what program and compositor say."""
    has_clipboard = False
    pictures_windows = False
    calm = 6  # what is drawn comes to the screen by one more program

    def __init__(self):
        super().__init__()
        self.folder = tempfile.TemporaryDirectory(prefix="orvik-weston-")
        folder = pathlib.Path(self.folder.name)
        (folder / "xkb" / "symbols").mkdir(parents=True)
        (folder / "xkb" / "symbols" / "letters").write_text('default xkb_symbols "basic" { include "us" %s };\n' % LETTERS)
        # Keys repeat only for who means it: a busy machine is slow to let go of one.
        (folder / "weston.ini").write_text("[keyboard]\nrepeat-rate=0\nrepeat-delay=60000\n")
        # Without the names of the screen's own keyboard it takes the one that is asked for here.
        run("xprop", "-root", "-remove", "_XKB_RULES_NAMES")
        self.environment = {"XDG_RUNTIME_DIR": str(folder), "WAYLAND_DISPLAY": "orvik", "GDK_BACKEND": "wayland", "WAYLAND_DEBUG": "1"}
        with open(folder / "log", "wb") as log:
            self.process = subprocess.Popen(
                ["weston", "--backend=x11-backend.so", "--use-pixman", "--width=1280", "--height=1024", "--socket=orvik", "--shell=kiosk-shell.so",
                 f"--config={folder}/weston.ini", "--idle-time=0"], stdout=log, stderr=log,
                env={**os.environ, "XDG_RUNTIME_DIR": str(folder), "XKB_CONFIG_EXTRA_PATH": str(folder / "xkb"), "XKB_DEFAULT_LAYOUT": "letters"})
        until(lambda: (folder / "orvik").exists(), "weston")
        until(lambda: xdotool("search", "--onlyvisible", "--class", "weston"), "its window")
        self.log = None

    def close(self):
        self.process.terminate()
        self.process.wait(timeout=20)
        if self.log is not None:
            self.log.file.close()
            self.said.close()
        self.folder.cleanup()

    def errors(self, folder):
        file = folder / f"said-{time.monotonic_ns()}"
        if self.log is not None:
            self.log.file.close()
            self.said.close()
        self.said = open(file, "wb")
        self.log = WaylandLog(file)
        return self.said

    def ended(self, code):
        if code != 0:
            sys.stderr.writelines(line + "\n" for line in self.log.others[-200:])

    def titles(self):
        return dict(self.log.read().names)

    def focus(self, window):
        """A window that opens gets the keys, and mostly who was there before when it closes; else a press on the empty end of its menu bar
        asks for them, as a user would who has let go of all else."""
        asked = time.monotonic()

        def has_keys():
            nonlocal asked
            if self.log.read().keys == self.log.surface(window):
                return True
            if time.monotonic() - asked > (0.5 if self.log.keys is None else 2):  # it may be on its way
                self.release_all()
                xdotool("mousemove", AWAY[0], 8, "click", 1, "mousemove", *AWAY)
                asked = time.monotonic()
            return False

        try:
            until(has_keys, "the keys for " + self.title(window))
        except AssertionError as error:
            raise AssertionError(f"{error}; surface {self.log.surface(window)}, keys {self.log.keys}; said:\n" + "\n".join(self.log.tail)) from None

    def picture(self, window):
        return run("import", "-window", "root", "-depth", "8", "ppm:-")

    def save(self, window, file):
        run("import", "-window", "root", file)

    def away(self):
        super().away()
        # The window must not be looked at while it still shows what the pointer was on.
        if self.log is not None and self.log.read().keys is not None:
            until(lambda: self.log.read().keys is None or self.log.pointer == AWAY, "the pointer's leave")

    def point(self, window, x, y):
        xdotool("mousemove", x, y)

    def open_menu(self, name):
        """Held until the menu is there, as a finger does: it belongs to a key that is down."""
        before = self.log.read().popups
        *modifiers, letter = name.split("+")
        for each in [*modifiers, letter]:
            xdotool("keydown", each)
        until(lambda: self.log.read().popups > before, "a menu")
        for each in [letter, *modifiers]:
            xdotool("keyup", each)


class SwayScreen(XScreen):
    """Wayland by sway, without any X11: its scale can be changed, windows fill it in tiles; keys, but no pointer."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="orvik-sway-")
        folder = pathlib.Path(self.folder.name)
        (folder / "config").write_text("output HEADLESS-1 resolution 1280x1024 position 0 0\nxwayland disable\ndefault_border none\n"
                                       "default_floating_border none\nfocus_follows_mouse no\n")
        # It runs for nobody but a user.
        user = []
        if os.geteuid() == 0:
            user = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
            os.chown(folder, 65534, 65534)
        self.own = {"XDG_RUNTIME_DIR": str(folder)}
        with open(folder / "log", "wb") as log:
            self.process = subprocess.Popen([*user, "sway", "-c", str(folder / "config")], stdout=log, stderr=log,
                                            env={**os.environ, **self.own, "WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"})
        found = lambda pattern: next((each for each in folder.glob(pattern) if each.is_socket()), None)
        self.own["WAYLAND_DISPLAY"] = until(lambda: found("wayland-*"), "sway").name
        self.own["SWAYSOCK"] = str(until(lambda: found("sway-ipc.*.sock"), "its ear"))
        self.environment = {**self.own, "GDK_BACKEND": "wayland"}
        # A keyboard that stays: programs would lose the first keys of one that has just come.
        self.keyboard = subprocess.Popen(["wtype", "-s", "86400000", "-k", "Shift_L"], env={**os.environ, **self.own})

    def close(self):
        self.keyboard.kill()
        self.keyboard.wait(timeout=20)
        self.process.terminate()
        self.process.wait(timeout=20)
        self.folder.cleanup()

    def run(self, *words):
        return subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env={**os.environ, **self.own}).stdout

    def windows(self):
        def below(node):
            for each in node.get("nodes", []) + node.get("floating_nodes", []):
                if each.get("pid") and each.get("name"):
                    yield each
                yield from below(each)

        said = self.run("swaymsg", "-r", "-t", "get_tree")
        return {str(each["id"]): each for each in below(json.loads(said))} if said else {}

    def titles(self):
        return {window: each["name"] for window, each in self.windows().items()}

    def focus(self, window):
        def has_keys():
            self.run("swaymsg", f"[con_id={window}] focus")
            return self.windows().get(window, {}).get("focused")

        until(has_keys, "the keys for " + self.title(window))

    def picture(self, window):
        return self.run("grim", "-t", "ppm", "-")

    def save(self, window, file):
        self.run("grim", str(file))

    def away(self):
        """There is no pointer."""

    def release_all(self):
        """Keys go up by themselves."""

    def key(self, *names):
        for name in names:
            *modifiers, key = name.split("+")
            self.run("wtype", *[word for each in modifiers for word in ("-M", each)], "-k", key,
                     *[word for each in modifiers for word in ("-m", each)])

    def type(self, text):
        self.run("wtype", text)

    def scale(self, factor):
        self.run("swaymsg", "output", "HEADLESS-1", "scale", str(factor))

    def ask_to_close(self, window):
        self.run("swaymsg", f"[con_id={window}] kill")
