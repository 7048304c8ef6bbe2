#include "scene/RenderTexture.h"

#include <cstring>

#include "core/RefCreate.h"
#include "gl/ConfigGL.h"
#include "gl/FrameBuffer.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "scene/Scene.h"
#include "scene/TargetPass.h"
#include "scene/UpdatePass.h"

namespace zv {

RenderTexture* RenderTexture::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                     PxFormat format) {
    return createRef<RenderTexture>([&](RenderTexture& t) { return t.init(size, frameBuffer, format); });
}

RenderTexture* RenderTexture::create(RenderTarget* target) {
    return createRef<RenderTexture>([&](RenderTexture& t) { return t.init(target); });
}

RenderTexture::RenderTexture() {
    setFlipY(true);
}

RenderTexture::~RenderTexture() = default;

bool RenderTexture::init(RenderTarget* target) {
    if (target == nullptr) {
        return false;
    }
    const Texture2D* texture = target->getTexture();
    if (!init(target->getSize(), nullptr, texture != nullptr ? texture->getPxFormat() : PXFORMAT_NONE)) {
        return false;
    }
    setRenderTarget(target);
    return true;
}

bool RenderTexture::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) {
    if (!Sprite::init()) {
        return false;
    }
    setFrameBuffer(frameBuffer);
    mSize = size;
    mPxFormat = format;
    setContentSize({static_cast<float>(size.x), static_cast<float>(size.y)});
    return true;
}

void RenderTexture::update(float dt) {
    const UpdatePass pass;
    if (enterUpdate(pass)) {
        updateScene(dt);
        Node::update(dt);
    }
}

bool RenderTexture::enterUpdate(const UpdatePass& pass) {
    return pass.enter(mUpdateStamp);
}

void RenderTexture::updateScene(float dt) {
    if (Scene* scene = mScene.get()) {
        scene->update(dt);
    }
}

Texture2D* RenderTexture::getTexture(unsigned char index) {
    if (Sprite::getTexture(0) == nullptr) {
        getRenderTarget();
    }
    return Sprite::getTexture(index);
}

RenderTexture* RenderTexture::getFrontRenderTexture() {
    return this;
}

Scene* RenderTexture::getFrontScene() {
    return getScene();
}

FrameBuffer* RenderTexture::getFrameBuffer() {
    if (IFrameBuffer::getFrameBuffer() == nullptr) {
        setFrameBuffer(FrameBuffer::create());
    }
    return IFrameBuffer::getFrameBuffer();
}

void RenderTexture::setRenderTarget(RenderTarget* target) {
    if (target == nullptr || target == mRenderTarget.get()) {
        return;
    }
    Texture2D* texture = target->getTexture();
    setTexture(texture, texture != nullptr ? texture->getRect() : TRect<float, float>());
    mShownSize = texture != nullptr ? texture->getSize() : TVec<2, unsigned short>();
    mTargetSize = target->getSize();
    mRenderTarget.set(target);
}

RenderTarget* RenderTexture::getRenderTarget() {
    if (mRenderTarget.get() == nullptr) {
        setRenderTarget(RenderTargetTexture::create(mSize, mPxFormat));
    }
    return mRenderTarget.get();
}

Scene* RenderTexture::getScene() {
    if (mScene.get() == nullptr) {
        mScene.set(Scene::create());
        fitViewPort();
    }
    return mScene.get();
}

void RenderTexture::setScene(Scene* scene) {
    mScene.replace(scene);
}

void RenderTexture::fitViewPort() {
    if (Scene* scene = mScene.get()) {
        scene->setViewPort({0, 0, mSize.x, mSize.y});
    }
}

void RenderTexture::resetSize(const TVec<2, unsigned short>& size) {
    const TVec<2, float> content(static_cast<float>(size.x), static_cast<float>(size.y));
    if (getContentSize() != content) {
        setContentSize(content);
    }
    mSize = size;
    mTargetSize = size;
    if (RenderTarget* target = mRenderTarget.get()) {
        if (!target->resetSize(size)) {
            mTargetSize = target->getSize();  // it stays as it is, and is not asked again with each frame
        }
        showWholeTarget();
    }
    if (FrameBuffer* frameBuffer = IFrameBuffer::getFrameBuffer()) {
        frameBuffer->resetSize(size);
    }
}

void RenderTexture::showWholeTarget() {
    Texture2D* texture = mRenderTarget.get()->getTexture();
    if (texture != nullptr && texture->getSize() != mShownSize) {
        mShownSize = texture->getSize();
        setRect(texture->getRect());
    }
}

void RenderTexture::giveTargetItsSize() {
    RenderTarget* target = mRenderTarget.get();
    if (target->getSize() == mTargetSize) {
        return;
    }
    target->resetSize(mTargetSize);
    getFrameBuffer()->setFboBindingDirty(true);
    // Coordinates may have been computed for the other size: make them dirty although the rectangle stays.
    setFlipY(!isFlipY());
    setFlipY(!isFlipY());
}

void RenderTexture::renderToTexture() {
    FrameBuffer* frameBuffer = getFrameBuffer();
    RenderTarget* target = getRenderTarget();
    if (mRendering || target == nullptr) {
        return;
    }
    giveTargetItsSize();
    mRendering = true;
    {
        const TargetPass pass(*frameBuffer, *target);
        getScene()->render();
    }
    mRendering = false;
}

void RenderTexture::updateTargetTextureId(unsigned int textureName) {
    RenderTarget* target = getRenderTarget();
    Texture2D* texture = target != nullptr ? target->getTexture() : nullptr;
    if (texture != nullptr && texture->getName() != textureName) {
        texture->updateTextureId(static_cast<int>(textureName));
        getFrameBuffer()->setFboBindingDirty(true);
    }
}

void RenderTexture::updateTargetTextureId(unsigned int textureName, unsigned int target, PxFormat format,
                                          bool owner) {
    RenderTarget* renderTarget = getRenderTarget();
    Texture2D* texture = renderTarget != nullptr ? renderTarget->getTexture() : nullptr;
    if (texture != nullptr && texture->getName() != textureName) {
        texture->updateTextureId(static_cast<int>(textureName), target, format, owner);
        getFrameBuffer()->setFboBindingDirty(true);
    }
}

void RenderTexture::getOutData(UniqueDataPtr<unsigned char>& out) {
    getOutData(out, mSize, mPxFormat);
}

UniqueDataPtr<unsigned char> RenderTexture::getOutData() {
    const int most = ConfigGL::getInstance()->getMaxTextureSize();
    if (mSize.x > most || mSize.y > most) {
        return {};  // nothing of that size is ever drawn
    }
    const PxFormatInfo* info = Texture::getPxFormatInfo(mPxFormat);
    const std::uint64_t bits = info != nullptr ? static_cast<std::uint64_t>(info->bpp) : 0;
    UniqueDataPtr<unsigned char> out(static_cast<std::size_t>(bits * mSize.x * mSize.y / 8));
    getOutData(out);
    return out;
}

void RenderTexture::getOutData(UniqueDataPtr<unsigned char>& out, TVec<2, unsigned short> size,
                               PxFormat format) {
    const ViewPort whole(0, 0, size.x, size.y);
    readBack(out, format, &whole, 1);
}

void RenderTexture::readBack(UniqueDataPtr<unsigned char>& out, PxFormat format, const ViewPort* parts,
                             std::size_t count, FrameBuffer* source) {
    RenderTarget* target = source == nullptr ? getRenderTarget() : nullptr;
    if (target != nullptr) {
        giveTargetItsSize();
        const TargetPass pass(*getFrameBuffer(), *target);
        mReadBack.read(out, format, parts, count);
    } else if (source != nullptr) {
        RenderState* state = RenderState::getCurrent();
        state->pushFrameBuffer(source);
        source->apply();
        mReadBack.read(out, format, parts, count);
        state->popFrameBuffer();
    } else if (out.size() != 0) {
        std::memset(out.get(0), 0, static_cast<std::size_t>(out.size()));
    }
}

}  // namespace zv
