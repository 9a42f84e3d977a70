#!/usr/bin/env python3
"""Uses the panel as a person at a display does: with keys and a mouse, through an X server of its own.

usage: panel_input_test.py LINEWATCH

Looks only at what everyone can see: the window's size, what a companion command is given, what the program says and
has recorded, and how it ends.
"""

import os
import re
import unittest

from panel_desk import PanelDesk, contents

# Pixels, of a row in text of the usual size.
ROW_HEIGHT = 110
COMPANION = """#!/bin/sh
blocked=$(sed -n 's/^SigBlk:[^0-9a-f]*//p' /proc/self/status)
printf '%s %s\\n' "$blocked" "$1" >>"$(dirname "$0")/told"
"""


class PanelInputTest(PanelDesk):
    def setUp(self):
        super().setUp()
        with open(self.path("companion"), "w", encoding="utf-8") as file:
            file.write(COMPANION)
        os.chmod(self.path("companion"), 0o700)

    def start_panel(self):
        """Shows the panel on what is saved, once its first fetch has ended."""
        self.launch_panel("--example", "--companion", self.path("companion"))
        self.wait_for_fetches(1)

    def wait_for_fetches(self, count):
        self.wait_for(f"fetch {count}", lambda: contents(self.path("log")).count("Received 7 line items") >= count)

    def wait_for_height(self, what, fits):
        self.wait_for(what, lambda: fits(self.height()))

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
