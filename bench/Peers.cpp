// The engine beside what a user would take instead.
#include "bench/peers/Peers.h"

#include <algorithm>
#include <memory>

#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "effects/BeautyShapeChain.h"
#include "effects/ColorFilter.h"
#include "effects/SkinBuffingNode.h"
#include "effects/SkinWhitingNode.h"

namespace zv::bench {

namespace {

constexpr double kTableTarget = 1.5;

std::unique_ptr<EngineRig> makeRig(const Frame& frame, EngineRig::Output output) {
    auto rig = std::make_unique<EngineRig>(frame, output);
    return rig->isGood() ? std::move(rig) : nullptr;
}

struct Rigs {
    std::unique_ptr<EngineRig> plain;
    std::unique_ptr<EngineRig> smoothing;
    std::unique_ptr<EngineRig> table;
    std::unique_ptr<EngineRig> whitening;
    std::unique_ptr<EngineRig> packing;

    bool make(const Options& options, const Frame& frame) {
        for (auto* rig : {&plain, &smoothing, &table, &whitening}) {
            *rig = makeRig(frame, EngineRig::Output::Picture);
        }
        packing = makeRig(frame, EngineRig::Output::I420);
        if (!plain || !smoothing || !table || !whitening || !packing) {
            return false;
        }
        smoothing->makeCurrent();
        smoothing->chain().setSkinBuffing(
            SkinBuffingNode::create(smoothing->size(), smoothing->frameBuffer(), PXFORMAT_RGB888));
        table->makeCurrent();
        auto* filter = ColorFilter::create(table->size(), table->frameBuffer(),
                                           options.resources + "/zv_res/lookups/film-512.png");
        table->chain().setFilter(filter);
        whitening->makeCurrent();
        whitening->chain().setSkinWhiting(
            SkinWhitingNode::create(whitening->size(), whitening->frameBuffer(), PXFORMAT_RGB888));
        return filter != nullptr;
    }
};

/// Ways of one subject: ours first.
struct Subject {
    std::vector<std::size_t> ours;
    std::vector<std::size_t> theirs;
    bool beyondPlain;                      ///< ours count what goes beyond the engine's plain frame
    std::vector<std::size_t> judged = {};  ///< of theirs: those that a target stands for
};

/// Ours first, with what of a frame is theirs, then the peers.
void addRows(const Race& race, const Subject& subject, std::size_t copy, std::size_t plain, Table& table) {
    const Seconds without = subject.beyondPlain ? race.ratio(plain, copy) : Seconds{};
    const auto row = [&](std::size_t way, const Seconds& share, double times, bool judged) {
        table.rows.push_back({race.nameOf(way), number(race.of(way).wall * 1000),
                              number(race.of(way).cpu * 1000), number(share.wall), number(share.cpu),
                              times > 0 ? number(times) : "",
                              judged ? "at least " + number(kTableTarget, 1) : "",
                              judged ? verdict(kTableTarget, times) : ""});
    };
    double slowest = 0;
    for (const std::size_t way : subject.ours) {
        const Seconds whole = race.ratio(way, copy);
        const Seconds share{whole.wall - without.wall, whole.cpu - without.cpu};
        slowest = std::max(slowest, share.wall);
        row(way, share, 0, false);
    }
    for (const std::size_t way : subject.theirs) {
        const Seconds whole = race.ratio(way, copy);
        row(way, whole, whole.wall / slowest,
            std::find(subject.judged.begin(), subject.judged.end(), way) != subject.judged.end());
    }
}

}  // namespace

bool measurePeers(const Options& options, const Frame& frame, Report& report) {
    FloorRig floorRig;
    Rigs rigs;
    if (!floorRig.isGood() || !rigs.make(options, frame)) {
        return complain("the engines beside the peers cannot be made");
    }
    Race race;
    const std::size_t copy = addCopy(race, floorRig, frame);
    const std::size_t plain = addRig(race, "engine, no effect", *rigs.plain);
    Subject subjects[3] = {{{addRig(race, "engine: skin smoothing", *rigs.smoothing)}, {}, false},
                           {{addRig(race, "engine: colour table 512", *rigs.table),
                             addRig(race, "engine: whitening", *rigs.whitening)},
                            {},
                            true},
                           {{addRig(race, "engine: I420 with copy and read", *rigs.packing)}, {}, false}};
#if defined(ZV_BENCH_OPENCV)
    for (const Peer& peer : makeOpenCvPeers(frame)) {
        subjects[0].theirs.push_back(race.add(peer.name, {}, peer.frame));
    }
#endif
#if defined(ZV_BENCH_AVFILTER)
    for (const Peer& peer : makeFfmpegPeers(frame, options.folder)) {
        const std::size_t way = race.add(peer.name, {}, peer.frame);
        subjects[1].theirs.push_back(way);
        if (peer.isDefault) {
            subjects[1].judged.push_back(way);
        }
    }
#endif
#if defined(ZV_BENCH_YUV)
    for (const Peer& peer : makeYuvPeers(frame)) {
        subjects[2].theirs.push_back(race.add(peer.name, {}, peer.frame));
    }
#endif
    race.run(options.turns());
    Table table{"peers-" + sizeName(frame),
                "Peers at " + sizeName(frame),
                {"what", "ms", "CPU ms", "copies, wall", "copies, CPU", "times ours, wall", "target", ""},
                {},
                {}};
    for (const Subject& subject : subjects) {
        addRows(race, subject, copy, plain, table);
    }
    table.note =
        "Ours draw from textures and leave the picture in one (I420 excepted), the peers work in memory. "
        "\"Times ours\" is a peer's time through that of our slowest line above it. Of our tables only what "
        "goes beyond the engine's plain frame counts. FFmpeg's lut3d interpolates tetrahedrally unless told "
        "otherwise, and is judged by that; the other is shown beside it.";
    return report.add(table);
}

}  // namespace zv::bench
