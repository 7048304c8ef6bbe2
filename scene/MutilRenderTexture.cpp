#include "scene/MutilRenderTexture.h"

#include "core/RefCreate.h"
#include "scene/Scene.h"
#include "scene/UpdatePass.h"

namespace zv {

MutilRenderTexture* MutilRenderTexture::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                               PxFormat format) {
    return createRef<MutilRenderTexture>(
        [&](MutilRenderTexture& t) { return t.init(size, frameBuffer, format); });
}

MutilRenderTexture::~MutilRenderTexture() {
    clearAllRenderTexture();
}

void MutilRenderTexture::update(float dt) {
    const UpdatePass pass;
    if (!enterUpdate(pass)) {
        return;
    }
    for (RenderTexture* inner : mRenderTextures) {
        inner->update(dt);
    }
    updateScene(dt);
    Node::update(dt);
}

void MutilRenderTexture::resetSize(const TVec<2, unsigned short>& size) {
    for (RenderTexture* inner : mRenderTextures) {
        inner->resetSize(size);
        inner->fitViewPort();
    }
    RenderTexture::resetSize(size);
    fitViewPort();
}

void MutilRenderTexture::renderToTexture() {
    for (RenderTexture* inner : mRenderTextures) {
        inner->renderToTexture();
    }
    RenderTexture::renderToTexture();
}

RenderTexture* MutilRenderTexture::getFrontRenderTexture() {
    return mRenderTextures.empty() ? this : mRenderTextures.front()->getFrontRenderTexture();
}

Scene* MutilRenderTexture::getFrontScene() {
    return getFrontRenderTexture()->getScene();
}

void MutilRenderTexture::addRenderTexture(RenderTexture* renderTexture) {
    renderTexture->retain();
    mRenderTextures.push_back(renderTexture);
}

void MutilRenderTexture::clearAllRenderTexture() {
    // A destructor that reaches this object finds the list empty, not half released.
    std::vector<RenderTexture*> former;
    former.swap(mRenderTextures);
    for (RenderTexture* inner : former) {
        inner->release();
    }
}

RenderTexture* MutilRenderTexture::getByName(const std::string& name) const {
    const HashString wanted(name);
    for (RenderTexture* inner : mRenderTextures) {
        if (inner->getName() == wanted) {
            return inner;
        }
    }
    return nullptr;
}

void MutilRenderTexture::setup() {
    Scene* scene = getScene();
    for (auto inner = mRenderTextures.rbegin(); inner != mRenderTextures.rend(); ++inner) {
        if ((*inner)->getParent() == nullptr) {
            scene->addChild(*inner);
        }
        scene = (*inner)->getFrontScene();
    }
}

}  // namespace zv
