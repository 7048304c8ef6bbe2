#include "face/FaceImage.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {

constexpr int kMostTaps = 6;           // along a side of a sample
constexpr float kStepOfOneTap = 1.3F;  // pixels between two bilinear taps that still miss nothing to speak of

struct Colour {
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
};

const std::uint8_t* pixelAt(const FaceImage& image, int x, int y) {
    return image.pixels + static_cast<std::ptrdiff_t>(y) * image.rowBytes +
           static_cast<std::ptrdiff_t>(x) * image.channels;
}

/// Bilinear; x and y are coordinates in which pixel 0 has its middle at 0. Adds to `sum`.
void addTap(const FaceImage& image, float x, float y, FaceBorder border, Colour& sum) {
    const auto right = static_cast<float>(image.width - 1), bottom = static_cast<float>(image.height - 1);
    // Written so that a coordinate that is not a number counts as outside.
    const bool inside = x >= -0.5F && y >= -0.5F && x <= right + 0.5F && y <= bottom + 0.5F;
    if (!inside && border == FaceBorder::Black) {
        return;
    }
    const float cx = x > 0.0F ? std::min(x, right) : 0.0F;
    const float cy = y > 0.0F ? std::min(y, bottom) : 0.0F;
    const int x0 = static_cast<int>(cx), y0 = static_cast<int>(cy);
    const int x1 = std::min(x0 + 1, image.width - 1), y1 = std::min(y0 + 1, image.height - 1);
    const float fx = cx - static_cast<float>(x0), fy = cy - static_cast<float>(y0);
    const float weights[4] = {(1.0F - fx) * (1.0F - fy), fx * (1.0F - fy), (1.0F - fx) * fy, fx * fy};
    const std::uint8_t* const corners[4] = {pixelAt(image, x0, y0), pixelAt(image, x1, y0),
                                            pixelAt(image, x0, y1), pixelAt(image, x1, y1)};
    for (int i = 0; i < 4; ++i) {
        sum.red += weights[i] * static_cast<float>(corners[i][0]);
        sum.green += weights[i] * static_cast<float>(corners[i][1]);
        sum.blue += weights[i] * static_cast<float>(corners[i][2]);
    }
}

}  // namespace

FaceArea FaceRegion::box() const {
    const float half = side / 2.0F * (std::abs(std::cos(angle)) + std::abs(std::sin(angle)));
    return {centre.x - half, centre.y - half, centre.x + half, centre.y + half};
}

void sampleRegion(const FaceImage& image, const FaceRegion& region, int size, FaceBorder border, float scale,
                  float offset, float* out) {
    const float pixelsX = static_cast<float>(image.width) / image.area.width();
    const float pixelsY = static_cast<float>(image.height) / image.area.height();
    const float step = region.side / static_cast<float>(size);  // in pixels of the picture
    const float coarseness = step * std::max(pixelsX, pixelsY) / kStepOfOneTap;
    const int taps =
        coarseness > 1.0F ? static_cast<int>(std::min(std::ceil(coarseness), float{kMostTaps})) : 1;
    const float c = std::cos(region.angle), s = std::sin(region.angle);
    const float half = region.side / 2.0F;
    const float part = step / static_cast<float>(taps);
    const float share = scale / static_cast<float>(taps * taps);
    const std::size_t plane = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column) {
            Colour sum;
            for (int tap = 0; tap < taps * taps; ++tap) {
                const auto tapX = static_cast<float>(tap % taps), tapY = static_cast<float>(tap / taps);
                const float u = static_cast<float>(column) * step + (tapX + 0.5F) * part - half;
                const float v = static_cast<float>(row) * step + (tapY + 0.5F) * part - half;
                const float x = region.centre.x + c * u - s * v, y = region.centre.y + s * u + c * v;
                addTap(image, (x - image.area.left) * pixelsX - 0.5F, (y - image.area.top) * pixelsY - 0.5F,
                       border, sum);
            }
            float* const to = out + static_cast<std::size_t>(row) * static_cast<std::size_t>(size) +
                              static_cast<std::size_t>(column);
            to[0] = sum.red * share + offset;
            to[plane] = sum.green * share + offset;
            to[2 * plane] = sum.blue * share + offset;
        }
    }
}

}  // namespace zv
