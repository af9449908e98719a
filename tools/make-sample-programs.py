#!/usr/bin/env python3
"""Gives programs of the sample machine executables with an icon of their own, in the various forms that icons have.

A picture is a function from a point of the unit square to a colour (None: transparent). What lies there as an
executable already, with icons of 32 bits, keeps everything but their pixels; any other file is written anew.

  tools/make-sample-programs.py   writes the files below examples/machines/sample/drives/C
"""

import collections
import math
import pathlib
import struct
import zlib

from drawing import SAMPLES, WHITE, distance, in_polygon, shade

FOLDER = pathlib.Path(__file__).resolve().parent.parent / "examples/machines/sample/drives/C"


# --- the pictures


def box(x, y, left, top, right, bottom, corner=0.0):
    """Whether a point lies in a rectangle with round corners."""
    dx = max(left + corner - x, x - right + corner, 0)
    dy = max(top + corner - y, y - bottom + corner, 0)
    inside = left <= x <= right and top <= y <= bottom
    return inside and math.hypot(dx, dy) <= corner if corner else inside


def disc(x, y, radius, middle_x=0.5, middle_y=0.5):
    return math.hypot(x - middle_x, y - middle_y) < radius


def plate(colour, glyph, ink=WHITE):
    """A glyph on a rounded plate that is lighter at its top."""
    def picture(x, y):
        if not box(x, y, 0.03, 0.03, 0.97, 0.97, 0.18):
            return None
        return ink if glyph(x, y) else shade(colour, 1.2 - 0.4 * y)
    return picture


def coin(colour, glyph, ink=WHITE):
    """A glyph on a round plate."""
    def picture(x, y):
        if not disc(x, y, 0.48):
            return None
        return ink if glyph(x, y) else shade(colour, 1.25 - 0.5 * y)
    return picture


def landscape(x, y):
    """Mountains below a sun, in a frame."""
    if not box(x, y, 0.03, 0.12, 0.97, 0.88):
        return None
    if not box(x, y, 0.1, 0.19, 0.9, 0.81):
        return (96, 62, 40)
    if in_polygon(x, y, [(0.1, 0.81), (0.38, 0.38), (0.62, 0.81)]):
        return (70, 120, 84)
    if in_polygon(x, y, [(0.4, 0.81), (0.68, 0.5), (0.9, 0.81)]):
        return (46, 92, 66)
    return (255, 208, 70) if disc(x, y, 0.1, 0.7, 0.34) else (150, 200, 236)


def zipped(x, y):
    return abs(x - 0.5) < 0.05 and y * 10 % 2 < 1.1 or box(x, y, 0.4, 0.6, 0.6, 0.82, 0.05)


def play(x, y):
    return in_polygon(x, y, [(0.37, 0.26), (0.76, 0.5), (0.37, 0.74)])


def envelope(x, y):
    if not box(x, y, 0.14, 0.26, 0.86, 0.74):
        return False
    return distance(x, y, [(0.14, 0.26), (0.5, 0.54), (0.86, 0.26)]) > 0.045


def four(x, y):
    return any(box(x, y, left, top, left + 0.25, top + 0.25) for left in (0.21, 0.54) for top in (0.21, 0.54))


def speech(x, y):
    bubble = box(x, y, 0.16, 0.2, 0.84, 0.64, 0.14) or in_polygon(x, y, [(0.28, 0.6), (0.5, 0.6), (0.26, 0.84)])
    return bubble and not any(disc(x, y, 0.055, middle, 0.42) for middle in (0.33, 0.5, 0.67))


def waves(x, y):
    return any(abs(y - level - 0.06 * math.sin(x * 4 * math.pi)) < 0.045 for level in (0.3, 0.5, 0.7))


def down(x, y):
    arrow = [(0.4, 0.14), (0.6, 0.14), (0.6, 0.42), (0.78, 0.42), (0.5, 0.7), (0.22, 0.42), (0.4, 0.42)]
    return in_polygon(x, y, arrow) or box(x, y, 0.2, 0.76, 0.8, 0.85)


def page(x, y):
    """A written page with a turned corner."""
    if not in_polygon(x, y, [(0.16, 0.04), (0.64, 0.04), (0.86, 0.26), (0.86, 0.96), (0.16, 0.96)]):
        return None
    if in_polygon(x, y, [(0.64, 0.04), (0.86, 0.26), (0.64, 0.26)]):
        return (170, 150, 60)
    on_line = 0.26 < x < 0.76 and any(abs(y - line) < 0.028 for line in (0.4, 0.53, 0.66, 0.79))
    return (60, 110, 50) if on_line else (255, 244, 190)


def exchange(x, y):
    right = [(0.16, 0.3), (0.58, 0.3), (0.58, 0.18), (0.84, 0.37), (0.58, 0.56), (0.58, 0.44), (0.16, 0.44)]
    return in_polygon(x, y, right) or in_polygon(1 - x, 1.0 - y, right)


def film(x, y):
    if y < 0.22 or y > 0.78:
        return x * 10 % 2.5 < 1.3 and (0.09 < y < 0.17 or 0.83 < y < 0.91)
    return play(x, y)


def book(x, y):
    left = min(x, 1 - x)
    return box(left, y, 0.14, 0.22, 0.47, 0.78) and y > 0.22 + 0.1 * left


def eye(x, y):
    lens = math.hypot(x - 0.5, y - 0.92) < 0.6 and math.hypot(x - 0.5, y - 0.08) < 0.6
    return lens and not (disc(x, y, 0.15) and not disc(x, y, 0.06, 0.55, 0.45))


def flame(x, y):
    """A flame with a bright heart."""
    def drop(middle, radius, tip):
        if y > middle:
            return disc(x, y, radius, 0.5, middle)
        return abs(x - 0.5) < radius * ((y - tip) / (middle - tip)) ** 0.8 if y > tip else False
    if drop(0.75, 0.14, 0.42):
        return (255, 236, 140)
    return shade((236, 98, 24), 0.8 + 0.5 * y) if drop(0.62, 0.34, 0.02) else None


def around(x, y):
    radius, angle = math.hypot(x - 0.5, y - 0.5), math.atan2(y - 0.5, x - 0.5) % math.pi
    return 0.22 < radius < 0.34 and angle > 0.6 or abs(radius - 0.28) < 0.16 * (angle - 0.25) and 0.25 < angle < 0.85


def tree(x, y):
    """A larch: three tiers on a trunk."""
    for top, bottom, half in ((0.02, 0.36, 0.22), (0.24, 0.6, 0.31), (0.46, 0.84, 0.4)):
        if in_polygon(x, y, [(0.5, top), (0.5 + half, bottom), (0.5 - half, bottom)]):
            return shade((58, 132, 72), 0.8 + 0.6 * (bottom - y))
    return (112, 78, 46) if box(x, y, 0.44, 0.84, 0.56, 0.98) else None


def cards(x, y):
    """A card with a diamond, before another one."""
    if box(x, y, 0.08, 0.16, 0.68, 0.97, 0.07):
        return (200, 30, 44) if abs(x - 0.38) / 0.2 + abs(y - 0.56) / 0.28 < 1 else (250, 250, 246)
    return (36, 84, 156) if box(x, y, 0.32, 0.03, 0.92, 0.82, 0.07) else None


def lantern(x, y):
    """A lantern that glows in the dark."""
    if disc(x, y, 0.12, 0.5, 0.58):
        return (255, 246, 190)
    if box(x, y, 0.3, 0.32, 0.7, 0.84, 0.08):
        return shade((255, 186, 60), 1.25 - 0.9 * math.hypot(x - 0.5, y - 0.58))
    if box(x, y, 0.24, 0.24, 0.76, 0.92, 0.08) or abs(math.hypot(x - 0.5, y - 0.24) - 0.16) < 0.035 and y < 0.24:
        return (52, 44, 40)
    return None


def drawn(picture, size):
    """Rows of pixels from the top: red, green, blue, opacity."""
    rows = []
    for row in range(size):
        rows.append([])
        for column in range(size):
            points = (((column + (i % SAMPLES + 0.5) / SAMPLES) / size, (row + (i // SAMPLES + 0.5) / SAMPLES) / size)
                      for i in range(SAMPLES * SAMPLES))
            colours = [colour for colour in (picture(x, y) for x, y in points) if colour is not None]
            mean = tuple(round(sum(parts) / len(colours)) for parts in zip(*colours)) if colours else (0, 0, 0)
            rows[-1].append((*mean, round(255 * len(colours) / SAMPLES ** 2)))
    return rows


# --- the forms of icons


def packed(values, bits):
    """Values of a row in so many bits each, the row filled up to four bytes."""
    text = "".join(f"{value:0{bits}b}" for value in values)
    return int(text.ljust((len(text) + 31) // 32 * 32, "0"), 2).to_bytes((len(text) + 31) // 32 * 4, "big")


def bitmap(rows, bits):
    """A bitmap with a mask, its rows from the bottom to the top."""
    shown = [[pixel[:3] if pixel[3] >= 128 else None for pixel in row] for row in reversed(rows)]
    palette, image = [], bytearray()
    if bits <= 8:
        often = collections.Counter(colour for row in shown for colour in row if colour and any(colour))
        palette = [(0, 0, 0)] + [colour for colour, _ in often.most_common((1 << bits) - 1)]

    def nearest(colour):
        return min(range(len(palette)), key=lambda i: sum((a - b) ** 2 for a, b in zip(palette[i], colour)))

    for row, whole in zip(shown, reversed(rows)):
        if bits == 32:
            image += b"".join(bytes((blue, green, red, opacity)) for red, green, blue, opacity in whole)
        elif bits == 24:
            line = b"".join(bytes(reversed(colour or (0, 0, 0))) for colour in row)
            image += line + bytes(-len(line) % 4)
        elif bits == 16:
            line = b"".join(struct.pack("<H", (c[0] >> 3) << 10 | (c[1] >> 3) << 5 | c[2] >> 3)
                            for c in (colour or (0, 0, 0) for colour in row))
            image += line + bytes(-len(line) % 4)
        else:
            image += packed([nearest(colour or (0, 0, 0)) for colour in row], bits)
    colours = b"".join(bytes((blue, green, red, 0)) for red, green, blue in palette)
    mask = b"".join(packed([colour is None for colour in row], 1) for row in shown)
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, bits, 0, len(image) + len(mask), 0, 0, len(palette), 0)
    return header + colours + image + mask


def png(rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    header = struct.pack(">IIBBBBB", len(rows), len(rows), 8, 6, 0, 0, 0)
    lines = b"".join(b"\0" + bytes(part for pixel in row for part in pixel) for row in rows)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b"")


# --- the executables


def directory(entries):
    """A resource directory: pairs of a number and where it leads, counted from the section's begin."""
    return struct.pack("<IIHHHH", 0, 0, 0, 0, 0, len(entries)) + b"".join(struct.pack("<II", *entry) for entry in entries)


def resources(images, address):
    """The resource section of one icon, number 1: for each image its side, its bits and its bytes."""
    group = struct.pack("<HHH", 0, 1, len(images))
    for number, (side, bits, data) in enumerate(images, 1):
        group += struct.pack("<BBBBHHIH", side, side, 0, 0, 1, bits, len(data), number)
    datas = [data for _, _, data in images] + [group]
    count, below = len(images), 0x80000000
    # the root, the icons, the group, for each of them its one language, and where each one's data is
    icons = 16 + 2 * 8
    groups = icons + 16 + count * 8
    languages = groups + 16 + 8
    entries = languages + (count + 1) * 24
    begin = entries + (count + 1) * 16
    places = [begin]
    for data in datas:
        places.append(places[-1] + len(data) + -len(data) % 4)
    section = directory([(3, below | icons), (14, below | groups)])
    section += directory([(i + 1, below | languages + i * 24) for i in range(count)])
    section += directory([(1, below | languages + count * 24)])
    section += b"".join(directory([(0x409, entries + i * 16)]) for i in range(count + 1))
    section += b"".join(struct.pack("<IIII", address + place, len(data), 0, 0) for place, data in zip(places, datas))
    return section + b"".join(data + bytes(-len(data) % 4) for data in datas)


def executable(images):
    """A 32-bit executable with an icon and nothing to run."""
    address, unit = 0x1000, 0x200
    section = resources(images, address)
    raw = section + bytes(-len(section) % unit)
    extent = address + (len(raw) + 0xFFF) // 0x1000 * 0x1000
    optional = struct.pack("<HBBIIIIIIIIIHHHHHHIIIIHHIIIIII", 0x10B, 0, 0, 0, len(raw), 0, 0, 0, 0, 0x10000000, 0x1000,
                           unit, 4, 0, 0, 0, 4, 0, 0, extent, unit, 0, 2, 0, 0, 0, 0, 0, 0, 16)
    optional += bytes(16) + struct.pack("<II", address, len(section)) + bytes(13 * 8)
    file = b"MZ" + bytes(0x3A) + struct.pack("<I", 0x40)
    file += b"PE\0\0" + struct.pack("<HHIIIHH", 0x14C, 1, 0, 0, 0, len(optional), 0x2102) + optional
    file += b".rsrc\0\0\0" + struct.pack("<IIIIIIHHI", len(section), address, len(raw), unit, 0, 0, 0, 0, 0x40000040)
    return file.ljust(unit, b"\0") + raw


def painted(file, picture):
    """An executable whose 32-bit icons show the picture."""
    for size in (16, 32, 48):
        header = struct.pack("<IiiHH", 40, size, size * 2, 1, 32)
        at = file.find(header)
        if at >= 0:
            image = bitmap(drawn(picture, size), 32)[40:]
            file = file[:at + 40] + image + file[at + 40 + len(image):]
    return file


# What each program's icon shows, and in which forms: sides by bits a pixel (0: PNG).
PROGRAMS = {
    "Program Files/Tarnhelm Studio/Tarnhelm.exe": (landscape, {16: 32, 32: 32}),
    "Program Files/Kestrel Archiver/Kestrel.exe": (plate((150, 104, 30), zipped), {16: 8, 32: 8}),
    "Program Files/Pellucid Player/pellucid.exe": (coin((196, 60, 110), play), {16: 32, 64: 0}),
    "Program Files/Marrowbone Mail/marrowbone.exe": (plate((52, 104, 180), envelope), {16: 24, 32: 24}),
    "Program Files (x86)/Brackwater/brackwater.exe": (coin((30, 140, 148), speech), {16: 32, 48: 32}),
    "Program Files (x86)/Saltmarsh/uninst.exe": (coin((72, 110, 190), waves), {16: 4}),
    "Program Files (x86)/Dunlin/uninst.exe": (plate((0, 0, 0), down), {16: 1, 32: 1}),
    "Program Files (x86)/Fernhollow Notes/Fernhollow.exe": (page, {16: 8, 32: 8}),
    "Program Files (x86)/Gantry FTP/Gantry.exe": (plate((190, 92, 36), exchange), {16: 16, 32: 16}),
    "Program Files (x86)/Sparrowhawk Codecs/Sparrowhawk.exe": (plate((92, 66, 140), film), {}),
    "Program Files (x86)/Pinfold/Reader 3/reader.exe": (plate((168, 40, 44), book), {16: 24, 32: 24}),
    "Program Files (x86)/Farsight/Version7/farsight.exe": (coin((60, 84, 128), eye), {16: 32, 32: 32}),
    "Program Files (x86)/Hexham Games/Solitaire/solitaire.exe": (cards, {}),
    "Program Files (x86)/Sundew/games/fen/lanterns.exe": (lantern, {}),
    "Users/Mara/AppData/Local/Ember/Application/ember.exe": (flame, {16: 32, 32: 32}),
    "Users/Mara/AppData/Roaming/Otterholt Sync/bin/otterholt.exe": (coin((70, 120, 70), around), {16: 8, 32: 8}),
    "Users/Mara/AppData/Local/Programs/Larch Outliner/Larch.exe": (tree, {16: 16, 32: 16}),
}


def main():
    for name, (picture, forms) in PROGRAMS.items():
        path = FOLDER / name
        images = []
        for size, bits in forms.items():
            rows = drawn(picture, size)
            images.append((size, bits or 32, bitmap(rows, bits) if bits else png(rows)))
        path.write_bytes(executable(images) if images else painted(path.read_bytes(), picture))


if __name__ == "__main__":
    main()
