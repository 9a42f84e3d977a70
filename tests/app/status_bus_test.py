#!/usr/bin/env python3
"""status_bus_test.py PROGRAM SCHEMA: status asks a panel on the session bus instead of fetching, follows its changes, and
fetches by itself when the panel ends. The bus and the panel are the test's own. Its document fits the schema."""

import json
import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

import jsonschema
from gi.repository import Gio, GLib

PROGRAM = sys.argv[1]
SCHEMA = json.loads(pathlib.Path(sys.argv[2]).read_text(encoding="utf-8"))
INTERFACE = "org.linewatch.LineWatch1"
PATH = "/org/linewatch/LineWatch"
INTROSPECTION = f"""<node><interface name="{INTERFACE}">
<property name="Document" type="s" access="read"/><method name="Refresh"/></interface></node>"""
NOW = "2026-11-24T08:00:00Z"
SAMPLE_CITY = "A made-up city: 6 lines with advisories\n"


def bus_name(folder):
    value = 0xCBF29CE484222325
    for byte in os.path.realpath(folder).encode():
        value = ((value ^ byte) * 0x100000001B3) % 2**64
    return f"org.linewatch.LineWatch.state_{value:016x}"


def document(title):
    return json.dumps({
        "version": 1, "state": "incidents", "summary": "", "error": None, "received": None, "sampleCity": False,
        "lines": [{"id": "1", "name": "U6", "agency": None, "status": "incidents", "incidents": ["7"]}],
        "incidents": [{"id": "7", "title": title, "summary": None, "blocking": False, "severity": "info"}],
        "unknownCount": 0, "unknownLines": []})


class Panel:
    """A panel on the bus, with the document that the test gives it."""

    def __init__(self, address, name):
        self.document = "{}"
        self.refreshes = 0
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTROSPECTION).interfaces[0], self.call,
                                 lambda *_: GLib.Variant("s", self.document), None)
        self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                           GLib.Variant("(su)", (name, 0)), None, Gio.DBusCallFlags.NONE, -1, None)

    def call(self, _bus, _sender, _path, _interface, _method, _arguments, invocation):
        self.refreshes += 1
        invocation.return_value(None)
        self.change("Refreshed")

    def change(self, title):
        self.document = document(title)
        changed = GLib.Variant("(sa{sv}as)", (INTERFACE, {"Document": GLib.Variant("s", self.document)}, []))
        self.bus.emit_signal(None, PATH, "org.freedesktop.DBus.Properties", "PropertiesChanged", changed)

    def end(self):
        self.bus.close_sync(None)


class StatusBusTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="linewatch-bus-")
        self.addCleanup(folder.cleanup)
        self.state = os.path.join(folder.name, "state")
        daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"], stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(lambda: (daemon.kill(), daemon.communicate()))
        self.address = daemon.stdout.readline().strip()
        self.environment = {"HOME": folder.name, "LC_ALL": "en_US.UTF-8", "DBUS_SESSION_BUS_ADDRESS": self.address}

    def status(self, *words):
        return subprocess.run([PROGRAM, "--state-dir", self.state, "status", *words], env=self.environment, text=True,
                              capture_output=True, timeout=60, check=True).stdout

    def test_asks_the_panel_that_runs(self):
        self.assertEqual(self.status(), SAMPLE_CITY)
        panel = Panel(self.address, bus_name(self.state))
        self.assertEqual(self.status(), SAMPLE_CITY, "before the first answer the panel knows nothing")
        panel.document = document("Strike")
        self.assertEqual(self.status(), "U6: Strike\n")
        for text in (panel.document, self.status("--format", "json"), self.status("--format", "json", "--now", NOW)):
            jsonschema.validate(json.loads(text), SCHEMA)
        panel.document = "not JSON"
        self.assertEqual(self.status(), SAMPLE_CITY)
        panel.end()

    def test_does_not_wait_for_a_bus_that_hangs(self):
        """Without a limit it would outlast this test's patience."""
        with socket.socket(socket.AF_UNIX) as bus:
            bus.bind(self.state + ".bus")
            bus.listen()
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + self.state + ".bus"
            self.assertEqual(self.status(), SAMPLE_CITY)

    def test_follows_the_panel(self):
        panel = Panel(self.address, bus_name(self.state))
        panel.document = document("Strike")
        with subprocess.Popen([PROGRAM, "--state-dir", self.state, "status", "--watch"], env=self.environment, text=True,
                              stdout=subprocess.PIPE) as watch:
            self.addCleanup(watch.kill)
            self.assertEqual(watch.stdout.readline(), "U6: Strike\n")
            panel.change("Fog")
            self.assertEqual(watch.stdout.readline(), "U6: Fog\n")
            watch.send_signal(subprocess.signal.SIGUSR1)
            self.assertEqual(watch.stdout.readline(), "U6: Refreshed\n")
            self.assertEqual(panel.refreshes, 1)
            panel.end()
            self.assertEqual(watch.stdout.readline(), SAMPLE_CITY, "now it fetches by itself")
            watch.terminate()
            self.assertEqual(watch.wait(60), 0)


if __name__ == "__main__":
    threading.Thread(target=GLib.MainLoop().run, daemon=True).start()
    unittest.main(argv=sys.argv[:1])
