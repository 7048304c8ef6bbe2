#include "effects/YuvRenderTexture.h"

#include <algorithm>

#include "core/Mat4.h"
#include "core/RefCreate.h"
#include "effects/ProgramLoan.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "scene/Scene.h"
#include "scene/TargetPass.h"
#include "scene/UpdatePass.h"

namespace zv {

namespace {

RenderTargetTexture* wrapTarget(unsigned int name, const TVec<2, unsigned short>& size) {
    return RenderTargetTexture::create(createRef<Texture2D>(
        [&](Texture2D& texture) { return texture.init(name, size, PXFORMAT_NONE, false); }));
}

}  // namespace

YuvRenderTexture* YuvRenderTexture::create(unsigned int yTexture, unsigned int uvTexture,
                                           const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer) {
    return create(nullptr, yTexture, uvTexture, size, frameBuffer);
}

YuvRenderTexture* YuvRenderTexture::create(Sprite* input, unsigned int yTexture, unsigned int uvTexture,
                                           const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer) {
    return createRef<YuvRenderTexture>([&](YuvRenderTexture& node) {
        return node.initWithYUV(input, yTexture, uvTexture, size, frameBuffer);
    });
}

YuvRenderTexture::YuvRenderTexture() = default;

YuvRenderTexture::~YuvRenderTexture() = default;

bool YuvRenderTexture::initWithYUV(Sprite* input, unsigned int yTexture, unsigned int uvTexture,
                                   const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer) {
    if (!init(size, frameBuffer, PXFORMAT_R8)) {
        return false;
    }
    getScene();
    mInput.set(input);
    mYProgram.set(Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderRGB2YUV_Y.frag"));
    mUvProgram.set(Program::createWithFile("ZvShaderTexturePosition.vert", "ZvShaderRGB2YUV_UV.frag"));
    setRenderTarget(wrapTarget(yTexture, size));
    mUvTarget.set(wrapTarget(uvTexture, size));
    sendPictureSize();
    setColorConversion(COLOR_CONVERSION_601_VIDEO);
    return true;
}

std::pair<unsigned int, unsigned int> YuvRenderTexture::getTextureId() {
    Texture2D* luma = getTexture(0);
    Texture2D* chroma = mUvTarget.get() != nullptr ? mUvTarget.get()->getTexture() : nullptr;
    return {luma != nullptr ? luma->getName() : 0, chroma != nullptr ? chroma->getName() : 0};
}

void YuvRenderTexture::updateTextureId(unsigned int yTexture, unsigned int uvTexture) {
    // Wrappers of another size, or a target that somebody put in their place, are not for lent names.
    const Texture2D* luma = getTexture(0);
    if (luma == nullptr || luma->isOwner() || luma->getSize() != getSize() || mUvTarget.get() == nullptr) {
        setRenderTarget(wrapTarget(yTexture, getSize()));
        mUvTarget.set(wrapTarget(uvTexture, getSize()));
    } else {
        updateTargetTextureId(yTexture);
        mUvTarget.get()->getTexture()->updateTextureId(static_cast<int>(uvTexture));
    }
    getFrameBuffer()->setFboBindingDirty(true);
}

void YuvRenderTexture::setColorConversion(ColorConversion conversion) {
    sendRgbToYuv(mYProgram.get(), conversion);
    sendRgbToYuv(mUvProgram.get(), conversion);
}

void YuvRenderTexture::sendPictureSize() {
    const float size[2] = {static_cast<float>(getSize().x), static_cast<float>(getSize().y)};
    if (Program* program = mUvProgram.get()) {
        program->use();
        program->setUniform2fv("u_pictureSize", size, 1);
    }
}

RenderTexture* YuvRenderTexture::getFrontRenderTexture() {
    return dynamic_cast<RenderTexture*>(mInput.get());
}

Scene* YuvRenderTexture::getFrontScene() {
    RenderTexture* front = getFrontRenderTexture();
    return front != nullptr ? front->getFrontScene() : getScene();
}

FrameBuffer* YuvRenderTexture::getFrameBuffer() {
    FrameBuffer* frameBuffer = RenderTexture::getFrameBuffer();
    if (RenderTexture* front = getFrontRenderTexture()) {
        front->setFrameBuffer(frameBuffer);
    }
    return frameBuffer;
}

Sprite* YuvRenderTexture::findInput() {
    if (mInput.get() != nullptr) {
        return mInput.get();
    }
    for (Node* child : getScene()->getChildRen()) {
        if (auto* sprite = dynamic_cast<Sprite*>(child)) {
            return sprite;
        }
    }
    return nullptr;
}

void YuvRenderTexture::update(float dt) {
    const UpdatePass pass;
    if (!enterUpdate(pass)) {
        return;
    }
    if (Sprite* input = mInput.get()) {
        input->update(dt);
    } else {
        updateScene(dt);
    }
}

void YuvRenderTexture::onDraw(const Mat4&) {
    if (Sprite* input = findInput()) {
        input->onDraw(Mat4::IDENTITY);
    }
}

void YuvRenderTexture::renderToTexture() {
    FrameBuffer* frameBuffer = getFrameBuffer();
    if (RenderTexture* front = getFrontRenderTexture()) {
        front->renderToTexture();
    }
    Sprite* input = findInput();
    RenderTarget* luma = getRenderTarget();
    RenderTarget* chroma = mUvTarget.get();
    if (input == nullptr || luma == nullptr || chroma == nullptr) {
        return;
    }
    RenderState* state = RenderState::getCurrent();
    const TVec<2, unsigned short> size = getSize();
    const auto half = [](unsigned short pixels) {
        return static_cast<unsigned short>(std::max(pixels >> 1, 1));
    };
    TargetPass pass(*frameBuffer, *luma);
    ProgramLoan loan(*input, mYProgram.get());
    state->pushViewPort(ViewPort(0, 0, size.x, size.y), false);
    input->onDraw(Mat4::IDENTITY);
    pass.changeTarget(*chroma);
    loan.change(mUvProgram.get());
    state->pushViewPort(ViewPort(0, 0, half(size.x), half(size.y)), false);
    input->onDraw(Mat4::IDENTITY);
    state->popViewPort(2);
}

void YuvRenderTexture::resetSize(const TVec<2, unsigned short>& size) {
    RenderTexture* front = getFrontRenderTexture();
    if (front != nullptr && front->getSize() == getSize()) {
        front->resetSize(size);
        front->fitViewPort();
    }
    RenderTexture::resetSize(size);
    fitViewPort();
    if (mUvTarget.get() != nullptr) {
        mUvTarget.get()->resetSize(size);
    }
    sendPictureSize();
}

}  // namespace zv
