// Reads the input as a Y4M stream, writes what was read and reads that again: both must agree.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "zvfx/Y4mReader.h"
#include "zvfx/Y4mWriter.h"

namespace {

using namespace zvfx;

constexpr int kMostPixels = 1 << 16;

class MemoryReader : public ByteReader {
public:
    MemoryReader(const unsigned char* data, std::size_t size) : mData(data), mSize(size) {}
    std::ptrdiff_t read(unsigned char* to, std::size_t most) override {
        // In pieces of any size, as a pipe gives them.
        const std::size_t count = std::min({most, mSize, std::size_t{1} + mSize % 61});
        std::memcpy(to, mData, count);
        mData += count;
        mSize -= count;
        return static_cast<std::ptrdiff_t>(count);
    }

private:
    const unsigned char* mData;
    std::size_t mSize;
};

class MemoryWriter : public ByteWriter {
public:
    bool write(const void* bytes, std::size_t count) override {
        mBytes.append(static_cast<const char*>(bytes), count);
        return true;
    }
    bool finish() override { return true; }
    std::string mBytes;
};

/// All frames of a stream as they are written again; empty for one that cannot be opened.
std::string copy(const unsigned char* data, std::size_t size) {
    MemoryReader bytes(data, size);
    Y4mReader reader(bytes);
    if (!reader.open(size).empty() || reader.format().width * reader.format().height > kMostPixels) {
        return {};
    }
    MemoryWriter written;
    Y4mWriter writer(written, reader.format(), true);
    VideoFrame frame;
    std::string wrong;
    while (reader.read(frame, wrong) == VideoSource::Result::Frame) {
        writer.write(frame);
    }
    writer.finish();
    return written.mBytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string once = copy(data, size);
    if (once != copy(reinterpret_cast<const unsigned char*>(once.data()), once.size())) {
        std::abort();
    }
    return 0;
}
