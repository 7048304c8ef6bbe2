// zvfx: a picture in, the engine's effects over it, a picture out.
#include <cstdio>
#include <exception>
#include <optional>
#include <string>

#include "core/FileUtil.h"
#include "core/ZVLog.h"
#include "host/GLCallLog.h"
#include "host/GLInterpose.h"
#include "zvfx/Options.h"
#include "zvfx/OutputFile.h"
#include "zvfx/PictureFile.h"
#include "zvfx/Pipeline.h"
#include "zvfx/Progress.h"
#include "zvfx/Stats.h"

namespace zvfx {

namespace {

constexpr int kFailed = 1;
constexpr int kBadUsage = 2;

/// Sends the picture through as often as asked. @return the last frame, its bottom row first
Picture renderFrames(Pipeline& pipeline, const Options& options, Stats& stats) {
    Progress progress(options.frames, options.frames > 1 && !options.quiet && isTerminalError());
    std::optional<zv::host::GLCallLog> calls;
    const auto seconds = static_cast<float>(1 / options.fps);
    StopWatch watch;
    for (int i = 0; i < options.frames; ++i) {
        // The calls of the last frame are counted: the first one still sets things up.
        if (i + 1 == options.frames && !options.stats.empty() && zv::host::GLCallLog::available()) {
            calls.emplace();
        }
        watch.lap();
        pipeline.frame(seconds);
        stats.render += watch.lap();
        pipeline.read();
        stats.read += watch.lap();
        progress.frameDone();
    }
    if (calls) {
        stats.callsPerFrame = calls->total();
        calls.reset();
    }
    watch.lap();
    Picture picture = pipeline.finish();
    stats.read += watch.lap();
    return picture;
}

std::string encodeAndWrite(const Options& options, const Picture& picture, StandardOutput& standardOutput) {
    std::vector<std::uint8_t> png;
    if (!encodePng(picture, png)) {
        return "the picture cannot be encoded";
    }
    if (options.toStandardOutput()) {
        return standardOutput.write(png) ? std::string() : "standard output cannot be written";
    }
    return writeFile(options.output, png);
}

/// @return what went wrong, or nothing
std::string run(const Options& options, StandardOutput& standardOutput) {
    StopWatch whole;
    StopWatch watch;
    Stats stats;
    // What would fail at the end is said at the start.
    for (const std::string& path :
         {options.toStandardOutput() ? std::string() : options.output, options.stats}) {
        if (std::string wrong = path.empty() ? path : checkTarget(path); !wrong.empty()) {
            return wrong;
        }
    }
    std::string resources;
    if (std::string wrong = findResources(options.resources, resources); !wrong.empty()) {
        return wrong;
    }
    zv::FileUtil::getInstance()->setZvRoot(resources);
    Picture input;
    if (std::string wrong = readPicture(options.input, input); !wrong.empty()) {
        return wrong;
    }
    stats.decode = watch.lap();
    Pipeline pipeline;
    if (std::string wrong = pipeline.open(options, resources, input); !wrong.empty()) {
        return wrong;
    }
    stats.setup = watch.lap();
    const Picture output = renderFrames(pipeline, options, stats);
    watch.lap();
    if (std::string wrong = encodeAndWrite(options, output, standardOutput); !wrong.empty()) {
        return wrong;
    }
    stats.encode = watch.lap();
    stats.seconds = whole.lap();
    stats.frames = options.frames;
    stats.width = output.width;
    stats.height = output.height;
    stats.renderer = pipeline.renderer();
    stats.version = pipeline.version();
    return options.stats.empty() ? std::string() : writeFile(options.stats, stats.toJson());
}

int runMain(int argc, char** argv) {
    // For --stats: lets the GL calls be counted.
    zv::host::linkGLInterpose();
    Options options;
    const ParseResult parsed = parseOptions(argc, argv, options);
    if (!parsed.run) {
        std::fprintf(parsed.status == 0 ? stdout : stderr, "%s\n", parsed.message.c_str());
        return parsed.status;
    }
    zv::setLogStream(stderr);
    StandardOutput standardOutput;
    if (options.toStandardOutput()) {
        if (isTerminalOutput()) {
            std::fprintf(
                stderr, "zvfx: a picture is nothing to show on a terminal: send -o - to a file or program\n");
            return kBadUsage;
        }
        if (!standardOutput.take()) {
            std::fprintf(stderr, "zvfx: standard output cannot be used\n");
            return kFailed;
        }
    }
    const std::string failure = run(options, standardOutput);
    if (!failure.empty()) {
        std::fprintf(stderr, "zvfx: %s\n", failure.c_str());
        return kFailed;
    }
    return 0;
}

}  // namespace

}  // namespace zvfx

int main(int argc, char** argv) {
    try {
        return zvfx::runMain(argc, argv);
    } catch (const std::exception& error) {
        // The standard library throws when memory runs out or a name is no UTF-8.
        std::fprintf(stderr, "zvfx: %s\n", error.what());
        return 1;
    }
}
