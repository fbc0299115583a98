"""A drawing surface for floor plans, over Pillow (Debian: python3-pil, fonts-dejavu-core)."""

import math

from PIL import Image, ImageDraw, ImageFont

SHARPNESS = 4  # drawn this many times as large, then reduced: that smooths the edges
FONT = "DejaVuSans.ttf"
CAPITAL_HEIGHT = 0.729  # of that font, as a share of its size


class Canvas:
    """Coordinates and lengths are pixels of the finished image, y down. Colours are "#rrggbb"."""

    def __init__(self, width, height, colour):
        self.image = Image.new("RGB", (width * SHARPNESS, height * SHARPNESS), colour)
        self.pen = ImageDraw.Draw(self.image)

    def rectangle(self, x, y, width, height, colour, radius=0.0):
        # Pillow counts the last row and column as inside.
        box = [x * SHARPNESS, y * SHARPNESS, (x + width) * SHARPNESS - 1, (y + height) * SHARPNESS - 1]
        self.pen.rounded_rectangle(box, radius * SHARPNESS, fill=colour)

    def circle(self, x, y, radius, colour):
        left, top, diameter = (x - radius) * SHARPNESS, (y - radius) * SHARPNESS, 2 * radius * SHARPNESS - 1
        self.pen.ellipse([left, top, left + diameter, top + diameter], fill=colour)

    def line(self, points, thickness, colour):
        """Straight pieces from point to point, with round ends and corners."""
        path = [(x * SHARPNESS, y * SHARPNESS) for x, y in points]
        self.pen.line(path, fill=colour, width=round(thickness * SHARPNESS))
        for x, y in points:
            self.circle(x, y, thickness / 2, colour)

    def text(self, x, y, text, height, colour, align="middle"):
        """`height`: of capital letters; `y`: half way up them; `align`: which part of the text is at `x`."""
        font = ImageFont.truetype(FONT, round(height / CAPITAL_HEIGHT * SHARPNESS))
        anchor = {"start": "ls", "middle": "ms", "end": "rs"}[align]
        self.pen.text((x * SHARPNESS, (y + height / 2) * SHARPNESS), text, font=font, fill=colour, anchor=anchor)

    def save(self, path):
        self.image.reduce(SHARPNESS).save(path, optimize=True)


def arc(x, y, radius, begin, end):
    """Points on a circle, for `line`; degrees, 0 to the right, 90 down."""
    steps = max(2, round(abs(end - begin) / 6))
    angles = [math.radians(begin + (end - begin) * i / steps) for i in range(steps + 1)]
    return [(x + radius * math.cos(a), y + radius * math.sin(a)) for a in angles]
