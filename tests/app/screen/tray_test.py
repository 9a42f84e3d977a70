#!/usr/bin/env python3
"""Uses the panel from the tray and by its notifications.

usage: tray_test.py LINEWATCH CITY MAKE_ALERTS

Runs on an X server and a session bus of its own, with a tray and a notification server of its own. Every wait is for a
call or a signal; how long is only limited for a panel that hangs.
"""

import importlib.machinery
import importlib.util
import json
import os
import subprocess
import sys
import tempfile
import time
import unittest

PATIENCE = 60  # seconds


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
        environment = dict(os.environ, HOME=folder, XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=os.path.join(folder, "config"),
                           DISPLAY=display, QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8", LINEWATCH_TEST_FOLDER=folder)
        for name in ("WAYLAND_DISPLAY", "LINEWATCH_COMPANION", "LANGUAGE"):
            environment.pop(name, None)
        command = ["dbus-run-session", "--", sys.executable, "-B", os.path.abspath(__file__), *sys.argv[1:]]
        status = subprocess.run(command, env=environment, check=False).returncode
    server.terminate()
    server.wait()
    return status


if "LINEWATCH_TEST_FOLDER" not in os.environ:
    sys.exit(run_on_own_buses())

from gi.repository import Gio, GLib  # noqa: E402: the bindings connect to the bus of the environment

MAKE_ALERTS = sys.argv.pop()
CITY = sys.argv.pop()
PROGRAM = sys.argv.pop()
FOLDER = os.environ["LINEWATCH_TEST_FOLDER"]
STATE = os.path.join(FOLDER, "state")

DOUBLES = Gio.DBusNodeInfo.new_for_xml("""<node>
  <interface name="org.kde.StatusNotifierWatcher">
    <method name="RegisterStatusNotifierItem"><arg name="service" type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg name="service" type="s" direction="in"/></method>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  </interface>
  <interface name="org.freedesktop.Notifications">
    <method name="GetCapabilities"><arg type="as" direction="out"/></method>
    <method name="Notify">
      <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
      <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
    </method>
    <method name="CloseNotification"><arg type="u" direction="in"/></method>
    <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
  </interface>
</node>""")


def load_alert_maker():
    loader = importlib.machinery.SourceFileLoader("make_alerts", MAKE_ALERTS)
    spec = importlib.util.spec_from_loader("make_alerts", loader)
    module = importlib.util.module_from_spec(spec)
    loader.exec_module(module)
    return module


class Desktop:
    """The tray and the notification server of the test. The tray comes later."""

    def __init__(self):
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.items = []
        self.notifications = []
        self.tray = None
        properties = {"IsStatusNotifierHostRegistered": GLib.Variant("b", True),
                      "ProtocolVersion": GLib.Variant("i", 0),
                      "RegisteredStatusNotifierItems": GLib.Variant("as", [])}
        for path, interface, answer in (("/StatusNotifierWatcher", DOUBLES.interfaces[0], self.watch),
                                        ("/org/freedesktop/Notifications", DOUBLES.interfaces[1], self.show)):
            self.bus.register_object(path, interface, answer, lambda *names: properties[names[4]], None)
            if answer == self.show:
                Gio.bus_own_name_on_connection(self.bus, interface.name, 0, None, None)

    def start_tray(self):
        self.tray = Gio.bus_own_name_on_connection(self.bus, DOUBLES.interfaces[0].name, 0, None, None)

    def end_tray(self):
        Gio.bus_unown_name(self.tray)

    def watch(self, _bus, sender, _path, _interface, method, arguments, invocation):
        if method == "RegisterStatusNotifierItem":
            self.items.append((sender, "/StatusNotifierItem"))
        invocation.return_value(None)

    def show(self, _bus, _sender, _path, _interface, method, arguments, invocation):
        if method == "GetCapabilities":
            return invocation.return_value(GLib.Variant("(as)", (["body", "actions"],)))
        if method != "Notify":
            return invocation.return_value(None)
        self.notifications.append(arguments.unpack())
        return invocation.return_value(GLib.Variant("(u)", (len(self.notifications),)))

    def invoke(self, number, action):
        self.bus.emit_signal(None, "/org/freedesktop/Notifications", "org.freedesktop.Notifications", "ActionInvoked",
                             GLib.Variant("(us)", (number, action)))

    def call(self, name, path, interface, method, arguments=None):
        answer = self.bus.call_sync(name, path, interface, method, arguments, None, 0, PATIENCE * 1000)
        return answer.unpack()

    def item(self, property_name):
        name, path = self.items[-1]
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get",
                         GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", property_name)))[0]

    def click_item(self):
        name, path = self.items[-1]
        self.call(name, path, "org.kde.StatusNotifierItem", "Activate", GLib.Variant("(ii)", (0, 0)))

    def menu(self):
        """The menu's entries: label to id."""
        name, path = self.items[-1][0], self.item("Menu")
        _, (_, _, children) = self.call(name, path, "com.canonical.dbusmenu", "GetLayout",
                                        GLib.Variant("(iias)", (0, -1, [])))
        return {entry[1].get("label", ""): entry[0] for entry in children}

    def choose(self, label):
        self.call(self.items[-1][0], self.item("Menu"), "com.canonical.dbusmenu", "Event",
                  GLib.Variant("(isvu)", (self.menu()[label], "clicked", GLib.Variant("s", ""), 0)))


class TrayTest(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.alerts = os.path.join(FOLDER, "alerts.pb")
        self.make_alerts = load_alert_maker()
        self.write_alerts()
        self.run_command("feed", "add", "City", "--gtfs", os.path.join(CITY, "gtfs"), "--alerts", self.alerts)
        self.run_command("favorites", "add", "M1", "L1")
        self.run_command("notify", "M1", "on")
        self.run_command("settings", "tray", "keep")
        self.start_panel()

    def start_panel(self, *options):
        self.panel = subprocess.Popen([PROGRAM, "--state-dir", STATE, "--locale", "en", "panel", *options],
                                      stdin=subprocess.DEVNULL)
        self.addCleanup(self.panel.wait)
        self.addCleanup(self.panel.kill)

    def write_alerts(self, *titles):
        alerts = [{"id": title, "about": [{"route": "M1"}], "header": {"en": title}} for title in titles]
        with open(self.alerts + ".new", "wb") as file:
            file.write(self.make_alerts.feed({"version": "2.0", "alerts": alerts}))
        os.replace(self.alerts + ".new", self.alerts)

    def run_command(self, *words):
        return subprocess.run([PROGRAM, "--state-dir", STATE, "--locale", "en", *words], check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def wait_for(self, what, condition):
        """Handles calls until the condition holds; returns its result."""
        end = time.monotonic() + PATIENCE
        GLib.timeout_add(20, lambda: time.monotonic() < end)
        while time.monotonic() < end:
            try:
                if result := condition():
                    return result
            except GLib.Error:
                pass  # The panel is not there yet.
            GLib.MainContext.default().iteration(True)
        raise AssertionError(f"waited in vain for {what}")

    def tooltip(self):
        return self.desktop.item("ToolTip")[2]

    def windows(self, name="LineWatch"):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name], check=False, text=True,
                               stdout=subprocess.PIPE)
        return found.stdout.split()

    def test_lives_in_the_tray_and_notifies(self):
        desktop = self.desktop
        window = self.wait_for("the window", self.windows)[0]
        desktop.start_tray()
        self.wait_for("the icon", lambda: desktop.items)
        self.wait_for("good news", lambda: "Good Service" in self.tooltip())
        clear = desktop.item("IconPixmap")

        # The window is closed, and the panel goes on watching.
        subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "ctrl+w"], check=True)
        self.wait_for("the end of the window", lambda: not self.windows())
        self.write_alerts("Fire & smoke")
        desktop.choose("Update Now")
        self.wait_for("a notification", lambda: desktop.notifications)
        self.assertEqual(desktop.notifications[0][3], "M1: Fire & smoke")
        self.assertEqual(desktop.notifications[0][1], 0)
        self.assertIn("M1: Fire", self.tooltip())
        self.assertNotEqual(desktop.item("IconPixmap"), clear)

        # A muted incident is silent, but its row stays.
        desktop.invoke(1, "mute")
        self.wait_for("the mute", lambda: "Fire" in self.run_command("notify"))
        self.write_alerts("Fire & smoke", "Strike")
        desktop.choose("Update Now")
        self.wait_for("another notification", lambda: len(desktop.notifications) == 2)
        self.assertEqual(desktop.notifications[1][3:5], ("M1: Strike", ""))
        self.assertIn("Fire", json.dumps(json.loads(self.run_command("show", "--json", "--expanded"))))

        desktop.invoke(2, "details")
        self.wait_for("the details", lambda: self.windows("Advisor"))
        desktop.click_item()
        self.wait_for("the window again", self.windows)
        desktop.click_item()
        self.wait_for("the hidden window", lambda: not self.windows())

        # The next panel knows the notification of the first one, and appears when the tray ends.
        desktop.choose("Quit")
        self.assertEqual(self.panel.wait(PATIENCE), 0)
        self.start_panel("--hidden")
        self.wait_for("the icon of the hidden panel", lambda: len(desktop.items) == 2)
        # Until the panel has read what the first one has shown.
        self.wait_for("the mute of the strike",
                      lambda: desktop.invoke(2, "mute") or "Strike" in self.run_command("notify"))
        desktop.end_tray()
        self.wait_for("the window without a tray", self.windows)
        desktop.start_tray()
        self.wait_for("the icon again", lambda: len(desktop.items) == 3)
        desktop.choose("Quit")
        self.assertEqual(self.panel.wait(PATIENCE), 0)

        # A panel that must not stay in the tray ends with its window, although it has an icon.
        self.run_command("settings", "tray", "quit")
        self.start_panel()
        self.wait_for("the icon of the last panel", lambda: len(desktop.items) == 4)
        window = self.wait_for("the window of the last panel", self.windows)[0]
        subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "ctrl+w"], check=True)
        self.wait_for("the end of the panel", lambda: self.panel.poll() is not None)
        self.assertEqual(self.panel.returncode, 0)


if __name__ == "__main__":
    unittest.main()
