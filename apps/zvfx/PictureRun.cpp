#include "zvfx/PictureRun.h"

#include <algorithm>
#include <vector>

#include "core/UniqueDataPtr.h"
#include "gl/FrameBuffer.h"
#include "scene/RenderTexture.h"
#include "zvfx/OutputFile.h"
#include "zvfx/PictureFile.h"
#include "zvfx/Pipeline.h"
#include "zvfx/Progress.h"
#include "zvfx/Stats.h"

namespace zvfx {

namespace {

/// @param output its size and channels are set
std::string setUp(Pipeline& pipeline, const Options& options, const std::string& resources,
                  const Picture& input, Picture& output) {
    output.width = options.size ? options.size->width : input.width;
    output.height = options.size ? options.size->height : input.height;
    output.channels = input.channels;
    const std::uint64_t bytes = static_cast<std::uint64_t>(output.width) *
                                static_cast<std::uint64_t>(output.height) *
                                static_cast<std::uint64_t>(output.channels);
    if (bytes > kMostPictureBytes) {
        return "the output may hold 256 MiB, " + std::to_string(output.width) + " x " +
               std::to_string(output.height) + " is more";
    }
    output.pixels.resize(static_cast<std::size_t>(bytes));
    std::string wrong = pipeline.open(resources);
    if (wrong.empty()) {
        wrong =
            pipeline.checkSize(std::max(input.width, output.width), std::max(input.height, output.height));
    }
    if (!wrong.empty()) {
        return wrong;
    }
    const zv::Size16 size = toSize(output.width, output.height);
    // The engine's own output has no alpha; a picture that has it brings an output that keeps it.
    zv::RenderTexture* target = nullptr;
    if (input.channels == 4) {
        target = zv::RenderTexture::create(size, zv::FrameBuffer::create(), zv::PXFORMAT_RGBA8888);
        if (target == nullptr) {
            return "the output cannot be made";
        }
    }
    const bool same = input.width == output.width && input.height == output.height;
    zv::Sprite* sprite = makePictureSprite(input, same, wrong);
    return sprite != nullptr ? pipeline.link(sprite, size, target, input.channels) : wrong;
}

/// @param output receives the last frame, its bottom row first
std::string renderFrames(Pipeline& pipeline, const Options& options, Stats& stats, Picture& output) {
    zv::UniqueDataPtr<unsigned char> pixels(output.pixels.size());
    if (pixels.size() != output.pixels.size()) {
        return "not enough memory";
    }
    Progress progress(options.frames, options.frames > 1 && !options.quiet && isTerminalError());
    CallCount calls(!options.stats.empty());
    const auto seconds = static_cast<float>(1 / options.fps);
    StopWatch watch;
    for (int i = 0; i < options.frames; ++i) {
        // The calls of the last frame are counted: the first one still sets things up.
        if (i + 1 == options.frames) {
            calls.begin();
        }
        watch.lap();
        pipeline.frame(seconds, true);
        stats.render += watch.lap();
        pipeline.output()->getOutData(pixels);
        stats.read += watch.lap();
        progress.frameDone();
    }
    calls.end(stats);
    watch.lap();
    // Read-back is one call behind: this one takes what the last one started.
    pipeline.output()->getOutData(pixels);
    output.pixels.assign(pixels.get(0), pixels.get(0) + pixels.size());
    stats.read += watch.lap();
    stats.loop = stats.render + stats.read;
    return {};
}

}  // namespace

std::string runPicture(const Options& options, const std::string& resources) {
    StopWatch whole;
    StopWatch watch;
    Stats stats;
    Picture input;
    if (std::string wrong = readPicture(options.input, input); !wrong.empty()) {
        return wrong;
    }
    stats.decode = watch.lap();
    Pipeline pipeline(options);
    Picture output;
    if (std::string wrong = setUp(pipeline, options, resources, input, output); !wrong.empty()) {
        return wrong;
    }
    stats.setup = watch.lap();
    std::string wrong = renderFrames(pipeline, options, stats, output);
    watch.lap();
    std::vector<std::uint8_t> png;
    if (wrong.empty() && !encodePng(output, png)) {
        wrong = "the picture cannot be encoded";
    }
    if (wrong.empty()) {
        wrong = writeFile(options.output, png);
    }
    stats.encode = watch.lap();
    stats.seconds = whole.lap();
    stats.frames = options.frames;
    stats.width = output.width;
    stats.height = output.height;
    stats.renderer = pipeline.renderer();
    stats.version = pipeline.version();
    if (wrong.empty() && !options.stats.empty()) {
        stats.effects = pipeline.effectCosts();
        wrong = writeFile(options.stats, stats.toJson());
    }
    return wrong;
}

}  // namespace zvfx
