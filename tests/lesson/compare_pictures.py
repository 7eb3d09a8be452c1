#!/usr/bin/env python3
"""Compares the PNG files of two folders, name by name, pixel by pixel.
Exit code 0: all alike within the limit, 1: a difference above it, 2: nothing to compare."""
import argparse, pathlib, sys
import cairo

TOLERANCE = 64  # of 255, in any channel


def pixels(path):
    """Width, height and the rows of a picture, four bytes for each pixel."""
    picture = cairo.ImageSurface.create_from_png(str(path))
    width, height = picture.get_width(), picture.get_height()
    copy = cairo.ImageSurface(cairo.FORMAT_ARGB32, width, height)  # whatever the file's form is
    pen = cairo.Context(copy)
    pen.set_source_surface(picture)
    pen.paint()
    data, row = bytes(copy.get_data()), copy.get_stride()  # ARGB32 has no padding
    return width, height, [data[at:at + row] for at in range(0, len(data), row)]


def share(first, second):
    """Share of the pixels that differ, in percent."""
    (width, height, rows), (other_width, other_height, other_rows) = pixels(first), pixels(second)
    if (width, height) != (other_width, other_height):
        raise ValueError(f"{width}x{height} against {other_width}x{other_height} pixels")
    differing = 0
    for row, other in zip(rows, other_rows):
        if row != other:
            far = [abs(a - b) > TOLERANCE for a, b in zip(row, other)]
            differing += sum(map(any, zip(far[0::4], far[1::4], far[2::4], far[3::4])))
    return 100 * differing / (width * height)


def main():
    """Prints the share of each picture; whether one is above the limit, missing or unreadable."""
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("first", type=pathlib.Path)
    parser.add_argument("second", type=pathlib.Path)
    parser.add_argument("--limit", type=float, default=0.5, help="in percent, default 0.5")
    options = parser.parse_args()
    names = sorted({file.name for file in (*options.first.glob("*.png"),
                                           *options.second.glob("*.png"))})
    if not names:
        parser.error("no PNG files in the folders")
    failed = False
    for name in names:
        try:
            percent = share(options.first / name, options.second / name)
        except (OSError, ValueError, cairo.Error) as error:
            print(f"{name}: {error}")
            failed = True
        else:
            print(f"{name}: {percent:.3f} %")
            failed |= percent > options.limit
    return failed


if __name__ == "__main__":
    sys.exit(main())
