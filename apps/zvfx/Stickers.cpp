#include "zvfx/Stickers.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include "algorithm/AlgBizFunc.h"
#include "algorithm/AlgEngine.h"
#include "effects/BeautyShapeChain.h"
#include "effects/FaceShapeNode.h"
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

/// The sticker sits on the face as the chain reshapes it: its subscription is taken by one that moves the
/// bones to where they are seen.
void followShape(zv::gltf::GtSticker& sticker, const zv::FaceShapeNode& shape,
                 kel_algorithm::AlgEngine& algorithms) {
    algorithms.unregisterFunc(&sticker);
    auto moved = std::make_shared<kel_algorithm::AlgBizFunc>();
    moved->owner = &sticker;
    moved->type = kel_algorithm::ALG_FUNC_FACE_MATS;
    moved->onFaceMats = [&sticker, &shape](kel_algorithm::AlgFaceMatsList& faces) {
        std::vector<zv::Vec2f> places;
        for (std::size_t i = 0; i < faces.size(); ++i) {
            for (std::size_t j = 0; j < faces[i].size(); ++j) {
                places.emplace_back(faces[i][j].m[12], faces[i][j].m[13]);
            }
        }
        shape.movePlaces(places.data(), places.size());
        const zv::Vec2f* place = places.data();
        for (std::size_t i = 0; i < faces.size(); ++i) {
            for (std::size_t j = 0; j < faces[i].size(); ++j, ++place) {
                faces[i][j].m[12] = place->x;
                faces[i][j].m[13] = place->y;
            }
        }
        sticker.updateFaceDetectMats(faces);
    };
    algorithms.registerAlgFunc(moved);
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
    const auto* chain = dynamic_cast<zv::BeautyShapeChain*>(engine.getRenderChain());
    const zv::FaceShapeNode* shape = chain != nullptr ? chain->getFaceShape() : nullptr;
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
        if (sticker->isFaceSticker() && shape != nullptr) {
            followShape(*sticker, *shape, *engine.getAlgEngine());
        }
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
