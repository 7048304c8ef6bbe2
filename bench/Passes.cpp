// Passes by the GL's own clock, for real GPUs.
#include <GL/glew.h>

#include <functional>

#include "bench/Groups.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "bench/floor/Beauty.h"
#include "bench/floor/Prices.h"
#include "scene/ZVMediaEngine.h"

namespace zv::bench {

namespace {

constexpr int kRounds = 31;

/// Seconds that the GL is busy with what `draw` orders, which must not wait for it: median of some rounds.
double timeOnGl(const std::function<void()>& draw) {
    GLuint query = 0;
    glGenQueries(1, &query);
    std::vector<double> seconds;
    draw();
    for (int i = 0; i < kRounds; ++i) {
        glBeginQuery(GL_TIME_ELAPSED, query);
        draw();
        glEndQuery(GL_TIME_ELAPSED);
        GLuint64 nanoseconds = 0;
        glGetQueryObjectui64v(query, GL_QUERY_RESULT, &nanoseconds);
        seconds.push_back(1e-9 * static_cast<double>(nanoseconds));
    }
    glDeleteQueries(1, &query);
    return median(std::move(seconds));
}

bool hasClock() {
    GLint bits = 0;
    if (GLEW_ARB_timer_query) {
        glGetQueryiv(GL_TIME_ELAPSED, GL_QUERY_COUNTER_BITS, &bits);
    }
    return bits > 0;
}

std::vector<std::string> rowOf(const std::string& name, double seconds, double copy, double bytes,
                               double bytesPerSecond) {
    const double least = bytes / bytesPerSecond;
    return {name,
            number(seconds * 1e6, 1),
            number(seconds / copy),
            bytes > 0 ? number(bytes * 1e-6, 1) : "",
            bytes > 0 ? number(least * 1e6, 1) : "",
            bytes > 0 ? number(seconds / least) : ""};
}

}  // namespace

bool measurePasses(const Options& options, const Frame& frame, Report& report) {
    FloorRig rig;
    EngineRig engine(frame, EngineRig::Output::I420);
    if (!rig.isGood() || !engine.isGood() || !engine.addBeauty(options.resources)) {
        return complain("the beauty chain cannot be made");
    }
    rig.makeCurrent();
    if (isSoftware() || !hasClock()) {
        report.say("Passes at " + sizeName(frame) + " by the GL's own clock: not on " + rendererName() + ".");
        return true;
    }
    const floor::Price copy = floor::makePrices(frame)[0];
    const double copySeconds = timeOnGl(copy.order);
    const double bytesPerSecond = copy.bytes / copySeconds;
    floor::Beauty beauty(options.resources, frame);
    Table table{"passes-" + sizeName(frame),
                "Passes at " + sizeName(frame) + " by the GL's own clock",
                {"pass", "microseconds", "copies", "MB read and written", "least by memory, microseconds",
                 "times the least"},
                {},
                {}};
    table.rows.push_back(rowOf(copy.name, copySeconds, copySeconds, copy.bytes, bytesPerSecond));
    double bytes = 0;
    for (std::size_t i = 0; i < beauty.passes().size(); ++i) {
        const floor::Beauty::Pass& pass = beauty.passes()[i];
        bytes += pass.bytes;
        table.rows.push_back(
            rowOf(pass.name, timeOnGl([&] { beauty.drawPass(i); }), copySeconds, pass.bytes, bytesPerSecond));
    }
    const double byHand = timeOnGl([&] { beauty.drawFrame(false); });
    table.rows.push_back(rowOf("whole frame by hand, with read", byHand, copySeconds, bytes, bytesPerSecond));
    engine.makeCurrent();
    engine.engine().setFinishAfterRender(false);
    const double engineSeconds = timeOnGl([&] { engine.frame(); });
    table.rows.push_back(
        rowOf("whole frame of the engine, with read", engineSeconds, copySeconds, bytes, bytesPerSecond));
    table.note =
        "The least by memory is what the bytes of a pass take at the speed of the copy: each texture "
        "read once, each pixel written once, three channels in four bytes.";
    return report.add(table);
}

}  // namespace zv::bench
