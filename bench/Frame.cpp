#include "bench/Frame.h"

#include <algorithm>
#include <cmath>

#include "core/Ref.h"
#include "gl/Image.h"

namespace zv::bench {

namespace {

struct Source {
    const unsigned char* bytes;
    int width;
    int height;

    double at(int x, int y, int channel) const {
        x = std::clamp(x, 0, width - 1);
        y = std::clamp(y, 0, height - 1);
        return bytes[3 * (y * width + x) + channel];
    }
    /// Between four pixels.
    double mix(double x, double y, int channel) const {
        const int left = static_cast<int>(std::floor(x));
        const int top = static_cast<int>(std::floor(y));
        const double u = x - left;
        const double v = y - top;
        return (at(left, top, channel) * (1 - u) + at(left + 1, top, channel) * u) * (1 - v) +
               (at(left, top + 1, channel) * (1 - u) + at(left + 1, top + 1, channel) * u) * v;
    }
};

}  // namespace

Pixels Pixels::load(const std::string& path) {
    Pixels pixels;
    auto* image = new Image;
    if (image->initWithFile(path)) {
        pixels.width = image->getSize().x;
        pixels.height = image->getSize().y;
        pixels.channels = image->getPixelFormat() == PXFORMAT_RGB888 ? 3 : 4;
        const unsigned char* bytes = image->getData().get(0);
        pixels.bytes.assign(bytes, bytes + image->getImageSize());
    }
    image->release();
    return pixels;
}

Frame Frame::load(const std::string& path, int width, int height) {
    Frame frame;
    const Pixels pixels = Pixels::load(path);
    if (pixels.channels != 3) {
        return frame;
    }
    const Source source{pixels.bytes.data(), pixels.width, pixels.height};
    // All of the width, from the top.
    const double step = static_cast<double>(source.width) / width;
    frame.width = width;
    frame.height = height;
    frame.rgb.reserve(3 * frame.pixels());
    frame.rgba.reserve(4 * frame.pixels());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < 3; ++c) {
                const double value = source.mix((x + 0.5) * step - 0.5, (y + 0.5) * step - 0.5, c);
                frame.rgb.push_back(static_cast<unsigned char>(std::lround(value)));
                frame.rgba.push_back(frame.rgb.back());
            }
            frame.rgba.push_back(255);
        }
    }
    return frame;
}

}  // namespace zv::bench
