#!/usr/bin/env python3
"""show_schema_test.py PROGRAM SCHEMA: runs `show --json` in many situations and validates each document.

Beyond the schema it checks that references between parts of a document lead somewhere.
"""

import base64
import json
import os
import subprocess
import sys
import tempfile
import unittest

import jsonschema

PROGRAM, SCHEMA = sys.argv[1], sys.argv[2]
NOW, NOW_SECONDS = "2026-11-24T08:00:00Z", 1795507200
DAY = 86400
LENGTH_DELIMITED = 2
ROUTES = ("agency_id,route_id,route_short_name,route_long_name,route_type,route_color\n"
          "T,r1,1,Harbour,3,0055AA\nT,r2,2,Zoo,0,AA0000\nT,r3,3,Hills,1,\n")


def varint(value):
    encoded = bytearray()
    while value > 0x7F:
        encoded.append(value & 0x7F | 0x80)
        value >>= 7
    return bytes(encoded + bytes([value]))


def number(field, value):
    return varint(field << 3) + varint(value)


def message(field, *parts):
    content = b"".join(parts)
    return varint(field << 3 | LENGTH_DELIMITED) + varint(len(content)) + content


def text(field, value):
    return message(field, value.encode())


def translated(field, value):
    return message(field, message(1, text(1, value)))


def alert(name, routes, *parts):
    selectors = [message(5, text(2, route)) for route in routes]
    return message(2, text(1, name), message(5, *parts, *selectors, translated(10, name)))


def period(start, end):
    return message(1, number(1, start), number(2, end))


def feed(*entities, written=NOW_SECONDS - 120):
    return message(1, text(1, "2.0"), number(3, written)) + b"".join(entities)


class ShowSchema(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        with open(SCHEMA, encoding="utf-8") as file:
            schema = json.load(file)
        jsonschema.Draft202012Validator.check_schema(schema)
        self.validator = jsonschema.Draft202012Validator(schema)
        self.write("gtfs/agency.txt", b"agency_id,agency_name,agency_url,agency_timezone\nT,Town,http://localhost,UTC\n")
        self.write("gtfs/routes.txt", ROUTES.encode())
        self.write("gtfs/stops.txt", b"stop_id,stop_name\ns1,Market\n")

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def write(self, name, contents):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "wb") as file:
            file.write(contents)

    def run_program(self, *words):
        environment = {"TZ": "UTC", "LANG": "en_US.UTF-8", "HOME": self.path("home")}
        return subprocess.run([PROGRAM, "--state-dir", self.path("state"), "--now", NOW, *words],
                              capture_output=True, env=environment, check=False)

    def shown(self, *words, status=0):
        """The document of `show --json`, after all checks that hold for every document."""
        run = self.run_program(*words, "show", "--json")
        self.assertEqual(run.returncode, status, run.stderr)
        document = json.loads(run.stdout)
        self.validator.validate(document)
        self.assertEqual(document["generated"], NOW)
        known = {incident["id"] for incident in document["incidents"]}
        listed = {incident for line in document["lines"] for incident in line["incidents"]}
        self.assertEqual(known, listed)
        named = {info["record"] for row in [document["summaryItem"] or {}, *document["expandedItems"]]
                 for info in ((row.get("openable") or {}).get("userInfo") or {}).values() if isinstance(info, dict)}
        self.assertEqual(named, set(range(len(document["records"]))))
        for record in document["records"]:
            base64.b64decode(record, validate=True)
        self.assertFalse(any(0x7F <= ord(character) < 0xA0 for character in run.stdout.decode()))
        return document

    def shown_of(self, alerts, *routes, status=0):
        self.write("alerts.pb", alerts)
        favorites = [word for route in routes for word in ("--favorite", route)]
        return self.shown("--gtfs", self.path("gtfs"), "--alerts", self.path("alerts.pb"), *favorites, status=status)

    def test_sample_city(self):
        document = self.shown()
        self.assertEqual([state["name"] for state in document["feeds"]], ["sample"])
        self.assertGreater(len(document["lines"]), 3)

    def test_all_fields_of_incidents_and_lines(self):
        stops = message(5, text(2, "r1"), text(5, "s1"), number(6, 1))
        closed = alert("Closed", ["r1"], stops, number(6, 4), number(7, 1), number(14, 4),
                       period(NOW_SECONDS - DAY, NOW_SECONDS + DAY), translated(8, "http://localhost/x"))
        document = self.shown_of(feed(closed, alert("Sh\u0080ared\u007f", ["r1", "r2"])), "r1", "r2", "r3")
        one, two, three = document["lines"]
        self.assertEqual([line["status"] for line in document["lines"]], ["incidents", "incidents", "good"])
        self.assertEqual((one["feed"], one["route"], one["name"], one["agency"]), ("given", "r1", "1", "Town"))
        self.assertEqual(two["incidents"], one["incidents"][1:])
        incident = document["incidents"][0]
        self.assertEqual([incident[key] for key in ("title", "blocking", "severity", "effect", "cause", "url")],
                         ["Closed", True, "severe", "noService", "strike", "http://localhost/x"])
        self.assertEqual(incident["periods"], [{"start": "2026-11-23T08:00:00Z", "end": "2026-11-25T08:00:00Z"}])
        self.assertEqual(incident["stops"], [{"id": "s1", "name": "Market"}])
        self.assertEqual(incident["directions"], [1])
        self.assertEqual(document["feeds"], [{"name": "given", "state": "fresh", "since": None, "age": 120, "error": None}])

    def test_upcoming(self):
        document = self.shown_of(feed(alert("Later", ["r1"], period(NOW_SECONDS + 2 * DAY, NOW_SECONDS + 3 * DAY)),
                                      alert("Soon", ["r1", "r2"], period(NOW_SECONDS + DAY, 0)),
                                      alert("Far", ["r2"], period(NOW_SECONDS + 8 * DAY, 0)),
                                      alert("Over", ["r2"], period(1, NOW_SECONDS - 1))), "r1", "r2")
        self.assertEqual([incident["title"] for incident in document["upcoming"]], ["Soon", "Later"])
        self.assertEqual(document["upcoming"][0]["lines"], [line["id"] for line in document["lines"]])
        self.assertEqual([line["status"] for line in document["lines"]], ["good", "good"])

    def test_broken_alerts_make_the_lines_unknown(self):
        for alerts in (b"", b"\x0a\x05", feed(alert("Old", ["r1"]), written=NOW_SECONDS - 2 * DAY),
                       feed(alert("Elsewhere", ["x1", "x2"]))):
            document = self.shown_of(alerts, "r1", status=1)
            self.assertEqual([line["status"] for line in document["lines"]], ["unknown"])
            self.assertTrue(document["feeds"][0]["error"])
            self.assertEqual(document["incidents"], [])

    def test_no_favourites_and_unknown_favourites(self):
        self.assertEqual(self.shown_of(feed())["lines"], [])
        document = self.shown_of(feed(), "r1", "gone", status=2)
        self.assertEqual([line["status"] for line in document["lines"]], ["good", "unknown"])

    def test_one_of_two_feeds_is_unreachable(self):
        self.write("alerts.pb", feed(alert("Fog", ["r1"])))
        for name in ("here", "lost"):
            self.write(f"{name}.pb", feed())
            self.run_program("feed", "add", name, "--gtfs", self.path("gtfs"), "--alerts", self.path(f"{name}.pb"))
            self.run_program("favorites", "add", f"{name}:r1")
        os.remove(self.path("lost.pb"))
        document = self.shown()
        self.assertEqual([state["state"] for state in document["feeds"]], ["fresh", "unreachable"])
        self.assertEqual([line["status"] for line in document["lines"]], ["good", "unknown"])

    def test_size_is_in_proportion_to_the_incidents(self):
        def size(count):
            document = self.shown_of(feed(*(alert(f"Alert {i}", ["r1"]) for i in range(count))), "r1")
            self.assertEqual(len(document["records"]), 2)  # the line's and the summary's
            return len(json.dumps(document))
        self.assertLess(size(2000), 2.2 * size(1000))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
