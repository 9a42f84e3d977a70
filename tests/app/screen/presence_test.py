#!/usr/bin/env python3
"""Meets the panel on the session bus as other programs do.

usage: presence_test.py LINEWATCH INTROSPECTION

INTROSPECTION is the documented text of the bus object. Runs on a bus of its own, which is the system's bus too: the
test itself is logind there. Every wait is for an event; how long is only limited for a panel that hangs.
"""

import json
import os
import subprocess
import sys
import tempfile
import time
import unittest

PATIENCE = 60  # seconds
# A bus that starts no services, so that the machine's own ones stay out of the test.
BUS_CONFIGURATION = """
<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy context="default">
<allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy></busconfig>
"""

if "LINEWATCH_TEST_FOLDER" not in os.environ:
    with tempfile.TemporaryDirectory(prefix="linewatch-test-") as folder:
        bus = os.path.join(folder, "bus.conf")
        with open(bus, "w", encoding="utf-8") as configuration:
            configuration.write(BUS_CONFIGURATION)
        inherited = {name: value for name, value in os.environ.items()
                     if name not in ("DISPLAY", "WAYLAND_DISPLAY", "LINEWATCH_COMPANION", "XDG_SESSION_ID")}
        sys.exit(subprocess.run(["dbus-run-session", "--config-file=" + bus, "--", sys.executable, "-B",
                                 os.path.abspath(__file__), *sys.argv[1:]],
                                env=dict(inherited, HOME=folder, XDG_RUNTIME_DIR=folder, QT_QPA_PLATFORM="offscreen",
                                         LC_ALL="C.UTF-8", LANGUAGE="en", LINEWATCH_TEST_FOLDER=folder),
                                check=False).returncode)

from gi.repository import Gio, GLib  # noqa: E402: the bindings connect to the bus of the environment

INTROSPECTION = sys.argv.pop()
PROGRAM = sys.argv.pop()
FOLDER = os.environ["LINEWATCH_TEST_FOLDER"]
BUS = Gio.bus_get_sync(Gio.BusType.SESSION)
ID = "org.linewatch.LineWatch"
PATH = "/org/linewatch/LineWatch"
OWN = "org.linewatch.LineWatch1"
APPLICATION = "org.freedesktop.Application"
PROPERTIES = "org.freedesktop.DBus.Properties"
SESSION_PATH = "/org/freedesktop/login1/session/_31"
LOGIND = """
<node>
  <interface name="org.freedesktop.login1.Manager">
    <method name="GetSession"><arg type="s" direction="in"/><arg type="o" direction="out"/></method>
  </interface>
  <interface name="org.freedesktop.login1.Session"><property name="LockedHint" type="b" access="read"/></interface>
</node>
"""
GTFS = {
    "agency.txt": "agency_id,agency_name,agency_url,agency_timezone\na,Lines,http://lines.invalid,UTC\n",
    "routes.txt": "route_id,agency_id,route_short_name,route_type\nu6,a,U6,1\n",
    "trips.txt": "route_id,service_id,trip_id\nu6,s,t\n",
    "stops.txt": "stop_id,stop_name,stop_lat,stop_lon\nb,B,0,0\n",
    "stop_times.txt": "trip_id,arrival_time,departure_time,stop_id,stop_sequence\nt,08:00:00,08:00:00,b,1\n",
    "calendar.txt": "service_id,monday,tuesday,wednesday,thursday,friday,saturday,sunday,start_date,end_date\n"
                    "s,1,1,1,1,1,1,1,20200101,20400101\n",
}


def field(number, content):
    """A field of a protocol buffer: a number, a text or a message."""
    if isinstance(content, int):
        return varint(number << 3) + varint(content)
    content = content.encode() if isinstance(content, str) else content
    return varint(number << 3 | 2) + varint(len(content)) + content


def varint(number):
    encoded = b""
    while number > 127:
        encoded += bytes([number & 127 | 128])
        number >>= 7
    return encoded + bytes([number])


def alerts(*titles):
    """A GTFS-Realtime message with an alert of each title for the line."""
    message = field(1, field(1, "2.0") + field(3, int(time.time())))
    for title in titles:
        alert = field(5, field(2, "u6")) + field(10, field(1, field(1, title)))
        message += field(2, field(1, title) + field(5, alert))
    return message


def write(name, content):
    """Writes the file whole, so that no reader finds half of it."""
    path = os.path.join(FOLDER, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path + "~", "wb") as file:
        file.write(content)
    os.rename(path + "~", path)
    return path


def run_loop_until(condition, what):
    context = GLib.MainContext.default()
    end = time.monotonic() + PATIENCE
    # The end of a process wakes nobody.
    tick = GLib.timeout_add(10, lambda: True)
    while not condition():
        if time.monotonic() > end:
            raise AssertionError("waited in vain for " + what)
        context.iteration(True)
    GLib.source_remove(tick)


def panel_names():
    """The names of all panels, without the id that one of them may have too."""
    names = BUS.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "ListNames", None, None,
                          Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
    return [name for name in names if name.startswith(ID + ".state_")]


def owner_of(name):
    try:
        return BUS.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetNameOwner",
                             GLib.Variant("(s)", (name,)), None, Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
    except GLib.Error:
        return None


class Logind:
    """The part of logind that says whether the session is locked."""

    def __init__(self):
        self.locked = False
        self.reads = []
        manager, session = Gio.DBusNodeInfo.new_for_xml(LOGIND).interfaces
        BUS.register_object("/org/freedesktop/login1", manager, self.find_session, None, None)
        BUS.register_object(SESSION_PATH, session, None, self.read, None)
        Gio.bus_own_name_on_connection(BUS, "org.freedesktop.login1", Gio.BusNameOwnerFlags.NONE, None, None)

    def find_session(self, _connection, _sender, _path, _interface, _method, _arguments, call):
        call.return_value(GLib.Variant("(o)", (SESSION_PATH,)))

    def read(self, *_):
        self.reads.append(self.locked)
        return GLib.Variant("b", self.locked)

    def set_locked(self, locked):
        self.locked = locked
        changes = GLib.Variant("(sa{sv}as)", ("org.freedesktop.login1.Session", {"LockedHint": GLib.Variant("b", locked)}, []))
        BUS.emit_signal(None, SESSION_PATH, PROPERTIES, "PropertiesChanged", changes)


class PresenceTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.logind = Logind()

    def add_feed(self):
        self.alerts = write("alerts.pb", alerts())
        for name, content in GTFS.items():
            write("gtfs/" + name, content.encode())
        self.linewatch("feed", "add", "lines", "--gtfs", os.path.join(FOLDER, "gtfs"), "--alerts", self.alerts)
        self.linewatch("favorites", "add", "U6")

    def start(self, *words, **variables):
        environment = dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=os.environ["DBUS_SESSION_BUS_ADDRESS"], **variables)
        state = [] if variables else ["--state-dir", os.path.join(FOLDER, "state")]
        return subprocess.Popen([PROGRAM, *state, *words], env=environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def end(self, process):
        """Its output, error output and exit status. Answers as logind meanwhile."""
        run_loop_until(lambda: process.poll() is not None, "the end of the program")
        return (*process.communicate(), process.returncode)

    def linewatch(self, *words):
        output, errors, status = self.end(self.start(*words))
        self.assertEqual(status, 0, errors)
        return output

    def call(self, interface, method, arguments=None, path=PATH):
        answer = BUS.call_sync(self.name, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START,
                               PATIENCE * 1000, None)
        return answer.unpack()

    def error_of(self, *call):
        with self.assertRaises(GLib.Error) as caught:
            self.call(*call)
        return Gio.DBusError.get_remote_error(caught.exception).split(".")[-1]

    def start_panel(self):
        """Starts it without its window, and follows its name and properties."""
        self.known = {}
        BUS.signal_subscribe(None, PROPERTIES, "PropertiesChanged", PATH, OWN, Gio.DBusSignalFlags.NONE,
                             lambda *signal: self.known.update(signal[5].unpack()[1]))
        self.panel = self.start("-v", "panel", "--hidden")
        self.addCleanup(self.panel.communicate)
        self.addCleanup(self.panel.kill)
        run_loop_until(lambda: "Document" in self.known, "the first answer")
        [self.name] = panel_names()

    def check_object(self):
        with open(INTROSPECTION, encoding="utf-8") as file:
            documented = file.read()
        self.assertEqual(self.call("org.freedesktop.DBus.Introspectable", "Introspect"), (documented,))
        self.call("org.freedesktop.DBus.Peer", "Ping")
        [everything] = self.call(PROPERTIES, "GetAll", GLib.Variant("(s)", (OWN,)))
        declared = Gio.DBusNodeInfo.new_for_xml(documented).lookup_interface(OWN).properties
        self.assertEqual(set(everything), {each.name for each in declared})
        self.assertEqual(everything, everything | self.known, "signals and answers agree")
        for wrong, error in (((OWN, "Fly"), "UnknownMethod"),
                             ((OWN, "Show", GLib.Variant("(s)", ("now",))), "InvalidArgs"),
                             ((APPLICATION, "ActivateAction", GLib.Variant("(sava{sv})", ("fly", [], {}))), "InvalidArgs"),
                             ((PROPERTIES, "Get", GLib.Variant("(ss)", (OWN, "Speed"))), "UnknownProperty"),
                             ((PROPERTIES, "Set", GLib.Variant("(ssv)", (OWN, "Status", GLib.Variant("s", "")))),
                              "PropertyReadOnly")):
            self.assertEqual(self.error_of(*wrong), error, wrong)

    def check_news(self):
        self.assertEqual((self.known["Status"], self.known["Summary"]), ("allClear", "Good Service"))
        write("alerts.pb", alerts("Signal failure"))
        self.call(OWN, "Refresh")
        run_loop_until(lambda: self.known["Status"] == "incidents", "the incident")
        [incident] = json.loads(self.known["Incidents"])
        self.assertEqual(incident["title"], "Signal failure")
        self.assertEqual(json.loads(self.known["Document"])["incidents"], [incident])
        write("alerts.pb", b"broken")
        self.call(APPLICATION, "ActivateAction", GLib.Variant("(sava{sv})", ("refresh", [], {})))
        run_loop_until(lambda: self.known["Status"] == "unknown", "the failure")
        [feed] = json.loads(self.known["Feeds"])
        self.assertEqual((feed["name"], feed["state"]), ("lines", "unreachable"))
        self.assertIn("alerts.pb: damaged", feed["error"])
        write("alerts.pb", alerts())

    def check_second_start(self):
        """Leaves the window open."""
        self.assertEqual(self.end(self.start("panel", "--hidden")), ("", "", 0))
        output, errors, status = self.end(self.start("panel"))
        self.assertEqual((output, errors, status),
                         ("", "linewatch: the panel is already open, so its window is shown\n", 0))
        _, errors, status = self.end(self.start("panel", "--record", os.path.join(FOLDER, "hour.json")))
        self.assertEqual((errors, status), (f"linewatch: {FOLDER}/hour.json: nothing is recorded, because a panel is "
                                            "already open\n", 2))
        # The widget of the shown window asks, and its answer is told too.
        run_loop_until(lambda: self.known["Status"] == "allClear", "the widget's answer")
        self.call(OWN, "Show")
        self.call(APPLICATION, "Activate", GLib.Variant("(a{sv})", ({"activation-token": GLib.Variant("s", "t")},)))
        self.call(APPLICATION, "Open", GLib.Variant("(asa{sv})", ([], {})))

    def check_language(self):
        """The words follow at once, although the next answer takes a while."""
        os.remove(self.alerts)
        os.mkfifo(self.alerts)
        self.linewatch("settings", "language", "de")
        run_loop_until(lambda: self.known["Summary"] == "Normaler Betrieb", "the other language")
        self.assertEqual(json.loads(self.known["Document"])["summary"], "Normaler Betrieb")
        write("alerts.pb", alerts())

    def check_lock(self):
        """Ends the panel."""
        # The panel asks the second time when it has handled the first answer.
        for _ in range(2):
            asked = len(self.logind.reads)
            self.logind.set_locked(True)
            run_loop_until(lambda: len(self.logind.reads) > asked, "the question for the lock")
        self.panel.terminate()
        _, log, status = self.end(self.panel)
        self.assertEqual(status, 0, log)
        # The panel of each language has a session.
        sessions = json.loads(self.linewatch("analytics", "--json"))["sessions"]
        self.assertEqual([session["wasLocked"] for session in sessions], [False, True])

    def test_one_panel_that_others_read_and_call(self):
        self.add_feed()
        self.start_panel()
        run_loop_until(lambda: self.logind.reads, "the first question for the lock")
        self.check_object()
        self.check_news()
        self.check_second_start()
        self.check_language()
        self.check_lock()

    def test_panels_of_two_environments(self):
        owners = []
        for home in ("one", "two"):
            panel = self.start("panel", "--hidden", XDG_DATA_HOME=os.path.join(FOLDER, home))
            self.addCleanup(panel.communicate)
            self.addCleanup(panel.kill)
            run_loop_until(lambda: len(panel_names()) > len(owners), "the name of the panel")
            [owner] = {owner_of(name) for name in panel_names()} - {owner for owner, _ in owners}
            owners.append((owner, panel))
        run_loop_until(lambda: owner_of(ID), "the id")
        self.assertEqual(owner_of(ID), owners[0][0])
        owners[0][1].terminate()
        run_loop_until(lambda: owner_of(ID) == owners[1][0], "the panel that waits for the id")


if __name__ == "__main__":
    unittest.main()
