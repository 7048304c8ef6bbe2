#pragma once

#include <string>

#include "core/Ref.h"
#include "core/TVec.h"
#include "core/UniqueDataPtr.h"
#include "gl/PxFormat.h"

namespace zv {

/// A picture file decoded into memory, ready to be uploaded: PNG through libpng, and uncompressed 24-bit BMP.
/// PNG rows lie top row first, BMP rows bottom row first, as in their files.
class ZV_API Image : public Ref {
public:
    /// Bytes of the largest decoded picture; a larger one is refused before anything is allocated for it.
    static constexpr std::uint64_t MAX_IMAGE_BYTES = 256ull * 1024 * 1024;

    Image() = default;
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    ~Image() override;

    /// Decodes a file, whose kind is told by the last four characters of its name, case-sensitively: ".bmp",
    /// or ".png", ".PNG", ".jpg" and ".JPG", all four taken for PNG (a real JPEG answers false). Any other
    /// name empties the data and answers false. False as well for sizes above 65,535, files that are damaged
    /// or cut short, and pictures above MAX_IMAGE_BYTES; what was decoded until then may stay in the data, so
    /// test the answer and not the data.
    ///
    /// A ".bmp" that cannot be opened prints a line to standard output and WAITS for a character on standard
    /// input: a host without a console looks whether the file exists first.
    ///
    /// Exception to the rule that nothing throws: a path shorter than four characters throws
    /// std::out_of_range.
    virtual bool initWithFile(const std::string& path);

    /// Rows one after another; PNG rows are tight, BMP rows as the file has them (usually padded to a
    /// multiple of four bytes).
    const UniqueDataPtr<unsigned char>& getData() const { return mData; }
    const Size16& getSize() const { return mSize; }
    PxFormat getPixelFormat() const { return mFormat; }
    /// Bytes of the data.
    std::uint64_t getImageSize() const { return mData.size(); }
    /// True when there is data.
    bool isValid() const { return mData.size() > 0; }
    /// Always false: pixels are never premultiplied.
    bool hasPremultipliedAlpha() const { return false; }

protected:
    virtual bool initWithPng(const std::string& fullPath);
    bool initWithBmp(const std::string& fullPath);

private:
    UniqueDataPtr<unsigned char> mData;
    Size16 mSize;
    PxFormat mFormat = PXFORMAT_NONE;
};

}  // namespace zv
