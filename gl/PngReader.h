#pragma once

#include <cstddef>
#include <cstdint>

#include "gl/PxFormat.h"

struct png_struct_def;
struct png_info_def;

namespace zv {

/// Decodes one PNG from memory, which must outlive the reader, to 8 bits a channel. Says nothing about
/// damaged files but false. libpng reports errors by a long jump; the two operations that it may leave so
/// hold plain locals only.
class PngReader {
public:
    PngReader(const unsigned char* bytes, std::size_t size);
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader();

    /// True when the bytes start as a PNG does.
    static bool hasSignature(const unsigned char* bytes, std::uint64_t size);

    /// Comes first. False for a damaged header and for a side above `maxSide` pixels; afterwards the four
    /// questions below are answered.
    bool readHeader(std::uint32_t maxSide);
    std::uint32_t width() const;
    std::uint32_t height() const;
    /// Format and row length after the expansion to 8 bits a channel.
    PxFormat format() const;
    std::uint64_t rowBytes() const;

    /// Fills height() tight rows, top row first. What was decoded before an error stays.
    bool readRows(unsigned char* pixels);

private:
    bool decodeRows(unsigned char** rows);

    png_struct_def* mPng = nullptr;
    png_info_def* mInfo = nullptr;
    const unsigned char* mBytes;
    std::size_t mSize;
    std::size_t mOffset = 0;

    friend struct PngCallbacks;
};

}  // namespace zv
