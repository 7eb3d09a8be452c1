#!/usr/bin/env python3
"""Makes a lesson that uses what the recorded one does not, as it would arrive at a client.

Three users draw on three pages: texts, every kind of diagram, images, media, a media list, markers,
erasers, cursors, magnifiers, a camera capture; boxes move, things are removed, a page is cleared and
one is visited again. Users draw at the same time, pieces arrive late and twice.

    make_second_lesson.py [--seed NUMBER] > second_lesson.ndjson

The seed decides how steady the hands are, nothing else: the number of records, their order and all
texts are the same for every seed.
"""

import argparse
import json
import math
import random
import sys

BOARD = 8
RESOURCE = 43
PAGES = 3
WIDTH, HEIGHT = 1280, 720  # the page on which everything is laid out
BASE_WIDTH = 400  # the board width for which pen widths are meant
START = 1700010000.0
STEP = 0.02  # seconds from position to position
PIECE = 5  # positions in a piece of a stroke

INK, RED, BLUE = "#303033FF", "#FF3467FF", "#21A7FFFF"
ORANGE, GREEN, VIOLET = "#FFA400FF", "#00CDB1FF", "#9763FFFF"
KEEP = -10.0  # a coordinate that an update does not give


def cut(value):
    """Five decimals, cut toward zero, as clients write coordinates."""
    return math.trunc(value * 100000) / 100000


def across(x):
    return cut(x / WIDTH - 0.5)


def down(y):
    return cut(y / HEIGHT - 0.5)


def line(*corners, count):
    """`count` positions, evenly along the corners."""
    lengths = [math.dist(a, b) for a, b in zip(corners, corners[1:])]
    positions = []
    for i in range(count):
        rest = sum(lengths) * i / (count - 1)
        for (a, b), length in zip(zip(corners, corners[1:]), lengths):
            if rest <= length or b == corners[-1]:
                part = min(1.0, rest / length)
                positions.append((a[0] + (b[0] - a[0]) * part, a[1] + (b[1] - a[1]) * part))
                break
            rest -= length
    return positions


def arc(x, y, radius_x, radius_y, start, end, count):
    """`count` positions along an arc; degrees, clockwise on the screen from the right."""
    angles = [math.radians(start + (end - start) * i / (count - 1)) for i in range(count)]
    return [(x + radius_x * math.cos(a), y + radius_y * math.sin(a)) for a in angles]


class Lesson:
    """Collects records with the moment of their arrival."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.arrivals = []  # (moment, number, record)

    def add(self, at, record, copies=1):
        for _ in range(copies):
            self.arrivals.append((at, len(self.arrivals), record))

    def record(self, user, at, type_name, fields, ID=None, copies=1):
        """One record; its identifier tells who made it and in which hundredth of a second."""
        ID = ID or f"{user}_{round(at * 100)}"
        head = {"type": type_name, "ts": round(START + at, 3), "ID": ID}
        self.add(at, {**head, **fields}, copies)

    def page(self, user, at, number):
        self.record(user, at, "switchPage", {
            "WBID": BOARD, "resource": RESOURCE, "url": "", "curPage": number, "totalPage": PAGES,
            "imageMode": False, "w": WIDTH, "h": HEIGHT})

    def box(self, user, at, type_name, place, fields, **more):
        """A box; `place` is its left, top, width and height in points of the page."""
        left, top, width, height = place
        self.record(user, at, type_name, {
            "x": across(left), "y": down(top), "w": cut(width / WIDTH), "h": cut(height / HEIGHT),
            **fields}, **more)

    def text(self, user, at, place, text, size=32, color=INK, **more):
        self.box(user, at, "text", place, {
            "ps": WIDTH, "text": text, "fontSize": size, "fontName": "Arial", "color": color,
            **more.pop("fields", {})}, **more)

    def diagram(self, user, at, kind, place, color, pixel=1, points=(), radii=None, **more):
        fields = {"ps": BASE_WIDTH, "kind": kind, "color": color, "pixel": pixel,
                  "points": [[across(x), down(y)] for x, y in points]}
        if radii:
            fields["radiusX"], fields["radiusY"] = cut(radii[0] / WIDTH), cut(radii[1] / HEIGHT)
        self.box(user, at, "diagram", place, fields, **more)

    def stroke(self, user, at, positions, type_name="line", color=INK, pixel=1, ID=None, late=(),
               copies=1, singly=False, shake=1.0, is_end=True):
        """A stroke in pieces, each sent when its last position is drawn.

        Pieces whose numbers are in `late` arrive after the one that follows them. With `singly` every
        position is a piece of its own and stands in the record itself instead of in a path.
        """
        ID = ID or f"{user}_{round(at * 100)}"
        timed = [(across(x + self.wobble(shake)), down(y + self.wobble(shake)),
                  round(START + at + STEP * i, 3)) for i, (x, y) in enumerate(positions)]
        size = 1 if singly else PIECE
        for number, first in enumerate(range(0, len(timed), size)):
            piece = timed[first:first + size]
            x, y, ts = piece[-1]
            record = {"type": type_name, "ts": ts, "ID": ID, "x": x, "y": y, "ps": BASE_WIDTH,
                      "end": is_end and first + size >= len(timed)}
            if not singly:
                record["path"] = [list(position) for position in piece]
            if color:
                record["color"] = color
            record.update({"widthIndex": 1, "pixel": pixel})
            delay = STEP * (size + 0.5) if number in late else 0
            self.add(ts - START + delay, record, copies)

    def wobble(self, shake):
        return shake * (2 * self.random.random() - 1)

    def write(self, out):
        for _, _, record in sorted(self.arrivals, key=lambda arrival: arrival[:2]):
            out.write(json.dumps(record, ensure_ascii=False, separators=(",", ":")) + "\n")


def letter_a(x, y):
    return arc(x + 16, y + 24, 16, 16, -20, -340, 10) + line((x + 32, y + 12), (x + 34, y + 42), count=4)


def letter_b(x, y):
    return line((x, y - 20), (x, y + 38), count=5) + arc(x + 16, y + 24, 16, 16, 180, 500, 9)


def letter_c(x, y):
    return arc(x + 18, y + 24, 18, 17, -45, -315, 10)


def squared(x, y):
    return arc(x + 9, y - 10, 9, 8, -180, 20, 6) + line((x + 15, y), (x, y + 14), (x + 20, y + 14), count=6)


def digit_3(x, y):
    return arc(x + 10, y + 9, 11, 9, -150, 80, 6) + arc(x + 10, y + 28, 12, 10, -80, 150, 6)


def digit_4(x, y):
    return line((x + 14, y), (x, y + 24), (x + 26, y + 24), count=7) + line(
        (x + 18, y + 10), (x + 18, y + 38), count=5)


def digit_5(x, y):
    return line((x + 22, y), (x + 2, y), (x, y + 15), count=5) + arc(x + 9, y + 25, 13, 12, -100, 130, 7)


def digit_6(x, y):
    return arc(x + 22, y + 24, 22, 24, -80, -180, 5) + arc(x + 11, y + 26, 11, 11, 180, 520, 7)


def formula(lesson):
    """The teacher writes a2 + b2 = c2 while a pupil marks the sides with 3, 4 and 5."""
    y = 455
    strokes = [
        (6.0, letter_a(850, y)), (6.6, squared(892, y)),
        (7.2, line((926, y + 24), (956, y + 24), count=4)),
        (7.6, line((941, y + 9), (941, y + 39), count=4)),
        (8.0, letter_b(976, y)), (8.6, squared(1016, y)),
        (9.2, line((1052, y + 18), (1082, y + 18), count=4)),
        (9.6, line((1052, y + 31), (1082, y + 31), count=4)),
        (10.0, letter_c(1100, y)), (10.6, squared(1142, y)),
    ]
    for at, positions in strokes:
        lesson.stroke("u1", at, positions, color=RED)
    lesson.stroke("u2", 6.1, digit_3(575, 325), color=BLUE, copies=2)
    lesson.stroke("u2", 7.3, digit_4(640, 375), color=BLUE)
    lesson.stroke("u2", 8.7, digit_5(675, 290), color=BLUE, singly=True)


def first_page(lesson):
    lesson.page("u1", 0.0, 1)
    lesson.text("u1", 1.0, (60, 40, 330, 130), "Pythagoras' Theorm", size=46)
    lesson.box("u1", 1.8, "cursor", (300, 200, 10, 10), {"url": "", "rotation": 0})
    lesson.diagram("u1", 2.0, "triangle", (560, 270, 200, 150), INK, pixel=2,
                   points=[(560, 420), (560, 270), (760, 420)])
    lesson.diagram("u1", 2.5, "rectangle", (410, 270, 150, 150), BLUE)
    lesson.diagram("u1", 3.0, "rectangle", (560, 420, 200, 200), GREEN)
    lesson.stroke("u1", 3.5, line((560, 270), (710, 70), (910, 220), (760, 420), count=31),
                  color=ORANGE, pixel=1, late=[3], shake=1.5)
    lesson.text("u1", 4.5, (455, 315, 70, 60), "a²", color=BLUE, copies=2)
    lesson.text("u1", 4.6, (630, 490, 70, 60), "b²", color=GREEN)
    lesson.text("u1", 4.7, (800, 90, 70, 60), "c²", color=ORANGE)
    lesson.record("u1", 5.0, "text", {
        "x": KEEP, "y": KEEP, "w": 0, "h": 0, "text": "Pythagoras' theorem", "fontSize": 0, "color": ""},
        ID="u1_100")
    lesson.box("u2", 5.5, "cursor", (600, 330, 10, 10), {"url": "", "rotation": 0})
    formula(lesson)
    zigzag = [(300 + 12 * i, 520 + 50 * (i % 2)) for i in range(20)]
    lesson.stroke("u3", 9.0, zigzag, color=VIOLET)
    lesson.record("u1", 11.0, "remove", {"rmID": "u3_900"}, copies=2)
    lesson.stroke("u1", 12.0, line((868, 472), (1226, 478), count=16), "markerPen", "#FFA4005e", 14)
    # Takes the marker's end away. Its inner side is as round as the end that stays.
    lesson.stroke("u1", 13.0, arc(1165, 477, 54, 54, -55, 55, 10), "eraser", None, 20)
    lesson.box("u1", 14.0, "magnifier", (820, 420, 200, 120), {})
    lesson.box("u1", 14.4, "magnifier", (900, 420, 200, 120), {})
    lesson.box("u2", 15.0, "camera", (60, 520, 240, 135), {"isBack": True})
    lesson.stroke("u2", 15.5, digit_6(745, 290), color=BLUE)
    lesson.stroke("u2", 16.3, line((742, 292), (772, 292), (742, 325), (772, 325), count=14), "eraser",
                  None, 12)
    lesson.stroke("u2", 17.0, line((560, 400), (580, 400), count=9), color=INK, is_end=False)


def second_page(lesson):
    lesson.page("u1", 20.0, 2)
    lesson.text("u1", 21.0, (60, 30, 700, 80), "Circles and their friends", size=46)
    lesson.diagram("u1", 21.5, "circle", (90, 150, 200, 200), RED, radii=(100, 100))
    lesson.diagram("u1", 22.0, "line", (190, 250, 100, 1), INK, points=[(190, 250), (290, 250)])
    lesson.text("u1", 22.3, (250, 250, 40, 50), "r", size=28)
    lesson.diagram("u1", 22.5, "arrowLine", (195, 150, 165, 95), INK, points=[(360, 150), (200, 243)])
    lesson.text("u1", 22.6, (365, 120, 140, 50), "centre", size=24)
    lesson.diagram("u1", 23.0, "ellipse", (440, 190, 320, 160), BLUE, pixel=2, radii=(160, 80))
    lesson.diagram("u1", 23.5, "rhombus", (90, 430, 200, 200), GREEN, pixel=2)
    lesson.diagram("u1", 24.0, "triangle", (340, 430, 200, 200), ORANGE, pixel=2)
    lesson.diagram("u1", 24.5, "rectangle", (590, 430, 200, 200), VIOLET, pixel=2)
    lesson.box("u3", 25.0, "image", (840, 30, 180, 140), {
        "url": "https://school.example/pictures/clock.png", "rotation": 0, "undeletable": False})
    lesson.box("u1", 25.5, "media", (840, 330, 380, 200), {
        "url": "https://school.example/videos/ellipse.mp4", "owner": 1, "kind": "video",
        "manualPlayTs": 0, "autoPlayTs": 0, "status": "playing", "duration": 95,
        "title": "How to draw an ellipse", "cover": "https://school.example/videos/ellipse.jpg"})
    lesson.box("u3", 26.0, "image", (1000, 110, 0, 0), {"url": "", "undeletable": True}, ID="u3_2500")
    lesson.box("u1", 26.5, "media", (840, 565, 380, 80), {
        "url": "https://school.example/sounds/round.ogg", "owner": 1, "kind": "audio",
        "title": "Round and round", "duration": 62})
    lesson.record("u1", 27.0, "media", {
        "x": KEEP, "y": KEEP, "w": 0, "h": 0, "status": "paused", "manualPlayTs": 12, "autoPlayTs": 11},
        ID="u1_2550")
    lesson.record("u1", 27.5, "mediaList", {"owner": 1, "list": [
        {"ID": "m1", "owner": 1, "url": "https://school.example/videos/ellipse.mp4", "duration": 95,
         "category": 1, "title": "How to draw an ellipse"},
        {"ID": "m2", "owner": 1, "url": "https://school.example/sounds/round.ogg", "duration": 62,
         "category": 2, "title": "Round and round"}]}, copies=2)
    lesson.record("u1", 28.0, "offset", {"direction": 1, "value": 0.25})
    lesson.text("u2", 28.5, (455, 245, 300, 60), "an ellipse is round, too", size=24, color=BLUE)
    lesson.record("u1", 29.0, "offset", {"direction": 1, "value": 0.5}, ID="u1_2800")
    lesson.record("u1", 29.5, "diagram", {
        "x": KEEP, "y": KEEP, "w": -1, "h": -1, "kind": "circle", "points": [], "color": VIOLET,
        "pixel": 2, "ps": BASE_WIDTH, "radiusX": -1, "radiusY": -1}, ID="u1_2150")
    lesson.record("u1", 30.0, "instruction", {})
    lesson.box("u2", 31.0, "cursor", (560, 380, 10, 10), {"url": "", "rotation": 0})


def third_page(lesson):
    def at_angle(degrees):
        return 160 + 900 * degrees / 360

    def wave(function, height, count, degrees):
        angles = [degrees * i / (count - 1) for i in range(count)]
        return [(at_angle(a), 400 - height * function(math.radians(a))) for a in angles]

    lesson.page("u1", 40.0, 3)
    lesson.stroke("u1", 41.0, line((200, 200), (900, 600), count=20), color=RED, pixel=4)
    lesson.stroke("u2", 41.5, line((200, 600), (900, 200), count=10), "markerPen", "#21A7FF5e", 14)
    lesson.record("u1", 42.5, "clear", {"resource": RESOURCE, "clearPage": 3})
    lesson.text("u1", 43.0, (60, 30, 360, 80), "Sine and cosine", size=40,
                fields={"bgColor": "#FFF0C8FF"})
    lesson.diagram("u1", 43.5, "arrowLine", (120, 400, 1060, 1), INK, points=[(120, 400), (1180, 400)])
    lesson.diagram("u1", 44.0, "arrowLine", (160, 160, 1, 480), INK, points=[(160, 640), (160, 160)])
    lesson.stroke("u1", 44.5, wave(math.sin, 180, 121, 400), color=RED, pixel=2, late=[10], shake=0.6)
    lesson.stroke("u2", 45.0, wave(math.cos, 180, 61, 360), "markerPen", "#21A7FF5e", 7, copies=2,
                  shake=0.6)
    # A line drawn 72 points too low, then moved up by a tenth of the board's height.
    lesson.stroke("u2", 47.5, line((300, 292), (470, 292), count=11), color=GREEN, pixel=2, shake=0)
    lesson.record("u2", 48.2, "line", {
        "x": across(470), "y": down(220), "ps": BASE_WIDTH, "end": True, "color": GREEN,
        "widthIndex": 1, "pixel": 2, "offset": [0, -0.1]}, ID="u2_4750")
    lesson.text("u1", 49.0, (at_angle(180) + 5, 350, 60, 50), "π", size=30)
    lesson.text("u1", 49.1, (at_angle(360) - 65, 350, 60, 50), "2π", size=30)
    lesson.text("u1", 49.2, (110, 195, 50, 50), "1", size=30)
    lesson.text("u1", 49.3, (100, 555, 60, 50), "−1", size=30)
    lesson.text("u3", 49.5, (600, 80, 200, 60), "Is this a snake?", color=VIOLET)
    lesson.stroke("u1", 50.0, line((1082, 372), (1165, 278), count=6), "eraser", None, 10)
    lesson.record("u3", 50.5, "line", {
        "x": across(385), "y": down(220), "ps": BASE_WIDTH, "end": True, "color": VIOLET,
        "widthIndex": 2, "pixel": 7})
    lesson.record("u1", 51.0, "remove", {"rmID": "u3_4950"})


def first_page_again(lesson):
    lesson.page("u1", 60.0, 1)
    lesson.stroke("u1", 61.0, line((1180, 575), (1200, 600), (1240, 540), count=9), color=GREEN, pixel=2)
    lesson.text("u3", 62.0, (880, 550, 290, 70), "3² + 4² = 5²", size=40, color=VIOLET,
                fields={"bgColor": ""})
    # The pen that drew the mark of the right angle was still down.
    lesson.stroke("u2", 63.0, line((580, 405), (580, 420), count=4), color=INK, ID="u2_1700")
    lesson.box("u1", 63.5, "text", (705, 215, 0, 0), {"text": "", "fontSize": 0, "color": ""}, ID="u1_470")
    lesson.box("u1", 64.0, "magnifier", (840, 425, 370, 105), {})


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seed", type=int, default=20)
    lesson = Lesson(parser.parse_args().seed)
    first_page(lesson)
    second_page(lesson)
    third_page(lesson)
    first_page_again(lesson)
    sys.stdout.reconfigure(encoding="utf-8")
    lesson.write(sys.stdout)


if __name__ == "__main__":
    main()
