#include "effects/MeanBlurEffect.h"

#include <algorithm>

#include "core/RefCreate.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "scene/Scene.h"

namespace zv {

namespace {

/// Between two taps, as a part of the width.
constexpr float kStep = 0.004166667F;  // 1 / 240

thread_local MeanBlurEffect* tFirstWired = nullptr;

Program* createBlurProgram() {
    return Program::createWithFile("ZvShaderTexturePosition.vert", "ZvMeanBlurFilter.frag");
}

void queueSteps(Program* program, float horizontal, float vertical) {
    if (program != nullptr) {
        program->setUniformValue("texelWidthOffset", horizontal);
        program->setUniformValue("texelHeightOffset", vertical);
    }
}

}  // namespace

MeanBlurEffect* MeanBlurEffect::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer) {
    return create(nullptr, size, frameBuffer);
}

MeanBlurEffect* MeanBlurEffect::create(Sprite* input, const TVec<2, unsigned short>& size,
                                       FrameBuffer* frameBuffer) {
    return createRef<MeanBlurEffect>(
        [&](MeanBlurEffect& t) { return t.initWithInput(input, size, frameBuffer, PXFORMAT_RGB888); });
}

MeanBlurEffect::MeanBlurEffect() = default;

MeanBlurEffect::~MeanBlurEffect() {
    releaseInput();
}

bool MeanBlurEffect::initWithInput(Sprite* input, const TVec<2, unsigned short>& size,
                                   FrameBuffer* frameBuffer, PxFormat format) {
    if (!RenderTexture::init(size, frameBuffer, format)) {
        return false;
    }
    setProgram(createBlurProgram());
    sendSteps();
    if (input != nullptr) {
        setInput(input);
    }
    return true;
}

Sprite* MeanBlurEffect::getInput() const {
    return static_cast<Sprite*>(mInput.get());
}

void MeanBlurEffect::setInput(Sprite* input) {
    if (input == nullptr) {
        releaseInput();
        return;
    }
    input->retain();  // its only reference may be the scene that it is taken from
    if (input != getInput()) {
        releaseInput();
        releaseFromOthers(input);
        mInput.set(input);
        mNextWired = tFirstWired;
        tFirstWired = this;
    }
    if (mInputProgram.get() == nullptr) {
        mInputProgram.set(createBlurProgram());
    }
    if (input->getProgram() != mInputProgram.get()) {
        mFormerProgram.set(input->getProgram());
        input->setProgram(mInputProgram.get());
    }
    sendSteps();
    auto* renderTexture = dynamic_cast<RenderTexture*>(input);
    const std::vector<RenderTexture*>& inner = getRenderTextures();
    if (renderTexture != nullptr && std::find(inner.begin(), inner.end(), renderTexture) == inner.end()) {
        addRenderTexture(renderTexture);
    }
    if (input->getParent() != getScene()) {
        input->removeFromParent();
        if (renderTexture != nullptr) {
            setup();
        } else {
            getScene()->addChild(input);
        }
    }
    input->release();
}

void MeanBlurEffect::releaseInput() {
    Sprite* input = getInput();
    mInput.set(nullptr);
    for (MeanBlurEffect** link = &tFirstWired; *link != nullptr; link = &(*link)->mNextWired) {
        if (*link == this) {
            *link = mNextWired;
            break;
        }
    }
    if (input != nullptr) {
        input->retain();
        if (input->getProgram() == mInputProgram.get()) {
            input->setProgram(mFormerProgram.get());
        }
        getScene()->removeChild(input);
    }
    clearAllRenderTexture();
    mFormerProgram.set(nullptr);
    if (input != nullptr) {
        input->release();
    }
}

void MeanBlurEffect::releaseFromOthers(const Sprite* input) {
    for (MeanBlurEffect* effect = tFirstWired; effect != nullptr; effect = effect->mNextWired) {
        if (effect != this && effect->getInput() == input) {
            effect->releaseInput();
            return;
        }
    }
}

void MeanBlurEffect::resetSize(const TVec<2, unsigned short>& size) {
    MutilRenderTexture::resetSize(size);
    sendSteps();
}

void MeanBlurEffect::sendSteps() {
    const TVec<2, unsigned short> size = getSize();
    const float ratio = static_cast<float>(size.x) / static_cast<float>(size.y);
    queueSteps(mInputProgram.get(), 0.0F, ratio * kStep);
    queueSteps(getProgram(), kStep, 0.0F);
}

}  // namespace zv
