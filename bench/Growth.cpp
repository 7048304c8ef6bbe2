// How the time of a frame grows with pixels, stages, stickers, nodes and faces.
#include <GL/glew.h>

#include <functional>
#include <memory>

#include "bench/Faces.h"
#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "effects/BeautyShapeChain.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "effects/HsvNode.h"
#include "gltf/GtSticker.h"
#include "scene/ZVMediaEngine.h"

namespace zv::bench {

namespace {

/// A rig that grows: `extend` brings it to a count.
using Extend = std::function<bool(EngineRig&, int count)>;
/// What happens before each frame, if anything.
using Before = std::function<void(EngineRig&, int frame)>;

struct Curve {
    const char* name;  ///< of the table and the plot
    const char* what;  ///< that is counted
    std::vector<int> counts;
    Extend extend;
    Before before;
};

bool addStages(EngineRig& rig, int count) {
    for (int i = 0; i < count; ++i) {
        auto* hsv = HsvNode::create(rig.size(), rig.frameBuffer(), PXFORMAT_RGB888);
        hsv->setSaturation(1.05F);
        rig.chain().add(hsv, true, true);
    }
    return true;
}

bool addStickers(EngineRig& rig, int count, const std::string& folder) {
    for (int i = 0; i < count; ++i) {
        auto* sticker = gltf::GtSticker::create(folder);
        if (sticker == nullptr) {
            return false;
        }
        rig.engine().addSticker(sticker);
    }
    return true;
}

/// Plain nodes, ten to a parent.
bool addNodes(EngineRig& rig, int count) {
    Node* parent = nullptr;
    for (int i = 0; i < count; ++i) {
        auto* node = new Node;
        node->autorelease();
        node->init();
        if (i % 10 == 0) {
            rig.engine().addSticker(node);
            parent = node;
        } else {
            parent->addChild(node);
        }
    }
    return true;
}

bool addFaceStages(EngineRig& rig, int) {
    auto* smooth = FaceBuffingNode::create(rig.size(), rig.frameBuffer(), PXFORMAT_RGB888);
    auto* shape = FaceShapeNode::create(rig.size(), rig.frameBuffer(), PXFORMAT_RGB888);
    shape->updateFaceShape(FACE_SHAPE_EYES, 0.5F);
    shape->updateFaceShape(FACE_SHAPE_SLIM, 0.5F);
    rig.chain().setFaceBuffingNode(smooth);
    rig.chain().setFaceShape(shape);
    return true;
}

void moveFaces(EngineRig& rig, int count, int frame) {
    auto faces = sampleFaces(rig.size(), count, frame);
    rig.chain().getFaceBuffingNode()->updateFaceLandmarks(faces);
    faces = sampleFaces(rig.size(), count, frame);
    rig.chain().getFaceShape()->updateFaceLandmarks(faces);
}

struct Point {
    int count;
    std::unique_ptr<EngineRig> rig;
    int frame = 0;
};

bool measureCurve(const Options& options, const Frame& frame, const Curve& curve, Report& report) {
    Race race;
    FloorRig floorRig;
    if (!floorRig.isGood()) {
        return complain("no GL context");
    }
    const std::size_t copy = addCopy(race, floorRig, frame);
    std::vector<std::unique_ptr<Point>> points;
    for (const int count : curve.counts) {
        points.push_back(std::make_unique<Point>());
        Point& point = *points.back();
        point.count = count;
        point.rig = std::make_unique<EngineRig>(frame, EngineRig::Output::Picture);
        if (!point.rig->isGood() || !curve.extend(*point.rig, count)) {
            return complain(std::string("cannot grow ") + curve.name);
        }
        race.add(
            std::to_string(count), [&point] { point.rig->makeCurrent(); },
            [&point, &curve] {
                if (curve.before) {
                    curve.before(*point.rig, ++point.frame * 1000 + point.count);
                }
                point.rig->frame();
            },
            [] { glFinish(); });
    }
    race.run(options.turns());
    Table table{std::string("growth-") + curve.name,
                std::string("Time of a frame by ") + curve.what + ", " + sizeName(frame),
                {curve.what, "ms", "CPU ms", "copies, CPU"},
                {},
                {}};
    for (std::size_t i = 1; i < race.count(); ++i) {
        table.rows.push_back({race.nameOf(i), number(race.of(i).wall * 1000),
                              number(race.of(i).cpu * 1000, 3), number(race.ratio(i, copy).cpu)});
    }
    return report.add(table);
}

bool measurePixels(const Options& options, Report& report) {
    Table table{"growth-pixels",
                "Time of a frame by pixels",
                {"pixels", "size", "copy, CPU ms", "beauty chain, ms", "beauty chain, CPU ms", "copies, CPU"},
                {},
                {}};
    for (const auto& [width, height] :
         {std::pair{640, 360}, {960, 540}, {1280, 720}, {1920, 1080}, {2560, 1440}, {3840, 2160}}) {
        if (options.quick && height > 1080) {
            break;
        }
        const Frame frame = Frame::load(options.picture, width, height);
        FloorRig floorRig;
        EngineRig rig(frame, EngineRig::Output::I420);
        if (!floorRig.isGood() || !rig.isGood() || !rig.addBeauty(options.resources)) {
            return complain("the beauty chain cannot be made");
        }
        Race race;
        const std::size_t copy = addCopy(race, floorRig, frame);
        const std::size_t chain = addRig(race, "chain", rig);
        race.run(options.turns());
        table.rows.push_back({std::to_string(frame.pixels()), sizeName(frame),
                              number(race.of(copy).cpu * 1000), number(race.of(chain).wall * 1000),
                              number(race.of(chain).cpu * 1000), number(race.ratio(chain, copy).cpu)});
    }
    return report.add(table);
}

}  // namespace

bool measureGrowth(const Options& options, Report& report) {
    const Frame frame = Frame::load(options.picture, 1280, 720);
    const std::string confetti = options.resources + "/zv_res/stickers/confetti";
    const Curve curves[] = {
        {"stages", "HSV stages", {0, 1, 2, 3, 4, 6, 8}, addStages, {}},
        {"stickers",
         "stickers",
         {0, 1, 2, 4, 8, 16},
         [&](EngineRig& rig, int count) { return addStickers(rig, count, confetti); },
         {}},
        {"nodes", "nodes", {0, 100, 1000, 3000, 10000, 30000}, addNodes, {}},
        {"faces",
         "faces",
         {0, 1, 2, 4, 8, 16},
         addFaceStages,
         [](EngineRig& rig, int step) { moveFaces(rig, step % 1000, step / 1000); }},
    };
    bool good = measurePixels(options, report);
    for (const Curve& curve : curves) {
        good = measureCurve(options, frame, curve, report) && good;
    }
    return good;
}

}  // namespace zv::bench
