// What each pass of the beauty chain costs beside what its fetches cost by the prices of the same run.
#include <GL/glew.h>

#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "bench/floor/Beauty.h"
#include "bench/floor/Prices.h"

namespace zv::bench {

namespace {

using Pass = floor::Beauty::Pass;

constexpr double kSmoothingTarget = 1.15;
/// Of floor::makePrices().
enum Price : std::size_t { kLinearCopy, kNearestCopy, kConstant, kTwoLinear, kTwoNearest, kUsed };

/// In copy passes of the whole frame.
struct Prices {
    double linear;   ///< one more fetch
    double nearest;  ///< one more fetch
    double pass;     ///< a pass without any

    explicit Prices(const Race& race)
        : linear(race.ratio(kTwoLinear, kLinearCopy).cpu - 1),
          nearest(race.ratio(kTwoNearest, kLinearCopy).cpu - race.ratio(kNearestCopy, kLinearCopy).cpu),
          pass(1 - linear) {}
    double of(const Pass& p, double part) const {
        return part * (pass + p.fetches.linear * linear + p.fetches.nearest * nearest);
    }
};

/// The prices, then each pass.
void addWays(Race& race, const Frame& frame, const floor::Beauty& beauty) {
    const std::vector<floor::Price> list = floor::makePrices(frame);
    for (std::size_t i = 0; i < kUsed; ++i) {
        race.add(list[i].name, {}, list[i].frame);
    }
    for (std::size_t i = 0; i < beauty.passes().size(); ++i) {
        race.add(beauty.passes()[i].name, {}, [&beauty, i] {
            beauty.drawPass(i);
            glFinish();
        });
    }
}

}  // namespace

bool measureFetches(const Options& options, const Frame& frame, Report& report) {
    FloorRig rig;
    if (!rig.isGood()) {
        return complain("no GL context");
    }
    rig.makeCurrent();
    floor::Beauty beauty(options.resources, frame);
    const std::vector<Pass>& passes = beauty.passes();
    Race race;
    addWays(race, frame, beauty);
    beauty.drawFrame(true);
    race.run(options.turns());
    const Prices prices(race);
    Table table{"fetches-" + sizeName(frame),
                "Passes of the beauty chain and their fetches at " + sizeName(frame),
                {"pass", "pixels of the frame's", "linear fetches", "nearest fetches", "by prices, copies",
                 "copies, CPU", "times its price", "target", ""},
                {},
                {}};
    double price = 0;
    double took = 0;
    for (std::size_t i = 0; i < passes.size(); ++i) {
        const Pass& pass = passes[i];
        const double part =
            static_cast<double>(pass.target->width) * pass.height / static_cast<double>(frame.pixels());
        const double own = prices.of(pass, part);
        const double copies = race.ratio(kUsed + i, kLinearCopy).cpu;
        table.rows.push_back({pass.name, number(part), std::to_string(pass.fetches.linear),
                              std::to_string(pass.fetches.nearest), number(own), number(copies),
                              number(copies / own), "", ""});
        price += own;
        took += copies;
        if (i + 1 == floor::Beauty::SMOOTHING_PASSES) {
            table.rows.push_back({"smoothing, all its passes", "", "", "", number(price), number(took),
                                  number(took / price), number(kSmoothingTarget),
                                  verdict(took / price, kSmoothingTarget)});
        }
    }
    table.note =
        "Written by hand, each pass alone and waited for. Prices of this run, in copies: a pass without a "
        "fetch " +
        number(prices.pass) + ", a linear fetch " + number(prices.linear) + ", a nearest one " +
        number(prices.nearest) + ".";
    return report.add(table);
}

}  // namespace zv::bench
