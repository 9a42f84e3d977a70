#!/usr/bin/env python3
"""Leads a new user from nothing to three lines of a city in a catalogue, through an X server of its own: with the mouse
alone, with the keyboard alone, and in a right-to-left language.

usage: setup_input_test.py LINEWATCH
"""

import http.server
import io
import threading
import time
import unittest
import zipfile

from panel_desk import PanelDesk, contents

MOST_CLICKS = 12
LINES = ["11", "12", "13", "14"]
COLUMNS = ("id,data_type,entity_type,location.country_code,location.municipality,provider,static_reference,"
           "urls.direct_download,status")


def field(number, content):
    """A field of a protobuf message: a text, a message, or a number."""
    if isinstance(content, int):
        return bytes([number << 3]) + varint(content)
    encoded = content.encode() if isinstance(content, str) else content
    return bytes([number << 3 | 2]) + varint(len(encoded)) + encoded


def varint(number):
    low, high = number & 0x7F, number >> 7
    return bytes([low | 0x80]) + varint(high) if high else bytes([low])


def alerts():
    """One alert about line 12."""
    alert = field(5, field(2, "12")) + field(10, field(1, field(1, "Works at the harbour")))
    header = field(1, "2.0") + field(3, int(time.time()))
    return field(1, header) + field(2, field(1, "works") + field(5, alert))


def timetable():
    routes = "".join(f"{line},A,{line},Harbour to stop {line},3\n" for line in LINES)
    packed = io.BytesIO()
    with zipfile.ZipFile(packed, "w") as archive:
        archive.writestr("agency.txt", "agency_id,agency_name\nA,Harbour Buses\n")
        archive.writestr("routes.txt", "route_id,agency_id,route_short_name,route_long_name,route_type\n" + routes)
        archive.writestr("trips.txt", "route_id,trip_id,direction_id,trip_headsign\n11,o,0,Lighthouse\n11,b,1,Harbour\n")
        archive.writestr("stop_times.txt", "trip_id,stop_sequence,stop_id\no,1,h\no,2,m\no,3,l\nb,1,l\nb,2,h\n")
        archive.writestr("stops.txt", "stop_id,stop_name\nh,Harbour\nm,Main Street\nl,Lighthouse\n")
    return packed.getvalue()


class SetupInputTest(PanelDesk):
    def setUp(self):
        super().setUp()
        self.clicks = 0
        self.documents = documents = {"/alerts.pb": alerts(), "/gtfs.zip": timetable()}

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                body = documents.get(self.path)
                self.send_response(200 if body else 404)
                self.send_header("Content-Length", str(len(body or b"")))
                self.end_headers()
                self.wfile.write(body or b"")

            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.address = f"http://127.0.0.1:{server.server_port}"
        documents["/feeds.csv"] = (f"{COLUMNS}\n"
                                   f"t-1,gtfs,,US,Harbourton,Harbour Buses,,{self.address}/gtfs.zip,active\n"
                                   f"a-1,gtfs_rt,sa,US,Harbourton,Harbour Buses,t-1,{self.address}/alerts.pb,active\n").encode()

    def start(self, language):
        self.environment["LANG"] = f"{language}_US.UTF-8"
        self.is_mirrored = language == "ar"
        self.launch_panel("--catalogue", self.address + "/feeds.csv")

    def says(self, words):
        self.wait_for(words, lambda: words in contents(self.path("log")))

    def click(self, window, leading=None, trailing=None, top=None, bottom=None):
        """Clicks at these distances from the window's edges, in pixels."""
        width, height = self.size(window)
        x = leading if leading is not None else width - trailing
        y = top if top is not None else height - bottom
        self.clicks += 1
        self.xdotool("mousemove", "--window", window, str(width - x if self.is_mirrored else x), str(y), "click", "1")

    def setup_window(self):
        """The visible window that is not the panel."""
        windows = self.xdotool("search", "--onlyvisible", "--name", ".").split()
        return next((window for window in windows if window != self.window), None)

    def title(self, window):
        return self.xdotool("getwindowname", window)

    def wait_for_next_page(self, window, before):
        self.wait_for("the next page", lambda: self.title(window) not in ("", before))
        return self.title(window)

    def favorites(self):
        return [line for line in LINES if f"Harbour to stop {line}" in self.linewatch("favorites")]

    def expect_three_lines(self, lines):
        self.wait_for("the end of the set-up", lambda: not self.setup_window())
        self.assertEqual(self.favorites(), lines)
        self.says("Received 3 line items")
        self.assertLessEqual(self.clicks, MOST_CLICKS)

    def use_the_mouse(self):
        self.click(self.window, leading=90, bottom=32)
        setup = self.wait_for("the set-up", self.setup_window)
        self.says("The set-up lists a catalogue of 2 feeds")
        page = self.title(setup)
        self.click(setup, leading=200, top=170)
        page = self.wait_for_next_page(setup, page)
        self.click(setup, trailing=45, bottom=35)
        page = self.wait_for_next_page(setup, page)
        self.says("The lines of 1 feeds are listed")
        for row in range(3):
            self.click(setup, leading=200, top=195 + 52 * row)
        self.wait_for("three favourites", lambda: len(self.favorites()) == 3)
        self.click(setup, trailing=45, bottom=35)
        self.expect_three_lines(LINES[:3])

    def test_with_the_mouse_alone(self):
        self.start("en")
        self.use_the_mouse()

    def test_from_right_to_left(self):
        self.start("ar")
        self.use_the_mouse()

    def test_with_the_keyboard_alone(self):
        self.start("en")
        size = self.size(self.window)
        self.keys("ctrl+plus")
        self.wait_for("a card of larger texts", lambda: self.size(self.window)[0] > size[0])
        self.keys("ctrl+0")
        self.wait_for("a card of the usual texts", lambda: self.size(self.window) == size)
        self.keys("Return")
        setup = self.wait_for("the set-up", self.setup_window)
        self.says("The set-up lists a catalogue of 2 feeds")
        self.focus(setup)
        page = self.title(setup)
        self.xdotool("type", "harb")
        self.keys("Down", "Return")
        page = self.wait_for_next_page(setup, page)
        self.keys("Escape")
        page = self.wait_for_next_page(setup, page)
        self.keys("Down", "Return")
        page = self.wait_for_next_page(setup, page)
        self.keys("Return")
        self.wait_for_next_page(setup, page)
        self.says("The lines of 1 feeds are listed")
        self.keys("Down", "space", "Down", "Down", "space", "Down", "space", "Tab", "Tab", "Return")
        self.expect_three_lines([LINES[0], LINES[2], LINES[3]])


if __name__ == "__main__":
    unittest.main()
