#include "zvfx/PictureFile.h"

#include <png.h>

#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#include <stb_image.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

namespace zvfx {

namespace {

namespace fs = std::filesystem;

constexpr int kLargestSide = 65535;
// No file of a picture within the limits is larger; what is larger is not worth reading.
constexpr std::uint64_t kMostFileBytes = 2 * kMostPictureBytes;

template <class Sample>
using Decoded = std::unique_ptr<Sample, void (*)(void*)>;

std::string readBytes(const std::string& path, std::vector<stbi_uc>& bytes) {
    const fs::path file = fs::u8path(path);
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        return path + ": no such file";
    }
    if (fs::is_directory(status)) {
        return path + ": is a folder, not a picture";
    }
    const std::uint64_t size = fs::file_size(file, error);
    if (error || size == 0 || size > kMostFileBytes) {
        return path + (error ? ": cannot be read" : size == 0 ? ": is empty" : ": is too large a file");
    }
    bytes.resize(static_cast<std::size_t>(size));
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    return stream ? std::string() : path + ": cannot be read";
}

std::uint8_t toEightBits(stbi_uc sample) {
    return sample;
}

/// v / 257 to the nearest: 65535 becomes 255.
std::uint8_t toEightBits(stbi_us sample) {
    return static_cast<std::uint8_t>((sample + 128u) / 257u);
}

/// Brings grey (with alpha) to RGB (with alpha) and any depth to 8 bits.
template <class Sample>
void expand(const Sample* samples, int channels, Picture& picture) {
    const std::size_t count =
        static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    const bool grey = channels < 3;
    const bool alpha = channels % 2 == 0;
    picture.channels = alpha ? 4 : 3;
    picture.pixels.resize(count * static_cast<std::size_t>(picture.channels));
    std::uint8_t* to = picture.pixels.data();
    for (std::size_t i = 0; i < count; ++i, samples += channels) {
        for (int c = 0; c < 3; ++c) {
            *to++ = toEightBits(samples[grey ? 0 : c]);
        }
        if (alpha) {
            *to++ = toEightBits(samples[channels - 1]);
        }
    }
}

std::string decode(const std::vector<stbi_uc>& bytes, Picture& picture) {
    const int length = static_cast<int>(bytes.size());
    int channels = 0;
    if (stbi_is_16_bit_from_memory(bytes.data(), length) != 0) {
        const Decoded<stbi_us> samples(
            stbi_load_16_from_memory(bytes.data(), length, &picture.width, &picture.height, &channels, 0),
            stbi_image_free);
        if (samples != nullptr) {
            expand(samples.get(), channels, picture);
            return {};
        }
    } else {
        const Decoded<stbi_uc> samples(
            stbi_load_from_memory(bytes.data(), length, &picture.width, &picture.height, &channels, 0),
            stbi_image_free);
        if (samples != nullptr) {
            expand(samples.get(), channels, picture);
            return {};
        }
    }
    return stbi_failure_reason();
}

}  // namespace

std::string readPicture(const std::string& path, Picture& picture) {
    std::vector<stbi_uc> bytes;
    if (std::string failure = readBytes(path, bytes); !failure.empty()) {
        return failure;
    }
    int width = 0;
    int height = 0;
    int channels = 0;
    if (stbi_info_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels) ==
        0) {
        return path + ": is no PNG, BMP or JPEG picture";
    }
    // A BMP whose top row comes first tells that by a negative height.
    const std::int64_t rows = std::abs(std::int64_t{height});
    if (width < 1 || rows < 1 || std::max<std::int64_t>(width, rows) > kLargestSide) {
        return path + ": a picture may be 1 to 65535 pixels wide and high, this one is " +
               std::to_string(width) + " x " + std::to_string(rows);
    }
    // Transparency shows only in the middle of a file, so four channels are reckoned with.
    if (static_cast<std::uint64_t>(width * rows) * 4 > kMostPictureBytes) {
        return path + ": a picture may hold 256 MiB decoded, this one is " + std::to_string(width) + " x " +
               std::to_string(rows);
    }
    const std::string failure = decode(bytes, picture);
    return failure.empty() ? failure : path + ": cannot be decoded (" + failure + ")";
}

bool encodePng(const Picture& picture, std::vector<std::uint8_t>& png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = picture.channels == 4 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    // A negative stride tells that the bottom row comes first.
    const png_int_32 stride = -picture.width * picture.channels;
    // One row may grow a little when it does not compress; the bound covers that.
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    png.resize(size);
    if (png_image_write_to_memory(&image, png.data(), &size, 0, picture.pixels.data(), stride, nullptr) ==
        0) {
        return false;
    }
    png.resize(size);
    return true;
}

}  // namespace zvfx
