#!/usr/bin/python3
"""bench-plots.py FOLDER [--into DOCUMENT]: joins what './zv bench' has measured.

Reads the CSV files in FOLDER and draws growth.png (how the time of a frame grows) and stages.png (what each
stage costs beside its target); those whose data is not there are left out. Then joins performance-bench.md,
performance-start.md and the table of small.csv to performance-tables.md.

With --into, the tables take the place of what stands between the two marks in DOCUMENT, and the plots are
copied into the folder "pictures" beside it. Tables there that the folder lacks are an error: nothing is changed.
"""
import csv
import os
import shutil
import sys

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402  the backend must be chosen before

BEGIN = "<!-- measured: begin -->\n"
END = "<!-- measured: end -->\n"
PLOTS = ("growth.png", "stages.png")
SMALL_COLUMNS = ("name", "cpu_time", "time_unit")


def read(folder, name):
    """Rows of a table as dictionaries; none when it was not made."""
    path = os.path.join(folder, name + ".csv")
    if not os.path.exists(path):
        return []
    with open(path, newline="", encoding="utf-8") as file:
        lines = file.readlines()
    # Google Benchmark writes lines of its own before the heading.
    start = next((i for i, line in enumerate(lines) if line.startswith(("name,", '"'))), 0)
    return list(csv.DictReader(lines[start:]))


def draw_growth(folder):
    curves = [
        ("growth-pixels", "pixels", "beauty chain, CPU ms", "pixels (beauty chain with I420)"),
        ("growth-stages", "HSV stages", "CPU ms", "HSV stages"),
        ("growth-stickers", "stickers", "CPU ms", "stickers (confetti)"),
        ("growth-nodes", "nodes", "CPU ms", "nodes that draw nothing"),
        ("growth-faces", "faces", "CPU ms", "faces (smoothed and reshaped, moving)"),
    ]
    made = [(curve, rows) for curve in curves for rows in [read(folder, curve[0])] if rows]
    if not made:
        return
    columns = 3
    lines = (len(made) + columns - 1) // columns
    figure, axes = pyplot.subplots(lines, columns, figsize=(10, 3 * lines), squeeze=False)
    for panel in axes.flat[len(made):]:
        panel.axis("off")
    for panel, ((_, count, time, title), rows) in zip(axes.flat, made):
        panel.plot([float(row[count]) for row in rows], [float(row[time]) for row in rows], "o-", markersize=3)
        panel.set_title(title, fontsize=9)
        panel.set_ylabel("CPU ms a frame", fontsize=8)
        panel.set_ylim(bottom=0)
        panel.tick_params(labelsize=7)
        panel.grid(True, linewidth=0.3)
    save(figure, folder, "growth.png")


def draw_stages(folder):
    rows = [row for row in read(folder, "stages-1280x720") if row["stage"] != "copy pass, hand-written"]
    if not rows:
        return
    rows.reverse()
    figure, panel = pyplot.subplots(figsize=(8, 0.3 * len(rows) + 1))
    places = range(len(rows))
    panel.barh(places, [float(row["copies, CPU"]) for row in rows], height=0.6)
    for place, row in zip(places, rows):
        if row["target"]:
            panel.plot([float(row["target"])] * 2, [place - 0.4, place + 0.4], color="black", linewidth=2)
    panel.set_yticks(list(places), [row["stage"] for row in rows], fontsize=8)
    panel.set_xlabel("copy passes of 1280x720, by CPU time; the black marks are targets", fontsize=8)
    panel.tick_params(labelsize=7)
    panel.grid(True, axis="x", linewidth=0.3)
    save(figure, folder, "stages.png")


def save(figure, folder, name):
    figure.tight_layout()
    figure.savefig(os.path.join(folder, name), dpi=80, metadata={"Software": None})
    pyplot.close(figure)


def join_tables(folder):
    parts = []
    for name in ("performance-bench.md", "performance-start.md"):
        path = os.path.join(folder, name)
        if os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                parts.append(file.read().strip() + "\n")
    small = read(folder, "small")
    if small:
        lines = ["### Small things", "", "| what | CPU time |", "| --- | --- |"]
        for row in small:
            name, time, unit = (row[column] for column in SMALL_COLUMNS)
            lines.append(f"| {name} | {float(time):.3g} {unit} |")
        parts.append("\n".join(lines) + "\n")
    tables = "\n".join(parts)
    with open(os.path.join(folder, "performance-tables.md"), "w", encoding="utf-8") as file:
        file.write(tables)
    return tables


def titles(text):
    return [line for line in text.partition(END)[0].splitlines() if line.startswith("### ")]


def put_into(document, tables, folder):
    with open(document, encoding="utf-8") as file:
        text = file.read()
    before, _, rest = text.partition(BEGIN)
    _, found, after = rest.partition(END)
    if not found:
        sys.exit(f"{document}: lacks the lines {BEGIN.strip()} and {END.strip()}")
    lost = set(titles(rest)) - set(titles(tables))
    if lost:
        sys.exit(f"{folder} lacks tables that {document} has: {', '.join(sorted(lost))}. Run all of ./zv bench.")
    with open(document, "w", encoding="utf-8") as file:
        file.write(before + BEGIN + "\n" + tables + "\n" + END + after)
    pictures = os.path.join(os.path.dirname(document), "pictures")
    for plot in PLOTS:
        if os.path.exists(os.path.join(folder, plot)):
            shutil.copyfile(os.path.join(folder, plot), os.path.join(pictures, "bench-" + plot))


def main():
    arguments = sys.argv[1:]
    document = arguments.pop() if len(arguments) == 3 and arguments[1] == "--into" else None
    if len(arguments) != (2 if document else 1) or not os.path.isdir(arguments[0]):
        sys.exit(__doc__)
    folder = arguments[0]
    draw_growth(folder)
    draw_stages(folder)
    tables = join_tables(folder)
    if document:
        put_into(document, tables, folder)


if __name__ == "__main__":
    main()
