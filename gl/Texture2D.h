#pragma once

#include <string>

#include "core/TRect.h"
#include "core/UniqueDataPtr.h"
#include "gl/MipmapInfo.h"
#include "gl/Texture.h"

namespace zv {

class Image;

/// A two-dimensional texture and the ways to fill it. Sizes are pixels.
///
/// Rows of raw bytes are tight, or padded to four bytes when the byte length says so; any width uploads
/// right. Give the exact byte length: a few bytes more may read as padded rows, more than that are ignored.
/// Uploads set the row alignment and leave the rest of the host's pixel store alone: its row length and skips
/// must be 0 and no unpack buffer bound. An upload answers false, and leaves the texture
/// as it was, when the format has no row or the buffer is shorter than size and format need; a null pointer
/// allocates without filling. A size beyond ConfigGL::getMaxTextureSize() answers false as well, and the log
/// says so once a size. GL's own refusals (a compressed format that the driver does not take) are not
/// noticed.
class ZV_API Texture2D : public Texture {
public:
    Texture2D() = default;
    ~Texture2D() override;
    bool isTexture() const override;

    /// Decodes a picture file (see Image::initWithFile for what it takes) and uploads it. A path shorter than
    /// four characters answers false.
    bool init(const std::string& path);
    /// Uploads a decoded picture; false for null, an empty picture and the grey formats.
    bool init(Image* image);
    bool init(const UniqueDataPtr<unsigned char>& data, PxFormat format, const Size16& size);
    bool init(const unsigned char* data, std::uint64_t bytes, PxFormat format, const Size16& size);
    /// Adopts an existing GL name; only an owner deletes it.
    bool init(unsigned int name, const Size16& size, PxFormat format, bool owner);
    /// Uploads `count` levels under a new name with TexParams::DEFAULT; each level is half as wide and high
    /// as the one before, at least 1. With a count below 1 the texture gets its name but no level.
    bool initWithMipmaps(const _MipmapInfo* levels, int count, PxFormat format, const Size16& size);

    /// Replaces the pixels from the lower left corner on; a texture without a name is uploaded instead. The
    /// size must fit the one uploaded. False, with nothing changed, for a buffer that is null or too short
    /// and for compressed formats.
    ///
    /// Exception to the rule that nothing throws: a format without a row throws std::out_of_range.
    bool updateWithData(const unsigned char* data, std::uint64_t bytes, PxFormat format, const Size16& size);
    bool updateWithData(const UniqueDataPtr<unsigned char>& data, PxFormat format, const Size16& size);
    /// Keeps format and size.
    bool updateWithData(const unsigned char* data, std::uint64_t bytes);

    const Size16& getSize() const { return mSize; }
    /// At 0, 0 with the width and height.
    RectF getRect() const;

protected:
    Size16 mSize;
};

}  // namespace zv
