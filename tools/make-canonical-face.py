#!/usr/bin/env python3
"""Writes face/CanonicalFace.inc: the average face to which meshes are fitted, out of the npm package
@mediapipe/face_mesh (Apache-2.0; see res/zv_res/models/NOTICE.txt).

    npm pack @mediapipe/face_mesh@0.4.1657299874
    tools/make-canonical-face.py mediapipe-face_mesh-0.4.1657299874.tgz

The package holds it as a protocol buffer: in field 1 the mesh, in field 2 one point with its weight in the fit, again
and again. Only the standard library is used."""
import pathlib
import re
import struct
import sys
import tarfile

from protocol_buffer import fields, number

ASSETS = "package/face_mesh_solution_packed_assets"


def unpack(message, field, single, packed):
    """A repeated field, written one by one or packed."""
    for name, kind, value in fields(message):
        if name == field:
            yield from packed(value) if kind == 2 else [single(value)]


def floats(data):
    return struct.unpack(f"<{len(data) // 4}f", data)


def numbers(data):
    at = 0
    while at < len(data):
        value, at = number(data, at)
        yield value


def lines(items, columns):
    for start in range(0, len(items), columns):
        yield "    " + " ".join(items[start : start + columns])


def main():
    with tarfile.open(sys.argv[1]) as package:
        index = package.extractfile(ASSETS + "_loader.js").read().decode()
        found = re.search(r'geometry_pipeline_metadata_landmarks\.binarypb", "start": (\d+), "end": (\d+)', index)
        data = package.extractfile(ASSETS + ".data").read()[int(found[1]) : int(found[2])]
    mesh = next(value for name, kind, value in fields(data) if name == 1 and kind == 2)
    numbers5 = list(unpack(mesh, 3, lambda raw: struct.unpack("<f", raw)[0], floats))  # x, y, z, u, v
    corners = list(unpack(mesh, 4, lambda value: value, numbers))
    weights = []
    for name, kind, value in fields(data):
        if name == 2 and kind == 2:
            point = {field: raw for field, _, raw in fields(value)}
            weights.append((point.get(1, 0), struct.unpack("<f", point[2])[0]))
    vertices = [numbers5[i : i + 3] for i in range(0, len(numbers5), 5)]
    assert (len(vertices), len(corners), len(weights)) == (468, 2694, 33)
    text = [
        "// The average face: centimetres, x to the picture's right, y up, z towards the viewer. Written by",
        "// tools/make-canonical-face.py from data of the MediaPipe project, Copyright The MediaPipe Authors, under the",
        "// Apache License 2.0; see res/zv_res/models/NOTICE.txt.",
        "constexpr Vec3f kVertices[kFaceMeshPoints] = {",
        *lines(["{%.4fF, %.4fF, %.4fF}," % tuple(v) for v in vertices], 4),
        "};",
        "constexpr std::int32_t kTriangles[kFaceMeshIndices] = {",
        *lines([f"{corner}," for corner in corners], 24),
        "};",
        "constexpr FitWeight kFitWeights[kFaceFitPoints] = {",
        *lines(["{%d, %.5fF}," % pair for pair in weights], 6),
        "};",
    ]
    target = pathlib.Path(__file__).resolve().parent.parent / "face" / "CanonicalFace.inc"
    target.write_text("\n".join(text) + "\n")


main()
