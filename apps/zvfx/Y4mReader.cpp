#include "zvfx/Y4mReader.h"

#include <algorithm>
#include <cstring>

#include "zvfx/Y4mHeader.h"

namespace zvfx {

namespace {

constexpr std::size_t kBufferBytes = 4096;
// Far more than any header needs; a stream of another kind may have no newline at all.
constexpr std::size_t kMostHeaderBytes = 2048;

constexpr const char* kReadError = "cannot be read";

}  // namespace

Y4mReader::Y4mReader(ByteReader& bytes) : mBytes(bytes), mBuffer(kBufferBytes) {}

std::string Y4mReader::open(std::uint64_t streamBytes) {
    switch (readLine(mLine)) {
        case Line::Read:
            break;
        case Line::Failed:
            return kReadError;
        case Line::Stopped:
            return "was not read: interrupted";
        case Line::End:
            return "is empty";
        default:
            return "is no Y4M video";
    }
    if (std::string wrong = parseY4mHeader(mLine, mFormat); !wrong.empty()) {
        return wrong;
    }
    mLayout = FrameLayout::tight(mFormat.width, mFormat.height, mFormat.chroma);
    if (streamBytes > mLine.size()) {
        mFrameCount =
            static_cast<std::int64_t>((streamBytes - mLine.size()) / (mLayout.bytes + kY4mFrame.size() + 1));
    }
    return {};
}

VideoSource::Result Y4mReader::read(VideoFrame& frame, std::string& wrong) {
    switch (readLine(mLine)) {
        case Line::Read:
            break;
        case Line::End:
        case Line::Stopped:
            return Result::End;
        case Line::Cut:
            return cut(wrong);
        case Line::Failed:
            wrong = kReadError;
            return Result::Failed;
        case Line::TooLong:
            mLine.clear();
            break;
    }
    const std::size_t word = kY4mFrame.size();
    if (mLine.compare(0, word, kY4mFrame) != 0 || (mLine.size() > word && mLine[word] != ' ')) {
        wrong = "has no frame header where frame " + std::to_string(mRead + 1) + " should begin";
        return Result::Failed;
    }
    frame.parameters.assign(mLine, word, std::string::npos);
    if (!frame.prepare(mLayout)) {
        wrong = "needs more memory than there is";
        return Result::Failed;
    }
    const std::ptrdiff_t count = readBytes(frame.bytes.get(0), mLayout.bytes);
    if (count == ByteReader::kStopped) {
        return Result::End;
    }
    if (count == ByteReader::kFailed) {
        wrong = kReadError;
        return Result::Failed;
    }
    if (count != static_cast<std::ptrdiff_t>(mLayout.bytes)) {
        return cut(wrong);
    }
    frame.time = mRead++;
    return Result::Frame;
}

VideoSource::Result Y4mReader::cut(std::string& wrong) const {
    wrong = "ends in the middle of frame " + std::to_string(mRead + 1);
    return Result::Failed;
}

std::ptrdiff_t Y4mReader::fill() {
    const std::ptrdiff_t count = mBytes.read(mBuffer.data(), mBuffer.size());
    mBegin = 0;
    mEnd = count > 0 ? static_cast<std::size_t>(count) : 0;
    return count;
}

Y4mReader::Line Y4mReader::readLine(std::string& line) {
    line.clear();
    while (line.size() <= kMostHeaderBytes) {
        if (mBegin == mEnd) {
            const std::ptrdiff_t count = fill();
            if (count < 0) {
                return count == ByteReader::kStopped ? Line::Stopped : Line::Failed;
            }
            if (count == 0) {
                return line.empty() ? Line::End : Line::Cut;
            }
        }
        const unsigned char* begin = mBuffer.data() + mBegin;
        const unsigned char* end = mBuffer.data() + mEnd;
        const unsigned char* newline = std::find(begin, end, '\n');
        line.append(begin, newline);
        if (newline != end) {
            mBegin = static_cast<std::size_t>(newline + 1 - mBuffer.data());
            return line.size() <= kMostHeaderBytes ? Line::Read : Line::TooLong;
        }
        mBegin = mEnd;
    }
    return Line::TooLong;
}

std::ptrdiff_t Y4mReader::readBytes(unsigned char* to, std::size_t count) {
    std::size_t done = std::min(count, mEnd - mBegin);
    std::memcpy(to, mBuffer.data() + mBegin, done);
    mBegin += done;
    while (done < count) {
        const std::ptrdiff_t more = mBytes.read(to + done, count - done);
        if (more <= 0) {
            return more < 0 ? more : static_cast<std::ptrdiff_t>(done);
        }
        done += static_cast<std::size_t>(more);
    }
    return static_cast<std::ptrdiff_t>(done);
}

}  // namespace zvfx
