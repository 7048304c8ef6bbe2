// Feeds the engine's PNG reader: each input as it is, and once more with the checksums of its chunks put
// right, since hardly a change would get past them.
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <string>

#include "fuzz/ImageInput.h"

namespace {

constexpr std::size_t kSignature = 8;
constexpr std::uint64_t kMostPixels = 1 << 18;

std::uint32_t number(const std::string& bytes, std::size_t at) {
    return png_get_uint_32(reinterpret_cast<png_const_bytep>(bytes.data() + at));
}

void mendChecksums(std::string& png) {
    for (std::size_t at = kSignature; png.size() - at >= 12;) {
        const std::size_t length = number(png, at);
        if (length > png.size() - at - 12) {
            return;
        }
        auto* kind = reinterpret_cast<Bytef*>(&png[at + 4]);
        const auto sum =
            static_cast<std::uint32_t>(crc32(crc32(0, nullptr, 0), kind, static_cast<uInt>(length + 4)));
        png_save_uint_32(kind + 4 + length, sum);
        at += 12 + length;
    }
}

/// Large pictures that are not refused take all the time and show nothing new.
bool isSlow(const std::string& png) {
    const std::uint64_t pixels = png.size() >= 24 ? std::uint64_t{number(png, 16)} * number(png, 20) : 0;
    return pixels > kMostPixels && pixels <= zv::Image::MAX_IMAGE_BYTES;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::string png(data, data + size);
    if (png.size() < kSignature || isSlow(png)) {
        return 0;
    }
    zv::test::decodeImage(data, size, "f.png");
    mendChecksums(png);
    zv::test::decodeImage(reinterpret_cast<const unsigned char*>(png.data()), png.size(), "f.png");
    return 0;
}
