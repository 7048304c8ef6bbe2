"""Writes glTF 2.0 models as stickers use them: one buffer file, one texture, one mesh a node."""
import json

import numpy as np

ARRAY, ELEMENT = 34962, 34963  # buffer view targets
UBYTE, USHORT, FLOAT = 5121, 5123, 5126
TRIANGLES = 4
EXTENSION = "WERNOX_property_animation_201903"

# The bones of a face, in the order that JOINTS_0 selects them, and where they lie on a plain face: units are
# the distance of the outer eye corners, x to the picture's right, y up, z to the viewer.
BONES = ["head", "left eye", "right eye", "nose tip", "mouth", "chin", "forehead"]
ANCHORS = np.array([[0, 0, 0], [-0.33, 0, 0], [0.33, 0, 0], [0, -0.39, 0.3], [0, -0.67, 0.15], [0, -1.16, 0.05],
                    [0, 0.5, 0.1]])


class Model:
    def __init__(self, image, wrap=33071):
        self.bytes = b""
        self.gltf = {
            "asset": {"version": "2.0", "generator": "tools/make-stickers.py"},
            "scene": 0,
            "scenes": [{"nodes": []}],
            "images": [{"uri": image}],
            "samplers": [{"minFilter": 9729, "magFilter": 9729, "wrapS": wrap, "wrapT": wrap}],
            "textures": [{"sampler": 0, "source": 0}],
            "materials": [{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0, "texCoord": 0}},
                           "alphaMode": "BLEND", "doubleSided": True}],
            "bufferViews": [], "accessors": [], "meshes": [], "nodes": [],
        }

    def accessor(self, values, component, kind, target=None, bounds=False, count=None):
        dtype = {UBYTE: "<u1", USHORT: "<u2", FLOAT: "<f4"}[component]
        values = np.asarray(values)
        data = values.astype(dtype).tobytes()
        view = {"buffer": 0, "byteOffset": len(self.bytes), "byteLength": len(data)}
        if target:
            view["target"] = target
        self.gltf["bufferViews"].append(view)
        self.bytes += data + b"\0" * (-len(data) % 4)
        entry = {"bufferView": len(self.gltf["bufferViews"]) - 1, "byteOffset": 0, "componentType": component,
                 "count": len(values) if count is None else count, "type": kind}
        if bounds:
            single = values.astype(dtype).reshape(len(values), -1)
            entry["min"], entry["max"] = single.min(0).tolist(), single.max(0).tolist()
        self.gltf["accessors"].append(entry)
        return len(self.gltf["accessors"]) - 1

    def mesh(self, name, positions, uvs, indices, joints=None, weights=None, shown=None):
        """Adds a mesh with its node. `shown` draws only so many indices, for an animation to choose which."""
        attributes = {"POSITION": self.accessor(positions, FLOAT, "VEC3", ARRAY, bounds=True),
                      "TEXCOORD_0": self.accessor(uvs, FLOAT, "VEC2", ARRAY)}
        if joints is not None:
            attributes["JOINTS_0"] = self.accessor(joints, UBYTE, "VEC4", ARRAY)
            attributes["WEIGHTS_0"] = self.accessor(weights, FLOAT, "VEC4", ARRAY)
        assert np.max(indices) < len(positions) <= 65535
        primitive = {"attributes": attributes, "material": 0, "mode": TRIANGLES,
                     "indices": self.accessor(indices, USHORT, "SCALAR", ELEMENT, count=shown)}
        self.gltf["meshes"].append({"name": name, "primitives": [primitive]})
        node = {"name": name, "mesh": len(self.gltf["meshes"]) - 1}
        if joints is not None:
            node["skin"] = 0
        self.gltf["nodes"].append(node)
        self.gltf["scenes"][0]["nodes"].append(len(self.gltf["nodes"]) - 1)
        return len(self.gltf["nodes"]) - 1

    def skeleton(self):
        """Says where the bones of a plain face are: the engine has its own, other viewers show the model by it."""
        first = len(self.gltf["nodes"])
        for bone, anchor in zip(BONES, ANCHORS):
            self.gltf["nodes"].append({"name": bone, "translation": anchor.tolist()})
        self.gltf["skins"] = [{"joints": list(range(first, first + len(BONES)))}]
        self.gltf["scenes"][0]["nodes"] += self.gltf["skins"][0]["joints"]

    def flip_book(self, node, frames, frame_bytes, seconds):
        """Plays index ranges of equal size. One key more than frames: the last one only ends the last frame."""
        times = self.accessor(np.arange(frames + 1) * (seconds / frames), FLOAT, "SCALAR", bounds=True)
        offsets = self.accessor(np.append(np.arange(frames), 0) * frame_bytes, FLOAT, "SCALAR")
        mesh = self.gltf["nodes"][node]["mesh"]
        indices = self.gltf["meshes"][mesh]["primitives"][0]["indices"]
        self.gltf["extensionsUsed"] = [EXTENSION]
        self.gltf["animations"] = [{"channels": [], "samplers": [], "extensions": {EXTENSION: {
            "channels": [{"sampler": 0, "target": {"node": node, "path": f"/accessors/{indices}/byteOffset"}}],
            "samplers": [{"input": times, "output": offsets}]}}}]

    def save(self, folder, name, kind, title):
        folder.mkdir(parents=True, exist_ok=True)
        self.gltf["buffers"] = [{"uri": name + ".bin", "byteLength": len(self.bytes)}]
        (folder / (name + ".bin")).write_bytes(self.bytes)
        (folder / (name + ".gltf")).write_text(json.dumps(self.gltf, indent=1) + "\n")
        sticker = {"id": folder.name, "name": title, "res": {"type": kind, "g": name + ".gltf"}}
        (folder / "sticker.json").write_text(json.dumps(sticker, indent=1) + "\n")


def sheet(rect, columns, rows, depth, bones):
    """A grid over a rectangle (left, bottom, right, top) of a plain face, row by row from the top.
    depth(x, y) is z, bones(x, y) gives {bone: weight}. Vertices are relative to their bones, as the face's
    matrices want them: each has its origin at its bone.
    Returns positions, uvs, indices, joints, weights."""
    left, bottom, right, top = rect
    positions, uvs, joints, weights, indices = [], [], [], [], []
    for r in range(rows + 1):
        for c in range(columns + 1):
            u, v = c / columns, r / rows
            x, y = left + u * (right - left), top + v * (bottom - top)
            share = sorted(bones(x, y).items(), key=lambda item: -item[1])[:4]
            total = sum(weight for _, weight in share)
            share = [(bone, weight / total) for bone, weight in share if weight > 0]
            origin = sum(weight * ANCHORS[bone] for bone, weight in share)
            positions.append(np.array([x, y, depth(x, y)]) - origin)
            uvs.append([u, v])
            share += [(0, 0.0)] * (4 - len(share))
            joints.append([bone for bone, _ in share])
            weights.append([weight for _, weight in share])
    for r in range(rows):
        for c in range(columns):
            a = r * (columns + 1) + c
            b = a + columns + 1
            indices += [a, b, a + 1, a + 1, b, b + 1]
    return np.array(positions), np.array(uvs), np.array(indices), np.array(joints), np.array(weights)
