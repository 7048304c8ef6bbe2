#include "zvfx/FrameFlow.h"

#include <exception>
#include <thread>

#include "zvfx/Interrupt.h"

namespace zvfx {

namespace {

// On each side: one that is worked on, one that waits, and one to even out what is uneven.
constexpr std::size_t kFrames = 3;
// The frame whose GL calls are counted; the first ones still set things up.
constexpr std::int64_t kCountedFrame = 3;

}  // namespace

FrameFlow::FrameFlow(VideoSource& source, VideoPipeline* pipeline, VideoSink& sink)
    : mSource(source),
      mPipeline(pipeline),
      mSink(sink),
      mUnread(kFrames),
      mDecoded(kFrames),
      mUnwritten(kFrames),
      mDrawn(kFrames) {
    for (std::size_t i = 0; i < kFrames; ++i) {
        mUnread.push(std::make_unique<VideoFrame>());
        mUnwritten.push(std::make_unique<VideoFrame>());
    }
}

std::string FrameFlow::run(Progress& progress, Stats& stats, bool countCalls) {
    StopWatch watch;
    std::thread decoder([&] { guard([&] { decode(stats); }); });
    std::thread encoder([&] { guard([&] { encode(progress, stats); }); });
    guard([&] { draw(stats, countCalls); });
    decoder.join();
    encoder.join();
    if (mWrong.empty() && stats.frames == 0) {
        mWrong = wasInterrupted() ? "interrupted before the first frame" : "the video holds no frame";
    }
    if (mWrong.empty()) {
        StopWatch finishing;
        mWrong = mSink.finish();
        stats.encode += finishing.lap();
    }
    stats.loop += watch.lap();
    return mWrong;
}

void FrameFlow::guard(const std::function<void()>& part) {
    try {
        part();
    } catch (const std::exception& error) {
        fail(error.what());
    }
}

void FrameFlow::fail(const std::string& wrong) {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mWrong.empty()) {
            mWrong = wrong;
        }
    }
    requestStop();
    for (Channel<Frame>* channel : {&mUnread, &mDecoded, &mUnwritten, &mDrawn}) {
        channel->abort();
    }
}

void FrameFlow::decode(Stats& stats) {
    StopWatch watch;
    while (std::optional<Frame> frame = mUnread.pop()) {
        std::string wrong;
        watch.lap();
        const VideoSource::Result result = mSource.read(**frame, wrong);
        stats.decode += watch.lap();
        if (result == VideoSource::Result::Failed) {
            fail(wrong);
            return;
        }
        if (result == VideoSource::Result::End) {
            mDecoded.close();
            return;
        }
        mDecoded.push(std::move(*frame));
    }
}

void FrameFlow::draw(Stats& stats, bool countCalls) {
    CallCount calls(countCalls && mPipeline != nullptr);
    std::int64_t count = 0;
    while (std::optional<Frame> frame = mDecoded.pop()) {
        if (mPipeline == nullptr) {
            mDrawn.push(std::move(*frame));
            continue;
        }
        if (++count <= kCountedFrame) {
            calls.begin();
        }
        if (!drawFrame(**frame, stats) || !readFrame(stats)) {
            return;
        }
        calls.end(stats);
        mLast.any = true;
        mLast.time = (*frame)->time;
        mLast.parameters = (*frame)->parameters;
        mUnread.push(std::move(*frame));
    }
    // The last frame is still to be taken.
    if (!mLast.any || readFrame(stats)) {
        mDrawn.close();
    }
}

bool FrameFlow::drawFrame(const VideoFrame& frame, Stats& stats) {
    const VideoFormat& format = mSource.format();
    const double seconds = mLast.any ? static_cast<double>(frame.time - mLast.time) * format.timeBase.value()
                                     : 1 / format.rate.value();
    StopWatch watch;
    const std::string wrong = mPipeline->draw(frame, static_cast<float>(seconds));
    stats.render += watch.lap();
    if (!wrong.empty()) {
        fail(wrong);
    }
    return wrong.empty();
}

bool FrameFlow::readFrame(Stats& stats) {
    std::optional<Frame> out = mUnwritten.pop();
    if (!out) {
        return false;
    }
    StopWatch watch;
    const std::string wrong = mPipeline->read(**out);
    stats.read += watch.lap();
    if (!wrong.empty()) {
        fail(wrong);
        return false;
    }
    if (!mLast.any) {
        return mUnwritten.push(std::move(*out));
    }
    (*out)->time = mLast.time;
    (*out)->parameters = mLast.parameters;
    return mDrawn.push(std::move(*out));
}

void FrameFlow::encode(Progress& progress, Stats& stats) {
    StopWatch watch;
    while (std::optional<Frame> frame = mDrawn.pop()) {
        watch.lap();
        const std::string wrong = mSink.write(**frame);
        stats.encode += watch.lap();
        if (!wrong.empty()) {
            fail(wrong);
            return;
        }
        ++stats.frames;
        progress.frameDone();
        Channel<Frame>& back = mPipeline != nullptr ? mUnwritten : mUnread;
        back.push(std::move(*frame));
    }
}

}  // namespace zvfx
