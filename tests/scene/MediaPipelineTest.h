#pragma once

#include <algorithm>

#include "scene/RenderTextureChain.h"
#include "support/MediaTest.h"

namespace zv::test {

/// Counts its updates.
template <class Base>
struct Counting : Base {
    int updates = 0;
    float time = 0.0F;
    void onUpdateSelf(float dt) override {
        ++updates;
        time += dt;
    }
};

template <class T>
T* autoreleased(T* object) {
    object->autorelease();
    return object;
}

inline bool has(Node* parent, Node* child) {
    const auto& children = parent->getChildRen();
    return std::count(children.begin(), children.end(), child) == 1;
}

/// A media engine with the parts of a pipeline at hand.
class MediaPipelineTest : public MediaTest {
protected:
    const Picture picture = Picture::noise(kWidth, kHeight);

    RenderTexture* makeMember(int order) {
        RenderTexture* member = RenderTexture::create(kSize, media->getFrameBuffer(), PXFORMAT_RGBA8888);
        member->setLocalZOrder(order);
        return member;
    }
    /// Two members with the given flags.
    RenderTextureChain* makeChain(bool first, bool second) {
        RenderTextureChain* chain = RenderTextureChain::create(kSize, media->getFrameBuffer());
        chain->add(makeMember(1), first, false);
        chain->add(makeMember(2), second, false);
        return chain;
    }
    Scene* lastScene() { return media->getLastRenderTexture()->getFrontScene(); }
    Node* stickerRoot() { return media->getAllSticker().front()->getParent(); }
};

}  // namespace zv::test
