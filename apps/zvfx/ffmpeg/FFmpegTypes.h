#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "zvfx/VideoFrame.h"

namespace zvfx {

template <class Thing, void (*Free)(Thing**)>
struct AvFree {
    void operator()(Thing* thing) const { Free(&thing); }
};
using AvPacket = std::unique_ptr<AVPacket, AvFree<AVPacket, av_packet_free>>;
using AvFrame = std::unique_ptr<AVFrame, AvFree<AVFrame, av_frame_free>>;
using AvCodecContext = std::unique_ptr<AVCodecContext, AvFree<AVCodecContext, avcodec_free_context>>;
using AvInput = std::unique_ptr<AVFormatContext, AvFree<AVFormatContext, avformat_close_input>>;

/// FFmpeg's words for an error.
inline std::string avError(int error) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof(text));
    return text;
}

inline AVRational toAv(const Ratio& ratio) {
    AVRational result = {0, 1};
    if (ratio.denominator != 0) {
        av_reduce(&result.num, &result.den, ratio.numerator, ratio.denominator, INT32_MAX);
    }
    return result;
}

/// Coded audio on its way from the reader's thread to the writer's.
class PacketQueue {
public:
    void push(AvPacket packet) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mPackets.push_back(std::move(packet));
    }
    /// Swaps what waits into `taken`, which must be empty.
    void take(std::vector<AvPacket>& taken) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mPackets.swap(taken);
    }

private:
    std::mutex mMutex;
    std::vector<AvPacket> mPackets;
};

}  // namespace zvfx
