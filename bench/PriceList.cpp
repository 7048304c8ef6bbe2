// What GL itself takes for the pieces that frames are made of.
#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "bench/floor/Prices.h"

namespace zv::bench {

bool measurePrices(const Options& options, const Frame& frame, Report& report) {
    FloorRig rig;
    if (!rig.isGood()) {
        return complain("no GL context");
    }
    rig.makeCurrent();
    const std::vector<floor::Price> prices = floor::makePrices(frame);
    Race race;
    for (const floor::Price& price : prices) {
        race.add(price.name, {}, price.frame);
    }
    race.run(options.turns());
    Table table{"prices-" + sizeName(frame),
                "Prices of the GL at " + sizeName(frame),
                {"what", "ms", "CPU ms", "copies, wall", "copies, CPU", "GB/s"},
                {},
                {}};
    for (std::size_t i = 0; i < prices.size(); ++i) {
        const Seconds took = race.of(i);
        const Seconds ratio = race.ratio(i, 0);
        table.rows.push_back({prices[i].name, number(took.wall * 1000), number(took.cpu * 1000),
                              number(ratio.wall), number(ratio.cpu),
                              number(prices[i].bytes / took.wall * 1e-9, 1)});
    }
    table.note =
        "The first line is the unit of the figures below. A fetch more costs what \"two fetches\" takes "
        "beyond "
        "the copy of its kind.";
    return report.add(table);
}

}  // namespace zv::bench
