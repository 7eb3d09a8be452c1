#!/usr/bin/env python3
"""The second lesson ends as it must: every entry, count and colour here was worked out by hand from
what make_second_lesson.py says is drawn, and from the rules by which a page is compacted."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import support

INK, RED, BLUE = (0x30, 0x30, 0x33), (0xFF, 0x34, 0x67), (0x21, 0xA7, 0xFF)
ORANGE, GREEN, VIOLET = (0xFF, 0xA4, 0x00), (0x00, 0xCD, 0xB1), (0x97, 0x63, 0xFF)
WHITE = (255, 255, 255)
PLACEHOLDER = (237, 240, 245)

# Per page the snapshot: type, identifier and, for strokes, the number of positions.
PAGE_1 = [
    ("diagram", "u1_200"), ("diagram", "u1_250"), ("diagram", "u1_300"),
    ("line", "u1_350", 26),  # of 31 positions, the five that arrived late are dropped
    ("text", "u1_450"), ("text", "u1_460"),
    ("text", "u1_100"),  # corrected: an edited box comes to the top
    # The teacher's formula and the pupil's digits, in the order in which their first pieces came.
    ("line", "u1_600", 14), ("line", "u2_610", 12), ("line", "u1_660", 12), ("line", "u1_720", 4),
    ("line", "u2_730", 12), ("line", "u1_760", 4), ("line", "u1_800", 14), ("line", "u1_860", 12),
    ("line", "u2_870", 12), ("line", "u1_920", 4), ("line", "u1_960", 4), ("line", "u1_1000", 10),
    ("line", "u1_1060", 12),
    # u3_900 is removed.
    ("markerPen", "u1_1200", 16), ("eraser", "u1_1300", 10), ("line", "u2_1550", 12),
    ("eraser", "u2_1630", 14),
    ("line", "u2_1700", 13),  # nine positions, and four more after the page was left
    ("line", "u1_6100", 9), ("text", "u3_6200"),
    ("text", "u1_470"),  # moved on the second visit
    ("magnifier", "u1_6400"),  # transient, but nothing came after it
]
PAGE_2 = [
    ("text", "u1_2100"), ("diagram", "u1_2200"), ("text", "u1_2230"), ("diagram", "u1_2250"),
    ("text", "u1_2260"), ("diagram", "u1_2300"), ("diagram", "u1_2350"), ("diagram", "u1_2400"),
    ("diagram", "u1_2450"),
    ("image", "u3_2500"),  # moved
    ("media", "u1_2650"),
    ("media", "u1_2550"),  # paused
    ("mediaList", "u1_2750"),  # came twice at once: stands once
    ("offset", "u1_2800"), ("text", "u2_2850"),
    ("offset", "u1_2800"),  # came again later: no box, so it stands twice
    ("diagram", "u1_2150"),  # recoloured
    ("instruction", "u1_3000"),
    ("cursor", "u2_3100"),
]
PAGE_3 = [  # what came before the clear is gone
    ("text", "u1_4300"), ("diagram", "u1_4350"), ("diagram", "u1_4400"),
    ("line", "u1_4450", 116),  # 121 less the five that arrived late
    ("markerPen", "u2_4500", 61),  # every piece came twice
    ("line", "u2_4750", 11),  # the update that moved it adds no position
    ("text", "u1_4900"), ("text", "u1_4910"), ("text", "u1_4920"), ("text", "u1_4930"),
    # u3_4950 is removed.
    ("eraser", "u1_5000", 6),
    ("line", "u3_5050", 1),
]

# Per page and identifier the fields that are worth a look.
FIELDS = {
    "8_1": {
        # Only the text was given; position, size, font and colour stay.
        "u1_100": {"text": "Pythagoras' theorem", "fontSize": 46, "fontName": "Arial", "x": -0.45312,
                   "y": -0.44444, "w": 0.25781, "h": 0.18055, "color": "#303033FF"},
        # Only the place was given; the size stays.
        "u1_470": {"text": "c²", "x": 0.05078, "y": -0.20138, "w": 0.05468, "h": 0.08333,
                   "fontSize": 32, "color": "#FFA400FF"},
        "u3_6200": {"text": "3² + 4² = 5²", "bgColor": ""},
        "u1_200": {"points": [[-0.0625, 0.08333], [-0.0625, -0.125], [0.09375, 0.08333]]},
        "u2_1700": {"ts": 1700010063.06, "end": True},
        "u1_1200": {"color": "#FFA4005e", "pixel": 14, "end": True},
    },
    "8_2": {
        "u3_2500": {"x": 0.28125, "y": -0.34722, "w": 0.14062, "h": 0.19444, "undeletable": True,
                    "url": "https://school.example/pictures/clock.png"},
        "u1_2550": {"status": "paused", "manualPlayTs": 12, "autoPlayTs": 11, "duration": 95,
                    "kind": "video", "title": "How to draw an ellipse", "owner": 1, "x": 0.15625,
                    "url": "https://school.example/videos/ellipse.mp4"},
        "u1_2800": {"direction": 1, "value": 0.25},  # the later value is not taken over
        "u1_2150": {"kind": "circle", "color": "#9763FFFF", "pixel": 2, "radiusX": 0.07812,
                    "radiusY": 0.13888, "x": -0.42968, "y": -0.29166, "w": 0.15625, "h": 0.27777},
        "u1_2750": {"owner": 1, "list": [
            {"ID": "m1", "owner": 1, "url": "https://school.example/videos/ellipse.mp4",
             "duration": 95, "category": 1, "title": "How to draw an ellipse"},
            {"ID": "m2", "owner": 1, "url": "https://school.example/sounds/round.ogg", "duration": 62,
             "category": 2, "title": "Round and round"}]},
    },
    "8_3": {
        "u2_4750": {"offset": [0, -0.1], "x": -0.13281, "y": -0.19444, "ts": 1700010048.2},
        "u3_5050": {"path": [[-0.19921, -0.19444, 1700010050.5]]},
        "u1_4300": {"bgColor": "#FFF0C8FF"},
    },
}

# Per page the colours of single points.
PIXELS = {
    "8_1": {
        "top of the square over a": (485, 270, BLUE),
        "bottom of the square over b": (660, 620, GREEN),
        "middle of the hypotenuse": (660, 345, INK),
        # 0x5e of 255 parts of orange over white.
        "the marker where nothing else is": (918, 478, (255, 221, 161)),
        "the marker where it was erased": (1226, 478, WHITE),
        "just beside that": (1200, 478, WHITE),
    },
    "8_2": {
        "left of the circle, recoloured": (90, 250, VIOLET),
        "left of the ellipse": (440, 270, BLUE),
        "top of the ellipse": (600, 190, BLUE),
        "upper left side of the rhombus": (140, 480, GREEN),
        "base of the triangle": (440, 630, ORANGE),
        "left side of the triangle": (390, 530, ORANGE),
        "left side of the rectangle": (590, 530, VIOLET),
        "the radius": (240, 250, INK),
        "the arrow": (320, 173, INK),
        "the arrow's head": (206, 239, INK),
        "the image where it was moved to": (1010, 120, PLACEHOLDER),
        "the image where it was before": (860, 60, WHITE),
        "the video": (850, 340, PLACEHOLDER),
        "the audio": (850, 575, PLACEHOLDER),
        "the cursor": (563, 395, INK),
    },
    "8_3": {
        "the horizontal axis": (300, 400, INK),
        "the cleared stroke": (375, 300, WHITE),
        # 0x5e of 255 parts of blue over white.
        "the marker": (610, 580, (173, 223, 255)),
        "the moved line": (330, 220, GREEN),
        "where the line was before": (330, 292, WHITE),
        "the dot": (385, 220, VIOLET),
        "the erased end of the sine": (1135, 310, WHITE),
        "a little before that": (1110, 338, WHITE),
        "the axis beside the eraser": (1120, 400, INK),
        "the ground of the title": (70, 100, (0xFF, 0xF0, 0xC8)),
    },
}


def made(*arguments):
    script = support.argument(2) / "make_second_lesson.py"
    return subprocess.run([sys.executable, script, *arguments], check=True, capture_output=True).stdout


class Generator(unittest.TestCase):
    def test_the_shipped_lesson_is_what_the_script_makes(self):
        self.assertEqual(made(), support.recorded("second_lesson.ndjson").read_bytes())

    def test_another_seed_changes_how_steady_the_hands_are_and_nothing_else(self):
        def without_positions(lesson):
            records = [json.loads(line) for line in lesson.splitlines()]
            for record in records:
                record["path"] = len(record.get("path", []))
                if record["type"] in ("line", "markerPen", "eraser"):
                    del record["x"], record["y"]
            return records
        self.assertNotEqual(made("--seed", "1"), made())
        self.assertEqual(without_positions(made("--seed", "1")), without_positions(made()))


class SecondLesson(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.home = pathlib.Path(folder.name)
        cls.result = support.play(support.recorded("second_lesson.ndjson"), "--board", cls.home,
                                  "--second-client", "--svg", cls.home, "--png", cls.home)
        cls.pictures = {}

    def entries(self, key):
        return support.records_in(self.home / "whiteBoard" / f"snap_{key}.plist")

    def picture(self, key):
        if key not in self.pictures:
            self.pictures[key] = support.Picture(self.home / f"page-{key}.png")
        return self.pictures[key]

    def assert_close(self, colour, expected, where):
        difference = max(abs(a - b) for a, b in zip(colour, expected))
        self.assertLessEqual(difference, 2, f"{where}: {colour} instead of {expected}")

    def test_every_page_is_verified_and_all_clients_agree(self):
        self.assertEqual((self.result.returncode, self.result.stderr), (0, ""))
        self.assertIn("3 pages, 25 strokes, 421 positions: all pages verified.\n", self.result.stdout)
        self.assertIn("Second client: 3 pages, 3 pictures, 7 files equal.\n", self.result.stdout)
        self.assertIn("Client that received everything twice: 3 pages, 3 pictures equal.\n",
                      self.result.stdout)

    def test_every_page_ends_with_the_entries_worked_out_by_hand(self):
        for key, expected in [("8_1", PAGE_1), ("8_2", PAGE_2), ("8_3", PAGE_3)]:
            found = [(entry["type"], entry["ID"]) + ((len(entry["path"]),) if "path" in entry else ())
                     for entry in self.entries(key)]
            self.assertEqual(found, expected, key)

    def test_fields_hold_what_the_last_update_that_gave_them_said(self):
        for key, identifiers in FIELDS.items():
            for entry in self.entries(key):
                for field, value in identifiers.get(entry["ID"], {}).items():
                    if field == "list":
                        self.assertEqual(entry[field], value, (key, entry["ID"]))
                    else:
                        self.assertEqual(entry.get(field), value, (key, entry["ID"], field))

    def test_every_field_to_look_at_is_there(self):
        for key, identifiers in FIELDS.items():
            self.assertLessEqual(set(identifiers), {entry["ID"] for entry in self.entries(key)})

    def test_the_log_of_a_page_holds_every_record_that_came_while_it_was_shown(self):
        arrived, key = {}, None
        for line in support.recorded("second_lesson.ndjson").read_text(encoding="utf-8").splitlines():
            record = json.loads(line)
            if record["type"] == "switchPage":
                key = f"{record['WBID']}_{record['curPage']}"
            else:
                arrived.setdefault(key, []).append((record["type"], record["ID"]))
        for key, expected in arrived.items():
            log = support.records_in(self.home / "whiteBoard" / f"whole_{key}.plist")
            self.assertEqual([(record["type"], record["ID"]) for record in log], expected, key)

    def test_the_visits_are_recorded_in_their_order(self):
        visits = support.records_in(self.home / "whiteBoard" / "page.plist")
        self.assertEqual([visit["curPage"] for visit in visits], [1, 2, 3, 1])

    def test_the_pictures_have_the_right_colours_at_chosen_points(self):
        for key, points in PIXELS.items():
            picture = self.picture(key)
            self.assertEqual((picture.width, picture.height), (1280, 720))
            for where, (x, y, colour) in points.items():
                self.assert_close(picture.at(x, y), colour, f"page {key}, {where}")

    def test_nothing_is_left_of_what_was_erased_removed_or_cleared(self):
        for key, what, area in [("8_1", "the erased digit", (740, 285, 780, 332)),
                                ("8_1", "the removed zigzag", (290, 510, 540, 580)),
                                ("8_3", "the removed text", (600, 80, 800, 150))]:
            self.assertEqual(self.picture(key).colours_in(*area), {WHITE}, what)
        self.assertNotIn(RED, self.picture("8_2").colours_in(80, 140, 300, 360))

    def test_texts_and_strokes_show_where_they_are(self):
        for key, what, area, colour in [
                ("8_1", "the title", (60, 40, 390, 170), INK),
                ("8_1", "the moved text", (705, 215, 775, 275), ORANGE),
                ("8_1", "the formula", (840, 430, 1180, 500), RED),
                ("8_1", "a pupil's digit", (570, 320, 605, 365), BLUE),
                ("8_1", "the check mark", (1175, 535, 1250, 605), GREEN),
                ("8_2", "the text in the ellipse", (455, 245, 755, 305), BLUE),
                ("8_3", "the sine", (700, 500, 900, 600), RED)]:
            colours = self.picture(key).colours_in(*area)
            closest = min(max(abs(a - b) for a, b in zip(seen, colour)) for seen in colours)
            self.assertLessEqual(closest, 24, what)

    def test_svg_files_keep_paths_except_of_what_is_erased_in_part(self):
        svg = "{http://www.w3.org/2000/svg}"
        for key, erased in [("8_1", 2), ("8_2", 0), ("8_3", 1)]:
            root = ElementTree.parse(self.home / f"page-{key}.svg").getroot()
            self.assertEqual((root.get("width"), root.get("height")), ("1280px", "720px"))
            # cairo before 1.18 has no other way to erase in an SVG file than a small picture.
            self.assertLessEqual(len(root.findall(f".//{svg}image")), erased, key)
            self.assertGreater(len(root.findall(f".//{svg}path")), 9, key)


if __name__ == "__main__":
    support.main()
