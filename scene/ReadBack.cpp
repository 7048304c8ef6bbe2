#include "scene/ReadBack.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstring>

#include "core/ZVLog.h"
#include "gl/ConfigGL.h"
#include "gl/DebugLabel.h"
#include "gl/HostState.h"
#include "gl/Texture.h"

namespace zv {

namespace {

constexpr int kDefaultPackAlignment = 4;

/// Bytes that GL writes for a pixel of one byte a channel.
unsigned int channelCount(unsigned int format) {
    switch (format) {
        case GL_RED:
        case GL_ALPHA:
            return 1;
        case GL_RG:
            return 2;
        case GL_RGB:
            return 3;
        default:
            return 4;
    }
}

/// Core contexts keep 8-bit alpha pictures in red and cannot be asked for alpha.
unsigned int readFormat(unsigned int format) {
    const bool isCore = ConfigGL::getInstance()->getVersionGL() >= 310 && !GLEW_ARB_compatibility;
    return format == GL_ALPHA && isCore ? GL_RED : format;
}

void zeroFrom(UniqueDataPtr<unsigned char>& out, std::uint64_t start) {
    if (start < out.size()) {
        std::memset(out.get(static_cast<std::size_t>(start)), 0,
                    static_cast<std::size_t>(out.size() - start));
    }
}

}  // namespace

ReadBack::~ReadBack() {
    if (mBuffers[0] != 0) {
        glDeleteBuffers(2, mBuffers);
    }
}

void ReadBack::read(UniqueDataPtr<unsigned char>& out, PxFormat format, const ViewPort* parts,
                    std::size_t count) {
    const PxFormatInfo* info = Texture::getPxFormatInfo(format);
    if (info == nullptr || info->compressed) {
        skip(out, format, 0);
        return;
    }
    const unsigned int pixelBytes = channelCount(info->format);
    std::uint64_t tableBytes = 0;
    std::uint64_t readBytes = 0;
    const int most = ConfigGL::getInstance()->getMaxTextureSize();
    bool canBeDrawn = true;
    for (std::size_t i = 0; i < count; ++i) {
        canBeDrawn = canBeDrawn && parts[i].size.x <= most && parts[i].size.y <= most;
        const std::uint64_t width = parts[i].size.x;
        tableBytes += static_cast<std::uint64_t>(info->bpp) * width / 8 * parts[i].size.y;
        readBytes += pixelBytes * width * parts[i].size.y;
    }
    if (readBytes == 0) {
        zeroFrom(out, 0);
        return;
    }
    // What is larger than any texture was never drawn.
    if (!canBeDrawn || readBytes > (mBuffers[0] != 0 ? mBytes : tableBytes)) {
        skip(out, format, readBytes);
        return;
    }
    HostState::beforePixels();
    if (mBuffers[0] == 0) {
        makeBuffers(tableBytes);
    }
    start(readFormat(info->format), pixelBytes, parts, count);
    finish(out);
    mFirstNext = !mFirstNext;
}

void ReadBack::makeBuffers(std::uint64_t bytes) {
    mBytes = bytes;
    glGenBuffers(2, mBuffers);
    for (const unsigned int buffer : mBuffers) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
        glBufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(bytes), nullptr, GL_STREAM_READ);
        // The first call hands out a buffer that no read has filled; it must not show foreign memory.
        if (void* memory = glMapBuffer(GL_PIXEL_PACK_BUFFER, GL_WRITE_ONLY)) {
            std::memset(memory, 0, static_cast<std::size_t>(bytes));
            glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
        }
        setDebugLabel(GL_BUFFER, buffer, "read-back");
    }
}

void ReadBack::start(unsigned int format, unsigned int pixelBytes, const ViewPort* parts, std::size_t count) {
    glBindBuffer(GL_PIXEL_PACK_BUFFER, mBuffers[mFirstNext ? 0 : 1]);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    std::size_t offset = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const ViewPort& part = parts[i];
        glReadPixels(part.origin.x, part.origin.y, part.size.x, part.size.y, format, GL_UNSIGNED_BYTE,
                     reinterpret_cast<void*>(offset));
        offset += std::size_t{pixelBytes} * part.size.x * part.size.y;
    }
    glPixelStorei(GL_PACK_ALIGNMENT, kDefaultPackAlignment);
}

void ReadBack::finish(UniqueDataPtr<unsigned char>& out) {
    glBindBuffer(GL_PIXEL_PACK_BUFFER, mBuffers[mFirstNext ? 1 : 0]);
    std::uint64_t copied = 0;
    const std::uint64_t wanted = std::min(out.size(), mBytes);
    if (const void* pixels = wanted != 0 ? glMapBuffer(GL_PIXEL_PACK_BUFFER, GL_READ_ONLY) : nullptr) {
        std::memcpy(out.get(0), pixels, static_cast<std::size_t>(wanted));
        glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
        copied = wanted;
    }
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    zeroFrom(out, copied);
}

void ReadBack::skip(UniqueDataPtr<unsigned char>& out, PxFormat format, std::uint64_t bytes) {
    zeroFrom(out, 0);
    if (!mSkipLogged) {
        zvLog("read-back of format %d left out: %llu bytes needed, %llu kept", static_cast<int>(format),
              static_cast<unsigned long long>(bytes), static_cast<unsigned long long>(mBytes));
        mSkipLogged = true;
    }
}

}  // namespace zv
