#!/usr/bin/env python3
"""Makes the sample site: both bundles and the floor plans of sector 12, in the folder 12 beside this file.

A museum of two levels and a library beside it. Plans are in metres from the north-west corner of each building; the
bundles are in centimetres. The bundles are the same in each run, and so are the plans with the same version of Pillow.
"""

import json
import pathlib

from floor_plan import HEIGHT, WIDTH, draw

HERE = pathlib.Path(__file__).parent
SECTOR = 12
IMAGES = f"http://127.0.0.1:5050/{SECTOR}/maps/"  # where `oska serve` serves them


class Level:
    """One level: its plan and its wards."""

    def __init__(self, key, building, id, name, title, size, scale, offset):
        self.key, self.building, self.id, self.name, self.title = key, building, id, name, title
        self.size, self.scale, self.offset = size, scale, offset
        self.rooms, self.walls, self.doors, self.things, self.wards = [], [], [], [], []

    def px(self, x, y):
        """Metres to pixels, as the bundle's scale and offset do it from centimetres."""
        return self.scale * 100 * x + self.offset[0], self.scale * 100 * y + self.offset[1]

    def room(self, kind, x, y, width, height, label="", small="", label_at=None):
        self.rooms.append((kind, x, y, width, height, label, small, label_at))

    def wall(self, *points):
        self.walls.append(points)

    def door(self, x, y, width=1.4, across="x", swing=1):
        """A gap in a wall that runs along `across`, centred at x, y; the leaf opens to the side of `swing`."""
        self.doors.append((x, y, width, across, swing))

    def ward(self, id, name, x, y, pelio_rssi, dapo=None):
        """`dapo`: (threshold, [(description, path), ...]); without it the ward has no content."""
        self.wards.append((id, name, x, y, pelio_rssi, dapo))


def museum_ground():
    level = Level("museum-1f", (1, "Riverside Museum"), 1101, "1F", "RIVERSIDE MUSEUM   1F", (36, 22), 0.3, (60, 92))
    level.room("hall", 0, 11, 28, 11, "FOYER", label_at=(5.5, 18.6))
    level.room("shop", 0, 0, 11, 11, "MUSEUM SHOP", label_at=(5.5, 3.2))
    level.room("gallery", 11, 0, 12, 11, "CERAMICS", "GALLERY 1", (17, 5.5))
    level.room("gallery", 23, 0, 13, 11, "MAPS AND RIVERS", "GALLERY 2", (29.5, 5.5))
    level.room("cafe", 28, 11, 8, 11, "CAFE", label_at=(32, 14))
    level.room("service", 22, 18, 2.6, 4)
    level.room("service", 24.6, 18, 3.4, 4)
    level.wall((0, 11), (36, 11))
    level.wall((11, 0), (11, 11))
    level.wall((23, 0), (23, 11))
    level.wall((28, 11), (28, 22))
    level.wall((22, 22), (22, 18), (28, 18))
    level.wall((24.6, 18), (24.6, 22))
    level.door(5.5, 22, 3, "x", 0)
    level.door(6, 11, 2)
    level.door(17, 11, 2.4)
    level.door(23, 6, 2, "y")
    level.door(25.5, 11, 2)
    level.door(28, 14.5, 2, "y")
    level.door(23.3, 18, 1.4, "x", 0)
    level.door(26.3, 18, 1.8, "x", 0)
    level.door(36, 16, 2, "y", -1)
    level.things += [("desk", 8.2, 14.2, 2.6, 0.9), ("desk", 1.2, 6.2, 0.9, 3), ("desk", 3.4, 5.2, 3.2, 0.9),
                     ("desk", 3.4, 7.4, 3.2, 0.9), ("case", 13, 2.2, 1.2, 1.2), ("case", 16.4, 2.2, 1.2, 1.2),
                     ("case", 19.8, 2.2, 1.2, 1.2), ("case", 13, 7.6, 1.2, 1.2), ("case", 19.8, 7.6, 1.2, 1.2),
                     ("case", 25.4, 1.2, 4, 0.8), ("case", 31, 1.2, 4, 0.8), ("case", 28, 8.4, 4, 0.8),
                     ("desk", 33.6, 18.4, 0.9, 3), ("table", 30, 16.4), ("table", 32, 18.8), ("table", 30, 20.4),
                     ("table", 34.2, 12.6), ("stairs", 24.9, 18.9, 2.8, 2.8), ("lift", 22.4, 18.6, 1.9, 2.9),
                     ("bench", 13, 14.6, 3, 0.7), ("bench", 17.6, 19.4, 3, 0.7), ("entrance", 5.5, 22.7)]
    m = "https://museum.example.com/"
    level.ward(101, "Main-Entrance", 5.5, 20.6, -84, (-73, [("Opening hours and tickets", m + "visit")]))
    level.ward(102, "안내데스크", 9.5, 15.6, -84, (-72, [
        ("Ask at the desk: guides and wheelchairs", m + "desk"), ("오늘의 전시 안내", m + "ko/today")]))
    level.ward(103, "museum-shop", 5, 6.8, -82, (-73, [
        ("New in the shop: river prints", "https://shop.example.com/prints"),
        ("Members pay 10 % less", "https://shop.example.com/members")]))
    level.ward(104, "ceramics-celadon", 15.3, 3.6, -82, (-72, [
        ("Celadon in five objects", m + "ceramics/celadon"), ("How the glaze cracks (film, 3 min)", m + "film/glaze")]))
    level.ward(105, "ceramics-kiln", 19.4, 7, -82, (-72, [("A kiln, cut open", m + "ceramics/kiln")]))
    level.ward(106, "maps-atlas", 27.4, 3.2, -82, (-72, [("Turn the pages of the atlas of 1698", m + "maps/atlas")]))
    level.ward(107, "maps-delta", 32.6, 6.8, -82, (-72, [
        ("The delta, then and now", m + "maps/delta"), ("Listen: a ferryman remembers", m + "audio/ferry")]))
    level.ward(108, "hall-centre", 16.5, 16.5, -84, (-72, [("Today at two: the curator's tour", m + "today")]))
    level.ward(109, "cafe-counter", 32.6, 17, -83, (-73, [
        ("Today's lunch", "https://cafe.example.org/today"), ("Order ahead", "https://cafe.example.org/order")]))
    level.ward(110, "stairs-1f", 26.3, 17, -84)
    level.ward(111, "lift-1f", 22.6, 16.6, -84)
    return level


def museum_upper():
    level = Level("museum-2f", (1, "Riverside Museum"), 1102, "2F", "RIVERSIDE MUSEUM   2F", (36, 22), 0.3, (60, 92))
    level.room("gallery", 0, 0, 14, 11, "PHOTOGRAPHY", "GALLERY 3", (7, 5.5))
    level.room("gallery", 14, 0, 12, 11, "TEXTILES", "GALLERY 4", (20, 5.5))
    level.room("work", 26, 0, 10, 11, "STUDIO", label_at=(31, 5.5))
    level.room("open", 0, 11, 11, 11, "TERRACE", label_at=(5.5, 16.5))
    level.room("hall", 11, 11, 17, 11, "LANDING", label_at=(17, 19.4))
    level.room("service", 28, 11, 8, 11, "OFFICES", label_at=(32, 16.5))
    level.room("service", 22, 18, 2.6, 4)
    level.room("service", 24.6, 18, 3.4, 4)
    level.wall((0, 11), (36, 11))
    level.wall((14, 0), (14, 11))
    level.wall((26, 0), (26, 11))
    level.wall((11, 11), (11, 22))
    level.wall((28, 11), (28, 22))
    level.wall((22, 22), (22, 18), (28, 18))
    level.wall((24.6, 18), (24.6, 22))
    level.door(12.5, 11, 2)
    level.door(14, 6, 2, "y")
    level.door(20, 11, 2.4)
    level.door(26, 6, 2, "y")
    level.door(11, 15, 2, "y", -1)
    level.door(28, 14, 1.2, "y")
    level.door(23.3, 18, 1.4, "x", 0)
    level.door(26.3, 18, 1.8, "x", 0)
    level.things += [("case", 2, 2.6, 0.5, 6), ("case", 5, 1.6, 4, 0.5), ("case", 5, 8.8, 4, 0.5),
                     ("case", 11.4, 1.8, 0.5, 3.4), ("case", 16, 2, 2.4, 1.4), ("case", 21.4, 2, 2.4, 1.4),
                     ("case", 21.6, 7.8, 2.4, 1.4), ("table", 28.6, 2.6), ("table", 31.2, 2.6), ("table", 33.8, 2.6),
                     ("table", 28.6, 8.4), ("table", 31.2, 8.4), ("table", 33.8, 8.4),
                     ("stairs", 24.9, 18.9, 2.8, 2.8), ("lift", 22.4, 18.6, 1.9, 2.9), ("bench", 15.5, 14.2, 4, 0.7),
                     ("tree", 2.2, 13.2), ("tree", 2.2, 19.8), ("tree", 9, 19.8), ("bench", 4, 20.2, 3, 0.7)]
    m = "https://museum.example.com/"
    level.ward(201, "photo-west", 3.8, 5.6, -82, (-72, [("The bridge, 1911 to 1975", m + "photo/bridge")]))
    level.ward(202, "photo-east", 10, 4, -82, (-72, [
        ("Portraits from the ferry", m + "photo/ferry"), ("Was your family here? Write to us", m + "photo/write")]))
    level.ward(203, "textiles-loom", 17.2, 4.6, -82, (-72, [("See the loom at work (film, 2 min)", m + "film/loom")]))
    level.ward(204, "textiles-silk", 22.6, 5.8, -82, (-72, [("Silk: from worm to robe", m + "textiles/silk")]))
    level.ward(205, "Studio-Kids", 31, 5.6, -82, (-73, [
        ("Workshop on Saturday: print a map", m + "studio/saturday"), ("Colouring sheets", m + "studio/sheets")]))
    level.ward(206, "landing-2f", 17.5, 15.8, -84, (-72, [("Where to go on this level", m + "plan/2f")]))
    level.ward(207, "테라스", 6, 14.6, -84, (-73, [
        ("The view, labelled", m + "terrace/view"), ("테라스 음악회 일정", m + "ko/terrace/concerts")]))
    level.ward(208, "전망대", 3.6, 19.2, -84, (-72, [("Look through the telescope", m + "terrace/telescope")]))
    level.ward(209, "stairs-2f", 26.3, 17, -84)
    level.ward(210, "lift-2f", 22.6, 16.6, -84)
    return level


def library():
    level = Level("library-1f", (2, "Riverside Library"), 1201, "1F", "RIVERSIDE LIBRARY   1F", (32, 20), 0.32,
                  (88, 96))
    level.room("hall", 10, 12, 12, 8, "LOBBY", label_at=(16, 17.6))
    level.room("gallery", 0, 0, 14, 12, "READING ROOM", label_at=(7, 6.2))
    level.room("shop", 14, 0, 18, 12, "STACKS", label_at=(23, 10.9))
    level.room("cafe", 0, 12, 10, 8, "CHILDREN", label_at=(5, 18))
    level.room("work", 22, 12, 10, 8, "MEDIA LAB", label_at=(27, 18.4))
    level.wall((0, 12), (32, 12))
    level.wall((14, 0), (14, 12))
    level.wall((10, 12), (10, 20))
    level.wall((22, 12), (22, 20))
    level.door(0, 14.4, 2, "y", -1)
    level.door(12, 12, 2)
    level.door(20, 12, 2)
    level.door(14, 3, 2, "y")
    level.door(10, 15, 1.6, "y")
    level.door(22, 15, 1.6, "y", -1)
    level.door(16, 20, 3, "x", 0)
    level.things += [("shelf", 16, y, 6, 0.7) for y in (1.6, 3.6, 5.6, 7.6)]
    level.things += [("shelf", 24.6, y, 6, 0.7) for y in (1.6, 3.6, 5.6, 7.6)]
    level.things += [("table", x, y) for x in (3, 7, 11) for y in (2.6, 9.6)]
    level.things += [("desk", 17.6, 13.2, 3.2, 0.9), ("table", 3, 15.4), ("table", 6.6, 14.2), ("desk", 24, 13, 6.6, 0.8),
                     ("desk", 24, 15.6, 6.6, 0.8), ("case", 11, 17, 0.8, 2), ("entrance", 16, 20.7)]
    lib = "https://library.example.net/"
    level.ward(301, "LIB-Lobby", 15.4, 15.8, -84, (-72, [
        ("Open until eight tonight", lib + "hours"), ("Become a member", lib + "join")]))
    level.ward(302, "returns-desk", 19.2, 14.8, -82, (-72, [("What you have borrowed", lib + "loans")]))
    level.ward(303, "reading-room-north", 5, 4.4, -82, (-72, [("Book a desk", lib + "desks")]))
    level.ward(304, "reading-room-south", 10, 8, -82, (-72, [("Newspapers of today", lib + "papers")]))
    level.ward(305, "stacks-a", 19, 4.9, -82, (-72, [("Shelves A to M", lib + "stacks/a-m")]))
    level.ward(306, "stacks-n", 27.6, 4.9, -82, (-72, [("Shelves N to Z", lib + "stacks/n-z")]))
    level.ward(307, "어린이실", 5, 15.6, -83, (-73, [
        ("Story hour at three", lib + "children/stories"), ("이야기 시간 (한국어)", lib + "ko/children/stories")]))
    level.ward(308, "media-lab", 27, 14.6, -82, (-73, [("Borrow a camera", lib + "media/cameras")]))
    level.ward(309, "courtyard-gate", 1, 14.2, -84)
    return level


def ward_of(kind, id, name, x, y, pelio_rssi, dapo):
    ward = {"id": id, "name": name, "x": round(x * 100), "y": round(y * 100)}
    if kind == "pelio":
        return {**ward, "rssi": pelio_rssi}
    threshold, links = dapo
    contents = [{"number": i + 1, "description": d, "url": url} for i, (d, url) in enumerate(links)]
    return {**ward, "rssi": threshold, "contents": contents}


def level_of(kind, level):
    image = {"url": f"{IMAGES}{level.key}.png", "image_width": WIDTH, "image_height": HEIGHT,
             "scale_x": level.scale, "scale_y": level.scale, "offset_x": level.offset[0], "offset_y": level.offset[1]}
    wards = [ward_of(kind, *ward) for ward in level.wards if kind == "pelio" or ward[5]]
    return {"id": level.id, "name": level.name, "map_image": image, "wards": wards}


def bundle_of(kind, levels):
    buildings = []
    for level in levels:
        if not buildings or buildings[-1]["id"] != level.building[0]:
            buildings.append({"id": level.building[0], "name": level.building[1], "levels": []})
        buildings[-1]["levels"].append(level_of(kind, level))
    return {"id": SECTOR, "name": "Riverside", "operating_system": "iOS", "buildings": buildings}


def main():
    levels = [museum_ground(), museum_upper(), library()]
    folder = HERE / str(SECTOR)
    (folder / "maps").mkdir(parents=True, exist_ok=True)
    for kind in ("pelio", "dapo"):
        text = json.dumps(bundle_of(kind, levels), ensure_ascii=False, indent=1)
        (folder / f"{kind}.json").write_text(text + "\n", encoding="utf-8")
    for level in levels:
        draw(level).save(folder / "maps" / f"{level.key}.png")


if __name__ == "__main__":
    main()
