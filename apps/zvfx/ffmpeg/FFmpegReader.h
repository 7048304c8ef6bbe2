#pragma once

#include <string>

#include "zvfx/VideoFiles.h"
#include "zvfx/ffmpeg/FFmpegTypes.h"

namespace zvfx {

/// Decodes the best video stream of a file. Pictures of 8 bits in 4:2:0 and 4:4:4 are taken as they are; any
/// others are converted to the nearer of these, and colours for which the engine has no matrix to BT.709.
class FFmpegReader : public VideoSource {
public:
    ~FFmpegReader() override;

    /// @param matrix as the user wants it taken; null: as the stream says
    /// @return what went wrong, or nothing
    std::string open(const std::string& path, const Matrix* matrix);
    Result read(VideoFrame& frame, std::string& wrong) override;

    /// From now on read() hands over the packets of the audio streams here.
    PacketQueue& startAudio();
    const AVFormatContext& file() const { return *mFile; }
    const AVStream& stream() const { return *mFile->streams[mVideo]; }

private:
    std::string openDecoder(const AVCodec* codec);
    void describe();
    bool chooseMatrix();
    std::string openScaler(const Matrix* matrix, bool matrixKnown);
    /// Feeds the decoder until it has a picture. @return an FFmpeg error, AVERROR_EOF at the end
    int decode();
    int feed();
    bool hasTheKindOfTheFirst() const;
    void copyPicture(VideoFrame& frame);

    AvInput mFile;
    AvCodecContext mDecoder;
    AvPacket mPacket;
    AvFrame mPicture;
    SwsContext* mScaler = nullptr;
    AvFrame mConverted;  ///< what the scaler makes of mPicture
    unsigned int mVideo = 0;
    AVPixelFormat mPixels = AV_PIX_FMT_NONE;  ///< what the scaler and the layout are made for
    FrameLayout mLayout;
    PacketQueue mAudio;
    bool mAudioWanted = false;
    std::int64_t mNextTime = 0;  ///< the earliest that the next frame may have
    std::int64_t mRead = 0;
};

}  // namespace zvfx
