#include "support/Picture.h"

#include <GL/glew.h>
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace zv::test {

Picture::Picture(int pictureWidth, int pictureHeight, Pixel fill)
    : width(pictureWidth),
      height(pictureHeight),
      rgba(static_cast<std::size_t>(pictureWidth) * static_cast<std::size_t>(pictureHeight) * 4) {
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        rgba[i] = fill[i % 4];
    }
}

Picture Picture::noise(int width, int height, std::uint32_t seed, bool opaque) {
    std::uint32_t state = seed * 2654435761u + 1u;
    Picture picture(width, height);
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) {
        state = state * 1664525u + 1013904223u;
        picture.rgba[i] = opaque && i % 4 == 3 ? std::uint8_t{255} : static_cast<std::uint8_t>(state >> 24);
    }
    return picture;
}

Picture Picture::load(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    Picture picture;
    // Not by name: libpng takes names in the code page only.
    std::ifstream stream(std::filesystem::u8path(path), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) != 0) {
        image.format = PNG_FORMAT_RGBA;
        Picture read(static_cast<int>(image.width), static_cast<int>(image.height));
        if (png_image_finish_read(&image, nullptr, read.rgba.data(), 0, nullptr) != 0) {
            picture = std::move(read);
        }
    }
    EXPECT_FALSE(picture.empty()) << "cannot read " << path << ": " << image.message;
    png_image_free(&image);
    return picture;
}

Picture Picture::readFrameBuffer(int width, int height, int x, int y) {
    Picture picture(width, height);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    return picture;
}

Picture Picture::readTexture(unsigned int name, int width, int height, unsigned int target) {
    GLint bound = 0;
    GLuint reader = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    glGenFramebuffers(1, &reader);
    glBindFramebuffer(GL_FRAMEBUFFER, reader);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, target, name, 0);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
    Picture picture = readFrameBuffer(width, height);
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(bound));
    glDeleteFramebuffers(1, &reader);
    return picture;
}

std::size_t Picture::offset(int x, int y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
}

Pixel Picture::at(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        ADD_FAILURE() << "no pixel at (" << x << ", " << y << ") in a picture of " << width << " x "
                      << height;
        return {};
    }
    const std::size_t from = offset(x, y);
    return {rgba[from], rgba[from + 1], rgba[from + 2], rgba[from + 3]};
}

std::array<double, 4> Picture::between(double x, double y) const {
    const double left = std::floor(x), top = std::floor(y);
    std::array<double, 4> mixed{};
    for (int corner = 0; corner < 4; ++corner) {
        const int dx = corner % 2, dy = corner / 2;
        const double weight = (dx ? x - left : 1 - x + left) * (dy ? y - top : 1 - y + top);
        const Pixel pixel = at(std::clamp(static_cast<int>(left) + dx, 0, width - 1),
                               std::clamp(static_cast<int>(top) + dy, 0, height - 1));
        for (std::size_t i = 0; i < 4; ++i) {
            mixed[i] += weight * pixel[i];
        }
    }
    return mixed;
}

void Picture::set(int x, int y, Pixel pixel) {
    if (x >= 0 && y >= 0 && x < width && y < height) {
        std::copy(pixel.begin(), pixel.end(), rgba.begin() + static_cast<std::ptrdiff_t>(offset(x, y)));
    }
}

Picture Picture::flippedY() const {
    return make(width, height, [&](int x, int y) { return at(x, height - 1 - y); });
}

Picture Picture::cropped(int x, int y, int cropWidth, int cropHeight) const {
    return make(cropWidth, cropHeight, [&](int column, int row) { return at(x + column, y + row); });
}

std::vector<std::uint8_t> Picture::rgb() const {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(rgba.size() / 4 * 3);
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        if (i % 4 != 3) {
            bytes.push_back(rgba[i]);
        }
    }
    return bytes;
}

bool Picture::save(const std::string& path) const {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, rgba.data(), 0, nullptr) == 0) {
        return false;
    }
    std::ofstream stream(std::filesystem::u8path(path), std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(size));
    return stream.flush().good();
}

}  // namespace zv::test
