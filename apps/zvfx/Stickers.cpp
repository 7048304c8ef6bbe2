#include "zvfx/Stickers.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include "algorithm/AlgEngine.h"
#include "gltf/GtSticker.h"
#include "scene/ZVMediaEngine.h"
#include "zvfx/FaceTrack.h"
#if defined(ZVFX_FACES)
#include "face/FaceFinder.h"
#endif

namespace zvfx {

namespace {

namespace fs = std::filesystem;

bool isSticker(const fs::path& folder) {
    std::error_code error;
    return fs::is_regular_file(folder / "sticker.json", error);
}

/// The sizes that a shipped sticker comes in: the ends of its folders' names.
std::string listSizes(const fs::path& shipped, const std::string& name) {
    std::vector<std::string> sizes;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(shipped, error)) {
        const std::string folder = entry.path().filename().u8string();
        if (folder.compare(0, name.size() + 1, name + "-") == 0) {
            sizes.push_back(folder.substr(name.size() + 1));
        }
    }
    std::sort(sizes.begin(), sizes.end());
    std::string all;
    for (const std::string& size : sizes) {
        all += (all.empty() ? "" : ", ") + size;
    }
    return all;
}

/// A bare name is looked for among the shipped stickers when there is no such folder.
std::string findSticker(const std::string& given, const std::string& resources, const zv::Size16& size,
                        std::string& folder) {
    const fs::path path = fs::u8path(given);
    const fs::path shipped = fs::u8path(resources) / "zv_res" / "stickers";
    const std::string sized = given + "-" + std::to_string(size.x) + "x" + std::to_string(size.y);
    for (const fs::path& place : {path, shipped / path, shipped / fs::u8path(sized)}) {
        std::error_code error;
        if (isSticker(place)) {
            folder = fs::absolute(place, error).generic_u8string();
            return {};
        }
    }
    const std::string sizes = listSizes(shipped, given);
    return sizes.empty()
               ? given + ": is no folder with a sticker.json, nor a sticker in zv_res/stickers"
               : given + ": comes for outputs of " + sizes + " pixels; tools/make-stickers.py makes others";
}

#if defined(ZVFX_FACES)

std::string findFaces(zv::ZVMediaEngine& engine, float framesPerSecond) {
    return zv::FaceFinder::attach(engine, {zv::FaceFinder::Mode::InStep, framesPerSecond})
               ? std::string()
               : "faces cannot be found here; --faces FILE follows a track instead";
}

#else

std::string findFaces(zv::ZVMediaEngine&, float) {
    return "this zvfx was built without zorvik-face, which finds faces; --faces FILE follows a track";
}

#endif

}  // namespace

std::string addStickers(const std::vector<std::string>& stickers, const std::string& faces,
                        float framesPerSecond, const std::string& resources, const zv::Size16& size,
                        zv::ZVMediaEngine& engine) {
    for (const std::string& given : stickers) {
        std::string folder;
        std::string wrong = findSticker(given, resources, size, folder);
        if (!wrong.empty()) {
            return wrong;
        }
        auto* sticker = zv::gltf::GtSticker::create(folder);
        if (sticker == nullptr) {
            return folder + ": the sticker does not load";
        }
        if (sticker->isFaceSticker() && faces.empty()) {
            return given + ": follows faces; find them with --faces auto, or give their track";
        }
        engine.addSticker(sticker);
    }
    if (faces.empty()) {
        return {};
    }
    if (faces == "auto") {
        return findFaces(engine, framesPerSecond);
    }
    FaceTrack track;
    std::string wrong = track.load(faces, size);
    if (wrong.empty()) {
        engine.getAlgEngine()->getKelNN()->setDetector(std::make_shared<FaceTrackDetector>(std::move(track)));
    }
    return wrong;
}

}  // namespace zvfx
