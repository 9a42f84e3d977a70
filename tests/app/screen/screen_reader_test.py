#!/usr/bin/env python3
"""Reads and presses the panel and its windows as a screen reader does: over the accessibility bus.

usage: screen_reader_test.py LINEWATCH CITY

Runs on an X server and a session bus of its own. What the windows have to tell is written as data below; a line of it
is a role, a name, a description and states, indented under the part that contains it. Every wait is for an event or a
state; how long is only limited for a panel that hangs.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import warnings

PATIENCE = 60  # seconds
STATES = ("checked", "collapsed", "expandable", "expanded", "focusable")

COMPACT = """
frame "LineWatch"
  label "Alerts received *"
  push button "Show More" collapsed expandable focusable: Press
  push button "Menu" focusable: Press
  status bar "5 Advisories"
  list "Advisories" focusable
    list item "5 Advisories" (M1, 3, 7, 12, 34, L1, No service) focusable: Press
"""
EXPANDED = """
frame "LineWatch"
  label "Alerts received *"
  push button "Show Less" expandable expanded focusable: Press
  push button "Menu" focusable: Press
  status bar "5 Advisories"
  list "Advisories" focusable
    list item "M1, Signal failure at Zentralbahnhof" (Trains towards Université *) focusable: Press
    list item "Falkenrive Verkehr · Transports, Works on Pont-Neuf" (3, 7, and 12: *) focusable: Press
    list item "7, Messe: demonstration this afternoon" (Trams turn back *) focusable: Press
    list item "34, Stop Collège moved by 50 m" focusable: Press
    list item "L1, No service, No boats" (The wind is too strong *) focusable: Press
    list item "Good Service" (No advisories for 2 other lines) focusable: Press
"""
BROKEN = """
frame "LineWatch"
  push button "Menu" focusable: Press
  label "given could not be loaded. No news of lines *" (given could not be loaded. (feed given: *)
  push button "Try Again" focusable: Press
  status bar "Can’t Load Advisories\\ngiven could not be loaded. *"
  list "Advisories" focusable
    list item "Can’t Load Advisories" (Please try again later) focusable
"""
DETAILS = """
frame "M1"
  panel "M1" focusable
    image "M1"
    label "Falkenrive Verkehr · Transports" focusable
    separator ""
    heading "Signal failure at Zentralbahnhof" focusable
    label "Significant delays · Technical problem · In one direction only" focusable
    label "Until further notice" focusable
    label "Trains towards Université *" focusable
"""

# Of the next windows the parts in their order; others may be between them.
FIRST_START = """
frame "LineWatch"
label "Are your lines running?" focusable
push button "Choose your city" focusable: Press
push button "Look at an example" focusable: Press
"""
SETUP = """
frame "Choose your city"
push button "Back" focusable: Press
label "Choose your city" focusable
panel "Choose your city"
text "City, region or agency" * focusable
list "Cities" focusable
list item "United States"*
list item "Harbour Buses, Harbourton, United States*" focusable: *
push button "Enter addresses or choose files…" focusable: Press
"""
ADD_CITY = """
frame "Add this city"
panel "Add this city"
label "Harbour Buses" focusable
label "Alerts for 1 timetable" focusable
push button "Add" focusable: Press
"""
SETTINGS = """
frame "Settings"
label "Language" focusable
combo box "American English" * expandable focusable: *
label "Text size" focusable
combo box "L" expandable focusable: *
label "Appearance" focusable
combo box "Automatic" expandable focusable: *
check box "Stay in front of other windows" focusable: *
check box "Without a title bar" focusable: *
check box "Record the use of the widget on this computer" checked focusable: *
text "Catalogue of feeds, a file or an address" focusable
"""
FAVORITES = """
frame "Favorites"
text "Search by line, name or agency" * focusable
list "Favorites" focusable
list item "M1, Zentralbahnhof*" checked focusable: *
list item "3, Sternplatz*" checked focusable: *
list item "L1, Vieux-Port*" checked focusable: *
list item "Falkenrive Verkehr · Transports · Subway"*
"""
CATALOGUE = """\
id,data_type,entity_type,location.country_code,location.municipality,provider,static_reference,urls.direct_download,status
t-1,gtfs,,US,Harbourton,Harbour Buses,,https://agency.example/gtfs.zip,active
a-1,gtfs_rt,sa,US,Harbourton,Harbour Buses,t-1,https://agency.example/alerts.pb,active
"""


def start_display():
    """Starts an X server on the first free display; returns it and its name."""
    reading, writing = os.pipe()
    command = ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"]
    server = subprocess.Popen(command, pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as answer:
        return server, ":" + answer.readline().strip()


def run_on_own_buses():
    """Runs this script again on an X server and a session bus of its own."""
    server, display = start_display()
    with tempfile.TemporaryDirectory(prefix="linewatch-test-") as folder:
        environment = dict(os.environ, HOME=folder, XDG_RUNTIME_DIR=folder, DISPLAY=display, QT_QPA_PLATFORM="xcb",
                           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", LC_ALL="C.UTF-8", LINEWATCH_TEST_FOLDER=folder)
        for name in ("WAYLAND_DISPLAY", "LINEWATCH_COMPANION", "AT_SPI_BUS_ADDRESS", "LANGUAGE"):
            environment.pop(name, None)
        command = ["dbus-run-session", "--", sys.executable, "-B", os.path.abspath(__file__), *sys.argv[1:]]
        status = subprocess.run(command, env=environment, check=False).returncode
    server.terminate()
    server.wait()
    return status


if "LINEWATCH_TEST_FOLDER" not in os.environ:
    sys.exit(run_on_own_buses())

import gi  # noqa: E402: the bindings connect to the buses of the environment
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

CITY = sys.argv.pop()
PROGRAM = sys.argv.pop()
FOLDER = os.environ["LINEWATCH_TEST_FOLDER"]
# The bindings have no other names for some calls yet.
warnings.simplefilter("ignore", DeprecationWarning)


def children(part):
    part.clear_cache()
    found = [part.get_child_at_index(index) for index in range(part.get_child_count())]
    return [child for child in found if child is not None]


def states_of(part):
    return {state.value_nick for state in part.get_state_set().get_states()}


def actions_of(part):
    actions = part.get_action_iface()
    names = [actions.get_action_name(index) for index in range(actions.get_n_actions())] if actions else []
    return [name for name in names if name != "SetFocus"]


def described(part):
    """One line about the part, in the form of the data above."""
    line = f'{part.get_role_name()} "{part.get_name()}"'
    if part.get_description():
        line += f" ({part.get_description()})"
    line = " ".join([line, *(state for state in STATES if state in states_of(part))])
    return line + (": " + ", ".join(actions_of(part)) if actions_of(part) else "")


def lines_of(part, depth=0):
    """The part and what it contains, without what is hidden and without nameless containers."""
    if "showing" not in states_of(part):
        return []
    isContainer = part.get_role_name() in ("filler", "panel") and not part.get_name()
    lines = [] if isContainer else ["  " * depth + described(part).replace("\n", "\\n")]
    for child in children(part):
        lines += lines_of(child, depth if isContainer else depth + 1)
    return lines


def parts_in(part):
    yield part
    for child in children(part):
        yield from parts_in(child)


def fits(line, expected):
    return re.fullmatch(re.escape(expected).replace(r"\*", ".*"), line, re.DOTALL) is not None


class ScreenReaderTest(unittest.TestCase):
    def setUp(self):
        self.alerts = os.path.join(FOLDER, "alerts.pb")
        shutil.copy(os.path.join(CITY, "alerts.pb"), self.alerts)
        self.events = []
        self.listener = Atspi.EventListener.new(self.note)
        for kind in ("property-change:accessible-name", "state-changed:expanded", "state-changed:checked"):
            self.listener.register("object:" + kind)

    def launch(self, *words):
        panel = subprocess.Popen([PROGRAM, "--locale", "en", *words], stdin=subprocess.DEVNULL)
        self.addCleanup(panel.wait)
        self.addCleanup(panel.kill)

    def launch_with_city(self):
        favorites = [word for line in ("M1", "T3", "T7", "B12", "B34", "S1", "L1") for word in ("--favorite", line)]
        self.launch("--gtfs", os.path.join(CITY, "gtfs"), "--alerts", self.alerts, *favorites, "panel")

    def launch_with_state(self, *words):
        """The panel of a user; the state is gone after the test."""
        self.state = self.enterContext(tempfile.TemporaryDirectory(prefix="linewatch-test-"))
        self.launch("--state-dir", self.state, *words)

    def note(self, event):
        try:
            self.events.append((event.type, event.source.get_role_name(), event.source.get_name(), event.detail1))
        except GLib.Error:
            pass  # The part has gone.

    def wait_for(self, what, condition):
        """Handles events until the condition holds; returns its result."""
        end = time.monotonic() + PATIENCE
        GLib.timeout_add(50, lambda: time.monotonic() < end)  # wakes the loop, because states change without events
        while time.monotonic() < end:
            try:
                if result := condition():
                    return result
            except GLib.Error:
                pass  # A part has gone while it was read.
            GLib.MainContext.default().iteration(True)
        raise AssertionError(f"waited in vain for {what}; there is:\n{self.shown()}\nevents: {self.events}")

    def application(self):
        named = [each for each in children(Atspi.get_desktop(0)) if each.get_name() == "linewatch"]
        return named[0] if named else None

    def windows(self):
        application = self.application()
        return children(application) if application else []

    def shown(self):
        return "\n".join(line for window in self.windows() for line in lines_of(window))

    def wait_for_window(self, expected):
        lines = expected.strip().splitlines()

        def is_shown():
            shown = [lines_of(window) for window in self.windows()]
            return any(len(each) == len(lines) and all(map(fits, each, lines)) for each in shown)
        self.wait_for("this window:\n" + expected, is_shown)

    def wait_for_parts(self, expected):
        """Waits for a window that has these parts in this order."""
        wanted = expected.strip().splitlines()

        def is_shown():
            for window in self.windows():
                shown = iter([line.strip() for line in lines_of(window)])
                if all(any(fits(line, each) for line in shown) for each in wanted):
                    return True
            return False
        self.wait_for("these parts:\n" + expected, is_shown)

    def part(self, role, name):
        parts = (part for window in self.windows() for part in parts_in(window))
        return next(part for part in parts if part.get_role_name() == role and fits(part.get_name(), name))

    def press(self, role, name, action="Press"):
        actions = self.part(role, name).get_action_iface()
        names = [actions.get_action_name(index) for index in range(actions.get_n_actions())]
        actions.do_action(names.index(action))

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *words], capture_output=True, text=True, check=False).stdout.strip()

    def activate(self, title):
        """Gives the window the keyboard's focus. There is no window manager that would do it."""
        window = self.wait_for(title, lambda: self.xdotool("search", "--onlyvisible", "--name", f"^{title}$"))
        self.wait_for("the keyboard", lambda: self.xdotool("windowfocus", window, "getwindowfocus") == window)

    def wait_for_focus(self, role, name):
        self.wait_for(f"the focus on {role} {name}", lambda: "focused" in states_of(self.part(role, name)))

    def wait_for_event(self, kind, role, name, detail=0):
        self.wait_for(f"{kind} of {role} {name}", lambda: any(
            each[:2] == ("object:" + kind, role) and fits(each[2], name) and each[3] == detail
            for each in self.events))

    def test_everything_is_told_and_can_be_pressed(self):
        self.launch_with_city()
        self.wait_for_window(COMPACT)
        self.activate("LineWatch")
        self.wait_for_focus("list item", "5 Advisories")
        for role, name in (("push button", "Show More"), ("push button", "Menu"), ("list item", "5 Advisories")):
            self.xdotool("key", "Tab")
            self.wait_for_focus(role, name)
        self.press("push button", "Show More")
        self.wait_for_window(EXPANDED)
        self.wait_for_event("state-changed:expanded", "push button", "Show Less", 1)
        for name in ("7, Messe*", "7, Messe*"):
            self.xdotool("key", "Down")
        self.wait_for_focus("list item", "7, Messe*")

        with open(self.alerts, "wb") as file:
            file.write(b"no alerts")
        self.events.clear()
        self.xdotool("key", "F5")
        self.wait_for_window(BROKEN)
        self.wait_for_event("property-change:accessible-name", "status bar", "Can’t Load Advisories\n*")
        shutil.copy(os.path.join(CITY, "alerts.pb"), self.alerts)
        self.press("push button", "Try Again")
        self.wait_for_window(EXPANDED)
        self.wait_for_event("property-change:accessible-name", "status bar", "5 Advisories")

        self.press("list item", "M1, *")
        self.wait_for_window(DETAILS)
        self.activate("M1")
        self.wait_for_focus("panel", "M1")
        parts = [part for part in parts_in(self.part("panel", "M1")) if part.get_role_name() in ("heading", "label")]
        tops = [part.get_extents(Atspi.CoordType.SCREEN).y for part in parts]
        self.assertEqual(tops, sorted(tops), "the order is that of the screen")

    def test_first_start_and_set_up(self):
        catalogue = os.path.join(FOLDER, "feeds.csv")
        with open(catalogue, "w", encoding="utf-8") as file:
            file.write(CATALOGUE)
        self.launch_with_state("--catalogue", catalogue, "panel")
        self.wait_for_parts(FIRST_START)
        self.press("push button", "Choose your city")
        self.wait_for_parts(SETUP)
        self.wait_for_focus("text", "City, region or agency")
        self.press("list item", "Harbour Buses, *", "Toggle")
        self.wait_for_parts(ADD_CITY)
        self.press("push button", "Back")
        self.wait_for_parts(SETUP)
        self.press("push button", "Back")
        self.wait_for("the end of the set-up", lambda: "Enter addresses" not in self.shown())

    def test_settings(self):
        self.launch_with_state("panel", "--example")
        self.open_window("ctrl+comma", SETTINGS)
        self.press("check box", "Stay in front*", "Toggle")
        self.wait_for_event("state-changed:checked", "check box", "Stay in front*", 1)
        self.assertIn("checked", states_of(self.part("check box", "Stay in front*")))

    def test_favorites(self):
        self.launch_with_state("panel", "--example")
        self.open_window("ctrl+f", FAVORITES)
        self.activate("Favorites")
        self.xdotool("key", "Down")
        self.wait_for_focus("list item", "M1, *")
        self.xdotool("key", "space")
        self.wait_for_event("state-changed:checked", "list item", "M1, *", 0)
        self.assertNotIn("checked", states_of(self.part("list item", "M1, *")))
        self.press("list item", "M1, *", "Toggle")
        self.wait_for_event("state-changed:checked", "list item", "M1, *", 1)
        self.assertIn("checked", states_of(self.part("list item", "M1, *")))

    def open_window(self, keys, expected):
        self.wait_for("the panel", self.windows)
        self.activate("LineWatch.*")
        self.xdotool("key", keys)
        self.wait_for_parts(expected)


if __name__ == "__main__":
    unittest.main()
