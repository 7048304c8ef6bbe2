#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "support/Picture.h"
#include "support/TempDir.h"

namespace zv::test {

constexpr int kUByte = 5121, kUShort = 5123, kFloat = 5126;

/// A sticker's folder, written by write(): JSON texts that a test may change before, one view an accessor.
struct StickerFiles {
    TempDir dir;
    std::vector<unsigned char> bytes;
    std::vector<std::string> views, accessors, meshes, nodes;
    std::string images = R"([{"uri": "a.png"}])";
    std::string textures = R"([{"source": 0, "sampler": 0}])";
    std::string samplers = R"([{"minFilter": 9984, "magFilter": 9728, "wrapS": 33071, "wrapT": 33071}])";
    std::string materials = R"([{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}}])";
    std::string animations = "[]";

    /// @return the accessor's index
    template <class T>
    std::size_t add(const std::vector<T>& values, int componentType, const std::string& type,
                    std::size_t count, const std::string& more = {}) {
        const std::size_t length = values.size() * sizeof(T), offset = bytes.size();
        bytes.resize(offset + (length + 3) / 4 * 4);
        std::memcpy(bytes.data() + offset, values.data(), length);
        views.push_back(R"({"buffer": 0, "byteOffset": )" + std::to_string(offset) + R"(, "byteLength": )" +
                        std::to_string(length) + more + "}");
        accessors.push_back(R"({"bufferView": )" + std::to_string(views.size() - 1) +
                            R"(, "componentType": )" + std::to_string(componentType) + R"(, "count": )" +
                            std::to_string(count) + R"(, "type": ")" + type + "\"}");
        return accessors.size() - 1;
    }

    /// Corners of a rectangle: left, bottom, right, top.
    static std::vector<float> corners(float l, float b, float r, float t) {
        return {l, t, 0, l, b, 0, r, t, 0, r, b, 0};
    }

    /// A rectangle that shows the whole texture, with the attributes in `more` besides. @return the primitive
    std::string rectangle(float l, float b, float r, float t, const std::string& more = {}) {
        const std::size_t first = add(corners(l, b, r, t), kFloat, "VEC3", 4);
        add(std::vector<float>{0, 0, 0, 1, 1, 0, 1, 1}, kFloat, "VEC2", 4);
        add(std::vector<std::uint16_t>{0, 1, 2, 2, 1, 3}, kUShort, "SCALAR", 6, R"(, "target": 34963)");
        return R"({"mode": 4, "indices": )" + std::to_string(first + 2) + R"(, "attributes": {"POSITION": )" +
               std::to_string(first) + R"(, "TEXCOORD_0": )" + std::to_string(first + 1) + more + "}}";
    }
    /// Joints and weights for four vertices alike, as `more` above.
    std::string skin(std::vector<unsigned char> joints, const std::vector<float>& weights) {
        std::vector<float> all;
        std::vector<unsigned char> every;
        for (int i = 0; i < 4; ++i) {
            all.insert(all.end(), weights.begin(), weights.end());
            every.insert(every.end(), joints.begin(), joints.end());
        }
        const std::size_t first = add(every, kUByte, "VEC4", 4);
        add(all, kFloat, "VEC4", 4);
        return R"(, "JOINTS_0": )" + std::to_string(first) + R"(, "WEIGHTS_0": )" + std::to_string(first + 1);
    }
    void addMesh(const std::string& primitives) {
        nodes.push_back(R"({"mesh": )" + std::to_string(meshes.size()) + "}");
        meshes.push_back(R"({"primitives": [)" + primitives + "]}");
    }

    static std::string join(const std::vector<std::string>& items) {
        std::string all;
        for (const std::string& item : items)
            all += (all.empty() ? "" : ", ") + item;
        return "[" + all + "]";
    }
    /// @return the folder
    std::string write(const std::string& type, const Picture& picture) const {
        std::string order;
        for (std::size_t i = 0; i < nodes.size(); ++i)
            order += (i == 0 ? "" : ", ") + std::to_string(i);
        dir.write("m.bin", bytes);
        dir.write("m.gltf", R"({"scene": 0, "scenes": [{"nodes": [)" + order + R"(]}], "images": )" + images +
                                R"(, "textures": )" + textures + R"(, "samplers": )" + samplers +
                                R"(, "materials": )" + materials + R"(, "animations": )" + animations +
                                R"(, "meshes": )" + join(meshes) + R"(, "nodes": )" + join(nodes) +
                                R"(, "bufferViews": )" + join(views) + R"(, "accessors": )" +
                                join(accessors) + R"(, "buffers": [{"uri": "m.bin", "byteLength": )" +
                                std::to_string(bytes.size()) + "}]}");
        dir.write("sticker.json", R"({"id": "test", "res": {"type": ")" + type + R"(", "g": "m.gltf"}})");
        picture.save(dir.file("a.png"));
        return dir.path();
    }
};

}  // namespace zv::test
