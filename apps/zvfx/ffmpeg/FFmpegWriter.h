#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zvfx/OutputFile.h"
#include "zvfx/VideoFiles.h"
#include "zvfx/ffmpeg/FFmpegTypes.h"

namespace zvfx {

class FFmpegReader;

/// Encodes into the container that the file's name selects: H.264 where that takes it and libx264 is there,
/// else MPEG-4, else what the container is made for. Audio packets, time stamps, rotation, descriptions and
/// colour tags of the reader come along as they are.
class FFmpegWriter : public VideoSink {
public:
    explicit FFmpegWriter(const std::string& path);
    ~FFmpegWriter() override;

    /// @param reader where the frames come from; null: not from a video file
    /// @param format out: 4:2:0 where the encoder takes nothing else
    /// @return what went wrong, or nothing
    std::string open(VideoFormat& format, FFmpegReader* reader);
    std::string write(const VideoFrame& frame) override;
    std::string finish() override;

private:
    struct AudioStream {
        int index = -1;  ///< of the stream here; -1: none
        AVRational timeBase = {0, 1};
    };

    const AVCodec* chooseEncoder(Chroma& chroma) const;
    std::string openEncoder(VideoFormat& format, const FFmpegReader* reader);
    void setColours(const VideoFormat& format, const FFmpegReader* reader);
    void setQuality();
    std::string addVideo(const FFmpegReader* reader);
    std::string addAudio(FFmpegReader& reader);
    std::string begin();
    bool fillPicture(const VideoFrame& frame);
    /// Sends a picture, or the end with null, and writes what the encoder has ready.
    int encode(const AVFrame* picture);
    int writeAudio();
    std::string say(int error) const;

    TargetFile mTarget;
    std::string mPath;
    AVFormatContext* mFile = nullptr;
    AvCodecContext mEncoder;
    AvFrame mPicture;
    AvPacket mPacket;
    AVStream* mVideo = nullptr;
    AVRational mTimeBase = {1, 25};
    std::int64_t mLastTime = 0;
    bool mAny = false;
    PacketQueue* mAudio = nullptr;
    std::vector<AvPacket> mAudioPackets;
    /// By stream of the origin, which may still find further ones on its own thread.
    std::vector<AudioStream> mAudioStreams;
};

}  // namespace zvfx
