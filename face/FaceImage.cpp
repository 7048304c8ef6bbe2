#include "face/FaceImage.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

/// The mean of four pixels, weighted by how near they are. x and y are coordinates in which pixel 0 has its
/// middle at 0; the pixels are those at x0, x0 + dx and y0, y0 + dy.
inline void addMean(const FaceImage& image, float x, float y, std::ptrdiff_t dx, std::ptrdiff_t dy,
                    Colour& sum) {
    const int x0 = static_cast<int>(x), y0 = static_cast<int>(y);
    const float fx = x - static_cast<float>(x0), fy = y - static_cast<float>(y0);
    const float a = (1.0F - fx) * (1.0F - fy), b = fx * (1.0F - fy), c = (1.0F - fx) * fy, d = fx * fy;
    const std::uint8_t* const p = pixelAt(image, x0, y0);
    const std::uint8_t* const q = p + dy * image.rowBytes;
    const std::uint8_t* const pRight = p + dx * image.channels;
    const std::uint8_t* const qRight = q + dx * image.channels;
    const auto mean = [&](int i) {
        return a * static_cast<float>(p[i]) + b * static_cast<float>(pRight[i]) +
               c * static_cast<float>(q[i]) + d * static_cast<float>(qRight[i]);
    };
    sum.red += mean(0);
    sum.green += mean(1);
    sum.blue += mean(2);
}

/// One bilinear tap, wherever it lies.
void addTap(const FaceImage& image, float x, float y, FaceBorder border, Colour& sum) {
    const auto right = static_cast<float>(image.width - 1), bottom = static_cast<float>(image.height - 1);
    // Written so that a coordinate that is not a number counts as outside.
    const bool inside = x >= -0.5F && y >= -0.5F && x <= right + 0.5F && y <= bottom + 0.5F;
    if (!inside && border == FaceBorder::Black) {
        return;
    }
    const float cx = x > 0.0F ? std::min(x, right) : 0.0F;
    const float cy = y > 0.0F ? std::min(y, bottom) : 0.0F;
    addMean(image, cx, cy, cx < right ? 1 : 0, cy < bottom ? 1 : 0, sum);
}

/// Where the taps of a turned square lie in an image.
struct TapGrid {
    TapGrid(const FaceImage& image, const FaceRegion& region)
        : pixelsX(static_cast<float>(image.width) / image.area.width()),
          pixelsY(static_cast<float>(image.height) / image.area.height()),
          cosine(std::cos(region.angle)),
          sine(std::sin(region.angle)),
          x0((region.centre.x - image.area.left) * pixelsX - 0.5F),
          y0((region.centre.y - image.area.top) * pixelsY - 0.5F),
          right(static_cast<float>(image.width - 1)),
          bottom(static_cast<float>(image.height - 1)) {}

    /// @param u, v from the square's middle along its sides, in pixels of the picture
    Vec2f at(float u, float v) const {
        return {x0 + (cosine * u - sine * v) * pixelsX, y0 + (sine * u + cosine * v) * pixelsY};
    }
    /// Whether a tap there has four pixels, and so every tap between such taps. Less a little, as sums that
    /// are added up differently differ.
    bool isInner(float u, float v) const {
        constexpr float kLittle = 0.01F;
        const Vec2f p = at(u, v);
        return p.x >= kLittle && p.y >= kLittle && p.x <= right - kLittle && p.y <= bottom - kLittle;
    }

    float pixelsX, pixelsY, cosine, sine, x0, y0, right, bottom;
};

constexpr int kMostUpright = 256;  // samples along a side

/// What one sample takes along an axis: pixels and their weights, whose sum is 1 inside the image.
struct AxisSample {
    int count = 0;
    int pixels[2 * kMostTaps];
    float weights[2 * kMostTaps];

    void add(int pixel, float weight) {
        if (count > 0 && pixels[count - 1] == pixel) {
            weights[count - 1] += weight;
        } else if (weight != 0.0F) {
            pixels[count] = pixel;
            weights[count++] = weight;
        }
    }
};

/// The taps of the samples along one axis of an upright square.
/// @param start coordinate of the first sample's edge, in which pixel 0 has its middle at 0
/// @param step of a sample, in pixels
void placeTaps(float start, float step, int taps, int size, int pixels, FaceBorder border,
               AxisSample* samples) {
    const auto last = static_cast<float>(pixels - 1);
    for (int i = 0; i < size; ++i) {
        samples[i].count = 0;
        for (int tap = 0; tap < taps; ++tap) {
            const float at = start + step * (static_cast<float>(i) +
                                             (static_cast<float>(tap) + 0.5F) / static_cast<float>(taps));
            const bool inside = at >= -0.5F && at <= last + 0.5F;
            if (!inside && border == FaceBorder::Black) {
                continue;
            }
            const float clamped = at > 0.0F ? std::min(at, last) : 0.0F;
            const int pixel = static_cast<int>(clamped);
            const float part = clamped - static_cast<float>(pixel), share = 1.0F / static_cast<float>(taps);
            samples[i].add(pixel, share * (1.0F - part));
            samples[i].add(std::min(pixel + 1, pixels - 1), share * part);
        }
    }
}

/// Adds weight x row to the sums, in blocks of constant length, which compilers turn into vector code.
void addRow(const std::uint8_t* row, std::size_t count, float weight, float* sums) {
    constexpr std::size_t kBlock = 16;
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        for (std::size_t j = 0; j < kBlock; ++j) {
            sums[i + j] += weight * static_cast<float>(row[i + j]);
        }
    }
    for (; i < count; ++i) {
        sums[i] += weight * static_cast<float>(row[i]);
    }
}

/// An upright square needs no tap by itself: the image's rows are summed first, then the sum's columns.
void sampleUpright(const FaceImage& image, const FaceRegion& region, int size, int taps, FaceBorder border,
                   float scale, float offset, float* out) {
    AxisSample columns[kMostUpright], rows[kMostUpright];
    const float left = region.centre.x - region.side / 2.0F - image.area.left,
                top = region.centre.y - region.side / 2.0F - image.area.top;
    const float pixelsX = static_cast<float>(image.width) / image.area.width(),
                pixelsY = static_cast<float>(image.height) / image.area.height();
    const float step = region.side / static_cast<float>(size);
    placeTaps(left * pixelsX - 0.5F, step * pixelsX, taps, size, image.width, border, columns);
    placeTaps(top * pixelsY - 0.5F, step * pixelsY, taps, size, image.height, border, rows);
    const auto channels = static_cast<std::size_t>(image.channels);
    const std::size_t values = channels * static_cast<std::size_t>(image.width);  // of a row
    // Grows with the widest image that the thread has seen.
    thread_local std::vector<float> sums;
    sums.resize(std::max(sums.size(), values));
    const std::size_t plane = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
    for (int y = 0; y < size; ++y) {
        const AxisSample& row = rows[y];
        std::fill_n(sums.begin(), values, 0.0F);
        for (int i = 0; i < row.count; ++i) {
            addRow(pixelAt(image, 0, row.pixels[i]), values, row.weights[i], sums.data());
        }
        for (int x = 0; x < size; ++x, ++out) {
            const AxisSample& column = columns[x];
            Colour sum;
            for (int i = 0; i < column.count; ++i) {
                const float* const at = sums.data() + channels * static_cast<std::size_t>(column.pixels[i]);
                sum.red += column.weights[i] * at[0];
                sum.green += column.weights[i] * at[1];
                sum.blue += column.weights[i] * at[2];
            }
            out[0] = sum.red * scale + offset;
            out[plane] = sum.green * scale + offset;
            out[2 * plane] = sum.blue * scale + offset;
        }
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
    if (region.angle == 0.0F && size <= kMostUpright) {
        sampleUpright(image, region, size, taps, border, scale, offset, out);
        return;
    }
    const TapGrid grid(image, region);
    const float part = step / static_cast<float>(taps), first = 0.5F * part - region.side / 2.0F;
    const float share = scale / static_cast<float>(taps * taps);
    const std::size_t plane = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
    for (int row = 0; row < size; ++row) {
        const float top = first + static_cast<float>(row) * step, low = top + step - part;
        const bool isInner = grid.isInner(first, top) && grid.isInner(-first, top) &&
                             grid.isInner(first, low) && grid.isInner(-first, low);
        for (int column = 0; column < size; ++column, ++out) {
            const float left = first + static_cast<float>(column) * step;
            Colour sum;
            for (int tap = 0; tap < taps * taps; ++tap) {
                const Vec2f at = grid.at(left + static_cast<float>(tap % taps) * part,
                                         top + static_cast<float>(tap / taps) * part);
                if (isInner) {
                    addMean(image, at.x, at.y, 1, 1, sum);
                } else {
                    addTap(image, at.x, at.y, border, sum);
                }
            }
            out[0] = sum.red * share + offset;
            out[plane] = sum.green * share + offset;
            out[2 * plane] = sum.blue * share + offset;
        }
    }
}

}  // namespace zv
