#include "host/PlaneUploader.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstring>

#include "gl/ConfigGL.h"

namespace zv::host {

namespace {

constexpr int kAlignment = 4;              // GL's default
constexpr unsigned short kRedGreen = 300;  // the GL version, times 100, that brought these formats

std::size_t roundUp(std::size_t bytes) {
    return (bytes + kAlignment - 1) / kAlignment * kAlignment;
}

GLenum pixelFormat(int channels) {
    if (ConfigGL::getInstance()->getVersionGL() >= kRedGreen) {
        return channels == 1 ? GL_RED : GL_RG;
    }
    return channels == 1 ? GL_LUMINANCE : GL_LUMINANCE_ALPHA;
}

GLint internalFormat(int channels) {
    if (ConfigGL::getInstance()->getVersionGL() >= kRedGreen) {
        return channels == 1 ? GL_R8 : GL_RG8;
    }
    return channels == 1 ? GL_LUMINANCE8 : GL_LUMINANCE8_ALPHA8;
}

/// Copies a plane, repeating its last column and row where the texture goes on.
void copyPlane(const PlaneUploader::Samples& from, const PlaneUploader::Texture& texture, unsigned char* to,
               std::size_t stride) {
    const auto pixel = static_cast<std::size_t>(texture.channels);
    const std::size_t there = pixel * static_cast<std::size_t>(from.width);
    for (int y = 0; y < texture.height; ++y, to += stride) {
        std::memcpy(to, from.data + from.stride * std::min(y, from.height - 1), there);
        for (int x = from.width; x < texture.width; ++x) {
            std::memcpy(to + pixel * static_cast<std::size_t>(x), to + there - pixel, pixel);
        }
    }
}

}  // namespace

PlaneUploader::~PlaneUploader() {
    for (const Plane& plane : mPlanes) {
        glDeleteTextures(1, &plane.name);
    }
    if (mBuffers[0] != 0) {
        glDeleteBuffers(2, mBuffers);
    }
}

bool PlaneUploader::init(const std::vector<Texture>& textures) {
    while (glGetError() != GL_NO_ERROR) {
    }
    for (const Texture& texture : textures) {
        Plane plane{texture, 0, mBytes, 0};
        const std::size_t row =
            static_cast<std::size_t>(texture.width) * static_cast<std::size_t>(texture.channels);
        plane.stride = roundUp(row);
        mBytes += plane.stride * static_cast<std::size_t>(texture.height);
        const bool made = makeTexture(plane);
        mPlanes.push_back(plane);
        if (!made) {
            return false;
        }
    }
    glGenBuffers(2, mBuffers);
    return true;
}

bool PlaneUploader::makeTexture(Plane& plane) {
    const Texture& texture = plane.texture;
    glGenTextures(1, &plane.name);
    glBindTexture(GL_TEXTURE_2D, plane.name);
    const GLint filter = texture.linear ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat(texture.channels), texture.width, texture.height, 0,
                 pixelFormat(texture.channels), GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    return glGetError() == GL_NO_ERROR;
}

bool PlaneUploader::upload(const Samples* samples) {
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, mBuffers[mFirstNext ? 0 : 1]);
    mFirstNext = !mFirstNext;
    // New memory under the same name: GL keeps the old one for as long as a texture is still filled from it.
    glBufferData(GL_PIXEL_UNPACK_BUFFER, static_cast<GLsizeiptr>(mBytes), nullptr, GL_STREAM_DRAW);
    auto* memory = static_cast<unsigned char*>(glMapBuffer(GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY));
    if (memory != nullptr) {
        for (std::size_t i = 0; i < mPlanes.size(); ++i) {
            copyPlane(samples[i], mPlanes[i].texture, memory + mPlanes[i].offset, mPlanes[i].stride);
        }
    }
    // The contents may get lost when the screen changes: then nothing is uploaded either.
    const bool filled = memory != nullptr && glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER) == GL_TRUE;
    if (filled) {
        glPixelStorei(GL_UNPACK_ALIGNMENT, kAlignment);
        for (const Plane& plane : mPlanes) {
            glBindTexture(GL_TEXTURE_2D, plane.name);
            glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, plane.texture.width, plane.texture.height,
                            pixelFormat(plane.texture.channels), GL_UNSIGNED_BYTE,
                            reinterpret_cast<const void*>(plane.offset));
        }
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    return filled;
}

}  // namespace zv::host
