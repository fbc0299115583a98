#!/usr/bin/env python3
"""Draws ic_dapo.png, the image that a Dapo view shows when its host gives none: a ward and the waves it sends out.

Run it in this folder after a change and commit the image; the build only reads the image. Standard library only.
"""
import math
import struct
import zlib

SIZE = 192  # pixels; the drawing below is in units of it
INK = (255, 255, 255)
GROUND = (38, 110, 190)
DISC_RADIUS = 0.48
WARD_HALF = 0.085  # the ward: a square on its tip, with round corners
WARD_CORNER = 0.03
WAVES = (0.23, 0.35)
WAVE_WIDTH = 0.05
GAP = math.radians(24)  # half of what the waves leave open at their upper right and lower left


def coverage(distance):
    """How much of a pixel lies inside, given the signed distance to the edge in units of the image."""
    return min(1.0, max(0.0, 0.5 - distance * SIZE))


def ward_distance(x, y):
    along, across = abs(x + y) / math.sqrt(2), abs(x - y) / math.sqrt(2)
    dx, dy = along - WARD_HALF + WARD_CORNER, across - WARD_HALF + WARD_CORNER
    return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - WARD_CORNER


def wave_distance(x, y, radius):
    """An arc of half a turn less the gap, to the upper left; the one to the lower right is its mirror image."""
    if x > -y:
        x, y = -x, -y
    along, across = (-x - y) / math.sqrt(2), abs(x - y) / math.sqrt(2)
    end = math.pi / 2 - GAP
    if math.atan2(across, along) <= end:
        return abs(math.hypot(x, y) - radius) - WAVE_WIDTH / 2
    return math.hypot(along - radius * math.cos(end), across - radius * math.sin(end)) - WAVE_WIDTH / 2


def pixel(column, row):
    x, y = (column + 0.5) / SIZE - 0.5, (row + 0.5) / SIZE - 0.5
    disc = coverage(math.hypot(x, y) - DISC_RADIUS)
    ink = coverage(min([ward_distance(x, y)] + [wave_distance(x, y, radius) for radius in WAVES]))
    colour = [round(g + (i - g) * ink) for g, i in zip(GROUND, INK)]
    return bytes(colour + [round(255 * disc)])


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def main():
    rows = b"".join(b"\0" + b"".join(pixel(c, r) for c in range(SIZE)) for r in range(SIZE))
    header = struct.pack(">IIBBBBB", SIZE, SIZE, 8, 6, 0, 0, 0)  # 8 bits a channel, RGBA
    with open("ic_dapo.png", "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


if __name__ == "__main__":
    main()
