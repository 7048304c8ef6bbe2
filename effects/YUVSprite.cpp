#include "effects/YUVSprite.h"

#include <algorithm>

#include "core/RefCreate.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"

namespace zv {

namespace {

constexpr const char* kTwoPlanes = "ZvShaderYUV2RGB.frag";
constexpr const char* kThreePlanes = "ZvShader3YUV2RGB.frag";

Texture2D* wrap(unsigned int name, const TVec<2, unsigned short>& size, PxFormat format) {
    return createRef<Texture2D>([&](Texture2D& texture) { return texture.init(name, size, format, false); });
}

TVec<2, unsigned short> halfOf(const TVec<2, unsigned short>& size) {
    const auto half = [](unsigned short pixels) {
        return static_cast<unsigned short>(std::max(pixels >> 1, 1));
    };
    return {half(size.x), half(size.y)};
}

/// From the luma plane's texture coordinates to those of a chroma plane. A chroma sample lies in the middle
/// of the luma samples it stands for, so both planes begin at the same edge; but they do not end at the same
/// one where an odd picture left half a pair out or added it. V is taken to be as large as U.
TVec<2, float> chromaScaleOf(const Texture2D& luma, const Texture2D& chroma) {
    const auto scale = [](unsigned short pixels, unsigned short samples) {
        const bool isHalf = samples != 0 && (samples == pixels / 2 || samples == (pixels + 1) / 2);
        return isHalf && pixels > 1 ? static_cast<float>(pixels) / static_cast<float>(2 * samples) : 1.0F;
    };
    return {scale(luma.getSize().x, chroma.getSize().x), scale(luma.getSize().y, chroma.getSize().y)};
}

}  // namespace

YUVSprite* YUVSprite::create(unsigned int yTexture, unsigned int uvTexture,
                             const TVec<2, unsigned short>& size) {
    return createRef<YUVSprite>([&](YUVSprite& sprite) { return sprite.init(yTexture, uvTexture, size); });
}

YUVSprite* YUVSprite::create(unsigned int yTexture, unsigned int uTexture, unsigned int vTexture,
                             const TVec<2, unsigned short>& size) {
    return createRef<YUVSprite>(
        [&](YUVSprite& sprite) { return sprite.init(yTexture, uTexture, vTexture, size); });
}

YUVSprite* YUVSprite::create(Texture2D* y, Texture2D* uv) {
    return createRef<YUVSprite>([&](YUVSprite& sprite) { return sprite.init(y, uv); });
}

YUVSprite* YUVSprite::create(Texture2D* y, Texture2D* u, Texture2D* v) {
    return createRef<YUVSprite>([&](YUVSprite& sprite) { return sprite.init(y, u, v); });
}

bool YUVSprite::init(unsigned int yTexture, unsigned int uvTexture, const TVec<2, unsigned short>& size) {
    return init(wrap(yTexture, size, PXFORMAT_GRAY8), wrap(uvTexture, halfOf(size), PXFORMAT_GRAY_ALPHA88));
}

bool YUVSprite::init(unsigned int yTexture, unsigned int uTexture, unsigned int vTexture,
                     const TVec<2, unsigned short>& size) {
    const TVec<2, unsigned short> half = halfOf(size);
    return init(wrap(yTexture, size, PXFORMAT_GRAY8), wrap(uTexture, half, PXFORMAT_GRAY8),
                wrap(vTexture, half, PXFORMAT_GRAY8));
}

bool YUVSprite::init(Texture2D* y, Texture2D* uv) {
    return uv != nullptr && initPlanes(y, uv, nullptr, kTwoPlanes);
}

bool YUVSprite::init(Texture2D* y, Texture2D* u, Texture2D* v) {
    return u != nullptr && v != nullptr && initPlanes(y, u, v, kThreePlanes);
}

bool YUVSprite::initPlanes(Texture2D* y, Texture2D* u, Texture2D* v, const char* fragmentFile) {
    if (!Sprite::init(y, false)) {
        return false;
    }
    setTexture(u, 1, nullptr);
    if (v != nullptr) {
        setTexture(v, 2, nullptr);
    }
    setProgram(Program::createWithFile("ZvShaderTexturePosition.vert", fragmentFile));
    sendChromaScale();
    setColorConversion(COLOR_CONVERSION_601_FULL);
    return true;
}

void YUVSprite::setColorConversion(ColorConversion conversion) {
    Program* program = getProgram();
    const float* matrix = yuvToRgbMatrix(conversion);
    if (program != nullptr && matrix != nullptr) {
        program->use();
        program->setUniformMatrix3fv("u_colorConversionMatrix", matrix, 1);
    }
}

void YUVSprite::sendChromaScale() {
    const TVec<2, float> scale = chromaScaleOf(*getTexture(0), *getTexture(1));
    if (Program* program = getProgram()) {
        program->use();
        program->setUniform2fv("u_chromaScale", &scale.x, 1);
    }
}

void YUVSprite::updateTextureId(unsigned int y, unsigned int uv) {
    updatePlaneId(0, y);
    updatePlaneId(1, uv);
}

void YUVSprite::updateTextureId(unsigned int y, unsigned int u, unsigned int v) {
    updatePlaneId(0, y);
    updatePlaneId(1, u);
    updatePlaneId(2, v);
}

void YUVSprite::updatePlaneId(unsigned char slot, unsigned int name) {
    if (Texture2D* plane = getTexture(slot)) {
        plane->updateTextureId(static_cast<int>(name));
    }
}

void YUVSprite::updateTexture(Texture2D* y, Texture2D* u, Texture2D* v) {
    if (y == nullptr || u == nullptr || v == nullptr) {
        return;
    }
    // What is there already stays: a plane that only this sprite keeps alive would not outlive the exchange.
    if (y != getTexture(0)) {
        setTexture(y, 0, nullptr);
    }
    const TVec<2, float> scale = chromaScaleOf(*y, *u);
    T2F_Quad coords = getTexCoords();
    for (TVec<2, float>& coord : coords.texCoords) {
        coord = {coord.x * scale.x, coord.y * scale.y};
    }
    // Our vertex file knows one set of coordinates; one that reads a set for each slot finds them there.
    if (u != getTexture(1)) {
        setTexture(u, 1, &coords);
    }
    if (v != getTexture(2)) {
        setTexture(v, 2, &coords);
    }
    sendChromaScale();
}

}  // namespace zv
