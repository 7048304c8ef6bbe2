#!/usr/bin/env python3
"""make-models.py FOLDER: writes small models and, beside each, what Python's json reads in it.

Model 0 has every member, accessor type and attribute; of the others each lacks some, with the attributes in
another order. dump.txt has one line a record: the line's name, then its fields.
"""
import json
import random
import struct
import sys
from pathlib import Path

EXTENSION = "WERNOX_property_animation_201903"
TYPES = {"SCALAR": 6, "VEC2": 11, "VEC3": 12, "VEC4": 13}
KINDS = {"POSITION": 0, "TEXCOORD_0": 10, "JOINTS_0": 9, "WEIGHTS_0": 8}
FORMATS = {5121: "B", 5123: "H", 5124: "i", 5125: "I", 5126: "f"}
SIZES = {5120: 1, 5121: 1, 5122: 2, 5123: 2, 5124: 4, 5125: 4, 5126: 4}


def full_model(rng):
    first = struct.pack("<4f4I4i", 0, .25, .5, 3e38, 1, 2, 3, 4000000000, -1, 0, 7, 2000000000)
    second = bytes(rng.randrange(256) for _ in range(97))
    number = lambda: rng.randrange(1, 5)
    component = [5126, 5125, 5124, 5123, 5122, 5121, 5120, 5130]
    model = {
        "asset": {"version": "2.0"}, "scene": 1, "skins": [{}], "cameras": [{}],
        "images": [{"uri": u, "name": "n"} for u in ("a.png", "sub/b%20c.png", "\u00fc \U0001f600.png")],
        "samplers": [{"minFilter": 9729, "magFilter": 9728, "wrapS": 33071, "wrapT": 10497}, {}],
        "textures": [{"sampler": 1, "source": 2}],
        "materials": [{"pbrMetallicRoughness": {"baseColorTexture": {"index": 2, "texCoord": 1},
                                                "metallicFactor": 0.5}, "doubleSided": True}],
        "buffers": [{"uri": "one.bin", "byteLength": len(first)}, {"uri": "two.bin", "byteLength": len(second)}],
        "bufferViews": [{"buffer": i % 2, "byteOffset": i * 8, "byteLength": 48 - 4 * i, "target": 34962 + i % 2,
                         "byteStride": i * 4} for i in range(6)],
        "accessors": [{"bufferView": i % 6, "byteOffset": i % 4 * 4, "count": i, "min": [1e99],
                       "componentType": component[i % 8], "normalized": True,
                       "type": ["SCALAR", "VEC2", "VEC3", "VEC4", "MAT4", "SCALAR ", "vec2", ""][i // 2 % 8]}
                      for i in range(48)],
        "meshes": [{"primitives": [{"indices": number(), "material": number(), "mode": 4, "attributes": {
            "NORMAL": 1, "TEXCOORD_0": 2, "POSITION": 3, "JOINTS_0": 4, "WEIGHTS_0": 5, "TEXCOORD_1": 6,
            "position": 7, "_": 8}} for _ in range(2)]} for _ in range(2)],
        "scenes": [{"nodes": [2, 0, 1]}, {"nodes": []}],
        "nodes": [{"name": "n \u00e9", "mesh": 1, "scale": [1, 2, 3]}, {"mesh": 0, "children": [0]}, {"name": "x"}],
        "animations": [{"channels": [{"sampler": 9}], "extensions": {EXTENSION: {
            "channels": [{"sampler": i, "target": {"node": i % 3, "path": p}} for i, p in enumerate(
                ("/accessors/2/byteOffset", "/accessors/2/byteOffsets", "/byteOffset", "byteOffset", ""))],
            "samplers": [{"input": i, "output": 47 - i} for i in range(48)]}}}, {"name": "plain"}],
    }
    return model, {"one.bin": first, "two.bin": second}


def prune(value, rng):
    """Drops members, keeps what a file must have, and shuffles the rest."""
    if isinstance(value, list):
        return [prune(v, rng) for v in value]
    if not isinstance(value, dict):
        return value
    keys = [k for k in value if k in ("uri", "byteLength", EXTENSION) or rng.random() < 0.8]
    rng.shuffle(keys)
    return {k: prune(value[k], rng) for k in keys}


def dump(model, files):
    lines = []
    line = lambda *fields: lines.append(" ".join(map(str, fields)))
    get = lambda record, *names: [record.get(n, 0) for n in names]
    table = lambda name: model.get(name, [])
    views, accessors = table("bufferViews"), table("accessors")

    def place(index, element):  # offset in the buffer, or None, and the bytes up to the end of the view
        if index >= len(accessors) or accessors[index].get("bufferView", 0) >= len(views):
            return None, b""
        view = views[accessors[index].get("bufferView", 0)]
        buffer, start, stride, length = get(view, "buffer", "byteOffset", "byteStride", "byteLength")
        if buffer >= len(table("buffers")):
            return None, b""
        data = files[model["buffers"][buffer]["uri"]]
        offset = start + accessors[index].get("byteOffset", 0) + stride * element
        return (offset, data[offset:start + length]) if offset < len(data) else (None, b"")

    def times(index):
        data = place(index, 0)[1]
        component, count = get(accessors[index], "componentType", "count") if data else (0, 0)
        size = SIZES.get(component, 0)
        count = min(count, len(data) // (size or 1))
        if component not in FORMATS:
            return [0.0] * count
        return struct.unpack_from("<%d%s" % (count, FORMATS[component]), data)

    line("scene", model.get("scene", 0))
    for image in table("images"):
        line("image", image["uri"])
    for s in table("samplers"):
        line("sampler", *get(s, "minFilter", "magFilter", "wrapS", "wrapT"))
    for t in table("textures"):
        line("texture", *get(t, "sampler", "source"))
    for m in table("materials"):
        line("material", *get(m.get("pbrMetallicRoughness", {}).get("baseColorTexture", {}), "index", "texCoord"))
    for b in table("buffers"):
        line("buffer", files[b["uri"]].hex())
    for v in views:
        line("view", *get(v, "buffer", "byteOffset", "byteStride", "byteLength", "target"))
    for i, a in enumerate(accessors):
        line("accessor", *get(a, "bufferView", "byteOffset", "count", "componentType"), TYPES.get(a.get("type"), 0))
        for element in (0, 3, 7):
            offset, readable = place(i, element)
            line("at", -1 if offset is None else offset, len(readable))
    for mesh in table("meshes"):
        line("mesh")
        for p in mesh.get("primitives", []):
            line("primitive", *get(p, "indices", "material", "mode"))
            for name, accessor in p.get("attributes", {}).items():
                line("attribute", KINDS.get(name, 0), accessor)
    for animation in table("animations"):
        line("animation")
        extension = animation.get("extensions", {}).get(EXTENSION, {})
        for c in extension.get("channels", []):
            target = c.get("target", {})
            ends = target.get("path", "/byteOffset").endswith("/byteOffset")  # without a path: the default, 0
            line("channel", *get(c, "sampler"), *get(target, "node"), 0 if ends else 1)
        for s in extension.get("samplers", []):
            keys = times(s.get("input", 0))
            line("keys", *get(s, "input", "output"), *(struct.pack(">f", k).hex() for k in keys))
    for scene in table("scenes"):
        line("nodes", *scene.get("nodes", []))
    for node in table("nodes"):
        line("node", node.get("mesh", -1), node.get("name", ""))
    return "\n".join(lines) + "\n"


for seed in range(14):
    rng = random.Random(seed)
    model, files = full_model(rng)
    folder = Path(sys.argv[1]) / ("model%d" % seed)
    folder.mkdir(parents=True, exist_ok=True)
    text = json.dumps(prune(model, rng) if seed else model, ensure_ascii=seed % 2 == 0, indent=seed % 3 or None)
    (folder / "model.gltf").write_text(text, encoding="utf-8")
    for name, data in files.items():
        (folder / name).write_bytes(data)
    (folder / "dump.txt").write_text(dump(json.loads(text), files), encoding="utf-8")
