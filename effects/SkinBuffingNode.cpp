#include "effects/SkinBuffingNode.h"

#include <algorithm>

#include "core/RefCreate.h"
#include "core/VertexFormats.h"
#include "effects/MeanBlurEffect.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/Texture2D.h"

namespace zv {

namespace {

/// The odd pixel is dropped, but one is left.
TVec<2, unsigned short> halfOf(const TVec<2, unsigned short>& size) {
    const auto half = [](unsigned short pixels) {
        return static_cast<unsigned short>(std::max(pixels >> 1, 1));
    };
    return {half(size.x), half(size.y)};
}

}  // namespace

SkinBuffingNode::SkinBuffingNode() = default;

SkinBuffingNode::~SkinBuffingNode() = default;

SkinBuffingNode* SkinBuffingNode::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                         PxFormat format) {
    return createRef<SkinBuffingNode>(
        [&](SkinBuffingNode& node) { return node.init(size, frameBuffer, format); });
}

bool SkinBuffingNode::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    const TVec<2, unsigned short> half = halfOf(size);
    if (!RenderTexture::init(half, frameBuffer, format)) {
        return false;
    }
    mFullSize = size;
    FrameBuffer* shared = getFrameBuffer();
    mMeanBlur.set(MeanBlurEffect::create(half, shared));
    mMeanFilter.set(RenderTexture::create(half, shared, PXFORMAT_RGB888));
    mMeanFilter.get()->setProgram(
        Program::createWithFile("ZvShader2TexturePosition.vert", "ZvBeautyMeanFilter.frag"));
    mVarianceBlur.set(
        MeanBlurEffect::create(RenderTexture::create(half, shared, PXFORMAT_RGB888), half, shared));
    setProgram(Program::createWithFile("ZvShader2TexturePosition.vert", "ZvBeautyBlendImageFilter.frag"));
    setSkinBuffing(mBlurAlpha);
    setSharpen(mSharpen);
    sendTexelSize(size);
    setTexture(mMeanFilter.get()->getTexture(0), 2, nullptr);
    emptyInputSlots();
    addRenderTexture(mMeanBlur.get());
    addRenderTexture(mMeanFilter.get());
    addRenderTexture(mVarianceBlur.get());
    setup();
    return true;
}

Sprite* SkinBuffingNode::getInputNode() const {
    return static_cast<Sprite*>(mInput.get());
}

void SkinBuffingNode::setInputNode(Sprite* input) {
    mInput.set(input);
    mMeanBlur.get()->setInput(input);
    if (input != nullptr) {
        updateInputTexCoords();
    } else {
        emptyInputSlots();
    }
}

void SkinBuffingNode::updateInputTexCoords() {
    Sprite* input = getInputNode();
    Texture2D* texture = input != nullptr ? input->getTexture(0) : nullptr;
    if (texture == nullptr) {
        emptyInputSlots();
        return;
    }
    T2F_Quad coords = input->getTexCoords();
    mMeanFilter.get()->setTexture(texture, 1, &coords);
    setTexture(texture, 1, &coords);
}

/// Without an input its place is taken by the blurred picture, with coordinates: a slot that has none at the
/// first draw would go without for good.
void SkinBuffingNode::emptyInputSlots() {
    Texture2D* blurred = mMeanFilter.get()->getTexture(0);
    T2F_Quad coords = mMeanFilter.get()->getTexCoords();
    mMeanFilter.get()->setTexture(blurred, 1, &coords);
    setTexture(blurred, 1, &coords);
}

void SkinBuffingNode::setSkinBuffing(float strength) {
    mBlurAlpha = strength;
    if (Program* program = getProgram()) {
        program->setUniformValue("blurAlpha", strength);
    }
}

void SkinBuffingNode::setSharpen(float amount) {
    mSharpen = amount;
    if (Program* program = getProgram()) {
        program->setUniformValue("u_sharpen", amount);
    }
}

/// One texel of the input, which is taken to be as large as this stage.
void SkinBuffingNode::sendTexelSize(const TVec<2, unsigned short>& size) {
    if (Program* program = getProgram()) {
        program->setUniformValue("widthOffset", 1.0F / static_cast<float>(size.x));
        program->setUniformValue("heightOffset", 1.0F / static_cast<float>(size.y));
    }
}

void SkinBuffingNode::resetSize(const TVec<2, unsigned short>& size) {
    const TVec<2, unsigned short> half = halfOf(size);
    auto* picture = dynamic_cast<RenderTexture*>(getInputNode());
    const TVec<2, unsigned short> own = picture != nullptr ? picture->getSize() : size;
    RenderTexture::resetSize(half);
    mMeanBlur.get()->resetSize(half);
    mMeanFilter.get()->resetSize(half);
    mMeanFilter.get()->fitViewPort();
    mVarianceBlur.get()->resetSize(half);
    if (getTexture(2) == nullptr) {  // GL had no target of the size before
        setTexture(mMeanFilter.get()->getTexture(0), 2, nullptr);
    }
    // On purpose: the own target has the full size from now on, although it was made with half of it.
    RenderTexture::resetSize(size);
    fitViewPort();
    if (picture != nullptr) {
        picture->resetSize(own == mFullSize ? size : own);
        picture->fitViewPort();
    }
    mFullSize = size;
    sendTexelSize(size);
}

void SkinBuffingNode::renderToTexture() {
    Sprite* input = getInputNode();
    if (input != nullptr && (input->isDirtyTexCoords() || input->getTexture(0) != getTexture(1))) {
        updateInputTexCoords();
    }
    MutilRenderTexture::renderToTexture();
}

}  // namespace zv
