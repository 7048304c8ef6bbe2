#include "gl/Texture2D.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <stdexcept>

#include "core/ZVLog.h"
#include "gl/ConfigGL.h"
#include "gl/HostState.h"
#include "gl/Image.h"
#include "gl/PixelRows.h"

namespace zv {

namespace {

/// Sets how upload rows are aligned and restores GL's default of 4.
class UnpackAlignment {
public:
    explicit UnpackAlignment(int alignment) {
        HostState::beforePixels();
        glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
    }
    ~UnpackAlignment() { glPixelStorei(GL_UNPACK_ALIGNMENT, 4); }
    UnpackAlignment(const UnpackAlignment&) = delete;
    UnpackAlignment& operator=(const UnpackAlignment&) = delete;
};

std::uint64_t rowByteCount(const PxFormatInfo& info, const Size16& size) {
    return std::uint64_t{size.x} * static_cast<std::uint64_t>(info.bpp) / 8;
}

/// The fewest bytes that hold a picture: tight rows, or whole blocks of 4 x 4 pixels.
std::uint64_t neededByteCount(const PxFormatInfo& info, const Size16& size) {
    if (!info.compressed)
        return rowByteCount(info, size) * size.y;
    const std::uint64_t blockBytes = static_cast<std::uint64_t>(info.bpp) * 16 / 8;
    return (std::uint64_t{size.x} + 3) / 4 * ((std::uint64_t{size.y} + 3) / 4) * blockBytes;
}

int rowAlignment(const PxFormatInfo& info, const Size16& size, std::uint64_t bytes) {
    return hasPaddedRows(bytes, rowByteCount(info, size), size.y) ? 4 : 1;
}

Size16 nextLevel(const Size16& size) {
    return Size16(static_cast<unsigned short>(std::max(size.x / 2, 1)),
                  static_cast<unsigned short>(std::max(size.y / 2, 1)));
}

/// Core contexts have no 8-bit alpha format: there it is kept in red and sampled as alpha.
bool keepsAlphaInRed(PxFormat format) {
    return format == PXFORMAT_A8 && ConfigGL::getInstance()->getVersionGL() >= 310 && !GLEW_ARB_compatibility;
}

unsigned int storedAs(PxFormat format, unsigned int tableValue) {
    return keepsAlphaInRed(format) ? GL_RED : tableValue;
}

bool levelFits(const PxFormatInfo& info, const _MipmapInfo& level, const Size16& size) {
    const std::uint64_t needed = neededByteCount(info, size);
    if (info.compressed && needed > static_cast<std::uint64_t>(std::numeric_limits<GLsizei>::max()))
        return false;  // GL takes the byte length of a compressed level as a GLsizei.
    return level.data == nullptr || level.length >= needed;
}

bool levelsFit(const PxFormatInfo* info, const _MipmapInfo* levels, int count, Size16 size) {
    if (count < 1)
        return true;
    if (info == nullptr || levels == nullptr)
        return false;
    for (int i = 0; i < count; ++i) {
        if (!levelFits(*info, levels[i], size))
            return false;
        size = nextLevel(size);
    }
    return true;
}

/// What is refused may be asked for again with each frame, by each stage of a chain at its own size: a size
/// is told only when it is none of the last few.
bool glTakes(const Size16& size) {
    static std::array<std::atomic<std::uint32_t>, 8> told{};
    static std::atomic<unsigned int> next{0};
    const int most = ConfigGL::getInstance()->getMaxTextureSize();
    if (size.x <= most && size.y <= most)
        return true;
    const std::uint32_t both = std::uint32_t{size.x} << 16 | size.y;
    if (std::find(told.begin(), told.end(), both) == told.end()) {
        told[next++ % told.size()] = both;
        zvLog("a texture of %d x %d is refused: GL takes up to %d a side", size.x, size.y, most);
    }
    return false;
}

}  // namespace

Texture2D::~Texture2D() = default;

bool Texture2D::isTexture() const {
    return true;
}

bool Texture2D::init(const std::string& path) {
    if (path.size() < 4)
        return false;  // Image throws on such a path.
    Image image;
    return image.initWithFile(path) && init(&image);
}

bool Texture2D::init(Image* image) {
    if (image == nullptr || !image->isValid())
        return false;
    return init(image->getData(), image->getPixelFormat(), image->getSize());
}

bool Texture2D::init(const UniqueDataPtr<unsigned char>& data, PxFormat format, const Size16& size) {
    return init(data.get(0), data.size(), format, size);
}

bool Texture2D::init(const unsigned char* data, std::uint64_t bytes, PxFormat format, const Size16& size) {
    const _MipmapInfo level{data, bytes};
    return initWithMipmaps(&level, 1, format, size);
}

bool Texture2D::init(unsigned int name, const Size16& size, PxFormat format, bool owner) {
    mSize = size;
    updateTextureId(static_cast<int>(name), mTarget, format, owner);
    return true;
}

bool Texture2D::initWithMipmaps(const _MipmapInfo* levels, int count, PxFormat format, const Size16& size) {
    const PxFormatInfo* info = getPxFormatInfo(format);
    if (!levelsFit(info, levels, count, size) || (count > 0 && !glTakes(size)))
        return false;

    mFormat = format;
    deleteOwnedName();
    mFlags.setOn(FLAG_OWNER);
    glGenTextures(1, &mName);
    setTexParameters(TexParams::DEFAULT, true);

    Size16 levelSize = size;
    for (int i = 0; i < count; ++i) {
        const _MipmapInfo& level = levels[i];
        if (info->compressed) {
            HostState::beforePixels();
            glCompressedTexImage2D(mTarget, i, info->internalFormat, levelSize.x, levelSize.y, 0,
                                   static_cast<GLsizei>(neededByteCount(*info, levelSize)), level.data);
        } else {
            const UnpackAlignment alignment(rowAlignment(*info, levelSize, level.length));
            glTexImage2D(mTarget, i, static_cast<GLint>(storedAs(format, info->internalFormat)), levelSize.x,
                         levelSize.y, 0, storedAs(format, info->format), info->type, level.data);
        }
        levelSize = nextLevel(levelSize);
    }
    if (count > 0 && keepsAlphaInRed(format)) {
        constexpr GLint swizzle[] = {GL_ZERO, GL_ZERO, GL_ZERO, GL_RED};
        glTexParameteriv(mTarget, GL_TEXTURE_SWIZZLE_RGBA, swizzle);
    }

    mSize = size;
    mFlags.setFlag(FLAG_MIPMAP, count >= 2);
    return true;
}

bool Texture2D::updateWithData(const unsigned char* data, std::uint64_t bytes, PxFormat format,
                               const Size16& size) {
    const PxFormatInfo* info = getPxFormatInfo(format);
    if (info == nullptr)
        throw std::out_of_range("invalid map<K, T> key");
    if (mName == 0)
        return init(data, bytes, format, size);
    if (info->compressed || data == nullptr || bytes < neededByteCount(*info, size) || !glTakes(size))
        return false;

    mFormat = format;
    mSize = size;
    active(0);
    const UnpackAlignment alignment(rowAlignment(*info, size, bytes));
    glTexSubImage2D(mTarget, 0, 0, 0, size.x, size.y, storedAs(format, info->format), info->type, data);
    return true;
}

bool Texture2D::updateWithData(const UniqueDataPtr<unsigned char>& data, PxFormat format,
                               const Size16& size) {
    return updateWithData(data.get(0), data.size(), format, size);
}

bool Texture2D::updateWithData(const unsigned char* data, std::uint64_t bytes) {
    return updateWithData(data, bytes, mFormat, mSize);
}

RectF Texture2D::getRect() const {
    return RectF(0.0f, 0.0f, mSize.x, mSize.y);
}

}  // namespace zv
