#!/usr/bin/env python3
"""Draws samples/badge-rgba.png: a round badge with soft edges on nothing, at a size that no row alignment
likes. It shows alpha, odd widths and which way is up. Only the standard library is used."""
import math
import pathlib
import struct
import zlib

WIDTH, HEIGHT = 251, 167
RADIUS = 74.0  # pixels, outer edge of the ring
RING = 16.0  # its width
SOFT = 6.0  # pixels over which edges fade
POINTER = 0.35  # half width of the pointer, as a share of its distance from the tip


def fade(distance):
    """1 inside (negative), 0 outside, smooth in between."""
    t = min(max(0.5 - distance / SOFT, 0.0), 1.0)
    return t * t * (3.0 - 2.0 * t)


def wheel(turn):
    """Fully saturated colour of a hue counted in turns from red."""
    return [min(max(abs((turn * 6.0 + offset) % 6.0 - 3.0) - 1.0, 0.0), 1.0) for offset in (0.0, 4.0, 2.0)]


def pixel(column, row):
    x, y = column + 0.5 - WIDTH / 2.0, row + 0.5 - HEIGHT / 2.0
    radius = math.hypot(x, y)
    ring = fade(abs(radius - (RADIUS - RING / 2.0)) - RING / 2.0)
    # A triangle whose tip points up.
    depth = y + 48.0
    pointer = fade(max(abs(x) - POINTER * depth, depth - 70.0)) if depth > -SOFT else 0.0
    disc = 0.45 * fade(radius - (RADIUS - RING))
    alpha = max(ring, pointer, disc)
    colour = [1.0, 1.0, 1.0] if pointer > ring else wheel(math.atan2(y, x) / (2.0 * math.pi) % 1.0)
    return bytes(round(255.0 * value) for value in (*colour, alpha))


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


rows = b"".join(b"\0" + b"".join(pixel(column, row) for column in range(WIDTH)) for row in range(HEIGHT))
header = struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 6, 0, 0, 0)  # 8 bits, RGBA
target = pathlib.Path(__file__).resolve().parent.parent / "samples" / "badge-rgba.png"
target.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))
