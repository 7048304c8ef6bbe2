#!/usr/bin/env python3
"""Writes index.html beside the pictures that './zv demo' has made.

usage: tools/make-demo-page.py FOLDER     write FOLDER/index.html
       tools/make-demo-page.py --list     print the names of the files that a demo always has

The page is one file: it uses no script, no network and nothing but the pictures in its own folder, so it can be
mailed or published as it is. A file that a demo always has and that is missing is an error; one that depends
on what is installed is left out; a picture that no section names is shown at the end.
"""
import html
import os
import struct
import sys
from pathlib import Path
from urllib.parse import quote

STOPS = 40  # places that a before/after divider can take, less one
START = 17  # the place that it has at first: through the face of the portrait
BEFORE = "plain.png"

# File, title, what was done: shown against BEFORE.
EFFECTS = [
    ("smooth.png", "Smooth skin", "--smooth 0.6"),
    ("smooth-full.png", "Smooth skin, at full strength", "--smooth 1"),
    ("whiten.png", "Brighter skin", "--whiten 0.5"),
    ("hsv.png", "Stronger colours", "--hsv 1,1.3,1.05"),
    ("table.png", "A colour table", "--lut film"),
    ("beauty.png", "All together", "--smooth 0.6 --hsv 1,1.1,1 --whiten 0.3 --lut natural,0.6"),
]
LOOKS = ["natural", "warm", "cool", "film", "faded", "vivid", "mono", "night"]
# Name, title, frames that tell what it does, how the frames went.
ANIMATED = [
    ("70s", "70s", (1, 30, 60, 100), "Scan lines, colour bleed, gate weave and grain; a cycle of 100 frames."),
    ("graffiti", "Graffiti", (5, 13, 53, 75), "Ink on paper, and paint that comes and goes by strokes; 140 frames."),
    ("jitter", "Jitter", (1, 2, 3, 5), "The picture lunges to 1.2 times its size; 15 frames."),
    ("soul", "Soul-stuff", (3, 7, 11, 15), "A shadow leaves the body, grows and fades; 17 frames."),
]
# File, title, caption.
DETAILS = [
    ("odd-size.png", "Any size", "317 x 211 pixels: no multiple of anything, no padding, no seam."),
    ("faces.png", "A face track", "Points, outlines and axes, as --debug-faces draws them."),
    ("badge-rgba.png", "Transparency is kept", "A badge with soft edges goes through as it is."),
    ("badge-rgba-soft.png", "Transparency under an effect", "The same badge with its saturation at 0.4."),
]
SHEETS = [
    ("before-after.png", "Effects", "Every effect at its usual strength, on one sheet."),
    ("looks.png", "Looks", "The eight looks on one sheet."),
    ("clip.png", "Clip", "Four moments, before and after."),
    ("effects.png", "Animated looks", "Each at four moments of its cycle."),
]
OVERVIEWS = ["overview.png", "overview-effects.png"]  # the README's pictures: two of the sheets, made smaller

STYLE = """
:root { color-scheme: dark; --back: #131417; --card: #1c1e22; --line: #2c2f36; --text: #e6e7ea;
  --quiet: #9a9ea8; --accent: #e8b25c; }
* { box-sizing: border-box; }
body { margin: 0; background: var(--back); color: var(--text);
  font: 16px/1.55 system-ui, "Segoe UI", Roboto, "Helvetica Neue", "DejaVu Sans", sans-serif; }
main, header, footer { max-width: 1440px; margin: 0 auto; padding: 0 clamp(16px, 4vw, 48px); }
header { padding-top: 56px; padding-bottom: 8px; }
h1 { margin: 0; font-size: clamp(30px, 5vw, 44px); font-weight: 650; letter-spacing: -0.02em; }
header p { margin: 8px 0 20px; max-width: 62ch; color: var(--quiet); font-size: 18px; }
nav { display: flex; flex-wrap: wrap; gap: 8px; }
nav a { padding: 4px 14px; border: 1px solid var(--line); border-radius: 999px; color: var(--text);
  text-decoration: none; font-size: 14px; }
nav a:hover, nav a:focus-visible { border-color: var(--accent); color: var(--accent); }
section { padding-top: 48px; }
h2 { margin: 0 0 4px; font-size: 24px; font-weight: 620; letter-spacing: -0.01em; }
section > p { margin: 0 0 20px; max-width: 72ch; color: var(--quiet); }
.grid { display: grid; gap: 24px; grid-template-columns: repeat(auto-fill, minmax(min(100%, 400px), 1fr)); }
.small { grid-template-columns: repeat(auto-fill, minmax(min(100%, 250px), 1fr)); }
.sheets { align-items: start; }
figure { margin: 0; overflow: hidden; border: 1px solid var(--line); border-radius: 10px; background: var(--card); }
figure img, figure video { display: block; width: 100%; height: auto; }
figcaption { padding: 12px 16px 14px; font-size: 14px; color: var(--quiet); }
figcaption b { display: block; color: var(--text); font-size: 16px; font-weight: 600; }
code { font: 13px/1.5 ui-monospace, "Cascadia Mono", Menlo, "DejaVu Sans Mono", monospace; color: var(--accent);
  overflow-wrap: anywhere; }
.rows { grid-template-columns: repeat(auto-fill, minmax(min(100%, 560px), 1fr)); }
.strip { display: grid; grid-template-columns: repeat(4, 1fr); gap: 2px; }
.strip span { position: relative; }
.strip i { position: absolute; left: 6px; bottom: 6px; padding: 0 7px; border-radius: 999px; background: #000a;
  color: #fff; font-size: 11px; font-style: normal; line-height: 18px; }
.contained { display: flex; align-items: center; justify-content: center; aspect-ratio: 4 / 3;
  background: repeating-conic-gradient(#24262b 0 25%, #1f2125 0 50%) 0 0 / 24px 24px; }
.contained img { width: auto; height: auto; max-width: 100%; max-height: 100%; }
.cut { position: relative; }
.cut .after { position: absolute; inset: 0; clip-path: inset(0 0 0 var(--part)); }
.cut .divider { position: absolute; inset: 0 auto 0 var(--part); width: 2px; margin-left: -1px;
  background: #fffd; box-shadow: 0 0 6px #0008; }
.cut .divider::after { content: "\\2194"; position: absolute; top: 50%; left: 50%; width: 34px; height: 34px;
  margin: -17px; border-radius: 50%; background: #fffd; color: #222; text-align: center; line-height: 33px;
  font-size: 18px; box-shadow: 0 1px 6px #0007; }
.cut .tag { position: absolute; bottom: 10px; padding: 1px 9px; border-radius: 999px; background: #000a;
  color: #fff; font-size: 12px; }
.cut .tag.right { right: 10px; }
.cut .tag.left { left: 10px; }
.stops { position: absolute; inset: 0; z-index: 1; display: flex; cursor: ew-resize; touch-action: pan-y; }
.stops input { flex: 1; height: 100%; min-width: 0; margin: 0; opacity: 0; cursor: inherit; }
.cut:focus-within { outline: 2px solid var(--accent); outline-offset: -2px; }
footer { padding-top: 40px; padding-bottom: 48px; color: var(--quiet); font-size: 14px; }
"""


def png_size(path):
    """Width and height of a PNG file."""
    head = path.read_bytes()[:24]
    if len(head) < 24 or head[:8] != b"\x89PNG\r\n\x1a\n" or head[12:16] != b"IHDR":
        raise ValueError(f"{path} is no PNG file")
    return struct.unpack(">II", head[16:24])


class Page:
    """Collects sections, and what was shown in them."""

    def __init__(self, folder):
        self.folder = folder
        self.sections = []
        self.shown = {*OVERVIEWS, "index.html"}

    def image(self, name, alternative, attributes=""):
        width, height = png_size(self.folder / name)
        self.shown.add(name)
        return (f'<img src="{quote(name)}" width="{width}" height="{height}" loading="lazy" '
                f'alt="{html.escape(alternative)}"{attributes}>')

    def figure(self, picture, title, caption):
        """`caption` is HTML, the title is text."""
        return f"<figure>{picture}<figcaption><b>{html.escape(title)}</b>{caption}</figcaption></figure>"

    def plain(self, name, title, caption):
        link = f'<a href="{quote(name)}">{self.image(name, title)}</a>'
        return self.figure(link, title, html.escape(caption))

    def strip(self, name, title, frames, caption):
        """Some frames of one effect side by side."""
        cells = "".join(f'<span>{self.image(file, f"{title}, frame {frame}")}<i>{frame}</i></span>'
                        for file, frame in zip(animated_files(name, frames), frames))
        return self.figure(f'<div class="strip">{cells}</div>', title,
                           f"{html.escape(caption)}<br>{command(f'--effect {name} --frames {frames[-1]}')}")

    def contained(self, name, title, caption):
        return self.figure(f'<div class="contained">{self.image(name, title)}</div>', title, html.escape(caption))

    def cut(self, name, title, caption, before=BEFORE):
        """A picture over the one before, divided where the pointer is, or where it was last clicked.
        `caption` is HTML."""
        group = html.escape(Path(name).stem)
        stops = "".join(
            f'<input type="radio" name="{group}" aria-label="{html.escape(title)}: after from {100 * i // STOPS} %"'
            f'{" checked" if i == START else ""}>' for i in range(STOPS + 1))
        pictures = (self.image(before, "before: " + title) + self.image(name, "after: " + title, ' class="after"'))
        slider = (f'<div class="cut"><div class="stops">{stops}</div>{pictures}<span class="divider"></span>'
                  '<span class="tag left">before</span><span class="tag right">after</span></div>')
        return self.figure(slider, title, caption)

    def video(self, name, title, caption, poster):
        self.shown.add(name)
        return self.figure(f'<video src="{quote(name)}" controls loop muted playsinline preload="metadata" '
                           f'poster="{poster}">'
                           "</video>", title, html.escape(caption))

    def section(self, anchor, title, text, kind, figures):
        if figures:
            self.sections.append((anchor, title, f'<section id="{anchor}"><h2>{title}</h2><p>{text}</p>'
                                  f'<div class="grid {kind}">{"".join(figures)}</div></section>'))

    def text(self):
        links = "".join(f'<a href="#{anchor}">{title}</a>' for anchor, title, _ in self.sections)
        body = "\n".join(content for _, _, content in self.sections)
        return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Zorvik demo</title>
<link rel="icon" href="data:,">
<style>{STYLE}{stop_rules()}</style>
</head>
<body>
<header>
<h1>Zorvik</h1>
<p>Real-time media effects. Everything on this page was made by one command, <code>./zv demo</code>, from the
sample pictures, by the same code that a host runs for each camera frame.</p>
<nav>{links}</nav>
</header>
<main>
{body}
</main>
<footer>Made by <code>tools/make-demo-page.py</code>. No script, no network: the page and its pictures are all
there is.</footer>
</body>
</html>
"""


def stop_rules():
    """Where the divider stands for each stop that is chosen and, before that, for each one pointed at."""
    rules = []
    for state in ("checked", "hover"):
        for i in range(STOPS + 1):
            rules.append(f".cut:has(input:nth-of-type({i + 1}):{state}){{--part:{100 * i / STOPS:g}%}}")
    return "\n".join(rules)


def command(options):
    """The command line that made a picture, as HTML."""
    return f"<code>{html.escape('zvfx portrait.png -o out.png ' + options)}</code>"


def clip_figures(page):
    """The demo's clip, and moments of it against what it was before."""
    moments = [(path.name, path.stem.split("-")[-1]) for path in sorted(page.folder.glob("clip-after-*.png"))]
    poster = quote(moments[0][0]) if moments else ""
    figures = [page.video(path.name, titled(path), "Beauty stages on a moving picture.", poster)
               for path in sorted(page.folder.glob("*.mp4")) + sorted(page.folder.glob("*.webm"))]
    return figures + [page.cut(name, f"After {moment} s", "A frame of the clip, as it was and as it came out.",
                               f"clip-before-{moment}.png") for name, moment in moments]


def titled(path):
    """What a file is called where nothing better is known."""
    return path.stem.replace("-", " ").capitalize()


def animated_files(name, frames):
    return [f"effect-{name}-{frame}.png" for frame in frames]


def expected_files():
    animated = [file for name, _, frames, _ in ANIMATED for file in animated_files(name, frames)]
    looks = [f"look-{look}.png" for look in LOOKS]
    return [BEFORE] + OVERVIEWS + [row[0] for row in EFFECTS + DETAILS + SHEETS] + looks + animated


def make_page(folder):
    page = Page(folder)
    page.section("effects", "Beauty and colour", "Move the pointer over a picture to shift the divider; click to "
                 "leave it there. The arrow keys work as well.", "",
                 [page.cut(name, title, command(options)) for name, title, options in EFFECTS])
    page.section("looks", "Looks", "Colour tables that come with the library, each picked by its name.", "small",
                 [page.cut(f"look-{look}.png", look.capitalize(), command("--lut " + look)) for look in LOOKS])
    page.section("animated", "Animated looks", "Frame by frame, by count and not by the clock: each run gives the "
                 "same pictures.", "rows", [page.strip(*row) for row in ANIMATED])
    page.section("clips", "Clips", "The same effects on moving pictures.", "", clip_figures(page))
    page.section("stickers", "Stickers", "Animated models, drawn on a face or over the whole picture.", "",
                 [page.plain(path.name, titled(path), path.name) for path in sorted(folder.glob("sticker*.png"))])
    page.section("faces", "Faces", "What zorvik-face makes of a picture: stickers that find their face, smoothing "
                 "within the face, reshaping.", "",
                 [page.plain(path.name, titled(path), path.name) for path in sorted(folder.glob("face-*.png"))])
    page.section("details", "Details", "What must not break on the way, and what a face track holds.", "small",
                 [page.contained(*row) for row in DETAILS])
    page.section("sheets", "Sheets", "The same at a glance; click for the full size.", "sheets",
                 [page.plain(*row) for row in SHEETS])
    others = sorted(path.name for path in folder.glob("*.png") if path.name not in page.shown)
    page.section("more", "More", "What else the demo has made.", "small",
                 [page.plain(name, titled(Path(name)), name) for name in others])
    return page.text()


def main(arguments):
    if arguments == ["--list"]:
        print("\n".join(expected_files()))
        return 0
    if len(arguments) != 1 or arguments[0].startswith("-"):
        print(__doc__, file=sys.stderr)
        return 2
    folder = Path(arguments[0])
    missing = [name for name in expected_files() if not (folder / name).is_file()]
    if missing:
        print(f"make-demo-page: not in {folder}: {', '.join(missing)}", file=sys.stderr)
        return 1
    try:
        text = make_page(folder)
    except (OSError, ValueError) as error:
        print(f"make-demo-page: {error}", file=sys.stderr)
        return 1
    partial = folder / "index.html.part"
    partial.write_text(text, encoding="utf-8")
    os.replace(partial, folder / "index.html")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
