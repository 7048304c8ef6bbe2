#include "effects/ColorConversion.h"

#include <cstddef>

#include "gl/Program.h"

namespace zv {

namespace {

constexpr float kToRgb601Video[9] = {1.164F, 1.164F, 1.164F, 0.0F, -0.392F, 2.017F, 1.596F, -0.813F, 0.0F};
constexpr float kToRgb601Full[9] = {1.0F, 1.0F, 1.0F, 0.0F, -0.343F, 1.765F, 1.4F, -0.711F, 0.0F};
constexpr float kToRgb709Video[9] = {1.164F, 1.164F, 1.164F, 0.0F, -0.213F, 2.112F, 1.793F, -0.533F, 0.0F};

/// How the bytes of a range count: luma from black up over its span, chroma around 128 over its own.
struct ByteRange {
    double black;
    double lumaSpan;
    double chromaSpan;
};

constexpr ByteRange kVideo = {16.0, 219.0, 224.0};
constexpr ByteRange kFull = {0.0, 255.0, 255.0};
constexpr double kChromaZero = 128.0;

struct Matrix {
    float columns[16];
};

/// The definition of YCbCr in BT.601 and BT.709, with the luma weights of red and blue as its parameters:
///   y = kr r + (1 - kr - kb) g + kb b      Y = black + lumaSpan y
///   u = (b - y) / (2 (1 - kb))             U = 128 + chromaSpan u
///   v = (r - y) / (2 (1 - kr))             V = 128 + chromaSpan v
constexpr Matrix fromRgb(double kr, double kb, const ByteRange& range) {
    const double y[3] = {kr, 1.0 - kr - kb, kb};
    Matrix matrix = {};
    for (std::size_t i = 0; i < 3; ++i) {
        const double u = ((i == 2 ? 1.0 : 0.0) - y[i]) / (2.0 * (1.0 - kb));
        const double v = ((i == 0 ? 1.0 : 0.0) - y[i]) / (2.0 * (1.0 - kr));
        matrix.columns[4 * i] = static_cast<float>(range.lumaSpan / 255.0 * y[i]);
        matrix.columns[4 * i + 1] = static_cast<float>(range.chromaSpan / 255.0 * u);
        matrix.columns[4 * i + 2] = static_cast<float>(range.chromaSpan / 255.0 * v);
    }
    matrix.columns[12] = static_cast<float>(range.black / 255.0);
    matrix.columns[13] = static_cast<float>(kChromaZero / 255.0);
    matrix.columns[14] = static_cast<float>(kChromaZero / 255.0);
    matrix.columns[15] = 1.0F;
    return matrix;
}

constexpr Matrix kFromRgb601Video = fromRgb(0.299, 0.114, kVideo);
constexpr Matrix kFromRgb601Full = fromRgb(0.299, 0.114, kFull);
constexpr Matrix kFromRgb709Video = fromRgb(0.2126, 0.0722, kVideo);

}  // namespace

const float* yuvToRgbMatrix(ColorConversion conversion) {
    switch (conversion) {
        case COLOR_CONVERSION_601_VIDEO:
            return kToRgb601Video;
        case COLOR_CONVERSION_601_FULL:
            return kToRgb601Full;
        case COLOR_CONVERSION_709_VIDEO:
            return kToRgb709Video;
    }
    return nullptr;
}

const float* rgbToYuvMatrix(ColorConversion conversion) {
    switch (conversion) {
        case COLOR_CONVERSION_601_VIDEO:
            return kFromRgb601Video.columns;
        case COLOR_CONVERSION_601_FULL:
            return kFromRgb601Full.columns;
        case COLOR_CONVERSION_709_VIDEO:
            return kFromRgb709Video.columns;
    }
    return nullptr;
}

void sendRgbToYuv(Program* program, ColorConversion conversion) {
    const float* matrix = rgbToYuvMatrix(conversion);
    if (program == nullptr || matrix == nullptr) {
        return;
    }
    program->use();
    program->setUniformMatrix4fv("u_rgbToYuv", matrix, 1);
}

}  // namespace zv
