"""What the scripts share that draw icons. Points lie in the unit square, x to the right and y downwards."""

import math

SAMPLES = 8  # per pixel and direction

WHITE = (255, 255, 255)


def in_polygon(x, y, points):
    inside = False
    for (x1, y1), (x2, y2) in zip(points, points[1:] + points[:1]):
        if (y1 > y) != (y2 > y) and x < (x2 - x1) * (y - y1) / (y2 - y1) + x1:
            inside = not inside
    return inside


def distance(x, y, points):
    """Distance of a point to a line through points."""
    best = math.inf
    for (x1, y1), (x2, y2) in zip(points, points[1:]):
        dx, dy = x2 - x1, y2 - y1
        t = max(0.0, min(1.0, ((x - x1) * dx + (y - y1) * dy) / (dx * dx + dy * dy)))
        best = min(best, math.hypot(x - x1 - t * dx, y - y1 - t * dy))
    return best


def shade(colour, factor):
    return tuple(min(255, round(part * factor)) for part in colour)
