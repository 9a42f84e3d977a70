"""Pictures of windows on an X server that keeps its pixels in a file (Xvfb -fbdir)."""

import os
import re
import struct
import subprocess
import time
import zlib

PATIENCE = 60  # seconds
REST = 1.0  # seconds for which a window must look the same, so that fades have ended


def wait_for(what, condition):
    """The result of `condition` once that is true."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        if result := condition():
            return result
        time.sleep(0.05)
    raise SystemExit(f"waited in vain for {what}")


class Screen:
    """An X server that keeps its pixels in a file."""

    def __init__(self, folder, size, *options):
        reading, writing = os.pipe()
        self.size = size
        self.pixels = os.path.join(folder, "Xvfb_screen0")
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-fbdir", folder, "-screen", "0",
                                        "%dx%dx24" % size, "-nolisten", "tcp", "-noreset", *options],
                                       pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as answer:
            self.name = ":" + answer.readline().strip()

    def __enter__(self):
        """Makes it the display of this process and its children, with the pointer in the corner."""
        os.environ["DISPLAY"] = self.name
        xdotool("mousemove", str(self.size[0] - 1), str(self.size[1] - 1))
        return self

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()


def xdotool(*words):
    return subprocess.run(["xdotool", *words], capture_output=True, text=True, check=False).stdout.strip()


def place_of(window):
    """Its left and upper edge, width and height in pixels."""
    place = dict(re.findall(r"(\w+)=(\d+)", xdotool("getwindowgeometry", "--shell", window)))
    return tuple(int(place[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))


def rows_of(file, left, top, width, height):
    """The rectangle's rows with four bytes a pixel, from the X window dump that the server maps into memory."""
    with open(file, "rb") as dump:
        header = struct.unpack(">25I", dump.read(100))
        start, line = header[0] + 12 * header[19], header[12]
        for y in range(top, top + height):
            dump.seek(start + y * line + 4 * left)
            yield dump.read(4 * width)


def resting_rows(file, window, rest=REST):
    """The window's rows once they have stayed the same for `rest` seconds."""
    return resting_area(file, lambda: place_of(window), rest)


def resting_area(file, place, rest=REST):
    """The same for what `place` returns: left and upper edge, width and height."""
    before, since = None, time.monotonic()
    while before is None or time.monotonic() - since < rest:
        rows = list(rows_of(file, *place()))
        if rows != before:
            before, since = rows, time.monotonic()
        time.sleep(0.1)
    return before


def rgb(row):
    """The row's pixels, whose bytes are blue, green, red and nothing, as PNG stores them."""
    pixels = bytearray(len(row) // 4 * 3)
    pixels[0::3], pixels[1::3], pixels[2::3] = row[2::4], row[1::4], row[0::4]
    return bytes(pixels)


def write_png(file, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    header = struct.pack(">IIBBBBB", len(rows[0]) // 4, len(rows), 8, 2, 0, 0, 0)
    data = zlib.compress(b"".join(b"\0" + rgb(row) for row in rows), 9)
    with open(file, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", data) + chunk(b"IEND", b""))
