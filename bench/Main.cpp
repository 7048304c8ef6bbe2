// zv_bench [--quick] [--only GROUP] [--res DIR] [--picture FILE] [--out DIR]: measures the engine against
// hand-written GL and against what a user would pick instead. Prints tables, and writes them as CSV and as
// Markdown.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bench/Faces.h"
#include "bench/Groups.h"
#include "bench/Report.h"
#include "core/FileUtil.h"

namespace {

using zv::bench::Frame;
using zv::bench::Options;
using zv::bench::Report;

bool parse(int argc, char** argv, Options& options, std::string& only) {
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--quick") {
            options.quick = true;
            continue;
        }
        std::string* value = argument == "--res"       ? &options.resources
                             : argument == "--picture" ? &options.picture
                             : argument == "--out"     ? &options.folder
                             : argument == "--only"    ? &only
                                                       : nullptr;
        if (value == nullptr || ++i == argc) {
            return false;
        }
        *value = argv[i];
    }
    return true;
}

void describe(Report& report, bool quick) {
    zv::bench::FloorRig rig;
    if (rig.isGood()) {
        rig.makeCurrent();
        double load[1] = {-1};
        getloadavg(load, 1);
        report.say("GL: " + zv::bench::rendererName() + ". " +
                   std::to_string(std::thread::hardware_concurrency()) + " cores, " +
                   zv::bench::number(load[0], 1) + " processes waiting for them in the last minute" +
                   (quick ? "; a quick run." : "."));
    }
}

bool isWanted(const std::string& only, const char* group) {
    return only.empty() || only == group;
}

/// All that is measured for one size.
bool measureSize(const Options& options, const std::string& only, int width, int height, Report& report) {
    const Frame frame = Frame::load(options.picture, width, height);
    if (frame.rgb.empty()) {
        return zv::bench::complain(options.picture + ": no picture of RGB");
    }
    using Group = bool (*)(const Options&, const Frame&, Report&);
    const std::pair<const char*, Group> groups[] = {
        {"fetches", zv::bench::measureFetches}, {"stages", zv::bench::measureStages},
        {"chain", zv::bench::measureChain},     {"host", zv::bench::measureHostCosts},
        {"peers", zv::bench::measurePeers},     {"passes", zv::bench::measurePasses},
    };
    bool good = true;
    for (const auto& [name, measure] : groups) {
        if (isWanted(only, name)) {
            good = measure(options, frame, report) && good;
        }
    }
    return good;
}

bool measureAll(const Options& options, const std::string& only, Report& report) {
    bool good = measureSize(options, only, 1280, 720, report);
    if (!options.quick) {
        good = measureSize(options, only, 1920, 1080, report) && good;
        if (isWanted(only, "passes")) {
            const Frame large = Frame::load(options.picture, 3840, 2160);
            good = zv::bench::measurePasses(options, large, report) && good;
        }
    }
    if (isWanted(only, "growth")) {
        good = zv::bench::measureGrowth(options, report) && good;
    }
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    Options options{"res", "samples/portrait.png", "out/bench", false};
    std::string only;
    if (!parse(argc, argv, options, only)) {
        std::fprintf(stderr,
                     "usage: zv_bench [--quick] [--only fetches|stages|chain|host|peers|growth|passes] "
                     "[--res DIR] [--picture FILE] [--out DIR]\n");
        return 2;
    }
    // The engine's own file names start at its root.
    for (std::string* path : {&options.resources, &options.picture, &options.folder}) {
        *path = std::filesystem::absolute(*path).string();
    }
    zv::FileUtil::getInstance()->setZvRoot(options.resources);
    const std::string points = options.picture.substr(0, options.picture.rfind('.')) + ".points.txt";
    if (!zv::bench::loadSampleFace(points)) {
        std::fprintf(stderr, "zv_bench: %s: no points of a face\n", points.c_str());
        return 1;
    }
    Report report(options.folder, "performance-bench.md");
    if (!report.isOpen()) {
        std::fprintf(stderr, "zv_bench: %s: no such folder\n", options.folder.c_str());
        return 1;
    }
    describe(report, options.quick);
    return measureAll(options, only, report) ? 0 : 1;
}
