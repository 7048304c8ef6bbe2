// What each stage costs, in copy passes, beside its target.
#include <functional>
#include <memory>

#include "bench/Faces.h"
#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "bench/floor/Prices.h"
#include "effects/BeautyShapeChain.h"
#include "effects/ColorFilter.h"
#include "effects/Effect70SNode.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "effects/GraffitiNode.h"
#include "effects/HsvNode.h"
#include "effects/JitterNode.h"
#include "effects/SkinBuffingNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/SoulstuffNode.h"
#include "gltf/GtSticker.h"
#include "scene/ZVMediaEngine.h"

namespace zv::bench {

namespace {

/// How much of a frame belongs to a stage.
enum class Share {
    Whole,   ///< all of it: the stage's own passes take the place of the plain frame's copy
    Beyond,  ///< what the frame takes more than one without the stage
};

struct Stage {
    const char* name;
    double target;  ///< copy passes; 0: none
    Share share;
    EngineRig::Output output;
    std::function<bool(EngineRig&)> add;
};

template <class Node, class... Arguments>
bool addNode(EngineRig& rig, Arguments... arguments) {
    Node* node = Node::create(rig.size(), rig.frameBuffer(), arguments...);
    if (node == nullptr) {
        return false;
    }
    rig.chain().add(node, true, true);
    return true;
}

bool addTable(EngineRig& rig, const std::string& path) {
    auto* table = ColorFilter::create(rig.size(), rig.frameBuffer(), path);
    if (table == nullptr) {
        return false;
    }
    table->setIntensity(1.0F);
    rig.chain().setFilter(table);
    return true;
}

bool addShape(EngineRig& rig) {
    auto* shape = FaceShapeNode::create(rig.size(), rig.frameBuffer(), PXFORMAT_RGB888);
    shape->updateFaceShape(FACE_SHAPE_EYES, 0.5F);
    shape->updateFaceShape(FACE_SHAPE_SLIM, 0.5F);
    shape->updateFaceShape(FACE_SHAPE_NOSE, 0.5F);
    auto faces = sampleFaces(rig.size(), 1, 0);
    shape->updateFaceLandmarks(faces);
    rig.chain().setFaceShape(shape);
    return true;
}

bool addFaceSmoothing(EngineRig& rig) {
    auto* node = FaceBuffingNode::create(rig.size(), rig.frameBuffer(), PXFORMAT_RGB888);
    auto faces = sampleFaces(rig.size(), 1, 0);
    node->updateFaceLandmarks(faces);
    rig.chain().setFaceBuffingNode(node);
    return true;
}

bool addSmoothing(EngineRig& rig) {
    auto* node = SkinBuffingNode::create(rig.size(), rig.frameBuffer(), PXFORMAT_RGB888);
    rig.chain().setSkinBuffing(node);
    return node != nullptr;
}

bool addSticker(EngineRig& rig, const std::string& folder) {
    auto* sticker = gltf::GtSticker::create(folder);
    if (sticker != nullptr) {
        rig.engine().addSticker(sticker);
    }
    return sticker != nullptr;
}

std::vector<Stage> makeStages(const std::string& resources) {
    const std::string lookups = resources + "/zv_res/lookups/";
    const std::string stickers = resources + "/zv_res/stickers/";
    constexpr PxFormat kRgb = PXFORMAT_RGB888;
    const auto picture = EngineRig::Output::Picture;
    return {
        {"skin smoothing, all passes", 9, Share::Whole, picture, addSmoothing},
        {"whitening", 3.3, Share::Beyond, picture,
         [](EngineRig& r) { return addNode<SkinWhitingNode>(r, kRgb); }},
        {"colour table 64", 3.3, Share::Beyond, picture,
         [=](EngineRig& r) { return addTable(r, lookups + "film-64.png"); }},
        {"colour table 512", 3.3, Share::Beyond, picture,
         [=](EngineRig& r) { return addTable(r, lookups + "film-512.png"); }},
        {"HSV", 2, Share::Beyond, picture,
         [](EngineRig& r) {
             auto* hsv = HsvNode::create(r.size(), r.frameBuffer(), kRgb);
             hsv->setHue(1.1F);
             hsv->setSaturation(1.2F);
             r.chain().setHsv(hsv);
             return true;
         }},
        {"look 70s", 6, Share::Beyond, picture, [](EngineRig& r) { return addNode<Effect70SNode>(r, kRgb); }},
        {"look graffiti", 6, Share::Beyond, picture,
         [](EngineRig& r) { return addNode<GraffitiNode>(r, kRgb); }},
        {"look jitter", 6, Share::Beyond, picture, [](EngineRig& r) { return addNode<JitterNode>(r, kRgb); }},
        {"look soul", 6, Share::Beyond, picture,
         [](EngineRig& r) { return addNode<SoulstuffNode>(r, kRgb); }},
        {"I420 packing with its copy", 3, Share::Whole, EngineRig::Output::Packed,
         [](EngineRig&) { return true; }},
        {"I420 packing with its copy, and the read", 0, Share::Whole, EngineRig::Output::I420,
         [](EngineRig&) { return true; }},
        {"face reshaping, 1 face", 0, Share::Beyond, picture, addShape},
        {"face smoothing, 1 face", 0, Share::Beyond, picture, addFaceSmoothing},
        {"sticker confetti", 0, Share::Beyond, picture,
         [=](EngineRig& r) { return addSticker(r, stickers + "confetti"); }},
        {"sticker frame", 0, Share::Beyond, picture,
         [=](EngineRig& r) {
             return addSticker(
                 r, stickers + "frame-" + std::to_string(r.size().x) + "x" + std::to_string(r.size().y));
         }},
    };
}

std::vector<std::string> rowOf(const Race& race, const Stage& stage, std::size_t way, std::size_t plain,
                               std::size_t copy) {
    const Seconds whole = race.ratio(way, copy);
    const Seconds without = race.ratio(plain, copy);
    const bool beyond = stage.share == Share::Beyond;
    const double cpu = whole.cpu - (beyond ? without.cpu : 0);
    const double wall = whole.wall - (beyond ? without.wall : 0);
    return {stage.name,
            number(race.of(way).wall * 1000),
            number(race.of(way).cpu * 1000),
            number(wall),
            number(cpu),
            stage.target > 0 ? number(stage.target, 1) : "",
            stage.target > 0 ? verdict(cpu, stage.target) : ""};
}

}  // namespace

bool measureStages(const Options& options, const Frame& frame, Report& report) {
    Race race;
    FloorRig floorRig;
    EngineRig plain(frame, EngineRig::Output::Picture);
    if (!floorRig.isGood() || !plain.isGood()) {
        return complain("no GL context");
    }
    const std::size_t copy = addCopy(race, floorRig, frame);
    const std::size_t plainWay = addRig(race, "engine, no effect", plain);
    const std::vector<Stage> stages = makeStages(options.resources);
    std::vector<std::unique_ptr<EngineRig>> rigs;
    for (const Stage& stage : stages) {
        rigs.push_back(std::make_unique<EngineRig>(frame, stage.output));
        if (!rigs.back()->isGood() || !stage.add(*rigs.back())) {
            return complain(std::string("cannot make: ") + stage.name);
        }
        addRig(race, stage.name, *rigs.back());
    }
    race.run(options.turns());
    Table table{"stages-" + sizeName(frame),
                "Stages at " + sizeName(frame),
                {"stage", "frame, ms", "frame, CPU ms", "copies, wall", "copies, CPU", "target", ""},
                {},
                {}};
    table.rows.push_back({"copy pass, hand-written", number(race.of(copy).wall * 1000),
                          number(race.of(copy).cpu * 1000), "1.00", "1.00", "", ""});
    table.rows.push_back(
        rowOf(race, {"engine, no effect", 0, Share::Whole, {}, {}}, plainWay, plainWay, copy));
    for (std::size_t i = 0; i < stages.size(); ++i) {
        table.rows.push_back(rowOf(race, stages[i], plainWay + 1 + i, plainWay, copy));
    }
    table.note =
        "A frame is what an engine with that one stage takes, `glFinish` included. Copies: what of it "
        "belongs "
        "to the stage, that is what goes beyond the engine's frame without an effect; for smoothing and "
        "packing, which do that frame's copy themselves, all of it.";
    return report.add(table);
}

}  // namespace zv::bench
