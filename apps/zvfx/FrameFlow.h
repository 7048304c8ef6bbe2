#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "zvfx/Channel.h"
#include "zvfx/Progress.h"
#include "zvfx/Stats.h"
#include "zvfx/VideoFiles.h"
#include "zvfx/VideoPipeline.h"

namespace zvfx {

/// Moves frames from a source through the pipeline to a sink: the source decodes on a thread of its own, the
/// sink encodes on another, and the calling thread, whose GL context the pipeline has, draws between them.
///
///     source -> mDecoded -> pipeline -> mDrawn -> sink        frames with pictures
///          <- mUnread <-          <- mUnwritten <-            the same frames, to be used again
///
/// The frames are made once, a few on each side, so the queues bound memory and nobody runs far ahead. The
/// first thing that goes wrong on any thread ends all of them.
class FrameFlow {
public:
    /// All outlive the flow.
    /// @param pipeline null: frames go from the source to the sink as they are
    FrameFlow(VideoSource& source, VideoPipeline* pipeline, VideoSink& sink);

    /// Runs until the source's end and finishes the sink.
    /// @param stats times, frames, and with `countCalls` GL calls are added
    /// @return what went wrong, or nothing
    std::string run(Progress& progress, Stats& stats, bool countCalls);

private:
    using Frame = std::unique_ptr<VideoFrame>;

    /// What goes with the next frame that is read; reading is one frame behind.
    struct Stamp {
        bool any = false;
        std::int64_t time = 0;
        std::string parameters;
    };

    void decode(Stats& stats);
    void draw(Stats& stats, bool countCalls);
    bool drawFrame(const VideoFrame& frame, Stats& stats);
    /// Takes the frame before the one just drawn.
    bool readFrame(Stats& stats);
    void encode(Progress& progress, Stats& stats);
    /// Runs a part; what it throws ends the flow.
    void guard(const std::function<void()>& part);
    void fail(const std::string& wrong);

    VideoSource& mSource;
    VideoPipeline* mPipeline;
    VideoSink& mSink;
    Channel<Frame> mUnread;
    Channel<Frame> mDecoded;
    Channel<Frame> mUnwritten;
    Channel<Frame> mDrawn;
    Stamp mLast;
    std::mutex mMutex;
    std::string mWrong;  // the first thing
};

}  // namespace zvfx
