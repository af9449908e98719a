#!/usr/bin/env python3
"""Draws the library's icons into src/library/resources.

Every picture is a function from a point to a colour (None: transparent) over the unit square, x to the right and y
downwards. A pixel takes the mean colour of its opaque samples and is transparent when fewer than half are opaque:
the icons have 24-bit colour and a mask, no soft edges.

  tools/make-icons.py            writes the icon files
  tools/make-icons.py --check    exits with 1 when a file differs from what would be written
"""

import math
import pathlib
import struct
import sys

from drawing import SAMPLES, WHITE, distance, in_polygon, shade

FOLDER = pathlib.Path(__file__).resolve().parent.parent / "src/library/resources"


def trust(x, y):
    """A green shield with a white tick."""
    half = 0.42 if y < 0.45 else 0.42 * math.sqrt(max(0.0, 1 - ((y - 0.45) / 0.52) ** 2))
    if not 0.04 < y < 0.97 or abs(x - 0.5) > half:
        return None
    if distance(x, y, [(0.27, 0.47), (0.43, 0.65), (0.73, 0.27)]) < 0.08:
        return WHITE
    return shade((38, 150, 62), 1.15 if x < 0.5 else 0.9)


def unknown(x, y):
    """A white question mark on a grey disc."""
    radius = math.hypot(x - 0.5, y - 0.5)
    if radius > 0.455:
        return None
    angle = math.atan2(y - 0.37, x - 0.5)
    on_hook = abs(math.hypot(x - 0.5, y - 0.37) - 0.155) < 0.06 and not 0.5 * math.pi < angle < 0.95 * math.pi
    on_stem = abs(x - 0.5) < 0.06 and 0.47 < y < 0.64
    on_dot = math.hypot(x - 0.5, y - 0.765) < 0.08
    return WHITE if on_hook or on_stem or on_dot else shade((128, 134, 142), 1.15 - 0.3 * y)


def risky(x, y):
    """A white exclamation mark on a red disc."""
    if math.hypot(x - 0.5, y - 0.5) > 0.455:
        return None
    on_stroke = 0.18 < y < 0.6 and abs(x - 0.5) < 0.1 - 0.09 * (y - 0.18)
    on_dot = math.hypot(x - 0.5, y - 0.755) < 0.085
    return WHITE if on_stroke or on_dot else shade((206, 34, 38), 1.15 - 0.3 * y)


def box_vista(x, y):
    """A closed box seen from a corner, its tape running over the edge."""
    top = [(0.5, 0.04), (0.95, 0.26), (0.5, 0.48), (0.05, 0.26)]
    left = [(0.05, 0.26), (0.5, 0.48), (0.5, 0.97), (0.05, 0.74)]
    right = [(0.95, 0.26), (0.5, 0.48), (0.5, 0.97), (0.95, 0.74)]
    tape = [(0.23, 0.17), (0.34, 0.12), (0.79, 0.34), (0.79, 0.5), (0.68, 0.555), (0.68, 0.395)]
    if not any(in_polygon(x, y, face) for face in (top, left, right)):
        return None
    if in_polygon(x, y, tape):
        return (238, 244, 250) if in_polygon(x, y, top) else (196, 212, 230)
    if in_polygon(x, y, top):
        return (142, 190, 236)
    return (82, 138, 200) if in_polygon(x, y, left) else (50, 100, 164)


def box_xp(x, y):
    """An open carton seen from the front, its flaps turned out."""
    left_flap = [(0.14, 0.36), (0.5, 0.42), (0.36, 0.56), (0.02, 0.5)]
    right_flap = [(1 - flap_x, flap_y) for flap_x, flap_y in left_flap]
    inside = [(0.14, 0.36), (0.5, 0.26), (0.86, 0.36), (0.5, 0.46)]
    body = [(0.14, 0.36), (0.5, 0.44), (0.86, 0.36), (0.86, 0.86), (0.5, 0.96), (0.14, 0.86)]
    disc = math.hypot(x - 0.5, y - 0.25)
    if any(in_polygon(x, y, flap) for flap in (left_flap, right_flap)):
        return (242, 206, 130)
    if disc < 0.22 and not in_polygon(x, y, body):
        return WHITE if disc < 0.06 else shade((74, 122, 214), 1.2 - 1.2 * disc)
    if in_polygon(x, y, body):
        return (222, 172, 84) if x < 0.5 else (190, 138, 58)
    return (120, 84, 34) if in_polygon(x, y, inside) else None


def pixel(picture, size, column, row):
    colours = []
    for sample in range(SAMPLES * SAMPLES):
        x = (column + (sample % SAMPLES + 0.5) / SAMPLES) / size
        y = (row + (sample // SAMPLES + 0.5) / SAMPLES) / size
        colour = picture(x, y)
        if colour is not None:
            colours.append(colour)
    if len(colours) * 2 < SAMPLES * SAMPLES:
        return None
    return tuple(round(sum(parts) / len(colours)) for parts in zip(*colours))


def icon(picture, size):
    """The bytes of an icon file with one image: rows run from the bottom to the top, each filled up to four bytes."""
    image, mask = bytearray(), bytearray()
    for row in reversed(range(size)):
        pixels = [pixel(picture, size, column, row) for column in range(size)]
        for colour in pixels:
            image += bytes(reversed(colour or (0, 0, 0)))
        image += bytes(-len(image) % 4)
        bits = "".join("1" if colour is None else "0" for colour in pixels).ljust((size + 31) // 32 * 32, "0")
        mask += int(bits, 2).to_bytes(len(bits) // 8, "big")
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 24, 0, len(image) + len(mask), 0, 0, 0, 0)
    data = header + image + mask
    return struct.pack("<HHHBBBBHHII", 0, 1, 1, size, size, 0, 0, 1, 24, len(data), 22) + data


ICONS = {
    "RATING_TRUST": (trust, 16),
    "RATING_UNKNOWN": (unknown, 16),
    "RATING_RISKY": (risky, 16),
    "ICON_DEF_VISTA_SMALL": (box_vista, 16),
    "ICON_DEF_XP_SMALL": (box_xp, 16),
    "ICON_DEF_VISTA_LARGE": (box_vista, 32),
    "ICON_DEF_XP_LARGE": (box_xp, 32),
}


def main():
    check = sys.argv[1:] == ["--check"]
    differing = False
    for name, (picture, size) in ICONS.items():
        path = FOLDER / f"{name}.ico"
        data = icon(picture, size)
        if check:
            if not path.is_file() or path.read_bytes() != data:
                print(f"{path}: differs from its drawing")
                differing = True
        else:
            path.write_bytes(data)
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
