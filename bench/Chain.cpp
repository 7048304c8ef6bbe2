// The whole beauty chain: the engine beside the same passes written by hand.
#include <GL/glew.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "bench/floor/Beauty.h"
#include "scene/ZVMediaEngine.h"

namespace zv::bench {

namespace {

constexpr double kEngineTarget = 1.03;
constexpr double kHostStateTarget = 0.01;  // of a frame
constexpr int kSmallWidth = 64;
constexpr int kSmallHeight = 36;
/// A byte of the two I420 frames may differ so much: texture coordinates are interpolated from other
/// vertices.
constexpr int kMostDifference = 2;

int largestDifference(const std::vector<unsigned char>& ours, const UniqueDataPtr<unsigned char>& engines) {
    int largest = ours.size() == engines.size() ? 0 : 255;
    for (std::size_t i = 0; largest < 255 && i < ours.size(); ++i) {
        largest = std::max(largest, std::abs(ours[i] - *engines.get(i)));
    }
    return largest;
}

struct Contest {
    Contest(const Options& options, const Frame& frame) : engine(frame, EngineRig::Output::I420) {
        if (engine.isGood() && floorRig.isGood() && engine.addBeauty(options.resources)) {
            floorRig.makeCurrent();
            floor = std::make_unique<floor::Beauty>(options.resources, frame);
        }
    }
    /// Frames of both until each shows its second one; how far their bytes are apart.
    int compare() {
        floorRig.makeCurrent();
        floor->drawFrame(true);
        floor->drawFrame(true);
        engine.makeCurrent();
        engine.frame();
        engine.frame();
        return largestDifference(floor->bytes(), engine.bytes());
    }

    FloorRig floorRig;
    EngineRig engine;
    std::unique_ptr<floor::Beauty> floor;
};

void addFloor(Race& race, const char* name, Contest& contest, bool finish) {
    race.add(
        name, [&] { contest.floorRig.makeCurrent(); }, [&, finish] { contest.floor->drawFrame(finish); },
        [] { glFinish(); }, Race::FRAMES_OF_A_STREAM);
}

void addEngine(Race& race, const char* name, Contest& contest, bool finish) {
    race.add(
        name,
        [&, finish] {
            contest.engine.makeCurrent();
            contest.engine.engine().setFinishAfterRender(finish);
        },
        [&] { contest.engine.frame(); }, [] { glFinish(); }, Race::FRAMES_OF_A_STREAM);
}

std::vector<std::string> rowOf(const Race& race, std::size_t way, std::size_t copy, double ratio) {
    return {race.nameOf(way),
            number(race.of(way).wall * 1000),
            number(race.of(way).cpu * 1000),
            number(race.ratio(way, copy).wall),
            number(race.ratio(way, copy).cpu),
            ratio > 0 ? number(ratio, 3) : "",
            ratio > 0 ? number(kEngineTarget) : "",
            ratio > 0 ? verdict(ratio, kEngineTarget) : ""};
}

/// What the engine itself works, told by frames so small that pixels cost nothing, as a part of a large
/// frame.
bool measureOverhead(const Options& options, const Frame& frame, double frameSeconds, Report& report) {
    const Frame small = Frame::load(options.picture, kSmallWidth, kSmallHeight);
    Contest contest(options, small);
    EngineRig keeping(small, EngineRig::Output::I420);
    if (contest.floor == nullptr || !keeping.isGood() || !keeping.addBeauty(options.resources)) {
        return complain("the small beauty chain cannot be made");
    }
    Race race;
    addFloor(race, "by hand", contest, true);
    addEngine(race, "engine", contest, true);
    keeping.engine().setKeepHostState(true);
    addRig(race, "engine, keeping the host's state", keeping);
    race.run(4 * options.turns());
    Table table{"overhead-" + sizeName(frame),
                "Work of the engine itself, frames of " + sizeName(small),
                {"beauty chain with I420 and its read", "CPU microseconds", "more than the line above",
                 "of a frame of " + sizeName(frame), "target", ""},
                {},
                {}};
    const double targets[] = {0, kEngineTarget - 1, kHostStateTarget};
    for (std::size_t i = 0; i < race.count(); ++i) {
        const double more = i > 0 ? race.of(i).cpu - race.of(i - 1).cpu : 0;
        const double part = std::max(more, 0.0) / frameSeconds;
        table.rows.push_back({race.nameOf(i), number(race.of(i).cpu * 1e6, 0),
                              i > 0 ? number(more * 1e6, 0) : "", i > 0 ? number(100 * part, 2) + " %" : "",
                              i > 0 ? number(100 * targets[i], 0) + " %" : "",
                              i > 0 ? verdict(part, targets[i]) : ""});
    }
    table.note = "Differences of whole large frames drown in what else the machine does; these do not.";
    return report.add(table);
}

}  // namespace

bool measureChain(const Options& options, const Frame& frame, Report& report) {
    Contest contest(options, frame);
    if (contest.floor == nullptr || !contest.floor->isGood()) {
        return complain("the beauty chain cannot be made");
    }
    const int difference = contest.compare();
    if (difference > kMostDifference) {
        return complain("the hand-written chain makes another picture than the engine, bytes are up to " +
                        std::to_string(difference) + " apart: its time says nothing");
    }
    Race race;
    const std::size_t copy = addCopy(race, contest.floorRig, frame);
    addFloor(race, "by hand", contest, true);
    addEngine(race, "engine", contest, true);
    addFloor(race, "by hand, without the wait", contest, false);
    addEngine(race, "engine, without the wait", contest, false);
    race.run(2 * options.turns());
    Table table{"chain-" + sizeName(frame),
                "Beauty chain at " + sizeName(frame),
                {"smoothing, HSV, whitening, table, I420 and its read", "ms", "CPU ms", "copies, wall",
                 "copies, CPU", "engine / by hand, CPU", "target", ""},
                {},
                {}};
    for (std::size_t i = 1; i < race.count(); i += 2) {
        table.rows.push_back(rowOf(race, i, copy, 0));
        table.rows.push_back(rowOf(race, i + 1, copy, race.ratio(i + 1, i).cpu));
    }
    table.note =
        "Both make the same picture (largest difference of a byte " + std::to_string(difference) +
        "). The wait is the `glFinish` with which the engine ends a frame unless "
        "`setFinishAfterRender(false)` is called. A turn of each line is at least " +
        std::to_string(Race::FRAMES_OF_A_STREAM) +
        " frames with one `glFinish` behind the last, which is timed; without the wait that one is the "
        "only one.";
    return report.add(table) && measureOverhead(options, frame, race.of(1).cpu, report);
}

}  // namespace zv::bench
