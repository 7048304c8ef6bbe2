"""Checks the demo's page: check-page.py TOOL OUTPUT, where the screenshot goes to the folder OUTPUT.

Builds the page from small pictures (the one before the effects blue, those after them red), loads it in a
headless Chromium and looks at what the browser complains about and at a screenshot. Ends with 77 where there is
no Chromium or no netpbm.
"""
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import zlib
from collections import Counter
from functools import partial
from http.server import SimpleHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path
from urllib.parse import unquote

TOOL, OUTPUT = sys.argv[1], Path(sys.argv[2])
BLUE, RED, GREEN = (0, 0, 255), (255, 0, 0), (0, 255, 0)
COMPARED = ("smooth", "whiten", "hsv", "table", "beauty", "look-")


def png(colour, width=60, height=40):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    rows = (b"\0" + bytes(colour) * width) * height
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def read_png(path):
    """Width, height and the pixels of a picture as bytes, three a pixel."""
    ppm = subprocess.run(["pngtopnm", path], capture_output=True, check=True).stdout
    kind, width, height, most, pixels = re.match(rb"(P6)\s(\d+) (\d+)\s(\d+)\s(.*)", ppm, re.DOTALL).groups()
    return int(width), int(height), pixels


def tool(*arguments):
    return subprocess.run([sys.executable, TOOL, *map(str, arguments)], capture_output=True, text=True)


class Host(ThreadingHTTPServer):
    """Serves a folder, so that each request is seen with its outcome."""

    def __init__(self, folder):
        outcomes = self.outcomes = {}

        class Handler(SimpleHTTPRequestHandler):
            def log_request(self, code="-", size="-"):
                outcomes[unquote(self.path).lstrip("/")] = int(code)

            def log_message(self, *_):
                pass

        super().__init__(("127.0.0.1", 0), partial(Handler, directory=folder))
        threading.Thread(target=self.serve_forever, daemon=True).start()


def load(browser, folder, screenshot):
    """The outcome of each request, by file, and what the page made the browser's console say."""
    with tempfile.TemporaryDirectory() as profile, Host(folder) as host:
        run = subprocess.run(
            [browser, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--hide-scrollbars",
             "--disable-background-networking", f"--user-data-dir={profile}", "--enable-logging=stderr",
             "--window-size=900,5600", f"--screenshot={screenshot}",
             f"http://127.0.0.1:{host.server_port}/index.html"],
            capture_output=True, text=True, timeout=120)
        host.shutdown()
    assert run.returncode == 0 and screenshot.is_file(), run.stderr
    return host.outcomes, [line for line in run.stderr.splitlines() if "CONSOLE" in line]


def main():
    OUTPUT.mkdir(parents=True, exist_ok=True)
    names = tool("--list").stdout.split()
    assert len(names) > 15, names
    with tempfile.TemporaryDirectory() as made:
        folder = Path(made)
        pictures = names + ["another <one>, 50%?.png", "clip-before-1.5.png", "clip-after-1.5.png"]
        for name in pictures:
            colour = BLUE if name == "plain.png" else RED if name.startswith(COMPARED) else GREEN
            (folder / name).write_bytes(png(colour))
        (folder / "clip.webm").write_bytes(b"")

        for damage in ("removed", "no PNG"):
            (folder / "table.png").unlink() if damage == "removed" else (folder / "table.png").write_text("text")
            refused = tool(folder)
            assert refused.returncode == 1 and "table.png" in refused.stderr, (damage, refused)
            assert not (folder / "index.html").exists()
        (folder / "table.png").write_bytes(png(RED))

        done = tool(folder)
        assert done.returncode == 0 and not done.stderr, done.stderr
        page = (folder / "index.html").read_text(encoding="utf-8")
        assert "<script" not in page and "http" not in page, "neither scripts nor other places"

        browser = next(filter(None, map(shutil.which, ("chromium", "chromium-headless-shell"))), None)
        if browser is None or shutil.which("pngtopnm") is None:
            print("the page is made, but not loaded: that takes chromium and netpbm")
            return 77
        screenshot = OUTPUT / "demo-page.png"
        outcomes, complaints = load(browser, folder, screenshot)
        assert not complaints, complaints
        shown = {name for name in pictures if not name.startswith("overview")}
        assert outcomes == dict.fromkeys(shown | {"index.html", "clip.webm"}, 200), outcomes
        width, height, pixels = read_png(screenshot)
        counts = Counter(zip(pixels[0::12], pixels[1::12], pixels[2::12]))  # of every fourth pixel
        before, after, other = (counts[colour] for colour in (BLUE, RED, GREEN))
        print(f"{width} x {height}, {len(counts)} colours, before {before}, after {after}, other {other}")
        assert min(before, after, other) > 8000 and len(counts) > 50, "pictures and text"
        # The divider stands at 42.5 % at first; its handle and the labels cover a little of both sides.
        assert 0.40 < before / (before + after) < 0.45, "the divider is where the chosen stop is"
    return 0


sys.exit(main())
