"""A display of its own with a panel on it, and a person's hands: keys and a mouse.

Every wait is for something to happen; how long is only limited for a panel that hangs.
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


def contents(path):
    if not os.path.exists(path):
        return ""
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


class PanelDesk(unittest.TestCase):
    # More options of the display's server.
    display_options = []

    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="linewatch-test-"))
        self.environment = dict(os.environ, HOME=self.folder, XDG_RUNTIME_DIR=self.folder, LANG="en_US.UTF-8",
                                LC_ALL="", QT_QPA_PLATFORM="xcb", DISPLAY=self.start_display())
        for name in ("WAYLAND_DISPLAY", "LINEWATCH_COMPANION", "DBUS_SESSION_BUS_ADDRESS"):
            self.environment.pop(name, None)

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
        command = ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset",
                   *self.display_options]
        server = subprocess.Popen(command, pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(server.wait)
        self.addCleanup(server.terminate)
        os.close(writing)
        with os.fdopen(reading) as answer:
            return ":" + answer.readline().strip()

    def launch_panel(self, *options):
        """Starts the panel on what is saved, and gives its window the keyboard's focus."""
        with open(self.path("log"), "w", encoding="utf-8") as log:
            self.panel = subprocess.Popen([PROGRAM, "-v", "--state-dir", self.path("state"), "panel", *options],
                                          env=self.environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.addCleanup(self.panel.wait)
        self.addCleanup(self.panel.kill)
        self.window = self.wait_for("the window", lambda: self.xdotool("search", "--onlyvisible", "--name", "^LineWatch"))
        self.focus(self.window)

    def focus(self, window):
        """There is no window manager that would do it."""
        self.wait_for("the focus", lambda: self.xdotool("windowfocus", window, "getwindowfocus") == window)

    def xdotool(self, *words):
        """What it prints; nothing where it finds nothing."""
        run = subprocess.run(["xdotool", *words], env=self.environment, capture_output=True, text=True, check=False)
        return run.stdout.strip() if run.returncode == 0 else ""

    def keys(self, *names):
        self.xdotool("key", *names)

    def size(self, window):
        """Its width and height in pixels."""
        told = self.xdotool("getwindowgeometry", "--shell", window)
        return tuple(int(number) for number in re.findall(r"^(?:WIDTH|HEIGHT)=(\d+)$", told, re.MULTILINE)) or (0, 0)

    def height(self):
        return self.size(self.window)[1]

    def linewatch(self, *words):
        run = subprocess.run([PROGRAM, "--state-dir", self.path("state"), *words], env=self.environment,
                             capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stdout
