#include "zvfx/Y4mWriter.h"

#include "zvfx/Y4mHeader.h"

namespace zvfx {

namespace {

constexpr const char* kWriteError = "cannot be written";

}  // namespace

Y4mWriter::Y4mWriter(ByteWriter& bytes, const VideoFormat& format, bool headers)
    : mBytes(bytes), mFormat(format), mHeaders(headers), mRow(static_cast<std::size_t>(format.width)) {}

std::string Y4mWriter::write(const VideoFrame& frame) {
    bool good = writeHeader();
    if (mHeaders && good) {
        mLine.assign(kY4mFrame).append(frame.parameters).append(1, '\n');
        good = mBytes.write(mLine.data(), mLine.size());
    }
    for (std::size_t plane = 0; good && plane < frame.layout.planes.size(); ++plane) {
        good = writePlane(frame, plane);
    }
    return good ? std::string() : kWriteError;
}

std::string Y4mWriter::finish() {
    const bool good = writeHeader();
    return mBytes.finish() && good ? std::string() : kWriteError;
}

bool Y4mWriter::writeHeader() {
    if (mBegun || !mHeaders) {
        return true;
    }
    mBegun = true;
    const std::string header = makeY4mHeader(mFormat);
    return mBytes.write(header.data(), header.size());
}

bool Y4mWriter::writePlane(const VideoFrame& frame, std::size_t plane) {
    const Plane& p = frame.layout.planes[plane];
    const auto width = static_cast<std::size_t>(p.width);
    if (p.step == 1 && p.stride == p.width) {
        return mBytes.write(frame.row(plane, 0), width * static_cast<std::size_t>(p.height));
    }
    for (int y = 0; y < p.height; ++y) {
        copyRow(frame, plane, y, mRow.data(), p.width);
        if (!mBytes.write(mRow.data(), width)) {
            return false;
        }
    }
    return true;
}

}  // namespace zvfx
