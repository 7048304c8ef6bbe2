// How a chain's members, input and output are put under one another.

#include <algorithm>

#include "scene/RenderTexture.h"
#include "scene/RenderTextureChain.h"
#include "scene/Scene.h"

namespace zv {

namespace {

/// Makes `member` the only child of the front scene of the member behind it.
void nest(RenderTexture& member, RenderTexture& behind) {
    if (Scene* scene = behind.getFrontScene()) {
        scene->removeAllChildren();
        scene->addChild(&member);
    }
}

}  // namespace

void RenderTextureChain::setInputNode(Node* node) {
    if (node == mInput.get()) {
        return;
    }
    mInput.set(node);
    if (node != nullptr && getEnabledSize() > 0) {
        node->removeFromParent();
        linkInput();
    }
}

void RenderTextureChain::setOutput(RenderTexture* output) {
    mOutput.set(output);
    setLinkNode(output != nullptr ? output->getParent() : nullptr);
}

RenderTexture* RenderTextureChain::getOutput() {
    if (mOutput.get() == nullptr) {
        mOutput.set(getLastEnableRenderTexture());
    }
    return static_cast<RenderTexture*>(mOutput.get());
}

void RenderTextureChain::setLinkNode(Node* node) {
    mLinkNode.set(node);
    Node* output = mOutput.get();
    const bool hangsThere = node != nullptr && output != nullptr && output->getParent() == node;
    mLinked.set(hangsThere ? output : nullptr);
}

void RenderTextureChain::sortTextures() {
    const auto isBefore = [](const Entry& a, const Entry& b) {
        return a.member->getLocalZOrder() < b.member->getLocalZOrder();
    };
    std::stable_sort(mEntries.begin(), mEntries.end(), isBefore);
}

void RenderTextureChain::reAutoSetup() {
    if (getEnabledSize() > 0) {
        linkMembers(false);
    }
}

void RenderTextureChain::relinkAll() {
    if (Node* input = mInput.get()) {
        input->removeFromParent();
    }
    for (const Entry& entry : mEntries) {
        entry.member->removeFromParent();
    }
    if (Node* linked = mLinked.get()) {
        linked->removeFromParent();
    }
    mLinked.set(nullptr);
    mOutput.set(nullptr);
    mNeedsSetup = true;
    if (getEnabledSize() > 0) {
        linkMembers(true);
    }
}

void RenderTextureChain::linkMembers(bool pastDisabled) {
    sortTextures();
    RenderTexture* behind = getLastEnableRenderTexture();
    hangOutput(*behind);
    for (auto entry = mEntries.rbegin(); entry != mEntries.rend(); ++entry) {
        if (!entry->enabled && !pastDisabled) {
            break;
        }
        if (entry->enabled) {
            if (entry->member != behind && entry->member->getParent() == nullptr) {
                nest(*entry->member, *behind);
            }
            behind = entry->member;
        }
    }
    linkInput();
    mNeedsSetup = false;
}

void RenderTextureChain::hangOutput(RenderTexture& last) {
    Node* link = mLinkNode.get();
    if (link == nullptr || last.getParent() == link) {
        return;
    }
    // One after the other: the first may go with the last reference to the second.
    if (Node* former = mLinked.get()) {
        link->removeChild(former);
    }
    if (Node* former = mOutput.get()) {
        link->removeChild(former);
    }
    last.removeFromParent();
    link->addChild(&last);
    mOutput.set(&last);
    mLinked.set(&last);
}

void RenderTextureChain::linkInput() {
    Node* input = mInput.get();
    RenderTexture* first = getFirstEnableRenderTexture();
    if (input == nullptr || input->getParent() != nullptr || first == nullptr) {
        return;
    }
    // A front that takes its picture from the input itself would be put under its own scene.
    if (input == first || input == first->getFrontRenderTexture()) {
        return;
    }
    if (Scene* scene = first->getFrontScene()) {
        scene->addChild(input);
    }
}

}  // namespace zv
