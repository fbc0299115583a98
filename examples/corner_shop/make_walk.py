#!/usr/bin/env python3
"""Writes walk.jsonl: what a phone receives from the shop's wards on the way of a customer, one sample each 500 ms.

    python3 make_walk.py 7/pelio.json > walk.jsonl

The route is a list of places, with the time that the customer stays there. The strength falls with the logarithm of
the distance, with noise. Weak signals are often lost. A device that is not a ward of the shop is received, too. The
seed is fixed, so each run writes the same walk.
"""

import json
import math
import random
import sys

# level id; x and y in centimetres; seconds of the stay
ROUTE = [
    (1, 1000, 1350, 0), (1, 1000, 1080, 3), (1, 320, 930, 12), (1, 280, 330, 14), (1, 950, 210, 12),
    (1, 1690, 320, 10), (1, 1850, 900, 3), (2, 1850, 900, 2), (2, 1330, 420, 14), (2, 380, 360, 22),
    (2, 1850, 900, 1), (1, 1850, 900, 1), (1, 1320, 1010, 14), (1, 1000, 1080, 1), (1, 1000, 1400, 2),
]
PACE = 110  # centimetres per second
BEGIN = 1767348000000  # a Friday at ten
TICK = 500  # milliseconds
AT_ONE_METRE = -58.0  # dBm
FALL_OFF = 26.0  # dB for ten times the distance
CEILING = 14.0  # dB lost between levels
WEAKEST = -97.0  # dBm


def positions():
    """Where the phone is at each tick: level, x, y."""
    step = PACE * TICK / 1000
    for (level, x, y, stay), following in zip(ROUTE, ROUTE[1:] + ROUTE[-1:]):
        for _ in range(int(stay * 1000 / TICK)):
            yield level, x, y
        if following[0] != level:
            continue
        distance = math.hypot(following[1] - x, following[2] - y)
        for n in range(1, int(distance / step)):
            share = n * step / distance
            yield level, x + share * (following[1] - x), y + share * (following[2] - y)


def strength(random_source, level, x, y, ward_level, ward):
    metres = max(math.hypot(ward["x"] - x, ward["y"] - y) / 100, 0.5)
    ceiling = CEILING if ward_level != level else 0
    return AT_ONE_METRE - FALL_OFF * math.log10(metres) - ceiling + random_source.gauss(0, 3)


def is_heard(random_source, dbm):
    return dbm > WEAKEST and random_source.random() < 0.95 - max(0, -70 - dbm) / 40


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        site = json.load(file)
    wards = [(level["id"], ward) for building in site["buildings"] for level in building["levels"]
             for ward in level["wards"]]
    random_source = random.Random(20260102)
    for tick, (level, x, y) in enumerate(positions()):
        rfs = {}
        for ward_level, ward in wards:
            dbm = strength(random_source, level, x, y, ward_level, ward)
            if is_heard(random_source, dbm):
                rfs[ward["name"]] = round(dbm, 1)
        if random_source.random() < 0.2:
            rfs["headphones-7f"] = round(random_source.uniform(-92, -75), 1)
        print(json.dumps({"mobile_time": BEGIN + tick * TICK, "rfs": rfs}, ensure_ascii=False))


if __name__ == "__main__":
    main()
