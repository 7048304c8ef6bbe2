#!/usr/bin/env python3
"""Writes samples/portrait.track.jsonl: where the face of samples/portrait.png is, marked by hand, as the matrices
that face stickers take. docs/stickers.md describes the format. Only the standard library is used.

With arguments: make-face-track.py FRAMES WIDTHxHEIGHT prints the track of the clip that "zv demo" makes from the
portrait with a moving camera."""
import json
import math
import pathlib
import sys

SIZE = (512, 512)
# Pixels of the picture, origin top left.
CORNERS = ((193.5, 101.0), (259.0, 104.5))  # the outer eye corners, picture's left first
LEFT_EYE, RIGHT_EYE = (203.5, 101.0), (246.5, 103.5)
NOSE, MOUTH, CHIN, FOREHEAD = (223.5, 127.5), (224.0, 146.0), (227.0, 178.0), (226.5, 69.5)
DEPTHS = (0.0, 0.0, 0.0, 0.30, 0.15, 0.05, 0.10)  # of each bone, in units, towards the viewer

UNIT = math.dist(*CORNERS)
ROLL = -math.atan2(CORNERS[1][1] - CORNERS[0][1], CORNERS[1][0] - CORNERS[0][0])  # counter-clockwise


HEAD = (223.5, 127.5), (224.0, 146.0), (227.0, 178.0), (226.5, 69.5)
DEPTHS = (0.0, 0.0, 0.0, 0.30, 0.15, 0.05, 0.10)  # of each bone, in units, towards the viewer

UNIT = math.dist(*CORNERS)
ROLL = -math.atan2(CORNERS[1][1] - CORNERS[0][1], CORNERS[1][0] - CORNERS[0][0])  # counter-clockwise


def matrix(point, depth):
    """Column by column: model units to pixels of the view port, origin bottom left."""
    c, s = UNIT * math.cos(ROLL), UNIT * math.sin(ROLL)
    rows = [c, s, 0, 0, -s, c, 0, 0, 0, 0, UNIT, 0, point[0], SIZE[1] - point[1], depth * UNIT, 1]
    return [round(value, 3) for value in rows]


HEAD = ((LEFT_EYE[0] + RIGHT_EYE[0]) / 2, (LEFT_EYE[1] + RIGHT_EYE[1]) / 2)
BONES = (HEAD, LEFT_EYE, RIGHT_EYE, NOSE, MOUTH, CHIN, FOREHEAD)


def line(size, zoom=1.0, left=0.0, top=0.0):
    """One frame: the portrait enlarged by `zoom`, of which the part from (left, top) on is seen.
    Matrices go column by column, from model units to pixels of the view port with the origin bottom left."""
    unit = UNIT * zoom
    c, s = unit * math.cos(ROLL), unit * math.sin(ROLL)
    face = []
    for (x, y), depth in zip(BONES, DEPTHS):
        place = [(x - left) * zoom, size[1] - (y - top) * zoom, depth * unit, 1]
        face.append([round(value, 3) for value in [c, s, 0, 0, -s, c, 0, 0, 0, 0, unit, 0] + place])
    return json.dumps({"size": size, "faces": [face]}) + "\n"


def clip(frames, size):
    """The camera of clip() in the script zv: its zoom and its corner, of a picture as wide and 9/16 as high."""
    width, height = SIZE[0], SIZE[0] * 9 / 16
    for number in range(frames):
        zoom = 1.1 + 0.5 * math.sin(number / 40) ** 2
        left = (width - width / zoom) * (0.5 + 0.4 * math.sin(number / 25))
        top = (height - height / zoom) * 0.4
        yield line(size, zoom * size[0] / width, left, top)


if len(sys.argv) == 3:
    sys.stdout.writelines(clip(int(sys.argv[1]), tuple(int(side) for side in sys.argv[2].split("x"))))
elif len(sys.argv) == 1:
    target = pathlib.Path(__file__).resolve().parent.parent / "samples" / "portrait.track.jsonl"
    target.write_text(line(SIZE))
else:
    sys.exit(__doc__)
