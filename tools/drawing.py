"""Drawing with numbers: pictures are float arrays of colour and alpha, shapes are signed distances (negative
inside), so that edges are soft to a given width at any size."""
import math

import numpy as np
from PIL import Image


def rgb(text):
    return np.array([int(text[i:i + 2], 16) / 255.0 for i in (0, 2, 4)])


def smooth(t):
    t = np.clip(t, 0.0, 1.0)
    return t * t * (3.0 - 2.0 * t)


def cover(distance, soft):
    """1 inside, 0 outside, an edge `soft` wide in between."""
    return smooth(0.5 - distance / soft)


class Canvas:
    """Colour under alpha, drawn over each other. Coordinates are model units, y up."""

    def __init__(self, rect, width):
        left, bottom, right, top = rect
        height = round(width * (top - bottom) / (right - left))
        self.pixel = (right - left) / width
        columns, rows = np.arange(width) + 0.5, np.arange(height) + 0.5
        self.x, self.y = np.meshgrid(left + columns * self.pixel, top - rows * self.pixel)
        self.colour, self.alpha = np.zeros((height, width, 3)), np.zeros((height, width))

    def paint(self, colour, alpha):
        colour = np.broadcast_to(colour, self.colour.shape)
        out = alpha + self.alpha * (1.0 - alpha)
        share = np.where(out > 0.0, alpha / np.maximum(out, 1e-9), 1.0)[..., None]
        self.colour = colour * share + self.colour * (1.0 - share)
        self.alpha = out

    def fill(self, distance, colour, opacity=1.0, soft=None):
        self.paint(colour, opacity * cover(distance, soft or 1.5 * self.pixel))

    def save(self, path):
        # Colour spreads into what is transparent, so that filtering between texels darkens no edge.
        colour, known = self.colour * (self.alpha > 0)[..., None], (self.alpha > 0).astype(float)
        for _ in range(16):
            total, count = colour * known[..., None], known.copy()
            for axis, step in ((0, 1), (0, -1), (1, 1), (1, -1)):
                total += np.roll(colour * known[..., None], step, axis)
                count += np.roll(known, step, axis)
            fresh = (known == 0) & (count > 0)
            colour[fresh] = total[fresh] / count[fresh][:, None]
            known[fresh] = 1.0
        rgba = np.dstack([colour, self.alpha])
        path.parent.mkdir(parents=True, exist_ok=True)
        Image.fromarray(np.round(np.clip(rgba, 0, 1) * 255).astype(np.uint8), "RGBA").save(path, optimize=True)


def circle(x, y, radius):
    return np.hypot(x, y) - radius


def ellipse(x, y, rx, ry):
    """Nearly the distance."""
    k = np.hypot(x / rx, y / ry)
    slope = np.hypot(x / rx ** 2, y / ry ** 2)
    return np.where(k > 1e-6, k * (k - 1.0) / np.maximum(slope, 1e-9), -min(rx, ry))


def segment(x, y, a, b):
    """Distance to a line from a to b."""
    dx, dy = b[0] - a[0], b[1] - a[1]
    t = np.clip(((x - a[0]) * dx + (y - a[1]) * dy) / (dx * dx + dy * dy), 0, 1)
    return np.hypot(x - a[0] - t * dx, y - a[1] - t * dy)


def triangle(x, y, a, b, c):
    """Distance inside a triangle given counter-clockwise; its corners are sharp."""
    sides = []
    for p, q in ((a, b), (b, c), (c, a)):
        length = math.hypot(q[0] - p[0], q[1] - p[1])
        sides.append(((x - p[0]) * (q[1] - p[1]) - (y - p[1]) * (q[0] - p[0])) / length)
    return np.maximum.reduce(sides)


def union(a, b, round_by):
    """The smaller distance, with a fillet between the two."""
    h = np.clip(0.5 + 0.5 * (b - a) / round_by, 0, 1)
    return b + (a - b) * h - round_by * h * (1 - h)


def mix(a, b, t):
    t = np.asarray(t)[..., None]
    return a * (1.0 - t) + b * t
