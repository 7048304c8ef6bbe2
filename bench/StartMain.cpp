// zv_bench_start [--quick] [--res DIR] [--picture FILE] [--out DIR]: what the beauty chain with I420 takes
// from nothing to its first frame, which GL calls a steady frame makes, and which memory of the GL it holds.
// Each start is a process of its own, so that nothing is warm but the files.
#include <GL/glew.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/EngineRig.h"
#include "bench/Frame.h"
#include "bench/Race.h"
#include "bench/Report.h"
#include "bench/floor/Beauty.h"
#include "core/FileUtil.h"
#include "gl/GLEnv.h"
#include "host/GLCallLog.h"
#include "host/GLInterpose.h"
#include "host/HeadlessContext.h"
#include "scene/ZVMediaEngine.h"

namespace {

using zv::bench::EngineRig;
using zv::bench::Frame;
using zv::bench::number;
using zv::bench::Report;
using zv::bench::Seconds;
using zv::bench::Table;

constexpr double kStartTarget = 0.150;
constexpr double kHostCallsTarget = 60;

struct Options {
    std::string resources = "res";
    std::string picture = "samples/portrait.png";
    std::string folder = "out/bench";
    bool quick = false;
};

// ---------------------------------------------------------------- where the time of a start goes

/// A part of a start: all of it, and what of that GL took.
struct Part {
    Seconds all;
    Seconds compiles;  ///< glCompileShader, glLinkProgram and the queries that wait for them
    Seconds gl;        ///< everything else in GL
};

enum PartName : std::size_t { kContext, kEngine, kChain, kFirst, kSecond, kParts };
using Start = std::array<Part, kParts>;

zv::host::GLCallLog* gLog = nullptr;
Part* gPart = nullptr;
Seconds gEntered;

void addSince(Seconds& sum, const Seconds& before) {
    const Seconds now = Seconds::now();
    sum.wall += now.wall - before.wall;
    sum.cpu += now.cpu - before.cpu;
}

void enterCall() {
    gEntered = Seconds::now();
}

void leaveCall() {
    if (gPart == nullptr || gLog == nullptr || gLog->calls().empty()) {
        return;
    }
    const std::string_view name = gLog->calls().back().name;
    const bool compiles = name == "glCompileShader" || name == "glLinkProgram" || name == "glGetShaderiv" ||
                          name == "glGetProgramiv";
    addSince(compiles ? gPart->compiles : gPart->gl, gEntered);
}

template <class Work>
void measure(Part& part, Work&& work) {
    gPart = &part;
    const Seconds before = Seconds::now();
    work();
    addSince(part.all, before);
    gPart = nullptr;
}

bool startOnce(const Options& options, Start& start) {
    const Frame frame = Frame::load(options.picture, 1280, 720);
    zv::host::GLCallLog::setHooks(enterCall, leaveCall);
    zv::host::linkGLInterpose();
    std::shared_ptr<zv::host::HeadlessContext> context;
    std::unique_ptr<EngineRig> rig;
    bool good = true;
    measure(start[kContext],
            [&] { context = zv::host::HeadlessContext::create(zv::host::HeadlessContext::Kind::Core); });
    if (context == nullptr) {
        return false;
    }
    // The log replaces entry points, so they must be loaded; leaveCall() rests until there is one. Loading
    // them is asking the driver for each, and counts as GL as a whole.
    measure(start[kEngine], [] { zv::glEnvInit(); });
    start[kEngine].gl = start[kEngine].all;
    zv::host::GLCallLog log;
    gLog = &log;
    measure(start[kEngine],
            [&] { rig = std::make_unique<EngineRig>(frame, EngineRig::Output::I420, context); });
    measure(start[kChain], [&] { good = rig->addBeauty(options.resources); });
    for (const PartName name : {kFirst, kSecond}) {
        measure(start[name], [&] {
            rig->frame();
            glFinish();
        });
    }
    return good;
}

/// A start in a process of its own. False when it went wrong.
bool startApart(const Options& options, bool shaderCache, Start& start) {
    int ends[2];
    if (pipe(ends) != 0) {
        return false;
    }
    const pid_t child = fork();
    if (child == 0) {
        setenv("MESA_SHADER_CACHE_DISABLE", shaderCache ? "false" : "true", 1);
        const bool good = startOnce(options, start);
        const bool written = write(ends[1], start.data(), sizeof start) == static_cast<ssize_t>(sizeof start);
        _exit(good && written ? 0 : 1);
    }
    close(ends[1]);
    const bool got =
        child > 0 && read(ends[0], start.data(), sizeof start) == static_cast<ssize_t>(sizeof start);
    close(ends[0]);
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0 && got;
}

/// Median over the starts of what `pick` takes from each.
template <class Pick>
double middle(const std::vector<Start>& starts, Pick&& pick) {
    std::vector<double> values;
    for (const Start& start : starts) {
        values.push_back(pick(start));
    }
    return zv::bench::median(std::move(values));
}

/// What the driver compiles at the first use of a program, behind the calls that draw: what GL takes for the
/// first frame more than for the second.
double lateCompiles(const Start& start) {
    return std::max(start[kFirst].gl.cpu - start[kSecond].gl.cpu, 0.0);
}

double compilesOf(const Start& start, std::size_t part) {
    return start[part].compiles.cpu + (part == kFirst ? lateCompiles(start) : 0);
}

std::vector<std::string> startRow(const char* name, const std::vector<Start>& starts, std::size_t first,
                                  std::size_t last) {
    const auto sum = [&](auto&& pick) {
        return number(1000 * middle(starts,
                                    [&](const Start& start) {
                                        double total = 0;
                                        for (std::size_t part = first; part <= last; ++part) {
                                            total += pick(start, part);
                                        }
                                        return total;
                                    }),
                      1);
    };
    return {
        name,
        sum([](const Start& s, std::size_t p) { return s[p].all.wall; }),
        sum([](const Start& s, std::size_t p) { return s[p].all.cpu; }),
        sum([](const Start& s, std::size_t p) { return compilesOf(s, p); }),
        sum([](const Start& s, std::size_t p) { return s[p].gl.cpu - (p == kFirst ? lateCompiles(s) : 0); }),
        sum([](const Start& s, std::size_t p) { return s[p].all.cpu - s[p].compiles.cpu - s[p].gl.cpu; })};
}

bool tellStarts(const Options& options, bool shaderCache, Report& report) {
    std::vector<Start> starts;
    const int count = options.quick ? 3 : 11;
    for (int i = 0; i < count; ++i) {
        Start start{};
        if (!startApart(options, shaderCache, start)) {
            return false;
        }
        starts.push_back(start);
    }
    Table table{shaderCache ? "start-cached" : "start",
                std::string("Start at 1280x720, ") + (shaderCache ? "with" : "without") +
                    " the driver's shader cache",
                {"part", "ms", "CPU ms", "driver's compiles, CPU ms", "other GL, CPU ms", "ours, CPU ms"},
                {},
                {}};
    // No call is told apart before there is a context: nearly all of this is EGL and the driver.
    std::vector<std::string> context = startRow("GL context (the host's)", starts, kContext, kContext);
    std::fill(context.begin() + 3, context.end(), "");
    table.rows.push_back(context);
    table.rows.push_back(startRow("engine, input, output", starts, kEngine, kEngine));
    table.rows.push_back(startRow("chain: files, tables, programs, targets", starts, kChain, kChain));
    table.rows.push_back(startRow("first frame", starts, kFirst, kFirst));
    table.rows.push_back(startRow("engine to first frame", starts, kEngine, kFirst));
    const auto beyond = [&](double Seconds::*clock) {
        return middle(starts, [clock](const Start& s) {
            double total = -std::max(s[kFirst].gl.*clock - s[kSecond].gl.*clock, 0.0);
            for (const PartName part : {kEngine, kChain, kFirst}) {
                total += s[part].all.*clock - s[part].compiles.*clock;
            }
            return total;
        });
    };
    const double wall = beyond(&Seconds::wall);
    table.note =
        "Beyond the driver's compiles: " + number(1000 * wall, 0) + " ms (" +
        number(1000 * beyond(&Seconds::cpu), 0) + " ms of CPU on all cores), target " +
        number(1000 * kStartTarget, 0) + " ms: " + zv::bench::verdict(wall, kStartTarget) +
        ". Compiles are what `glCompileShader`, `glLinkProgram` and the queries of their results take, "
        "and what the GL calls of the first frame take more than those of the second: this driver "
        "compiles when a program is first drawn with. The rest of the first frame is drawing it.";
    return report.add(table);
}

// ---------------------------------------------------------------- calls and memory

struct Counted {
    std::size_t total;
    std::size_t binds;
    std::size_t programs;
    std::size_t uniforms;
    std::size_t draws;
};

template <class Draw>
Counted countCalls(Draw&& draw) {
    for (int i = 0; i < 3; ++i) {
        draw();
    }
    const zv::host::GLCallLog log;
    draw();
    return {log.total(), log.countPrefix("glBind"), log.count("glUseProgram"), log.countPrefix("glUniform"),
            log.countDraws()};
}

std::vector<std::string> callRow(const char* name, const Counted& c, const std::string& target,
                                 const std::string& verdict) {
    return {name,
            std::to_string(c.total),
            std::to_string(c.draws),
            std::to_string(c.binds),
            std::to_string(c.programs),
            std::to_string(c.uniforms),
            target,
            verdict};
}

bool tellCalls(const Options& options, const Frame& frame, EngineRig& rig, Report& report) {
    const auto draw = [&] { rig.frame(); };
    const Counted engine = countCalls(draw);
    rig.engine().setKeepHostState(true);
    Counted keeping = countCalls(draw);
    rig.engine().setKeepHostState(false);
    zv::bench::floor::Beauty byHand(options.resources, frame);
    const Counted floor = countCalls([&] { byHand.drawFrame(true); });
    const auto more = static_cast<double>(keeping.total - engine.total);
    Table table{"calls",
                "GL calls of a steady frame: smoothing, HSV, whitening, table, I420 and its read",
                {"who", "all", "draws", "binds", "programs", "uniforms", "target", ""},
                {},
                {}};
    table.rows.push_back(callRow("by hand", floor, "", ""));
    table.rows.push_back(callRow("engine", engine, "", ""));
    table.rows.push_back(callRow("engine, keeping the host's state", keeping,
                                 "at most " + number(kHostCallsTarget, 0) + " more",
                                 zv::bench::verdict(more, kHostCallsTarget)));
    return report.add(table);
}

std::string labelOf(GLenum kind, GLuint name) {
    char label[256] = {};
    glGetObjectLabel(kind, name, sizeof label, nullptr, label);
    return label;
}

int levelParameter(GLenum parameter) {
    GLint value = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, parameter, &value);
    return value;
}

bool tellMemory(const Frame& frame, Report& report) {
    constexpr GLuint kMostNames = 4096;
    Table table{"memory",
                "Memory of the GL that the chain holds at " + std::to_string(frame.width) + "x" +
                    std::to_string(frame.height),
                {"object", "label", "size", "bits a pixel", "bytes"},
                {},
                {}};
    long long sum = 0;
    const auto row = [&](const char* kind, const std::string& label, const std::string& size, int bits,
                         long long bytes) {
        sum += bytes;
        table.rows.push_back(
            {kind, label, size, bits > 0 ? std::to_string(bits) : "", std::to_string(bytes)});
    };
    for (GLuint name = 1; name < kMostNames; ++name) {
        if (glIsTexture(name)) {
            glBindTexture(GL_TEXTURE_2D, name);
            const int width = levelParameter(GL_TEXTURE_WIDTH);
            const int height = levelParameter(GL_TEXTURE_HEIGHT);
            const int bits = levelParameter(GL_TEXTURE_RED_SIZE) + levelParameter(GL_TEXTURE_GREEN_SIZE) +
                             levelParameter(GL_TEXTURE_BLUE_SIZE) + levelParameter(GL_TEXTURE_ALPHA_SIZE);
            row("texture", labelOf(GL_TEXTURE, name), std::to_string(width) + "x" + std::to_string(height),
                bits, static_cast<long long>(width) * height * bits / 8);
        }
        if (glIsBuffer(name)) {
            GLint64 bytes = 0;
            glBindBuffer(GL_COPY_READ_BUFFER, name);
            glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, &bytes);
            if (bytes > 4096) {
                row("buffer", labelOf(GL_BUFFER, name), "", 0, bytes);
            }
        }
    }
    table.rows.push_back({"all", "", "", "", std::to_string(sum)});
    table.note =
        "Buffers of at most 4096 bytes, which hold quads, are left out. Most drivers keep 24 "
        "bits in 32.";
    return report.add(table);
}

bool parse(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        std::string* value = argument == "--res"       ? &options.resources
                             : argument == "--picture" ? &options.picture
                             : argument == "--out"     ? &options.folder
                                                       : nullptr;
        if (argument == "--quick") {
            options.quick = true;
        } else if (value == nullptr || ++i == argc) {
            return false;
        } else {
            *value = std::filesystem::absolute(argv[i]).string();
        }
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    for (std::string* path : {&options.resources, &options.picture, &options.folder}) {
        *path = std::filesystem::absolute(*path).string();
    }
    if (!parse(argc, argv, options)) {
        std::fprintf(stderr, "usage: zv_bench_start [--quick] [--res DIR] [--picture FILE] [--out DIR]\n");
        return 2;
    }
    zv::FileUtil::getInstance()->setZvRoot(options.resources);
    Report report(options.folder, "performance-start.md");
    if (!report.isOpen() || !tellStarts(options, false, report) || !tellStarts(options, true, report)) {
        std::fprintf(stderr, "zv_bench_start: the chain does not start, or %s cannot be written\n",
                     options.folder.c_str());
        return 1;
    }
    zv::host::linkGLInterpose();
    const Frame frame = Frame::load(options.picture, 1920, 1080);
    EngineRig rig(frame, EngineRig::Output::I420);
    if (!rig.isGood() || !rig.addBeauty(options.resources)) {
        std::fprintf(stderr, "zv_bench_start: the chain cannot be made\n");
        return 1;
    }
    rig.frame();
    rig.frame();
    const bool good = tellMemory(frame, report);
    return tellCalls(options, frame, rig, report) && good ? 0 : 1;
}
