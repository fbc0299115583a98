"""Draws the floor plan of a level of the sample site (make_site.py)."""

from plan_image import Canvas, arc

WIDTH, HEIGHT = 1200, 800

# Pale colours that differ in lightness as well as in hue, so that colour-blind people can tell them apart.
PAPER, INK, FAINT, GRASS, LEAVES = "#f6f4ee", "#343d4a", "#a9adb0", "#dfe6d3", "#cdd9bd"
ROOMS = {
    "hall": "#fbfaf6", "gallery": "#dfe8f1", "shop": "#f4e6d0", "cafe": "#f3edcf", "work": "#e4dfea",
    "service": "#dcdcd8", "open": "#e3ecdb",
}


def draw(level):
    canvas = Canvas(WIDTH, HEIGHT, PAPER)
    if level.name == "1F":
        surroundings(canvas, level)
    unit = level.scale * 100
    for kind, x, y, width, height, *_ in level.rooms:
        canvas.rectangle(*level.px(x, y), width * unit, height * unit, ROOMS[kind])
    for thing in level.things:
        draw_thing(canvas, level, *thing)
    for points in level.walls:
        canvas.line([level.px(*p) for p in points], 4.5, INK)
    width, height = level.size
    outline = [(0, 0), (width, 0), (width, height), (0, height), (0, 0)]
    canvas.line([level.px(*p) for p in outline], 8, INK)
    for door in level.doors:
        draw_door(canvas, level, *door)
    for _, x, y, width, height, label, small, at in level.rooms:
        draw_label(canvas, *level.px(*(at or (x + width / 2, y + height / 2))), label, small)
    canvas.text(level.px(0, 0)[0] - 4, 46, level.title, 25, INK, "start")
    scale_bar(canvas, level)
    return canvas


def surroundings(canvas, level):
    left, bottom = level.px(0, level.size[1])
    canvas.rectangle(-20, 78, WIDTH + 40, bottom - 78 + 18, GRASS)
    canvas.rectangle(-20, bottom + 18, WIDTH + 40, HEIGHT, PAPER)
    for x in range(14, WIDTH, 47):
        canvas.circle(x, 78 + 7, 10 + x % 3, LEAVES)
    for i, side in enumerate((24, WIDTH - 24)):
        for y in range(150 + 30 * i, int(bottom) - 20, 130):
            canvas.circle(side, y, 17, LEAVES)
            canvas.circle(side - 4, y - 4, 8, "#dae4cd")


def draw_thing(canvas, level, kind, x, y, width=0.0, height=0.0):
    """`x`, `y`: the top left corner of what has a size, otherwise the middle; all in metres."""
    px, py = level.px(x, y)
    unit = level.scale * 100
    w, h = width * unit, height * unit
    if kind in ("desk", "case", "shelf", "bench"):
        draw_furniture(canvas, kind, px, py, w, h, unit)
    elif kind == "table":
        for dx, dy in ((0.85, 0), (-0.85, 0), (0, 0.85), (0, -0.85)):
            canvas.circle(px + dx * unit, py + dy * unit, 0.26 * unit, "#b9bcbd")
        canvas.circle(px, py, 0.6 * unit, "#b9bcbd")
        canvas.circle(px, py, 0.6 * unit - 1.6, "#efede6")
    elif kind == "tree":
        canvas.circle(px, py, 0.75 * unit, "#c3d2b2")
        canvas.circle(px - 4, py - 4, 0.38 * unit, "#d3dfc5")
    elif kind == "stairs":
        draw_stairs(canvas, px, py, w, h)
    elif kind == "lift":
        draw_lift(canvas, px, py, w, h)
    elif kind == "entrance":
        canvas.line([(px - 9, py + 6), (px, py - 4), (px + 9, py + 6)], 3, INK)
        canvas.text(px + 22, py + 2, "ENTRANCE", 12, INK, "start")


def draw_furniture(canvas, kind, px, py, w, h, unit):
    canvas.rectangle(px, py, w, h, FAINT if kind == "shelf" else "#b9bcbd", 3)
    canvas.rectangle(px + 1.6, py + 1.6, w - 3.2, h - 3.2, "#ffffff" if kind == "case" else "#efede6", 2)
    if kind == "shelf":
        for i in range(1, round(w / unit * 2)):
            canvas.line([(px + i * unit / 2, py + 3), (px + i * unit / 2, py + h - 3)], 1, FAINT)


def draw_stairs(canvas, px, py, w, h):
    for i in range(8):
        step = py + h * (i + 0.5) / 8
        canvas.line([(px, step), (px + w, step)], 1.6, "#8d9399")
    canvas.line([(px + w / 2, py + h), (px + w / 2, py + 4)], 2, INK)
    canvas.line([(px + w / 2 - 7, py + 12), (px + w / 2, py + 3), (px + w / 2 + 7, py + 12)], 2, INK)


def draw_lift(canvas, px, py, w, h):
    canvas.rectangle(px, py, w, h, "#8d9399", 2)
    canvas.rectangle(px + 1.6, py + 1.6, w - 3.2, h - 3.2, "#efede6", 2)
    canvas.line([(px + w * 0.3, py + h * 0.42), (px + w / 2, py + h * 0.28), (px + w * 0.7, py + h * 0.42)], 2, INK)
    canvas.line([(px + w * 0.3, py + h * 0.58), (px + w / 2, py + h * 0.72), (px + w * 0.7, py + h * 0.58)], 2, INK)


def draw_door(canvas, level, x, y, width, across, swing):
    unit = level.scale * 100
    px, py = level.px(x, y)
    half = width * unit / 2
    along = (half, 0) if across == "x" else (0, half)
    canvas.rectangle(px - max(along[0], 5), py - max(along[1], 5), 2 * max(along[0], 5), 2 * max(along[1], 5),
                     ROOMS["hall"])
    if not swing:
        return
    hinges = ((-1, 1), (1, -1)) if width >= 2 else ((-1, 2),)
    for side, reach in hinges:  # a wide door has two leaves
        hinge = (px + side * along[0], py + side * along[1])
        length = half * abs(reach)
        leaf = (hinge[0], hinge[1] + swing * length) if across == "x" else (hinge[0] + swing * length, hinge[1])
        inward = 0 if side < 0 else 180
        turn = (90 if swing > 0 else -90) if across == "x" else (0 if swing > 0 else 180)
        closed = inward if across == "x" else (90 if side < 0 else -90)
        end = closed + ((turn - closed + 180) % 360 - 180)
        canvas.line(arc(*hinge, length, closed, end), 1.2, FAINT)
        canvas.line([hinge, leaf], 2, "#7b838c")


def draw_label(canvas, x, y, label, small):
    if not label:
        return
    if small:
        canvas.text(x, y - 15, small, 10.5, "#5d6671")
        y += 6
    canvas.text(x, y, label, 15, INK)


def scale_bar(canvas, level):
    unit = level.scale * 100
    right, y = level.px(level.size[0], 0)[0], HEIGHT - 22
    canvas.line([(right - 10 * unit, y), (right, y)], 2, INK)
    for metres in (0, 5, 10):
        canvas.line([(right - metres * unit, y - 5), (right - metres * unit, y + 5)], 2, INK)
    canvas.text(right - 10 * unit - 14, y, "10 M", 12, INK, "end")
    north = right
    canvas.line([(north, 58), (north, 30)], 2.2, INK)
    canvas.line([(north - 7, 39), (north, 29), (north + 7, 39)], 2.2, INK)
    canvas.text(north - 22, 45, "N", 14, INK)
