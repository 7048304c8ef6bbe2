#pragma once

#include <cstddef>
#include <cstdint>

#include "core/TRect.h"
#include "core/UniqueDataPtr.h"
#include "gl/PxFormat.h"

namespace zv {

/// Reads pixels through two pack buffers that take turns: a read starts into one of them and the other one,
/// which the read before has filled, is copied to the caller. So nobody waits for the picture just drawn.
/// Only on the engine's thread with its GL context current.
class ReadBack {
public:
    ReadBack() = default;
    ReadBack(const ReadBack&) = delete;
    ReadBack& operator=(const ReadBack&) = delete;
    ~ReadBack();

    /// Starts the read of `count` parts of the bound frame buffer, one behind another and tightly packed, and
    /// hands out what the read before got; zeros at first. What `out` holds beyond that becomes zero.
    /// The first read decides how large the buffers are. A later one that needs more, and a format that GL
    /// does not give in the table's bytes (compressed, without a row, or 16 bits a pixel of more than two
    /// channels), and a part larger than a texture can be, is left out: `out` becomes zero, and the first
    /// time a log line says so.
    void read(UniqueDataPtr<unsigned char>& out, PxFormat format, const ViewPort* parts, std::size_t count);

private:
    void makeBuffers(std::uint64_t bytes);
    void start(unsigned int format, unsigned int pixelBytes, const ViewPort* parts, std::size_t count);
    void finish(UniqueDataPtr<unsigned char>& out);
    void skip(UniqueDataPtr<unsigned char>& out, PxFormat format, std::uint64_t bytes);

    unsigned int mBuffers[2] = {0, 0};
    bool mFirstNext = true;  ///< which of the two the next read goes to
    bool mSkipLogged = false;
    std::uint64_t mBytes = 0;  ///< size of each buffer
};

}  // namespace zv
