// zvfx: a picture or a video in, the engine's effects over it, a picture or a video out.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

#include "core/ZVLog.h"
#include "host/Arguments.h"
#include "host/GLInterpose.h"
#include "zvfx/Interrupt.h"
#include "zvfx/Options.h"
#include "zvfx/OutputFile.h"
#include "zvfx/PictureRun.h"
#include "zvfx/Pipeline.h"
#include "zvfx/Progress.h"
#include "zvfx/VideoFiles.h"
#include "zvfx/VideoRun.h"

namespace zvfx {

namespace {

constexpr int kFailed = 1;
constexpr int kBadUsage = 2;
constexpr int kInterrupted = 130;  // what shells say of a program that Ctrl-C ended

/// @return what went wrong, or nothing
std::string run(const Options& options, StandardOutput& standardOutput) {
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
    return outputKind(options.output) == FileKind::Picture ? runPicture(options, resources)
                                                           : runVideo(options, resources, standardOutput);
}

/// Says why in one line, whatever the names in it hold.
int end(int status, std::string why) {
    std::replace(why.begin(), why.end(), '\n', ' ');
    std::fprintf(stderr, "zvfx: %s\n", why.c_str());
    return status;
}

int runMain(int argc, char** argv) {
    // For --stats: lets the GL calls be counted.
    zv::host::linkGLInterpose();
    const zv::host::Arguments arguments(argc, argv);
    Options options;
    const ParseResult parsed = parseOptions(arguments.count(), arguments.values(), options);
    if (!parsed.run) {
        std::fprintf(parsed.status == 0 ? stdout : stderr, "%s\n", parsed.message.c_str());
        return parsed.status;
    }
    zv::setLogStream(stderr);
    if (options.input == "-" && isTerminalInput()) {
        return end(kBadUsage, "there is no video on a terminal: give - one from a file or program");
    }
    StandardOutput standardOutput;
    if (options.toStandardOutput()) {
        if (isTerminalOutput()) {
            return end(kBadUsage, "a video is nothing to show on a terminal: send -o - to a file or program");
        }
        if (!standardOutput.take()) {
            return end(kFailed, "standard output cannot be used");
        }
    }
    const std::string failure = run(options, standardOutput);
    if (!failure.empty()) {
        return end(kFailed, failure);
    }
    return wasInterrupted() ? end(kInterrupted, "interrupted; the frames until then are written") : 0;
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
