#!/usr/bin/env python3
"""Draws ic_dapo.png, the image that a Dapo view shows when its host gives none: a ward and the waves it sends out.

Run it in this folder after a change and commit the image; the build only reads the image. Needs Pillow (Debian:
python3-pil).
"""
import math

from PIL import Image, ImageDraw

SIZE = 192  # pixels
SHARPNESS = 4  # drawn this many times as large, then reduced: that smooths the edges
INK = (255, 255, 255)
GROUND = (38, 110, 190)
# Shares of the image's size, from its middle.
DISC_RADIUS = 0.48
WARD_HALF = 0.085  # the ward is a square with round corners, turned to stand on one of them
WARD_CORNER = 0.03
WAVES = (0.23, 0.35)
WAVE_WIDTH = 0.05
GAP = 24  # degrees: half the opening between the waves, which is at the upper right and at the lower left

FULL = SIZE * SHARPNESS


def box(radius):
    """The square of that half side around the middle, in pixels of the large drawing."""
    low, high = (0.5 - radius) * FULL, (0.5 + radius) * FULL - 1
    return [low, low, high, high]


def draw_wave(pen, radius):
    """Two arcs with round ends, facing left and right: the picture is turned afterwards."""
    for facing in (0, 180):
        ends = (facing - 90 + GAP, facing + 90 - GAP)
        pen.arc(box(radius + WAVE_WIDTH / 2), *ends, fill=255, width=round(WAVE_WIDTH * FULL))
        for end in map(math.radians, ends):
            x, y = (FULL / 2 + radius * FULL * turn for turn in (math.cos(end), math.sin(end)))
            reach = WAVE_WIDTH / 2 * FULL
            pen.ellipse([x - reach, y - reach, x + reach, y + reach], fill=255)


def main():
    ink = Image.new("L", (FULL, FULL), 0)
    pen = ImageDraw.Draw(ink)
    pen.rounded_rectangle(box(WARD_HALF), WARD_CORNER * FULL, fill=255)
    for radius in WAVES:
        draw_wave(pen, radius)
    ink = ink.rotate(-45, Image.BICUBIC)  # clockwise
    disc = Image.new("L", (FULL, FULL), 0)
    ImageDraw.Draw(disc).ellipse(box(DISC_RADIUS), fill=255)
    image = Image.composite(Image.new("RGB", ink.size, INK), Image.new("RGB", ink.size, GROUND), ink).reduce(SHARPNESS)
    image.putalpha(disc.reduce(SHARPNESS))
    # With a palette: a third of the bytes, and every program with the kit carries them.
    image.quantize(256, dither=Image.Dither.NONE).save("ic_dapo.png", optimize=True)


if __name__ == "__main__":
    main()
