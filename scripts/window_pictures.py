"""Pictures of windows on an X server that keeps its pixels in a file (Xvfb -fbdir)."""

import re
import struct
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


def rows_of(file, left, top, width, height):
    """The rectangle's rows with four bytes a pixel, from the X window dump that the server maps into memory."""
    with open(file, "rb") as dump:
        header = struct.unpack(">25I", dump.read(100))
        start, line = header[0] + 12 * header[19], header[12]
        for y in range(top, top + height):
            dump.seek(start + y * line + 4 * left)
            yield dump.read(4 * width)


def resting_rows(xdotool, file, window, rest=REST):
    """The window's rows once they have stayed the same for `rest` seconds. `xdotool`: runs that program."""
    before, since = None, time.monotonic()
    while before is None or time.monotonic() - since < rest:
        place = dict(re.findall(r"(\w+)=(\d+)", xdotool("getwindowgeometry", "--shell", window)))
        rows = list(rows_of(file, *(int(place[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))))
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
