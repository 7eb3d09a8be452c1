#!/usr/bin/env python3
"""Draws the pages of folder BOARD into OUT/page-KEY.png. Exit code 1: failed, 2: wrong usage."""
import argparse, cairo, cmath, math, pathlib, plistlib, re, sys

WIDTHS = {"line": (2, 4, 7), "markerPen": (8, 14, 20), "eraser": (20,)}  # of a board 400 wide
METHODS = {**dict.fromkeys(WIDTHS, "draw_stroke"), "diagram": "draw_diagram", "text": "draw_text",
           **dict.fromkeys(("image", "cursor", "media", "camera"), "draw_box"),
           **dict.fromkeys(("remove", "clear", "switchPage", "offset", "mediaList"))}
NEEDED = {"line": 2, "arrowLine": 2, "triangle": 3}  # points of a diagram
SHAPES = {"rectangle": (0, 1, 1 + 1j, 1j), "triangle": (0.5, 1 + 1j, 1j), "line": (0, 1 + 1j),
          "rhombus": (0.5, 1 + 0.5j, 0.5 + 1j, 0.5j), "arrowLine": (0, 1 + 1j)}  # parts of the box
ELLIPSE = [0.5 + 0.5j + cmath.rect(0.5, math.radians(turn)) for turn in range(360)]
FAR, AS_SIZE = 100, (-0.5, -0.5)  # limit of coordinates, in boards; makes a size of a position
NUMBER = r"-?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][+-]?[0-9]+)?"  # neither NaN nor an infinity

def points_in(value, counted=2):  # arrays of at least two; `counted` of them, None: all, numbers
    return [item for item in (value if isinstance(value, list) else ()) if isinstance(
        item, list) and len(item) > 1 and all(type(n) in (int, float) for n in item[:counted])]

def text_of(record, key):
    return str(record[key]) if type(record.get(key)) in (str, int, float) else ""

def real(record, key):
    text = "1" if record.get(key) is True else text_of(record, key)
    return max(-1e18, min(1e18, float(text))) if re.fullmatch(NUMBER, text) else 0

def colour(text, default="303033FF"):
    code = re.fullmatch("#?([0-9A-Fa-f]{6})([0-9A-Fa-f]{2})?", text)
    return [byte / 255 for byte in bytes.fromhex(code[1] + (code[2] or "FF") if code else default)]

class Pen(cairo.Context):  # points and sizes are complex numbers: pixels to the right, downward
    def draw(self, record):
        self.board = complex(self.get_target().get_width(), self.get_target().get_height())
        self.set_line_cap(cairo.LINE_CAP_ROUND)
        self.set_line_join(cairo.LINE_JOIN_ROUND)
        self.set_source_rgba(*colour(text_of(record, "color")))
        kind = text_of(record, "type")
        method = METHODS.get(kind, "draw_box" if "w" in record else None)
        if method:
            corner = self.place([real(record, "x"), real(record, "y")])
            size = self.place([real(record, "w"), real(record, "h")], AS_SIZE)
            getattr(self, method)(record, kind, corner, size)

    def place(self, at, moved=(0, 0)):
        x, y = (max(-FAR, min(FAR, a + b)) + 0.5 for a, b in zip(at, moved))
        return complex(x * self.board.real, y * self.board.imag)

    def set_width(self, record, otherwise):
        pixel, reference = int(real(record, "pixel")), int(real(record, "ps"))
        width = self.board.real * pixel / reference if pixel > 0 < reference else otherwise
        self.set_line_width(min(self.board.real, width))

    def polygon(self, points, finish):
        for point in points:
            self.line_to(point.real, point.imag)
        self.close_path()
        finish()

    def draw_stroke(self, record, kind, corner, _):
        path, moved, widths = record.get("path"), record.get("offset"), WIDTHS[kind]
        moved = moved if points_in([moved]) and len(moved) == 2 else (0, 0)
        points = [self.place(at, moved) for at in points_in(path, None)]
        points = points if isinstance(path, list) else [corner]
        entry = dict(enumerate(widths)).get(int(real(record, "widthIndex")), widths[0])
        self.set_width(record, entry * self.board.real / 400)
        if kind == "eraser":
            self.set_source_rgb(1, 1, 1)  # as the background is nothing but white
        joints = points[:1] + [(a + b) / 2 for a, b in zip(points[1:], points[2:])]
        for a, control, b in zip(joints, points[1:], joints[1:]):  # a quadratic curve from a to b
            first, second = (a + 2 * control) / 3, (b + 2 * control) / 3
            self.line_to(a.real, a.imag)
            self.curve_to(first.real, first.imag, second.real, second.imag, b.real, b.imag)
        for point in joints[-1:] + points[-1:]:  # a lone position twice: round ends make a dot
            self.line_to(point.real, point.imag)
        self.stroke()

    def draw_diagram(self, record, _, corner, size):
        kind = text_of(record, "kind")
        half = self.place([real(record, "radiusX"), real(record, "radiusY")], AS_SIZE)
        points = [self.place(at) for at in points_in(record.get("points"))]
        if len(points) < NEEDED.get(kind, math.inf):
            if size and kind not in SHAPES and half.real > 0 < half.imag:
                corner, size = corner + size / 2 - half, 2 * half
            points = [corner + complex(at.real * size.real, at.imag * size.imag)
                      for at in SHAPES.get(kind, ELLIPSE) if size]
        self.set_width(record, 1)
        if kind in ("line", "arrowLine"):
            points = [points[0], points[-1]] if points and points[0] != points[-1] else []
        self.polygon(points, self.stroke)
        if kind == "arrowLine" and points:
            side = cmath.rect(4.5 * self.get_line_width(), cmath.phase(points[0] - points[1]))
            turns = cmath.rect(1, 0.42), cmath.rect(1, -0.42)
            self.polygon([points[1], *(points[1] + side * turn for turn in turns)], self.fill)

    def draw_text(self, record, _, corner, size):
        width, font, reference = self.board.real, real(record, "fontSize"), int(real(record, "ps"))
        font = font * width / reference if reference > 0 else font
        self.select_font_face(text_of(record, "fontName") or "sans-serif")
        self.set_font_size(min(font, width) if font > 0 else width / 20)
        lines, ascent, step = [], self.font_extents()[0], sum(self.font_extents()[:2])
        for first, *words in (line.split(" ") for line in text_of(record, "text").split("\n")):
            lines.append(first)
            for word in words:
                longer = f"{lines[-1]} {word}"
                fits = self.text_extents(longer).x_advance <= size.real - step / 2
                lines[-1:] = [longer] if fits else [lines[-1], word]
        self.translate(corner.real, corner.imag)
        self.rectangle(0, 0, size.real, max(size.imag, step * (len(lines) + 0.5)))
        self.set_source_rgba(*colour(text_of(record, "bgColor"), default="00000000"))
        self.fill()
        self.set_source_rgba(*colour(text_of(record, "color")))
        for row, line in enumerate(lines):
            self.move_to(step / 4, step * (row + 0.25) + ascent)
            self.show_text(line)

    def draw_box(self, record, kind, corner, size):
        w, h, unit, third = size.real, size.imag, self.board.real / 400, cmath.rect(1, math.tau / 3)
        if kind == "cursor":
            tip = corner + complex(min(w, 0), min(h, 0))
            return self.polygon((tip, tip + 10j * unit, tip + (6 + 7j) * unit), self.fill)
        self.set_source_rgba(*colour("#9AA3B8"))
        self.set_line_width(unit)
        self.translate(corner.real + w / 2, corner.imag + h / 2)
        if kind in ("image", "media"):  # in place of the picture a triangle
            self.rotate(math.radians(real(record, "rotation")))
            self.polygon([min(abs(w), abs(h)) / 4 * third**n for n in range(3)], self.fill)
        self.rectangle(-w / 2, -h / 2, w, h)
        self.stroke()

if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("board", type=pathlib.Path)
    parser.add_argument("out", type=pathlib.Path)
    parser.add_argument("--size", default="1280x720")
    options = parser.parse_args()
    size = [int(n) for n in options.size.split("x") if re.fullmatch("[1-9][0-9]{0,3}", n)]
    files = sorted(options.board.glob("snap_*_*.plist"))
    if len(size) != 2 or not files:
        parser.error(f"--size is not WIDTHxHEIGHT, or {options.board} has no snap_KEY.plist")
    for file in files:
        try:
            white = bytearray(b"\xFF" * (4 * size[0] * size[1]))
            page = cairo.ImageSurface.create_for_data(white, cairo.FORMAT_RGB24, *size)
            for record in plistlib.loads(file.read_bytes(), fmt=plistlib.FMT_XML)[:]:
                if isinstance(record, dict):
                    Pen(page).draw(record)
            options.out.mkdir(parents=True, exist_ok=True)
            page.write_to_png(str(options.out / f"page-{file.stem[5:]}.png"))
        except Exception as error:  # plistlib has no class of its own for a damaged file
            sys.exit(f"{file}: {error!r}")
