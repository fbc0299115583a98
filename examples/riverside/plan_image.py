"""Draws floor plans: a canvas with smooth edges, a stroke font, and PNG, on Python's standard library alone."""

import math
import struct
import zlib


class Canvas:
    """Coordinates are pixels; an edge through a pixel covers it in part. Colours are "#rrggbb"."""

    def __init__(self, width, height, colour):
        self.width, self.height = width, height
        self.pixels = bytearray(rgb(colour) * (width * height))

    def rectangle(self, x, y, width, height, colour, radius=0.0):
        def coverage(px, py):
            dx = abs(px - x - width / 2) - width / 2 + radius
            dy = abs(py - y - height / 2) - height / 2 + radius
            outside = math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - radius
            return 0.5 - outside

        self._paint((x, y, x + width, y + height), coverage, colour)

    def circle(self, x, y, radius, colour):
        self._paint((x - radius, y - radius, x + radius, y + radius),
                    lambda px, py: radius - math.hypot(px - x, py - y) + 0.5, colour)

    def line(self, points, thickness, colour):
        """Round ends and corners; painted in one go, so that a corner is no darker than the rest."""
        self._strokes([points], thickness, colour)

    def text(self, x, y, text, height, colour, thickness=None, align="middle"):
        """Capitals, digits and a little more; y is the middle of the letters."""
        spacing = 0.24
        glyphs = [FONT[c] for c in text]
        width = sum(g[0] for g in glyphs) + spacing * (len(glyphs) - 1)
        left = x - {"start": 0, "middle": width / 2, "end": width}[align] * height
        strokes = []
        for glyph_width, glyph in glyphs:
            strokes += [[(left + px * height, y + (py - 0.5) * height) for px, py in stroke] for stroke in glyph]
            left += (glyph_width + spacing) * height
        self._strokes(strokes, thickness or height * 0.14, colour)

    def png(self):
        rows = b"".join(b"\0" + self.pixels[y * self.width * 3:(y + 1) * self.width * 3] for y in range(self.height))
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) +
                chunk(b"IEND", b""))

    def _strokes(self, strokes, thickness, colour):
        mask = {}
        half = thickness / 2
        for stroke in strokes:
            for (x1, y1), (x2, y2) in zip(stroke, stroke[1:]):
                for py in self._rows(min(y1, y2) - half, max(y1, y2) + half):
                    for px in self._columns(min(x1, x2) - half, max(x1, x2) + half):
                        cover = half + 0.5 - distance_to_segment(px + 0.5, py + 0.5, x1, y1, x2, y2)
                        if cover > 0:
                            mask[px, py] = max(mask.get((px, py), 0), min(cover, 1))
        for (px, py), cover in mask.items():
            self._blend(px, py, cover, rgb(colour))

    def _paint(self, box, coverage, colour):
        paint = rgb(colour)
        for py in self._rows(box[1], box[3]):
            for px in self._columns(box[0], box[2]):
                cover = coverage(px + 0.5, py + 0.5)
                if cover > 0:
                    self._blend(px, py, min(cover, 1), paint)

    def _rows(self, low, high):
        return range(max(0, math.floor(low - 1)), min(self.height, math.ceil(high + 1)))

    def _columns(self, low, high):
        return range(max(0, math.floor(low - 1)), min(self.width, math.ceil(high + 1)))

    def _blend(self, px, py, cover, paint):
        at = (py * self.width + px) * 3
        for i in range(3):
            below = self.pixels[at + i]
            self.pixels[at + i] = round(below + (paint[i] - below) * cover)


def rgb(colour):
    return bytes.fromhex(colour[1:])


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def distance_to_segment(px, py, x1, y1, x2, y2):
    dx, dy = x2 - x1, y2 - y1
    length = dx * dx + dy * dy
    share = 0 if length == 0 else max(0, min(1, ((px - x1) * dx + (py - y1) * dy) / length))
    return math.hypot(px - x1 - share * dx, py - y1 - share * dy)


def arc(x, y, rx, ry, begin, end):
    """Points of an ellipse; degrees, 0 to the right, 90 down."""
    steps = max(2, round(abs(end - begin) / 12))
    angles = [math.radians(begin + (end - begin) * i / steps) for i in range(steps + 1)]
    return [(x + rx * math.cos(a), y + ry * math.sin(a)) for a in angles]


# Letters as strokes of a pen, one high, y down; each with its width.
FONT = {
    " ": (0.3, []),
    "A": (0.68, [[(0, 1), (0.34, 0), (0.68, 1)], [(0.12, 0.66), (0.56, 0.66)]]),
    "B": (0.58, [[(0, 0), (0, 1)], [(0, 0), *arc(0.3, 0.24, 0.24, 0.24, -90, 90), (0, 0.48)],
                 [(0.3, 0.48), *arc(0.32, 0.74, 0.26, 0.26, -90, 90), (0, 1)]]),
    "C": (0.66, [arc(0.38, 0.5, 0.38, 0.5, -48, -312)]),
    "D": (0.66, [[(0, 1), (0, 0), *arc(0.26, 0.5, 0.4, 0.5, -90, 90), (0, 1)]]),
    "E": (0.5, [[(0.5, 0), (0, 0), (0, 1), (0.5, 1)], [(0, 0.48), (0.42, 0.48)]]),
    "F": (0.48, [[(0.48, 0), (0, 0), (0, 1)], [(0, 0.5), (0.4, 0.5)]]),
    "G": (0.7, [[*arc(0.38, 0.5, 0.38, 0.5, -48, -360), (0.46, 0.5)]]),
    "H": (0.62, [[(0, 0), (0, 1)], [(0.62, 0), (0.62, 1)], [(0, 0.5), (0.62, 0.5)]]),
    "I": (0.0, [[(0, 0), (0, 1)]]),
    "J": (0.4, [[(0.4, 0), *arc(0.18, 0.76, 0.22, 0.24, 0, 160)]]),
    "K": (0.58, [[(0, 0), (0, 1)], [(0.54, 0), (0, 0.6)], [(0.17, 0.42), (0.58, 1)]]),
    "L": (0.46, [[(0, 0), (0, 1), (0.46, 1)]]),
    "M": (0.76, [[(0, 1), (0, 0), (0.38, 0.66), (0.76, 0), (0.76, 1)]]),
    "N": (0.62, [[(0, 1), (0, 0), (0.62, 1), (0.62, 0)]]),
    "O": (0.78, [arc(0.39, 0.5, 0.39, 0.5, 0, 360)]),
    "P": (0.54, [[(0, 1), (0, 0), *arc(0.28, 0.27, 0.26, 0.27, -90, 90), (0, 0.54)]]),
    "Q": (0.78, [arc(0.39, 0.5, 0.39, 0.5, 0, 360), [(0.5, 0.72), (0.78, 1.06)]]),
    "R": (0.56, [[(0, 1), (0, 0), *arc(0.28, 0.26, 0.26, 0.26, -90, 90), (0, 0.52)], [(0.28, 0.52), (0.56, 1)]]),
    "S": (0.58, [[*arc(0.29, 0.25, 0.25, 0.25, -25, -270), *arc(0.29, 0.75, 0.28, 0.25, -90, 155)]]),
    "T": (0.6, [[(0, 0), (0.6, 0)], [(0.3, 0), (0.3, 1)]]),
    "U": (0.6, [[(0, 0), *arc(0.3, 0.7, 0.3, 0.3, 180, 0), (0.6, 0)]]),
    "V": (0.64, [[(0, 0), (0.32, 1), (0.64, 0)]]),
    "W": (0.92, [[(0, 0), (0.23, 1), (0.46, 0.2), (0.69, 1), (0.92, 0)]]),
    "X": (0.6, [[(0, 0), (0.6, 1)], [(0.6, 0), (0, 1)]]),
    "Y": (0.6, [[(0, 0), (0.3, 0.5), (0.6, 0)], [(0.3, 0.5), (0.3, 1)]]),
    "Z": (0.56, [[(0, 0), (0.56, 0), (0, 1), (0.56, 1)]]),
    "0": (0.58, [arc(0.29, 0.5, 0.29, 0.5, 0, 360)]),
    "1": (0.26, [[(0, 0.2), (0.26, 0), (0.26, 1)]]),
    "2": (0.56, [[*arc(0.28, 0.28, 0.27, 0.28, -165, 30), (0, 1), (0.56, 1)]]),
    "3": (0.56, [arc(0.27, 0.25, 0.25, 0.25, -150, 90), arc(0.27, 0.75, 0.28, 0.25, -90, 150)]),
    "4": (0.62, [[(0.46, 1), (0.46, 0), (0, 0.7), (0.62, 0.7)]]),
    "5": (0.56, [[(0.5, 0), (0.08, 0), (0.04, 0.46), *arc(0.27, 0.68, 0.29, 0.32, -125, 150)]]),
    "6": (0.58, [arc(0.29, 0.68, 0.29, 0.32, 0, 360), arc(0.6, 0.68, 0.6, 0.68, -100, -180)]),
    "7": (0.54, [[(0, 0), (0.54, 0), (0.18, 1)]]),
    "8": (0.58, [arc(0.29, 0.25, 0.24, 0.25, 0, 360), arc(0.29, 0.75, 0.29, 0.25, 0, 360)]),
    "9": (0.58, [arc(0.29, 0.32, 0.29, 0.32, 0, 360), arc(-0.02, 0.32, 0.6, 0.68, 0, 80)]),
    "-": (0.3, [[(0, 0.52), (0.3, 0.52)]]),
    ".": (0.0, [[(0, 0.98), (0, 1)]]),
}
