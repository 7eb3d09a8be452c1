#!/usr/bin/env python3
"""Works out conversion_golden.txt: what every coordinate conversion must give, to the last bit.

    conversion_golden.py            writes the table beside this script
    conversion_golden.py --check    fails when the table is not what this script works out, or when the
                                    arithmetic of exact_double.py is not that of this machine's doubles

The formulas are written out here a second time, operation by operation, in exact arithmetic that is
rounded after each operation. A table that disagrees with the library is a mistake to be found, in one of
the two; the table is never written anew to make a test pass.
"""
import itertools
import pathlib
import sys

from exact_double import Double, Fraction

TABLE = pathlib.Path(__file__).resolve().parent / "conversion_golden.txt"

D = Double.of
ONE, HALF, MINUS_HALF, CUT = D(1), D("0.5"), D("-0.5"), D(100000)

POINT_CLASSES = ["VelWbVecPoint", "VelWbVecLine"]
BOX_CLASSES = ["VelWbVecSquare", "VelWbVecFile", "VelWbVecVideo", "VelWbVecText", "VelWbCaptureInfo",
               "VelWbVecDiagram", "VelWbVecCircle"]
VERSIONS = [0, 1, 2]


# ---- The formulas, in the order in which they are evaluated ----

def cut(a):
    return D((a * CUT).truncated()) / CUT


def rect_of_vector(version, W, H, x, y, w, h):
    y1 = (y - h) + HALF if version == 1 else (y + MINUS_HALF) + ONE
    return [W * ((x + MINUS_HALF) + ONE), H * y1, W * w, H * h]


def point_to_vector(version, is_box, W, H, px, py, h):
    x = px / W
    if version != 1:
        y = py / H
        x = (ONE - ((ONE - x) + (ONE - x))) * HALF
        y = (ONE - ((ONE - y) + (ONE - y))) * HALF
    else:
        if is_box:
            height = rect_of_vector(version, W, H, x, D(0), D(0), h)[3]
            y = (H - (py + height)) / H
        else:
            y = (H - py) / H
        x = (ONE - ((ONE - x) + (ONE - x))) * HALF
        y = (ONE - (y + y)) * HALF
    return [cut(x), cut(y)]


def size_to_vector(W, H, sw, sh):
    return [cut(sw / W), cut(sh / H)]


def point_and_size_to_vector(version, W, H, px, py, sw, sh):
    w, h = size_to_vector(W, H, sw, sh)
    return point_to_vector(version, True, W, H, px, py, h) + [w, h]


def point_to_scale(version, W, H, px, py):
    xx = ONE - px / W
    yy = (H - py) / H if version == 1 else ONE - py / H
    return [cut((ONE - (xx + xx)) * HALF), cut((ONE - (yy + yy)) * HALF)]


def vector_to_point(version, is_box, W, H, x, y, h):
    if version == 1:
        if is_box:
            y = y - h
        y1 = y + HALF
    else:
        y1 = (y + MINUS_HALF) + ONE
    return [W * ((x + MINUS_HALF) + ONE), H * y1]


def scale_to_point(version, W, H, sx, sy):
    y1 = sy + HALF if version == 1 else (sy + MINUS_HALF) + ONE
    return [W * ((sx + MINUS_HALF) + ONE), H * y1]


def shift_from_pc(v):
    return (v + MINUS_HALF) + ONE


def shift_to_pc(v):
    return (ONE - ((ONE - v) + (ONE - v))) * HALF


# ---- What is put in ----

class Numbers:
    """A fixed sequence of numbers that look random (splitmix64), the same on every machine."""

    def __init__(self, seed):
        self.state = seed

    def below(self, limit):
        mask = 2**64 - 1
        self.state = (self.state + 0x9E3779B97F4A7C15) & mask
        z = self.state
        z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & mask
        z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & mask
        return ((z ^ (z >> 31)) & mask) % limit

    def pick(self, items):
        return items[self.below(len(items))]


BOARDS = [(D(w), D(h)) for w, h in [
    (400, 225), (1280, 720), (1366, 768), ("500.5", "281.25"), (Fraction(1, 3), Fraction(1, 7)),
    ("333.3", "0.1"), (1, 1), ("1e-300", "1e300"), ("1e300", "1e-300"), ("1e-310", "3e-320"),
    ("1e17", "9007199254740993"), ("1.7976931348623157e308", "4.9406564584124654e-324")]]
USUAL_BOARDS = BOARDS[:4]

# Where on the board: on it, on its edges, beyond it, far beyond it.
FRACTIONS = [Fraction(0), Fraction(1, 2), Fraction(1), Fraction(1, 3), Fraction(5, 18), Fraction(-1, 10),
             Fraction(99999, 100000), Fraction(17, 10), Fraction(-3), Fraction(10**6), Fraction(-10**15),
             Fraction(1, 10**7), Fraction(1, 10**320)]

# Normalised positions and sizes as vectors carry them, and some that no conversion has cut.
POSITIONS = [D(v) for v in ["0", "-0.25", "-0.27777", "0.5", "-0.5", "0.49999", "-0.00001", "0.12345",
                            "-1.7", "3", "1e300", "-1e-300", Fraction(1, 3), "-10"]]
POSITIONS.append(D(0, negative_zero=True))
SIZES = [D(v) for v in ["0", "0.2", "0.1", "1", "0.33333", "0.00001", "2.5", Fraction(2, 3), "1e-300", "1e10",
                        "-0.1"]]


def near(length, fraction):
    """The double nearest to a part of a length."""
    return D(length.exact() * fraction)


def points_on(board, numbers):
    W, H = board
    return near(W, numbers.pick(FRACTIONS)), near(H, numbers.pick(FRACTIONS))


def is_telling(version, is_box, W, H, px, py, h):
    x, y = point_to_vector(version, is_box, W, H, px, py, h)
    if not x.same(cut(px / W - HALF)):
        return True
    if not (version == 1 and is_box):
        return not y.same(cut(py / H - HALF))
    fused = D(py.exact() + H.exact() * h.exact())
    return not (y.same(cut((py + H * h) / H - HALF))
                and y.same(point_to_vector(version, False, W, H, px, fused, h)[1]))


def telling_points(version, is_box, numbers, count):
    """Points at which a shorter formula, or a fused multiply and add, would give another result.

    Most inputs do not tell: the cut to five decimals hides the last bits.
    """
    found = []
    while len(found) < count:
        W, H = numbers.pick(USUAL_BOARDS)
        px, py = D(Fraction(numbers.below(4000), 4)), D(Fraction(numbers.below(3000), 4))
        h = cut(D(numbers.below(300)) / H) if is_box else D(0)
        if is_telling(version, is_box, W, H, px, py, h):
            found.append(((W, H), px, py, h))
    return found


# ---- The rows ----

def rows_into_vectors():
    numbers = Numbers(1)
    telling = {(version, is_box): telling_points(version, is_box, numbers, 8)
               for version in VERSIONS for is_box in (False, True)}
    for version, name in itertools.product(VERSIONS, POINT_CLASSES + BOX_CLASSES):
        is_box = name in BOX_CLASSES
        cases = list(telling[version, is_box])
        for board in BOARDS:
            cases.append((board, *points_on(board, numbers), numbers.pick(SIZES) if is_box else D(0)))
        for (W, H), px, py, h in cases:
            yield ("convertPoint", version, name, [W, H, px, py, h],
                   point_to_vector(version, is_box, W, H, px, py, h))
    for version, name in itertools.product(VERSIONS, BOX_CLASSES):
        for board in BOARDS + USUAL_BOARDS:
            W, H = board
            px, py = points_on(board, numbers)
            sw, sh = points_on(board, numbers)
            yield "convertSize", version, name, [W, H, sw, sh], size_to_vector(W, H, sw, sh)
            yield ("convertPointAndSize", version, name, [W, H, px, py, sw, sh],
                   point_and_size_to_vector(version, W, H, px, py, sw, sh))


def rows_of_points():
    numbers = Numbers(2)
    for version in VERSIONS:
        cases = [(board, px, py) for board, px, py, _ in telling_points(version, False, numbers, 20)]
        for board in BOARDS:
            cases += [(board, *points_on(board, numbers)) for _ in range(6)]
        for (W, H), px, py in cases:
            yield ("convertPointToScale", version, "-", [W, H, px, py],
                   point_to_scale(version, W, H, px, py))
        for (W, H), sx in itertools.product(BOARDS, POSITIONS):
            sy = numbers.pick(POSITIONS)
            yield ("convertPointScaleToPoint", version, "-", [W, H, sx, sy],
                   scale_to_point(version, W, H, sx, sy))


def rows_out_of_vectors():
    numbers = Numbers(3)
    for version, name in itertools.product(VERSIONS, POINT_CLASSES + BOX_CLASSES):
        is_box = name in BOX_CLASSES
        for W, H in BOARDS + USUAL_BOARDS:
            x, y, w, h = (numbers.pick(POSITIONS), numbers.pick(POSITIONS), numbers.pick(SIZES),
                          numbers.pick(SIZES))
            yield ("convertVectorToPoint", version, name, [W, H, x, y, h if is_box else D(0)],
                   vector_to_point(version, is_box, W, H, x, y, h))
            if is_box:
                yield ("convertVectorToNSRect", version, name, [W, H, x, y, w, h],
                       rect_of_vector(version, W, H, x, y, w, h))


def rows_of_shifts():
    numbers = Numbers(4)
    for name in POINT_CLASSES + BOX_CLASSES:
        for x in POSITIONS + SIZES:
            y = D(Fraction(numbers.below(2 * 10**6) - 10**6, 999983))
            yield ("coordinateSystemTransFromPC", "-", name, [x, y], [shift_from_pc(x), shift_from_pc(y)])
            yield ("coordinateSystemTransToPC", "-", name, [x, y], [shift_to_pc(x), shift_to_pc(y)])


HEADER = """\
# What every coordinate conversion gives, to the last bit. Worked out by conversion_golden.py; do not edit.
# operation version class inputs -> outputs
#   convertPoint                  W H px py h       -> x y        (h: the box's own, 0 for a class without)
#   convertSize                   W H sw sh         -> w h
#   convertPointAndSize           W H px py sw sh   -> x y w h
#   convertPointToScale           W H px py         -> x y
#   convertPointScaleToPoint      W H x y           -> px py
#   convertVectorToPoint          W H x y h         -> px py
#   convertVectorToNSRect         W H x y w h       -> px py width height
#   coordinateSystemTransFromPC   x y               -> x y
#   coordinateSystemTransToPC     x y               -> x y
# W and H are the board's size. A - stands for what an operation does not depend on.
"""


def table():
    lines = [HEADER]
    for rows in (rows_into_vectors(), rows_of_points(), rows_out_of_vectors(), rows_of_shifts()):
        for operation, version, name, given, expected in rows:
            fields = [operation, str(version), name, *(v.hex() for v in given), "->",
                      *(v.hex() for v in expected)]
            lines.append(" ".join(fields) + "\n")
    return "".join(lines)


# ---- Checking ----

def same(exact, machine):
    return float.fromhex(exact.hex()).hex() == machine.hex()


def check_arithmetic():
    """The exact arithmetic must agree with the doubles of this machine."""
    numbers = Numbers(5)
    values = [v.hex() for v in POSITIONS + SIZES + [n for board in BOARDS for n in board]]
    values += [D(Fraction(numbers.below(2**60) + 1, numbers.below(2**60) + 1)).hex() for _ in range(40)]
    values = [float.fromhex(v) for v in values]
    exact = [D(Fraction(v), negative_zero=v.hex().startswith("-")) for v in values]
    for (a, A), (b, B) in itertools.product(zip(values, exact), repeat=2):
        agrees = same(A + B, a + b) and same(A - B, a - b) and same(A * B, a * b)
        if b != 0:
            agrees = agrees and same(A / B, a / b)
        if not agrees:
            sys.exit(f"the exact arithmetic is wrong for {a.hex()} and {b.hex()}")


def main():
    if sys.argv[1:] == ["--check"]:
        check_arithmetic()
        if TABLE.read_text(encoding="ascii") != table():
            sys.exit(f"{TABLE.name} is not what {pathlib.Path(__file__).name} works out")
    elif not sys.argv[1:]:
        TABLE.write_text(table(), encoding="ascii")
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
