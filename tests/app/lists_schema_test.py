#!/usr/bin/env python3
"""lists_schema_test.py PROGRAM SCHEMA: validates what lines, favorites, feed, feed find and settings print with --json, and
checks that the lists fit 32 columns, that words that begin with a hyphen or hold blanks work, and that misspelt ones get a
suggestion."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unicodedata
import unittest

import jsonschema

PROGRAM, SCHEMA = sys.argv[1], sys.argv[2]
NOW = "2024-03-18T12:40:00Z"
ALERTS = b"\x0a\x0d\x0a\x032.0\x10\x00\x18\x80\xea\xe0\xaf\x06"
ROUTES = ("agency_id,route_id,route_short_name,route_long_name,route_type\n"
          "T,-r1,1,Harbour Line,3\nT,show,2,山手線の内回りと外回り,0\nT,r3,3,Zoo,1\n")


def width(text):
    return sum(2 if unicodedata.east_asian_width(character) in "WF" else 1 for character in text)


class ListsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        schema = json.loads(pathlib.Path(SCHEMA).read_text(encoding="utf-8"))
        jsonschema.Draft202012Validator.check_schema(schema)
        cls.validator = jsonschema.Draft202012Validator(schema)

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="linewatch-lists-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "gtfs").mkdir()
        (self.folder / "gtfs" / "routes.txt").write_text(ROUTES, encoding="utf-8")
        (self.folder / "gtfs" / "agency.txt").write_text("agency_id,agency_name\nT,Town\n", encoding="utf-8")
        (self.folder / "alerts.pb").write_bytes(ALERTS)

    def program(self, *words, status=0, **variables):
        environment = dict(os.environ, HOME=str(self.folder), LC_ALL="C.UTF-8", XDG_RUNTIME_DIR=str(self.folder),
                           **variables)
        run = subprocess.run([PROGRAM, "--now", NOW, "--state-dir", str(self.folder / "state"), *words], env=environment,
                             capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(run.returncode, status, run.stderr)
        return run.stdout, run.stderr

    def document(self, *words, **how):
        document = json.loads(self.program(*words, "--json", **how)[0])
        self.validator.validate(document)
        return document

    def add_feed(self, name):
        self.program("feed", "add", "--gtfs", str(self.folder / "gtfs"), "--alerts", str(self.folder / "alerts.pb"), "--",
                     name)

    def test_documents(self):
        self.assertEqual(self.document("feed")["feeds"], [])
        self.assertGreater(len(self.document("lines")["lines"]), 10)
        self.assertEqual({favorite["feed"] for favorite in self.document("favorites")["favorites"]}, {"sample"})
        self.add_feed("My Town")
        self.program("favorites", "add", "r3", "--direction", "1")
        self.program("favorites", "add", "--stops", "none", "--", "-r1")
        feed, = self.document("feed", "list")["feeds"]
        self.assertEqual((feed["name"], feed["lines"]), ("My Town", 3))
        self.assertFalse(feed["alerts"]["hasKey"])
        self.assertEqual([line["route"] for line in self.document("lines", "zoo")["lines"]], ["r3"])
        favorites = self.document("favorites")["favorites"]
        self.assertEqual([(favorite["route"], favorite["stops"], favorite["direction"]) for favorite in favorites],
                         [("r3", "all", 1), ("-r1", "none", None)])
        (self.folder / "gtfs" / "routes.txt").write_text("broken", encoding="utf-8")
        self.assertTrue(self.document("lines", status=2)["error"])
        self.assertEqual({favorite["line"] for favorite in self.document("favorites")["favorites"]}, {None})
        self.assertIsNone(self.document("feed")["feeds"][0]["lines"])
        self.program("feed", "remove", "My Town", "--json", status=2)

    def test_catalogue(self):
        catalogue = self.folder / "feeds.csv"
        catalogue.write_text("id,data_type,entity_type,provider,static_reference,urls.direct_download\n"
                             "t,gtfs,,Harbour Ferries,,https://ferries.example/t.zip\n"
                             "a,gtfs_rt,sa,Harbour Ferries,t,https://ferries.example/a.pb\n", encoding="utf-8")
        found = self.document("feed", "find", "ferries", "--catalogue", str(catalogue))
        self.assertEqual(found["hits"][0]["timetables"][0]["id"], "t")
        self.assertEqual(self.document("feed", "find", "x", "--catalogue", str(catalogue), status=1)["hits"], [])

    def test_settings(self):
        self.program("settings", "on-top", "on")
        self.assertEqual(self.document("settings", "on-top")["key"], "on-top")
        settings = {setting["key"]: setting for setting in self.document("settings")["settings"]}
        self.assertEqual((settings["on-top"]["value"], settings["on-top"]["source"]), (True, "file"))
        (self.folder / "state" / "settings.toml").write_text("on-top = 1\n", encoding="utf-8")
        document = self.document("settings")
        self.assertEqual(len(document["faults"]), 1)
        (self.folder / "state" / "settings.toml").write_text("on-top\n", encoding="utf-8")
        _, errors = self.program("settings", "refresh", "1m", status=2)
        self.assertEqual(errors.count("settings.toml:1:"), 1, errors)
        self.assertIn("the file cannot be read", self.program("settings", status=2)[0])

    def test_everything_fits_32_columns(self):
        self.add_feed("-x 山手線 of the whole world")
        self.program("favorites", "add", "--stops", "none", "--direction", "1", "--", "-r1")
        self.program("favorites", "add", "--", "show")
        for words in (["lines"], ["favorites"], ["feed"], ["settings"], ["show"], ["show", "--expanded"], ["analytics"],
                      ["show", "--upcoming"]):
            for line in self.program(*words, COLUMNS="32")[0].splitlines():
                self.assertLessEqual(width(line), 32, f"{words}: {line}")

    def test_words_with_hyphens_and_blanks(self):
        for name in ("-x", "show", "two words", "--"):
            self.add_feed(name)
            self.program("feed", "remove", "--", name)
        self.add_feed("two words")
        for name in ("-r1", "show", "Harbour Line", "two words:-r1", "two words:Harbour Line"):
            self.program("favorites", "add", "--", name)
            self.program("favorites", "remove", "--", name)
        self.assertIn("Harbour", self.program("lines", "--", "harbour", "line")[0])
        self.program("settings", "companion", "--", "-x y")
        self.assertEqual(self.program("settings", "companion")[0], "-x y\n")

    def test_suggestions(self):
        self.add_feed("metro")
        for words, meant in ((["feeds"], "feed"), (["shwo"], "show"), (["feed", "lst"], "list"), (["fede", "list"], "feed"),
                             (["show", "--jsno"], "--json"), (["lines", "--statedir=x"], "--state-dir"),
                             (["settings", "txet-size"], "text-size"), (["feed", "remove", "metor"], "metro"),
                             (["favorites", "add", "Habrour Line"], "metro:-r1")):
            self.assertIn(f"did you mean {meant}", self.program(*words, status=2)[1])
        self.assertNotIn("did you mean", self.program("xyzzy", status=2)[1])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
