#!/usr/bin/env python3
"""The figures by which skin smoothing is judged, for OpenCV's bilateral filter or for any picture.

    smoothing-figures.py                      the bilateral filter (d 9, sigma 75) on the portrait
    smoothing-figures.py BEFORE.png AFTER.png what happened between two pictures of the same size

A picture is the portrait, or a frame with the portrait scaled into the square in its middle. Detail is the
standard deviation of luma after subtracting a Gaussian blur of sigma 6 (at 512), as a share of what it was; edges
are the 5 % strongest Sobel magnitudes of luma, summed after over summed before; move is how far the mean colour of
any of 16 x 16 blocks moves, in steps of 8 bits. Needs Debian's python3-opencv.
"""
import pathlib
import sys

import cv2
import numpy as np

PORTRAIT = pathlib.Path(__file__).resolve().parent.parent / "samples/portrait.png"
SKIN = ((196, 118, 214, 140), (238, 118, 256, 140), (205, 75, 240, 88))  # x0, y0, x1, y1 at 512
TEXTURE = ((120, 330, 200, 400), (165, 40, 200, 70), (60, 300, 100, 340))
LUMA = (0.114, 0.587, 0.299)  # of blue, green, red


def luma(picture):
    return picture.astype(np.float64) @ LUMA


def middle(frame):
    height, width = frame.shape[:2]
    side = min(width, height)
    left, top = (width - side) // 2, (height - side) // 2
    return frame[top : top + side, left : left + side]


def detail(before, after, areas):
    scale = len(before) / 512
    rest = [y - cv2.GaussianBlur(y, (0, 0), 6 * scale) for y in (luma(before), luma(after))]
    ratios = []
    for area in areas:
        x0, y0, x1, y1 = (round(place * scale) for place in area)
        was, now = (plane[y0:y1, x0:x1].std() for plane in rest)
        ratios.append(now / was)
    return np.mean(ratios)


def sobel(picture):
    plane = luma(picture)
    return np.hypot(cv2.Sobel(plane, cv2.CV_64F, 1, 0), cv2.Sobel(plane, cv2.CV_64F, 0, 1))


def edges(before, after):
    was, now = sobel(before), sobel(after)
    strong = was >= np.quantile(was, 0.95)
    return now[strong].sum() / was[strong].sum()


def move(before, after):
    side = len(before) // 16
    change = (after.astype(np.float64) - before)[: 16 * side, : 16 * side]
    return np.abs(change.reshape(16, side, 16, side, 3).mean((1, 3))).max()


def show(name, before, after):
    before, after = middle(before), middle(after)
    print(
        f"{name:24} skin {detail(before, after, SKIN):.2f}  edges {edges(before, after):.2f}"
        f"  texture {detail(before, after, TEXTURE):.2f}  move {move(before, after):.1f}"
    )


def noisy(picture):
    noise = np.random.default_rng(1).normal(0, 8, picture.shape)
    return np.clip(np.round(picture + noise), 0, 255).astype(np.uint8)


def in_frame(portrait, width, height):
    frame = np.zeros((height, width, 3), np.uint8)
    side = min(width, height)
    middle(frame)[:] = cv2.resize(portrait, (side, side), interpolation=cv2.INTER_LINEAR)
    return frame


def main(paths):
    if paths:
        before, after = (cv2.imread(path) for path in paths)
        show(pathlib.Path(paths[1]).name, before, after)
        return
    portrait = cv2.imread(str(PORTRAIT))
    for name, before in (
        ("512 x 512", portrait),
        ("512 x 512, noise", noisy(portrait)),
        ("1280 x 720", in_frame(portrait, 1280, 720)),
        ("1920 x 1080", in_frame(portrait, 1920, 1080)),
    ):
        show(name, before, cv2.bilateralFilter(before, 9, 75, 75))


if __name__ == "__main__":
    if len(sys.argv) not in (1, 3):
        sys.exit(__doc__)
    main(sys.argv[1:])
