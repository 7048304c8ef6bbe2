#!/usr/bin/env python3
"""Makes the lookup images in res/zv_res/lookups from named curves: the whitening image kel_white.png
(512 x 512) and each look as a colour table of 512 x 512 and of 64 x 64, NAME-512.png and NAME-64.png.

    make-lookups.py [--out FOLDER] [NAME...]      all of them when no NAME is given

Needs NumPy and Pillow (Debian: python3-numpy, python3-pil); nothing of this is needed to build or run.

A look is worked out in gamma-encoded values of 0 to 1, in the order of the fields of Look. All curves are
smooth and rise everywhere, less steeply than two steps a step, so that a grey ramp neither bands nor folds."""
import argparse
import dataclasses
import pathlib

import numpy
from PIL import Image

LUMA = numpy.array([0.299, 0.587, 0.114])
FOLDER = pathlib.Path(__file__).resolve().parent.parent / "res" / "zv_res" / "lookups"

# What counts as skin, of any tone: hues around orange, neither grey nor glaring, not in deep shadow. Each pair
# is where the weight starts and where it has reached its end.
SKIN_HUE = 21.0  # degrees
SKIN_HUE_FADE = (5.0, 36.0)  # degrees away from it: all skin, none
SKIN_SATURATION_IN = (0.05, 0.24)
SKIN_SATURATION_OUT = (0.52, 0.78)
SKIN_VALUE_IN = (0.04, 0.30)


@dataclasses.dataclass
class Look:
    """Changes nothing at its defaults. A tint is what is added to red, green and blue at the peak of its bump."""

    gamma: float = 1.0  # below 1 lifts the middle
    contrast: float = 0.0  # -1 to 1: how far the curve turns from a line to a smooth step around the middle
    black: float = 0.0  # where black goes
    white: float = 1.0  # where white goes
    balance: tuple = (1.0, 1.0, 1.0)  # gamma of each channel: below 1 more of it
    shadows: tuple = (0.0, 0.0, 0.0)  # tint, largest at a third
    highlights: tuple = (0.0, 0.0, 0.0)  # tint, largest at two thirds
    saturation: float = 1.0  # of all colours
    vibrance: float = 0.0  # more saturation for what has little of it
    skin: float = 0.0  # 0 to 1: how much of skin's own colour survives balance, tints and saturation
    mono: tuple = ()  # weights of the channels in a grey picture; none: stays in colour


LOOKS = {
    # A little depth, a little colour where there is little.
    "natural": Look(gamma=0.96, contrast=0.12, vibrance=0.14, skin=0.4),
    # Late sun.
    "warm": Look(gamma=0.97, contrast=0.06, balance=(0.93, 1.0, 1.13), highlights=(0.015, 0.01, -0.02),
                 saturation=1.04, skin=0.35),
    # Clear morning, skin kept from turning pale blue.
    "cool": Look(gamma=0.95, contrast=0.1, balance=(1.13, 1.0, 0.87), shadows=(-0.01, 0.0, 0.02),
                 saturation=0.96, skin=0.6),
    # Print film: soft ends, teal shadows against warm light.
    "film": Look(contrast=0.38, black=0.035, white=0.975, shadows=(-0.035, 0.012, 0.035),
                 highlights=(0.03, 0.012, -0.04), saturation=0.92, skin=0.5),
    # Left in a shop window: raised black, thin colour.
    "faded": Look(gamma=0.95, contrast=-0.12, black=0.11, white=0.955, shadows=(0.0, 0.004, 0.02),
                  highlights=(0.012, 0.006, -0.012), saturation=0.72, vibrance=0.05, skin=0.3),
    # Poster colours, faces left alone.
    "vivid": Look(contrast=0.24, saturation=1.16, vibrance=0.35, skin=0.75),
    # Panchromatic with an orange filter: clear skin, deep sky.
    "mono": Look(gamma=0.97, contrast=0.2, mono=(0.42, 0.46, 0.12)),
    # Street after dark: less light, blue shadows, faces stay warm.
    "night": Look(gamma=1.35, contrast=0.2, shadows=(-0.04, 0.0, 0.06), highlights=(-0.01, 0.005, 0.02),
                  balance=(1.05, 1.0, 0.93), saturation=0.82, skin=0.65),
}

# Whitening: what is added to all three channels alike, which keeps the hue, for all colours and for skin on top.
# Its bump runs along the largest channel, so that nothing is ever cut off.
WHITE_ALL = 0.045
WHITE_SKIN = 0.125
WHITE_BUMP = (1.6, 1.0)  # powers: above 1 at the dark end leaves the shadows alone
WHITE_SKIN_SATURATION = 0.96  # of skin: less yellow and less red


def smooth(low, high, value):
    t = numpy.clip((value - low) / (high - low), 0.0, 1.0)
    return t * t * (3.0 - 2.0 * t)


def bump(value, rise, fall):
    """value^rise (1 - value)^fall with a peak of 1."""
    peak = rise / (rise + fall)
    return (value / peak) ** rise * ((1.0 - value) / (1.0 - peak)) ** fall


def luma(rgb):
    return (rgb @ LUMA)[:, None]


def skin_weight(rgb):
    value = rgb.max(1)
    chroma = value - rgb.min(1)
    red, green, blue = rgb.T
    # Red is the largest channel of every skin, so one sector of the hue circle is enough.
    hue = 60.0 * (green - blue) / numpy.maximum(chroma, 1e-6)
    saturation = chroma / numpy.maximum(value, 1e-6)
    weight = 1.0 - smooth(*SKIN_HUE_FADE, numpy.abs(hue - SKIN_HUE))
    weight *= smooth(*SKIN_SATURATION_IN, saturation) * (1.0 - smooth(*SKIN_SATURATION_OUT, saturation))
    weight *= smooth(*SKIN_VALUE_IN, value)
    return numpy.where(red >= value, weight, 0.0)[:, None]


def tone(rgb, look):
    rgb = rgb**look.gamma
    rgb = rgb + look.contrast * (rgb * rgb * (3.0 - 2.0 * rgb) - rgb)
    return look.black + (look.white - look.black) * rgb


def apply(look, rgb):
    toned = tone(rgb, look)
    if look.mono:
        return numpy.repeat(tone(rgb @ numpy.array(look.mono), look)[:, None], 3, 1)
    color = toned ** numpy.array(look.balance)
    color = color + bump(toned, 1.0, 2.0) * look.shadows + bump(toned, 2.0, 1.0) * look.highlights
    grey = luma(color)
    spread = toned.max(1) - toned.min(1)
    saturation = look.saturation + look.vibrance * ((1.0 - spread) ** 2)[:, None]
    color = grey + saturation * (color - grey)
    keep = look.skin * skin_weight(rgb)
    return color + keep * (grey + (toned - luma(toned)) - color)


def whiten(rgb):
    skin = skin_weight(rgb)
    color = rgb + (WHITE_ALL + WHITE_SKIN * skin) * bump(rgb.max(1)[:, None], *WHITE_BUMP)
    return luma(color) + (1.0 - (1.0 - WHITE_SKIN_SATURATION) * skin) * (color - luma(color))


def table(function, side, tiles):
    """Tiles in reading order, one a level of blue; red to the right, green downwards."""
    y, x = numpy.divmod(numpy.arange((side * tiles) ** 2), side * tiles)
    levels = numpy.stack([x % side, y % side, x // side + y // side * tiles], 1)
    colors = numpy.clip(function(levels / (side - 1.0)), 0.0, 1.0)
    return numpy.floor(colors * 255.0 + 0.5).astype(numpy.uint8).reshape(side * tiles, side * tiles, 3)


def save(folder, name, pixels):
    Image.fromarray(pixels, "RGB").save(folder / name, optimize=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", type=pathlib.Path, default=FOLDER)
    parser.add_argument("names", nargs="*", metavar="NAME", help="kel_white or a look; all by default")
    options = parser.parse_args()
    options.out.mkdir(parents=True, exist_ok=True)
    for name in options.names or ["kel_white", *LOOKS]:
        if name == "kel_white":
            save(options.out, "kel_white.png", table(whiten, 64, 8))
            continue
        for side, tiles in ((64, 8), (16, 4)):
            pixels = table(lambda rgb: apply(LOOKS[name], rgb), side, tiles)
            save(options.out, f"{name}-{side * tiles}.png", pixels)


main()
