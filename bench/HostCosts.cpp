// What a host's choices cost: waiting for the frame, handing in YUV.
#include <GL/glew.h>

#include <memory>

#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "effects/YUVSprite.h"
#include "host/PlaneUploader.h"
#include "scene/ZVMediaEngine.h"

namespace zv::bench {

namespace {

/// An engine whose input is planes, and what holds them.
struct YuvRig {
    YuvRig(const Frame& frame, bool pairs) : rig(frame, EngineRig::Output::Picture) {
        if (!rig.isGood()) {
            return;
        }
        const int w = frame.width;
        const int h = frame.height;
        std::vector<host::PlaneUploader::Texture> planes = {{w, h, 1, true},
                                                            {w / 2, h / 2, pairs ? 2 : 1, true}};
        if (!pairs) {
            planes.push_back(planes.back());
        }
        rig.makeCurrent();
        uploader = std::make_unique<host::PlaneUploader>();
        uploader->init(planes);
        sprite = pairs
                     ? YUVSprite::create(uploader->name(0), uploader->name(1), rig.size())
                     : YUVSprite::create(uploader->name(0), uploader->name(1), uploader->name(2), rig.size());
        rig.setInput(sprite);
    }
    ~YuvRig() {
        if (rig.isGood()) {
            rig.makeCurrent();
        }
    }

    EngineRig rig;
    std::unique_ptr<host::PlaneUploader> uploader;
    Sprite* sprite = nullptr;
};

}  // namespace

bool measureHostCosts(const Options& options, const Frame& frame, Report& report) {
    FloorRig floorRig;
    EngineRig chain(frame, EngineRig::Output::I420);
    EngineRig plain(frame, EngineRig::Output::Picture);
    YuvRig planes(frame, false);
    YuvRig pairs(frame, true);
    if (!floorRig.isGood() || !chain.isGood() || !plain.isGood() || !planes.rig.isGood() ||
        !pairs.rig.isGood() || !chain.addBeauty(options.resources)) {
        return complain("the engines for the host's choices cannot be made");
    }
    Race race;
    const auto addChain = [&](const char* name, bool finish) {
        return race.add(
            name,
            [&, finish] {
                chain.makeCurrent();
                chain.engine().setFinishAfterRender(finish);
            },
            [&] { chain.frame(); }, [] { glFinish(); }, Race::FRAMES_OF_A_STREAM);
    };
    const std::size_t copy = addCopy(race, floorRig, frame);
    const std::size_t base = addChain("beauty chain with I420 and its read", true);
    const std::size_t noWait = addChain("without glFinish", false);
    const std::size_t plainWay = addRig(race, "engine, no effect, RGB input", plain);
    const std::size_t planesWay = addRig(race, "engine, no effect, input of 3 planes", planes.rig);
    const std::size_t pairsWay = addRig(race, "engine, no effect, input of 2 planes", pairs.rig);
    race.run(2 * options.turns());
    Table table{"host-" + sizeName(frame),
                "What a host's choices cost at " + sizeName(frame),
                {"frame", "ms", "CPU ms", "copies, CPU", "against", "changes by, wall", "changes by, CPU"},
                {},
                {}};
    const auto row = [&](std::size_t way, std::size_t other) {
        const bool differs = way != other;
        table.rows.push_back({race.nameOf(way), number(race.of(way).wall * 1000),
                              number(race.of(way).cpu * 1000), number(race.ratio(way, copy).cpu),
                              differs ? race.nameOf(other) : "",
                              differs ? number(100 * (race.ratio(way, other).wall - 1), 1) + " %" : "",
                              differs ? number(100 * (race.ratio(way, other).cpu - 1), 1) + " %" : ""});
    };
    row(base, base);
    row(noWait, base);
    row(plainWay, plainWay);
    row(planesWay, plainWay);
    row(pairsWay, plainWay);
    table.note =
        "Inputs lie in their textures already: uploads are among the prices of the GL. A turn of the chain "
        "is at least " +
        std::to_string(Race::FRAMES_OF_A_STREAM) +
        " frames with one `glFinish` behind the last, which is timed; without the wait that one is the only "
        "one.";
    return report.add(table);
}

}  // namespace zv::bench
