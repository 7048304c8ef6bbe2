#pragma once

#include <vector>

#include "zvfx/ByteStream.h"
#include "zvfx/VideoFiles.h"

namespace zvfx {

/// Writes frames as Y4M, or their planes alone: raw I420 when the format is 4:2:0.
class Y4mWriter : public VideoSink {
public:
    /// @param bytes outlives the writer
    /// @param headers false: planes alone
    Y4mWriter(ByteWriter& bytes, const VideoFormat& format, bool headers);

    std::string write(const VideoFrame& frame) override;
    std::string finish() override;

private:
    bool writeHeader();
    bool writePlane(const VideoFrame& frame, std::size_t plane);

    ByteWriter& mBytes;
    VideoFormat mFormat;
    bool mHeaders;
    bool mBegun = false;
    std::string mLine;
    std::vector<unsigned char> mRow;
};

}  // namespace zvfx
