#!/usr/bin/env python3
"""Uses the panel as a person at a display does: with keys and a mouse, through an X server of its own.

usage: panel_input_test.py LINEWATCH

Looks only at what everyone can see: the window's size, what a companion command is given, what the program says and
has recorded, and how it ends. Every wait is for something to happen; how long is only limited for a panel that hangs.
"""

import os
import re
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = sys.argv.pop()
PATIENCE = 60  # seconds
# Pixels, of a row in text of the usual size.
ROW_HEIGHT = 110
COMPANION = """#!/bin/sh
blocked=$(sed -n 's/^SigBlk:[^0-9a-f]*//p' /proc/self/status)
printf '%s %s\\n' "$blocked" "$1" >>"$(dirname "$0")/told"
"""


def contents(path):
    if not os.path.exists(path):
        return ""
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


class PanelInputTest(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="linewatch-test-"))
        self.environment = dict(os.environ, HOME=self.folder, XDG_RUNTIME_DIR=self.folder, LANG="en_US.UTF-8",
                                LC_ALL="", QT_QPA_PLATFORM="xcb", DISPLAY=self.start_display())
        for name in ("WAYLAND_DISPLAY", "LINEWATCH_COMPANION", "DBUS_SESSION_BUS_ADDRESS"):
            self.environment.pop(name, None)
        with open(self.path("companion"), "w", encoding="utf-8") as file:
            file.write(COMPANION)
        os.chmod(self.path("companion"), 0o700)

    def wait_for(self, what, condition):
        """What `condition` gives once that is true."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            if result := condition():
                return result
            time.sleep(0.02)
        raise AssertionError(f"waited in vain for {what}; the panel says:\n{contents(self.path('log'))}")

    def path(self, name):
        return os.path.join(self.folder, name)

    def start_display(self):
        """Starts a server on the first display that is free, and names it."""
        reading, writing = os.pipe()
        # By itself a server begins anew, and lets go of who is just coming, whenever its last client has left.
        command = ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"]
        server = subprocess.Popen(command, pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(server.wait)
        self.addCleanup(server.terminate)
        os.close(writing)
        with os.fdopen(reading) as answer:
            return ":" + answer.readline().strip()

    def start_panel(self):
        """Shows the panel on what is saved, with the keyboard's focus, once its first fetch has ended."""
        with open(self.path("log"), "w", encoding="utf-8") as log:
            self.panel = subprocess.Popen(
                [PROGRAM, "-v", "--state-dir", self.path("state"), "panel", "--example", "--companion", self.path("companion")],
                env=self.environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.addCleanup(self.panel.wait)
        self.addCleanup(self.panel.kill)
        found = ("search", "--onlyvisible", "--name", "^LineWatch$")
        self.window = self.wait_for("the window", lambda: self.xdotool(*found))
        # There is no window manager that would do it.
        self.wait_for("the focus", lambda: self.xdotool("windowfocus", self.window, "getwindowfocus") == self.window)
        self.wait_for_fetches(1)

    def wait_for_fetches(self, count):
        self.wait_for(f"fetch {count}", lambda: contents(self.path("log")).count("Received 7 line items") >= count)

    def xdotool(self, *words):
        """What it prints; nothing where it finds nothing."""
        run = subprocess.run(["xdotool", *words], env=self.environment, capture_output=True, text=True, check=False)
        return run.stdout.strip() if run.returncode == 0 else ""

    def keys(self, *names):
        self.xdotool("key", *names)

    def height(self):
        """The window's, in pixels."""
        found = re.search(r"^HEIGHT=(\d+)$", self.xdotool("getwindowgeometry", "--shell", self.window), re.MULTILINE)
        return int(found.group(1)) if found else 0

    def wait_for_height(self, what, fits):
        self.wait_for(what, lambda: fits(self.height()))

    def linewatch(self, *words):
        run = subprocess.run([PROGRAM, "--state-dir", self.path("state"), *words], env=self.environment,
                             capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stdout

    def wait_for_call(self, number):
        """What the companion's call was about; the calls are counted from 1."""
        self.wait_for(f"call {number}", lambda: contents(self.path("told")).count("\n") == number)
        blocked, file = contents(self.path("told")).splitlines()[-1].split(" ", 1)
        self.assertEqual(int(blocked, 16), 0, "what is started can be ended by signals")
        return self.linewatch("open", file)

    def test_from_the_first_list_to_the_end(self):
        self.start_panel()
        compact = self.height()
        self.keys("F5")
        self.wait_for_fetches(2)

        self.keys("Tab", "Return")
        expanded = compact + 5 * ROW_HEIGHT
        self.wait_for_height("every row", lambda height: height == expanded)
        self.keys("space")
        self.wait_for_height("one row", lambda height: height == compact)
        self.keys("space")
        self.wait_for_height("every row again", lambda height: height == expanded)

        self.keys("shift+Tab", "Down", "Down", "Return")
        self.assertIn('"name": "7"', self.wait_for_call(1))
        middle = round(expanded - 5.5 * ROW_HEIGHT)
        self.xdotool("mousemove", "--window", self.window, "200", str(middle), "click", "1")
        self.assertIn('"name": "M1"', self.wait_for_call(2))
        self.keys("ctrl+plus")
        self.wait_for_height("larger text", lambda height: height > expanded)

        self.panel.kill()
        self.panel.wait()
        self.start_panel()
        self.assertIn("View model loaded from GroupSettings", contents(self.path("log")))
        self.wait_for_height("every row after a start", lambda height: height > expanded)
        self.keys("Escape", "ctrl+q")
        self.wait_for("the end", lambda: self.panel.poll() is not None)
        self.assertEqual(self.panel.returncode, 0, contents(self.path("log")))
        recorded = re.findall("SHOW_MORE|SHOW_LESS|TAP_WIDGET_ITEM", self.linewatch("analytics"))
        self.assertEqual(recorded, ["SHOW_MORE", "SHOW_LESS", "SHOW_MORE", "TAP_WIDGET_ITEM", "TAP_WIDGET_ITEM"])


if __name__ == "__main__":
    unittest.main()
