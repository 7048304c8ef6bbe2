#!/usr/bin/env python3
"""Makes effects/GraffitiStrokes.h, the 146 strokes of the graffiti effect, from the drawing below.

    make-graffiti.py [--out FILE] [--preview PNG]      the preview needs Pillow (Debian: python3-pil)

The drawing: a spray can stands on a brick wall before the town and sprays its bar over the sky. Everything is a
rectangle. Places are given as one sees them: x to the right and y down, 0 to 1 across the picture. A drawing of the
effect lies upside down in GL, so the table counts y from the bottom; it is sorted by the lower edge of the strokes, and
that is how they come: from the wall up."""
import argparse
import pathlib

TABLE = pathlib.Path(__file__).resolve().parent.parent / "effects" / "GraffitiStrokes.h"

# The smallest and the largest value that a table may hold.
LIMITS = (0.0167, 0.9917)

# Strokes that are fixed, as rows of the table: index, x0, y0, x1, y1. The kerb, the coping of the wall, the bar.
FIXED = {
    0: (0.2486, 0.0359, 0.6306, 0.0508),
    1: (0.2597, 0.0508, 0.6250, 0.0578),
    28: (0.1222, 0.2383, 0.9500, 0.2500),
    145: (0.0667, 0.8664, 0.8528, 0.9555),
}

CAN_LEFT, CAN_RIGHT = 0.365, 0.535
CAN_MIDDLE = 0.45

HEART = """
..###...###..
.#####.#####.
#############
#############
.###########.
..#########..
....#####....
.....###.....
......#......
"""

ARROW = """
...#...
..###..
.#####.
#######
..###..
..###..
..###..
..###..
"""

NOZZLE = """
..######..
..######..
..######..
..####....
..######..
..######..
...####...
...####...
##########
"""


def box(left, top, right, bottom):
    return (left, top, right, bottom)


def art(text, left, top, right, bottom):
    """One rectangle for each run of # in each row; equal rows that follow one another make one."""
    rows = text.split()
    width, height = (right - left) / len(rows[0]), (bottom - top) / len(rows)
    found = []
    row = 0
    while row < len(rows):
        end = row + 1
        while end < len(rows) and rows[end] == rows[row]:
            end += 1
        start = None
        for column, char in enumerate(rows[row] + "."):
            if char == "#" and start is None:
                start = column
            if char != "#" and start is not None:
                found.append(box(left + start * width, top + row * height, left + column * width, top + end * height))
                start = None
        row = end
    return found


def bricks():
    """Four courses, every second one moved by half a brick."""
    found = []
    for course, count in enumerate((7, 6, 7, 6)):
        bottom = 0.938 - course * 0.044
        left = 0.040 if count == 7 else 0.107
        for brick in range(count):
            x = left + brick * 0.134
            found.append(box(x, bottom - 0.036, x + 0.122, bottom))
    return found


def town(left, widths_and_tops):
    """Towers side by side on the wall, a narrow street between any two."""
    found = []
    for width, top in widths_and_tops:
        found.append(box(left, top, left + width, 0.750))
        left += width + 0.006
    return found


def stripes(left, right, count, top, bottom, gap=0.35):
    """Upright strokes with gaps between them, a share of the pitch."""
    pitch = (right - left) / (count - gap)
    return [box(left + i * pitch, top, left + (i + 1 - gap) * pitch, bottom) for i in range(count)]


def sparkle(x, y, reach):
    """A plus, wider than high on a wide picture."""
    return [box(x - reach, y - 0.006, x + reach, y + 0.006),
            box(x - 0.004, y - 1.4 * reach, x + 0.004, y + 1.4 * reach)]


def strips(middle, top, bottom, half_widths):
    """Strips on top of one another around a middle, given from the top down."""
    height = (bottom - top) / len(half_widths)
    return [box(middle - half, top + i * height, middle + half, top + (i + 0.86) * height)
            for i, half in enumerate(half_widths)]


WALL = bricks()

TOWN = (town(0.128, [(0.016, 0.690), (0.026, 0.640), (0.016, 0.600), (0.006, 0.545), (0.016, 0.600), (0.028, 0.665),
                     (0.014, 0.625), (0.022, 0.690), (0.016, 0.655)])
        + town(0.580, [(0.020, 0.690), (0.018, 0.630), (0.012, 0.655), (0.022, 0.580), (0.006, 0.530), (0.010, 0.580),
                       (0.016, 0.640), (0.012, 0.690), (0.024, 0.610), (0.012, 0.560), (0.016, 0.610), (0.010, 0.665),
                       (0.020, 0.635), (0.014, 0.585), (0.006, 0.540), (0.014, 0.585), (0.020, 0.680)]))

CAN = ([box(CAN_LEFT - 0.004, 0.725, CAN_RIGHT + 0.004, 0.745)]
       + [box(CAN_LEFT, 0.704, CAN_RIGHT, 0.719)]
       + stripes(CAN_LEFT, CAN_LEFT + 0.036, 3, 0.409, 0.699, 0.22)
       + stripes(CAN_RIGHT - 0.036, CAN_RIGHT, 3, 0.409, 0.699, 0.22)
       + stripes(CAN_LEFT + 0.040, CAN_RIGHT - 0.040, 11, 0.635, 0.699, 0.3))

LABEL = (art(HEART, CAN_LEFT + 0.042, 0.493, CAN_RIGHT - 0.042, 0.622)
         + sparkle(0.215, 0.505, 0.034) + sparkle(0.105, 0.560, 0.022)
         + sparkle(0.645, 0.490, 0.022) + sparkle(0.800, 0.470, 0.034))

SHOULDER = (stripes(CAN_LEFT + 0.040, CAN_RIGHT - 0.040, 9, 0.409, 0.473, 0.3)
            + strips(CAN_MIDDLE, 0.335, 0.405, (0.040, 0.056, 0.070, 0.079, 0.085))
            + sparkle(0.130, 0.390, 0.022) + sparkle(0.255, 0.375, 0.015) + sparkle(0.735, 0.375, 0.026))

SPRAY_HEAD = (art(NOZZLE, CAN_MIDDLE - 0.034, 0.241, CAN_MIDDLE + 0.034, 0.333)
              + art(ARROW, 0.160, 0.241, 0.236, 0.333) + art(ARROW, 0.664, 0.241, 0.740, 0.333)
              + [box(0.275, 0.270, 0.345, 0.284), box(0.555, 0.270, 0.625, 0.284)])

MIST = [box(x - half, y - 0.008, x + half, y + 0.008)
        for y, half, xs in ((0.230, 0.011, (0.435, 0.465)),
                            (0.207, 0.014, (0.395, 0.450, 0.505)),
                            (0.183, 0.018, (0.325, 0.410, 0.490, 0.575)),
                            (0.156, 0.026, (0.115, 0.235, 0.350, 0.450, 0.550, 0.665, 0.785)))
        for x in xs]

# What comes in each step of the effect, and how many strokes that must be, the fixed ones included.
GROUPS = (("the wall", WALL, 28), ("the town", TOWN, 27), ("the can", CAN, 19), ("its label", LABEL, 18),
          ("its shoulder", SHOULDER, 20), ("its head", SPRAY_HEAD, 17), ("the mist", MIST, 16), ("the bar", [], 1))


HEADER = """\
// Generated by tools/make-graffiti.py: change the drawing there.
#pragma once

#include <array>
#include <cstddef>

namespace zv {{

/// A stroke of the graffiti drawing: a rectangle in parts of the picture, y from the lower edge up.
struct GraffitiStroke {{
    float x0;
    float y0;
    float x1;
    float y1;
}};

inline constexpr std::size_t kGraffitiStrokeCount = {count};

/// Sorted by y0.
inline constexpr std::array<GraffitiStroke, kGraffitiStrokeCount> kGraffitiStrokes = {{{{"""


def table():
    """Rows (x0, y0, x1, y1) with y from the bottom, and the index at which each group starts."""
    rows, starts = [], []
    for name, boxes, count in GROUPS:
        starts.append(len(rows))
        fixed = [row for index, row in FIXED.items() if len(rows) <= index < len(rows) + count]
        drawn = [(left, 1.0 - bottom, right, 1.0 - top) for left, top, right, bottom in boxes]
        group = [tuple(round(value, 4) for value in row) for row in drawn]
        group = sorted(fixed + group, key=lambda row: row[1])
        assert len(group) == count, f"{name}: {len(group)} strokes, not {count}"
        rows += group
    for index, row in FIXED.items():
        assert rows[index] == row, f"row {index} is {rows[index]}"
    for before, row in zip(rows, rows[1:]):
        assert before[1] <= row[1], f"{row} starts below {before}"
    for row in rows:
        assert row[0] < row[2] and row[1] < row[3] and min(row) >= LIMITS[0] and max(row) <= LIMITS[1], row
    return rows, starts


def write_table(path, rows, starts):
    lines = [HEADER.format(count=len(rows))]
    for index, row in enumerate(rows):
        if index in starts:
            lines.append(f"    // {index}: {GROUPS[starts.index(index)][0]}")
        lines.append("    {" + ", ".join(f"{value:.4f}F" for value in row) + "},")
    path.write_text("\n".join(lines + ["}};", "", "}  // namespace zv", ""]))


def write_preview(path, rows, starts, width=960, height=540):
    from PIL import Image, ImageDraw
    colours = ["#2a6fdb", "#3aa6d8", "#7a4fd0", "#e0457b", "#b83fb0", "#ef7d32", "#f2a93b", "#f6c945"]
    image = Image.new("RGB", (width, height), "#f2ecdf")
    draw = ImageDraw.Draw(image)
    for index, (x0, y0, x1, y1) in enumerate(rows):
        group = max(i for i, start in enumerate(starts) if start <= index)
        draw.rectangle((x0 * width, (1 - y1) * height, x1 * width - 1, (1 - y0) * height - 1), colours[group])
    image.save(path)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", type=pathlib.Path, default=TABLE)
    parser.add_argument("--preview", type=pathlib.Path, help="a picture of all strokes at once")
    arguments = parser.parse_args()
    rows, starts = table()
    write_table(arguments.out, rows, starts)
    if arguments.preview:
        write_preview(arguments.preview, rows, starts)


if __name__ == "__main__":
    main()
