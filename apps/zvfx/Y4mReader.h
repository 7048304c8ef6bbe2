#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zvfx/ByteStream.h"
#include "zvfx/VideoFiles.h"

namespace zvfx {

/// Reads a Y4M stream of 8 bits a sample, 4:2:0 or 4:4:4, progressive. Whatever the bytes are: no number from
/// the stream is allocated by unchecked, and memory beyond a frame and a header line is never asked for.
class Y4mReader : public VideoSource {
public:
    /// @param bytes outlives the reader
    explicit Y4mReader(ByteReader& bytes);

    /// Reads the stream header.
    /// @param streamBytes size of the whole stream, for frameCount(); 0: unknown
    /// @return what is wrong with the stream, or nothing
    std::string open(std::uint64_t streamBytes);

    /// A stream that ends inside a frame fails.
    Result read(VideoFrame& frame, std::string& wrong) override;

private:
    enum class Line { Read, End, Cut, Stopped, Failed, TooLong };

    Line readLine(std::string& line);
    std::ptrdiff_t fill();
    /// @return `count`, fewer at the end, or what ByteReader says
    std::ptrdiff_t readBytes(unsigned char* to, std::size_t count);
    Result cut(std::string& wrong) const;

    ByteReader& mBytes;
    std::vector<unsigned char> mBuffer;
    std::size_t mBegin = 0;  // what is left of the buffer
    std::size_t mEnd = 0;
    FrameLayout mLayout;
    std::string mLine;
    std::int64_t mRead = 0;  // frames
};

}  // namespace zvfx
