#include "gl/RenderTargetTexture.h"

#include <GL/glew.h>

#include "core/RefCreate.h"
#include "gl/DebugLabel.h"
#include "gl/Texture2D.h"

namespace zv {

RenderTargetTexture* RenderTargetTexture::create(const Size16& size, PxFormat format) {
    return createRef<RenderTargetTexture>([&](RenderTargetTexture& t) { return t.init(size, format); });
}

RenderTargetTexture* RenderTargetTexture::create(Texture2D* texture) {
    return createRef<RenderTargetTexture>([&](RenderTargetTexture& t) { return t.init(texture); });
}

RenderTargetTexture::RenderTargetTexture() : RenderTarget(TYPE_TEXTURE) {}

RenderTargetTexture::~RenderTargetTexture() {
    if (mTexture != nullptr) {
        mTexture->release();
    }
}

Texture2D* RenderTargetTexture::getTexture() const {
    return mTexture;
}

bool RenderTargetTexture::init(const Size16& size, PxFormat format) {
    mSize = size;
    mTexture = new Texture2D;
    return makeStorage(format);
}

bool RenderTargetTexture::init(Texture2D* texture) {
    if (texture == nullptr) {
        return false;
    }
    mSize = texture->getSize();
    mTexture = texture;
    mTexture->retain();
    return true;
}

bool RenderTargetTexture::resetSize(const Size16& size) {
    if (size == mSize) {
        return true;
    }
    const Size16 former = mSize;
    mSize = size;
    if (mTexture == nullptr || !mTexture->isOwner() || makeStorage(mTexture->getPxFormat())) {
        return true;
    }
    mSize = former;  // as the texture, which a refused upload leaves alone
    return false;
}

bool RenderTargetTexture::makeStorage(PxFormat format) {
    const unsigned char* nothing = nullptr;
    if (!mTexture->init(nothing, getTexSize(format), format, mSize)) {
        return false;
    }
    setDebugLabel(GL_TEXTURE, mTexture->getName(), "render target");
    return true;
}

std::uint64_t RenderTargetTexture::getTexSize(PxFormat format) const {
    const std::uint64_t bytesPerPixel = format == PXFORMAT_RGB888 ? 3 : 4;
    return std::uint64_t{mSize.x} * mSize.y * bytesPerPixel;
}

}  // namespace zv
