#!/usr/bin/env python3
"""Draws the stickers in res/zv_res/stickers from the parameters below: glasses, hat and cat for faces, confetti
and frame for the screen. The same run gives the same files. docs/stickers.md tells what a sticker consists of.

With arguments: make-stickers.py NAME WIDTHxHEIGHT FOLDER makes one screen sticker for another view port."""
import math
import pathlib
import sys

import numpy as np

sys.dont_write_bytecode = True  # no cache beside the tools
from drawing import Canvas, circle, cover, ellipse, mix, rgb, segment, smooth, triangle, union
from gltf_writer import Model, sheet

TARGET = pathlib.Path(__file__).resolve().parent.parent / "res" / "zv_res" / "stickers"
FRAME_SIZES = [(512, 512), (1280, 720), (1920, 1080), (720, 1280), (1080, 1920)]


def save_face(name, title, canvas, rect, columns, rows, depth, bones):
    folder = TARGET / name
    canvas.save(folder / (name + ".png"))
    model = Model(name + ".png")
    positions, uvs, indices, joints, weights = sheet(rect, columns, rows, depth, bones)
    model.mesh(name, positions, uvs, indices, joints, weights)
    model.skeleton()
    model.save(folder, name, "face", title)


# Faces: units are the distance of the outer eye corners, the origin is midway between the eyes.

def make_glasses():
    rect, lens = (-0.90, -0.40, 0.90, 0.36), 0.385
    art = Canvas(rect, 1024)
    x, y = np.abs(art.x), art.y

    def outline(grow):
        # A soft trapezoid: wider at the top, with round corners.
        wide = 0.292 + 0.05 * (y + 0.02) / 0.25
        px, py = np.abs(x - lens) / (wide + grow), np.abs(y + 0.025) / (0.232 + grow)
        return (np.power(px ** 3.2 + py ** 3.2 + 1e-9, 1 / 3.2) - 1.0) * (0.24 + grow)

    inside, outside = outline(0.0), outline(0.052)
    brow = np.maximum(np.abs(y - 0.165 - 0.035 * x) - 0.042, x - 0.79)
    outside = union(outside, np.maximum(brow, x - 0.76), 0.05)
    arch = np.maximum(np.abs(np.hypot(art.x, y - 0.02) - 0.105) - 0.024, -(y - 0.05))
    frame = union(outside, arch, 0.05)
    # A soft shadow on the skin below.
    shade = np.roll(np.maximum(frame, -inside), int(0.022 / art.pixel), 0)
    art.fill(shade, rgb("1a0e0a"), 0.38, soft=0.07)
    # Lenses: a cool top that clears to a warm bottom, with two streaks of light.
    t = smooth((y + 0.27) / 0.5)
    art.fill(inside - 0.01, mix(rgb("ff7a9c"), rgb("2a2f8f"), t), 0.34 + 0.42 * t)
    streak = art.x - np.sign(art.x) * lens + 0.62 * y
    light = (cover(np.abs(streak + 0.05) - 0.035, 0.03) + 0.7 * cover(np.abs(streak - 0.045) - 0.012, 0.02))
    art.paint(rgb("ffffff"), np.clip(light, 0, 1) * cover(inside + 0.015, 0.02) * 0.30 * smooth((y + 0.28) / 0.4))
    # Acetate: dark wine with a bevel that takes light from above.
    bevel = np.clip(-np.maximum(frame, -inside) / 0.026, 0, 1)
    slope = np.gradient(bevel, axis=0) / art.pixel * 0.026
    base = mix(rgb("3b0a1e"), rgb("8c1d3f"), smooth((y + 0.3) / 0.55))
    lit = np.clip(base + 0.34 * np.clip(slope, -1, 1)[..., None] * np.array([1.0, 0.8, 0.85]), 0, 1)
    art.fill(np.maximum(frame, -inside), lit)
    gloss = np.maximum(np.abs(y - 0.205 - 0.035 * x) - 0.006, np.abs(x - 0.36) - 0.22)
    art.fill(gloss, rgb("ffffff"), 0.55, soft=0.014)
    art.fill(circle(x - 0.70, y - 0.19, 0.016), rgb("ffe9c2"), 0.95)

    def bones(at, _):
        right = float(np.clip((at + 0.16) / 0.32, 0, 1))  # the bridge goes over from one eye to the other
        return {1: 1.0 - right, 2: right}

    save_face("glasses", "Glasses", art, rect, 18, 4, lambda at, _: 0.22 - 0.25 * at * at, bones)


def make_hat():
    rect = (-1.50, 0.42, 1.50, 1.62)
    art = Canvas(rect, 1280)
    x, y = art.x, art.y
    weave = 0.5 + 0.5 * np.sin((x + y * 1.9) * 95.0) * np.sin((x - y * 1.9) * 95.0)
    straw = mix(rgb("d9a441"), rgb("f3d58b"), 0.25 + 0.5 * weave)

    def lit(colour, amount):
        return np.clip(colour * np.asarray(amount)[..., None], 0, 1)

    brim = ellipse(x, y - 0.74, 1.42, 0.245)
    art.fill(ellipse(x, y - 0.70, 1.30, 0.215), rgb("2a1708"), 0.45, soft=0.16)  # shadow on hair and brow
    art.fill(ellipse(x, y - 0.728, 1.42, 0.245), rgb("8a5a1c"))  # the brim's thickness
    art.fill(brim, lit(straw, 0.80 + 0.30 * smooth((x + 1.5) / 2.4) + 0.25 * (0.74 - y)))
    for inset in (0.02, 0.05, 0.08):
        art.fill(np.abs(brim + inset) - 0.006, rgb("a8732a"), 0.55, soft=0.012)
    # The crown: sides between the ellipses of brim and lid.
    half = 0.90 - 0.06 * smooth((y - 0.78) / 0.6)
    curve = 0.15 * np.sqrt(np.clip(1.0 - (x / 0.92) ** 2, 0, 1))
    bottom, top = 0.80 - curve, 1.40
    sides = np.maximum(np.abs(x) - half, np.maximum(bottom - y, y - top))
    round_side = 0.62 + 0.46 * np.sqrt(np.clip(1.0 - (x / 0.93 - 0.15) ** 2, 0, 1)) ** 1.2
    art.fill(np.abs(y - bottom) + np.where(np.abs(x) < 0.90, 0, 1), rgb("3a2308"), 0.5, soft=0.10)
    art.fill(sides, lit(straw, round_side))
    # The ribbon follows the curve of the brim.
    along = y - bottom
    ribbon = np.maximum(np.abs(along - 0.155) - 0.115, np.abs(x) - half)
    fold = 0.92 + 0.08 * np.cos(x * 36.0)
    art.fill(ribbon, lit(np.broadcast_to(rgb("1f3d7a"), art.colour.shape), round_side * fold * 1.05))
    stripe = np.maximum(np.abs(along - 0.155) - 0.030, np.abs(x) - half)
    art.fill(stripe, lit(np.broadcast_to(rgb("f4efe2"), art.colour.shape), round_side))
    for edge in (0.044, 0.266):
        art.fill(np.maximum(np.abs(along - edge) - 0.006, np.abs(x) - half), rgb("12264f"), 0.8)
    # A bow at the side.
    bx, by = x - 0.60, along - 0.155
    for side in (-1, 1):
        loop = ellipse(bx - side * 0.13, by - 0.015 * side, 0.135, 0.085)
        art.fill(loop - 0.008, rgb("0f2147"), 0.9)
        art.fill(loop, mix(rgb("2b56ad"), rgb("16305f"), smooth(np.abs(bx) / 0.26 * 0.9)))
    art.fill(circle(bx, by, 0.052), rgb("2f5fbd"))
    art.fill(circle(bx + 0.012, by - 0.014, 0.018), rgb("9dbcf2"), 0.6, soft=0.03)
    lid = ellipse(x, y - 1.40, 0.842, 0.135)
    art.fill(lid - 0.010, rgb("a8732a"))
    art.fill(lid, lit(straw, 1.02 + 0.10 * smooth((x + 0.8) / 1.6)))
    for inset in (0.02, 0.055):
        art.fill(np.abs(lid + inset) - 0.005, rgb("b9853a"), 0.5, soft=0.012)

    def bones(_, at):
        head = 0.6 * float(smooth(np.array((at - 0.7) / 0.7)))  # the brim sits on the forehead, the lid sways less
        return {6: 1.0 - head, 0: head}

    save_face("hat", "Straw hat", art, rect, 12, 8, lambda at, up: 0.25 - 0.22 * at * at - 0.1 * (up - 0.7), bones)


def make_cat():
    rect = (-1.20, -0.85, 1.20, 1.60)
    art = Canvas(rect, 1024)
    x, y = np.abs(art.x), art.y  # mirrored
    # Ears: triangles whose sides bulge, running out into the hair.
    bulge = 0.05 * np.sin(np.clip((y - 0.8) / 0.7, 0, 1) * math.pi)
    ear = triangle(x, y, (0.40, 0.86), (1.02, 0.70), (0.90, 1.42)) - 0.03 - bulge
    inner = triangle(x, y, (0.55, 0.90), (0.93, 0.80), (0.865, 1.27)) - 0.8 * bulge
    foot = smooth((y - 0.80 - 0.22 * (0.70 - x)) / 0.16 + 0.5)
    fur = 0.5 + 0.5 * np.sin(60.0 * (x * 0.9 - y * 0.35) + 5.0 * np.sin(9.0 * y + 4.0 * x))
    coat = mix(mix(rgb("5b4030"), rgb("8a6345"), smooth((y - 0.75) / 0.6)), rgb("b08a62"), 0.22 * fur)
    art.paint(coat, cover(ear, 0.025) * foot)
    art.paint(rgb("2e1d14"), cover(np.abs(ear + 0.006) - 0.006, 0.022) * foot * 0.75)
    pink = mix(rgb("f6b3b5"), rgb("c4707a"), smooth((1.30 - y) / 0.45))
    art.paint(pink, cover(inner, 0.06) * smooth(foot) * (0.85 + 0.15 * fur))
    # Nose with a gloss, whiskers with dots, blush.
    nx, ny = x, y + 0.36
    nose = union(ellipse(nx, ny, 0.125, 0.075), triangle(nx, ny, (0.0, -0.12), (0.10, 0.02), (-0.10, 0.02)), 0.05)
    art.fill(circle(x - 0.50, y + 0.42, 0.10), rgb("ff6f86"), 0.34, soft=0.26)
    art.fill(nose - 0.012, rgb("5a2028"), 0.7, soft=0.02)
    art.fill(nose, mix(rgb("f58fa0"), rgb("d0566e"), smooth(-ny / 0.10)))
    art.fill(ellipse(nx - 0.045, ny - 0.032, 0.035, 0.016), rgb("ffffff"), 0.75, soft=0.02)
    for start, end in (((0.30, -0.44), (0.92, -0.30)), ((0.31, -0.50), (0.96, -0.50)), ((0.29, -0.56), (0.90, -0.69))):
        bow = 0.05 * np.sin(np.clip((x - start[0]) / (end[0] - start[0]), 0, 1) * math.pi)
        taper = 0.011 * (1.0 - 0.8 * np.clip((x - start[0]) / (end[0] - start[0]), 0, 1))
        line = segment(x, y - bow, start, end)
        art.fill(line - taper - 0.006, rgb("3a2c28"), 0.55, soft=0.016)
        art.fill(line - taper, rgb("fffaf2"), 0.97)
        art.fill(circle(x - start[0] + 0.05, y - start[1], 0.016), rgb("3a2c28"), 0.8)

    def bones(_, at):
        # Ears go with head and forehead, the muzzle with the nose, and between them there is nothing to see.
        muzzle = float(smooth(np.array((0.45 - at) / 0.5)))
        return {3: muzzle, 6: (1.0 - muzzle) * 0.6, 0: (1.0 - muzzle) * 0.4}

    save_face("cat", "Cat", art, rect, 10, 14, lambda at, up: 0.25 - 0.2 * at * at if up < 0.4 else -0.05, bones)


# The screen: pixels of the view port, origin top left, y down into negative values.

CONFETTI_COLOURS = ["ff3b5c", "ffb400", "2ecc71", "2d9cff", "a55bff", "ff7bd5", "fff3c4", "ff7a1a"]
CONFETTI_SHAPES = 4  # strip, dot, ribbon, star
CONFETTI_CELL = 64


def draw_confetti(path):
    """A row for each colour; the shapes from the front, then the same from the back, which is darker."""
    rows = []
    for text in CONFETTI_COLOURS:
        cells = []
        for back in (False, True):
            for shape in range(CONFETTI_SHAPES):
                art = Canvas((-1.0, -1.0, 1.0, 1.0), CONFETTI_CELL)
                x, y = art.x, art.y
                # 0 at the five tips of the star, 1 between them.
                point = 1.0 - np.abs((np.arctan2(y, x) - math.pi / 2) * 5 / math.pi % 2.0 - 1.0)
                distance = [
                    np.maximum(np.abs(x) - 0.80, np.abs(y) - 0.46),
                    circle(x, y, 0.66),
                    np.maximum(np.abs(y - 0.34 * np.sin(x * 4.2)) - 0.17, np.abs(x) - 0.86),
                    np.hypot(x, y) - 0.80 / (1.0 + 0.85 * point),
                ][shape]
                colour = rgb(text) * (0.62 if back else 1.0)
                sheen = 0.20 * smooth((x + y + 1.2) / 2.0) - 0.10
                art.fill(distance, np.clip(colour + sheen[..., None], 0, 1), soft=0.06)
                cells.append(art)
        rows.append(cells)
    sheet_art = Canvas((0, 0, 2 * CONFETTI_SHAPES, len(rows)), CONFETTI_CELL * 2 * CONFETTI_SHAPES)
    sheet_art.colour = np.vstack([np.hstack([cell.colour for cell in row]) for row in rows])
    sheet_art.alpha = np.vstack([np.hstack([cell.alpha for cell in row]) for row in rows])
    sheet_art.save(path)


def make_confetti(width, height, folder):
    """Falls, sways and tumbles; every motion comes round after one loop, so that it never jumps."""
    pieces, frames, seconds, margin = round(150 * width * height / (1920 * 1080)), 54, 2.7, 60
    draw_confetti(folder / "confetti.png")
    random = np.random.RandomState(20)
    positions, uvs, indices = [], [], []
    near = random.uniform(0.0, 1.0, pieces) ** 1.5  # larger and faster
    lane = (np.arange(pieces) + random.uniform(0, 1, pieces)) / pieces  # spread evenly
    random.shuffle(lane)
    start, phase = random.uniform(0, 1, pieces), random.uniform(0, 2 * math.pi, (3, pieces))
    spins, flips = random.choice([-1, 1], pieces), random.choice([1, 2, 3], pieces)
    shape, colour = random.randint(0, CONFETTI_SHAPES, pieces), random.randint(0, len(CONFETTI_COLOURS), pieces)
    for frame in range(frames):
        t = frame / frames
        for i in np.argsort(near):  # the far ones first
            fall = (start[i] + t) % 1.0
            x = lane[i] * width + (14 + 26 * near[i]) * math.sin(2 * math.pi * t + phase[0, i])
            y = margin - fall * (height + 2 * margin)
            flip = math.cos(2 * math.pi * flips[i] * t + phase[1, i])
            turn = spins[i] * 2 * math.pi * t + phase[2, i]
            half = 9.0 + 12.0 * near[i]
            row, column = colour[i], shape[i] + (CONFETTI_SHAPES if flip < 0 else 0)
            base = len(positions)
            for cx, cy in ((-1, 1), (-1, -1), (1, 1), (1, -1)):
                dx, dy = cx * half, cy * half * (abs(flip) * 0.92 + 0.08)
                positions.append([x + dx * math.cos(turn) - dy * math.sin(turn),
                                  y + dx * math.sin(turn) + dy * math.cos(turn), 0.0])
                uvs.append([(column + (cx + 1) / 2) / (2 * CONFETTI_SHAPES),
                            (row + (1 - cy) / 2) / len(CONFETTI_COLOURS)])
            indices += [base, base + 1, base + 2, base + 2, base + 1, base + 3]
    model = Model("confetti.png")
    node = model.mesh("confetti", positions, uvs, indices, shown=pieces * 6)
    model.flip_book(node, frames, pieces * 6 * 2, seconds)
    model.save(folder, "confetti", "foreground", "Confetti")


FRAME_TILE = 256  # pixels of a corner at a height of 720


def draw_frame(path):
    """The top left corner. Its last column and row go on along the edges."""
    art = Canvas((0, -FRAME_TILE, FRAME_TILE, 0), 512)
    x, y = art.x, -art.y
    # A soft vignette, rounded into the corner.
    reach = 150.0
    inner = np.hypot(np.maximum(reach - x, 0), np.maximum(reach - y, 0)) / reach
    art.paint(rgb("140a1e"), 0.62 * smooth((inner - 0.18) / 0.98) ** 1.4)

    def line(offset, notch):
        """Distance to a rectangle that many pixels inside, with a concave quarter circle for a corner."""
        box = np.minimum(x, y) - offset
        return np.minimum(box, np.hypot(x - offset, y - offset) - notch)

    def gold(distance, width):
        shine = 0.5 + 0.5 * np.sin((x - y) / 38.0) * np.exp(-(np.maximum(x, y) / 230.0) ** 6)
        bevel = np.clip(distance / width + 0.5, 0, 1)
        metal = mix(mix(rgb("8f6420"), rgb("ffe9a8"), shine), rgb("fff8dc"), 0.35 * bevel)
        art.fill(np.abs(distance + 1.6) - width / 2 - 0.6, rgb("000000"), 0.35, soft=3.0)
        art.fill(np.abs(distance) - width / 2, metal)

    gold(line(24.0, 60.0), 3.6)
    gold(line(34.0, 62.0), 1.4)
    # A star in the notch, with beads to both sides.
    sx, sy = x - 45.0, y - 45.0
    d, e = np.abs(sx + sy) / math.sqrt(2), np.abs(sx - sy) / math.sqrt(2)
    star = np.minimum(np.sqrt(np.abs(sx)) + np.sqrt(np.abs(sy)) - math.sqrt(21.0),
                      np.sqrt(d) + np.sqrt(e) - math.sqrt(12.0)) * 2.2
    art.fill(star - 0.5, rgb("000000"), 0.35, soft=4.0)
    art.fill(star, mix(rgb("fff6d0"), rgb("d9a441"), smooth(np.hypot(sx, sy) / 18.0)))
    for along, size in ((108.0, 3.6), (122.0, 2.6), (133.0, 1.8)):
        for bx, by in ((along, 48.0), (48.0, along)):
            art.fill(circle(x - bx, y - by, size + 0.6), rgb("000000"), 0.3, soft=2.5)
            art.fill(circle(x - bx, y - by, size), mix(rgb("fff6d0"), rgb("c9922f"),
                                                       smooth(np.hypot(x - bx + 1, y - by + 1) / (1.4 * size))))
    art.save(path)


def make_frame(width, height, folder):
    draw_frame(folder / "frame.png")
    tile = min(FRAME_TILE * min(width, height) / 720.0, min(width, height) / 2)
    edge = 1.0 - 0.5 / 512  # the centre of the last texel
    across, down = [0.0, tile, width - tile, width], [0.0, -tile, tile - height, -height]
    stops = [0.0, edge, edge, 0.0]
    positions = [[x, y, 0.0] for y in down for x in across]
    uvs = [[u, v] for v in stops for u in stops]
    indices = []
    for r in range(3):
        for c in range(3):
            if (r, c) != (1, 1):
                a = 4 * r + c
                indices += [a, a + 4, a + 1, a + 1, a + 4, a + 5]
    model = Model("frame.png")
    model.mesh("frame", positions, uvs, indices)
    model.save(folder, "frame", "frame", "Frame")


def main():
    screen = {"frame": make_frame, "confetti": make_confetti}
    if len(sys.argv) == 4 and sys.argv[1] in screen:
        width, height = (int(side) for side in sys.argv[2].split("x"))
        screen[sys.argv[1]](width, height, pathlib.Path(sys.argv[3]))
        return
    if len(sys.argv) != 1:
        sys.exit(__doc__)
    make_glasses()
    make_hat()
    make_cat()
    make_confetti(1920, 1080, TARGET / "confetti")
    for width, height in FRAME_SIZES:
        make_frame(width, height, TARGET / f"frame-{width}x{height}")


main()
