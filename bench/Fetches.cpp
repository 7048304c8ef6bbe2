// What GL itself takes for the pieces that frames are made of, and what each pass of the beauty chain costs
// beside what its fetches cost by these prices.
#include <GL/glew.h>

#include <algorithm>
#include <iterator>

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
enum Price : std::size_t { kLinearCopy, kNearestCopy, kConstant, kTwoLinear, kTwoNearest };

/// In copy passes of the whole frame, told by the quickest turns.
double copiesOf(const Race& race, std::size_t way) {
    return race.quickest(way).cpu / race.quickest(kLinearCopy).cpu;
}

/// In copy passes of the whole frame. The first fetch of a texture costs more than one beside it.
struct Prices {
    struct Fetch {
        double first, next;

        double of(int fetches, int textures) const { return textures * first + (fetches - textures) * next; }
    };
    double pass;  ///< one without any fetch: the constant colour
    Fetch linear, nearest;

    explicit Prices(const Race& race)
        : pass(copiesOf(race, kConstant)),
          linear{1 - pass, copiesOf(race, kTwoLinear) - 1},
          nearest{copiesOf(race, kNearestCopy) - pass,
                  copiesOf(race, kTwoNearest) - copiesOf(race, kNearestCopy)} {}

    double of(const Pass& p, double part) const {
        const auto textures = static_cast<int>(std::count_if(
            std::begin(p.textures), std::end(p.textures), [](unsigned int texture) { return texture != 0; }));
        const bool isLinear = p.fetches.linear > 0;  // no pass has fetches of both kinds
        return part * (pass + (isLinear ? linear.of(p.fetches.linear, textures)
                                        : nearest.of(p.fetches.nearest, textures)));
    }
};

/// The prices, then each pass.
void addWays(Race& race, const std::vector<floor::Price>& list, const floor::Beauty& beauty) {
    for (const floor::Price& price : list) {
        race.add(price.name, {}, [&price] { price.frame(); });
    }
    for (std::size_t i = 0; i < beauty.passes().size(); ++i) {
        race.add(beauty.passes()[i].name, {}, [&beauty, i] {
            beauty.drawPass(i);
            glFinish();
        });
    }
}

bool tellPrices(const Race& race, const std::vector<floor::Price>& list, const Frame& frame, Report& report) {
    Table table{"prices-" + sizeName(frame),
                "Prices of the GL at " + sizeName(frame),
                {"what", "ms", "CPU ms", "copies, wall", "copies, CPU", "GB/s"},
                {},
                {}};
    const double copyWall = race.quickest(kLinearCopy).wall;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Seconds took = race.quickest(i);
        table.rows.push_back({list[i].name, number(took.wall * 1000), number(took.cpu * 1000),
                              number(took.wall / copyWall), number(copiesOf(race, i)),
                              number(list[i].bytes / took.wall * 1e-9, 1)});
    }
    table.note =
        "Of each the quickest turns. The first line is the unit of the figures below. A fetch more costs "
        "what \"two fetches\" takes beyond the copy of its kind: as a rule less than the copy's own.";
    return report.add(table);
}

bool tellPasses(const Race& race, std::size_t first, const floor::Beauty& beauty, const Frame& frame,
                Report& report) {
    const std::vector<Pass>& passes = beauty.passes();
    const Prices prices(race);
    // A software GL runs the first turn of the loop around a spot for every pixel.
    const int spotFetches = isSoftware() ? 1 : 0;
    Table table{"fetches-" + sizeName(frame),
                "Passes of the beauty chain and their fetches at " + sizeName(frame),
                {"pass", "pixels of the frame's", "linear fetches", "nearest fetches", "by prices, copies",
                 "copies, CPU", "times its price", "target", ""},
                {},
                {}};
    double price = 0;
    double took = 0;
    for (std::size_t i = 0; i < passes.size(); ++i) {
        const bool isLastOfSmoothing = i + 1 == floor::Beauty::SMOOTHING_PASSES;
        Pass pass = passes[i];
        pass.fetches.linear += isLastOfSmoothing ? spotFetches : 0;
        const double part =
            static_cast<double>(pass.target->width) * pass.height / static_cast<double>(frame.pixels());
        const double own = prices.of(pass, part);
        const double copies = copiesOf(race, first + i);
        table.rows.push_back({pass.name, number(part), std::to_string(pass.fetches.linear),
                              std::to_string(pass.fetches.nearest), number(own), number(copies),
                              number(copies / own), "", ""});
        price += own;
        took += copies;
        if (isLastOfSmoothing) {
            table.rows.push_back({"smoothing, all its passes", "", "", "", number(price), number(took),
                                  number(took / price), number(kSmoothingTarget),
                                  verdict(took / price, kSmoothingTarget)});
        }
    }
    table.note =
        "Written by hand, each pass alone and waited for; of each the quickest turns, in one race with the "
        "prices of the GL. Prices, in copies: a pass without a fetch, which is the constant colour, " +
        number(prices.pass) + "; the first fetch of a texture, linear " + number(prices.linear.first) +
        " and nearest " + number(prices.nearest.first) + "; one more, linear " + number(prices.linear.next) +
        " and nearest " + number(prices.nearest.next) + ". " +
        (isSoftware()
             ? "Smoothing counts 7 fetches: its 6, and the first turn of the loop around a spot, which "
               "a software GL runs for every pixel. "
             : "Smoothing counts 6 fetches: pixels with no spot near them skip the loop around it. ") +
        "`texelFetch`, with which I420 is packed, counts as a nearest fetch.";
    return report.add(table);
}

}  // namespace

bool measureFetches(const Options& options, const Frame& frame, Report& report) {
    FloorRig rig;
    if (!rig.isGood()) {
        return complain("no GL context");
    }
    rig.makeCurrent();
    const floor::Beauty beauty(options.resources, frame);
    if (!beauty.isGood()) {
        return complain("the beauty chain cannot be made");
    }
    const std::vector<floor::Price> list = floor::makePrices(frame);
    // One race for both tables: on a shared machine the copy, which is the unit, has been seen to change by
    // half within seconds, and one more fetch much less.
    Race race;
    addWays(race, list, beauty);
    race.run(3 * options.turns());
    const bool good = tellPrices(race, list, frame, report);
    return tellPasses(race, list.size(), beauty, frame, report) && good;
}

}  // namespace zv::bench
