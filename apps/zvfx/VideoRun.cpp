#include "zvfx/VideoRun.h"

#include <cmath>
#include <memory>
#include <numeric>
#include <optional>

#include "zvfx/FrameFlow.h"
#include "zvfx/Interrupt.h"
#include "zvfx/OutputFile.h"
#include "zvfx/PictureFile.h"

namespace zvfx {

namespace {

/// Frames without a picture of their own, for a picture that stays.
class StillSource : public VideoSource {
public:
    StillSource(const Options& options, const Picture& picture) : mLeft(options.frames) {
        constexpr std::int64_t kParts = 1000;  // of a frame a second
        const std::int64_t rate = std::max<std::int64_t>(std::llround(options.fps * kParts), 1);
        const std::int64_t common = std::gcd(rate, kParts);
        mFormat.width = picture.width;
        mFormat.height = picture.height;
        mFormat.matrix = options.matrix.value_or(Matrix::Bt601);
        mFormat.rate = {rate / common, kParts / common};
        mFormat.timeBase = {kParts / common, rate / common};
        mFrameCount = mLeft;
    }

    Result read(VideoFrame& frame, std::string&) override {
        if (mLeft == 0 || stopRequested()) {
            return Result::End;
        }
        --mLeft;
        frame.time = mFrameCount - mLeft - 1;
        return Result::Frame;
    }

private:
    std::int64_t mLeft;
};

bool changesNothing(const Options& options, const VideoFormat& input, const VideoFormat& output) {
    return !options.changesPicture() && input.width == output.width && input.height == output.height &&
           input.chroma == output.chroma;
}

}  // namespace

std::string runVideo(const Options& options, const std::string& resources, ByteWriter& standardOutput) {
    StopWatch whole;
    StopWatch watch;
    Stats stats;
    watchInterrupt();
    Picture still;
    std::unique_ptr<VideoSource> source;
    const bool isStill = inputKind(options.input) == FileKind::Picture;
    if (std::string wrong = isStill ? readPicture(options.input, still) : openVideo(options, source);
        !wrong.empty()) {
        return wrong;
    }
    if (isStill) {
        source = std::make_unique<StillSource>(options, still);
    }
    stats.decode = watch.lap();
    VideoFormat format = outputFormat(options, source->format());
    std::unique_ptr<VideoSink> sink;
    if (std::string wrong = createVideo(options, source.get(), format, standardOutput, sink);
        !wrong.empty()) {
        return wrong;
    }
    std::optional<VideoPipeline> pipeline;
    if (isStill || !changesNothing(options, source->format(), format)) {
        pipeline.emplace(options);
        if (std::string wrong =
                pipeline->open(resources, source->format(), format, isStill ? &still : nullptr);
            !wrong.empty()) {
            return wrong;
        }
        stats.renderer = pipeline->pipeline().renderer();
        stats.version = pipeline->pipeline().version();
    }
    stats.setup = watch.lap();
    {
        FrameFlow flow(*source, pipeline ? &*pipeline : nullptr, *sink);
        Progress progress(source->frameCount(), !options.quiet && isTerminalError());
        if (std::string wrong = flow.run(progress, stats, !options.stats.empty()); !wrong.empty()) {
            return wrong;
        }
    }
    stats.seconds = whole.lap();
    stats.width = format.width;
    stats.height = format.height;
    if (options.stats.empty()) {
        return {};
    }
    if (pipeline) {
        stats.effects = pipeline->pipeline().effectCosts();
    }
    return writeFile(options.stats, stats.toJson());
}

}  // namespace zvfx
