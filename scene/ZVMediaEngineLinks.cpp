// How the media engine keeps the links between its nodes: who hangs under whom, and when that changes.
#include <algorithm>

#include "algorithm/AlgEngine.h"
#include "gl/HostState.h"
#include "scene/Node.h"
#include "scene/RenderTexture.h"
#include "scene/RenderTextureChain.h"
#include "scene/Scene.h"
#include "scene/Sprite.h"
#include "scene/ZVMediaEngine.h"

namespace zv {

namespace {

constexpr int kStickerOrder = 99999;

bool isChildOf(const Node* node, const Node* parent) {
    const std::vector<Node*>& children = parent->getChildRen();
    return std::find(children.begin(), children.end(), node) != children.end();
}

}  // namespace

bool ZVMediaEngine::isInScene(const Node* node) const {
    return getCurScene() && isChildOf(node, getCurScene());
}

/// Takes a node from wherever the pipeline may have put it: its parent, and any other scene of ours that
/// still lists it.
void ZVMediaEngine::detach(Node* node) {
    if (!node) {
        return;
    }
    node->removeFromParent();
    if (getCurScene()) {
        getCurScene()->removeChild(node);
    }
    if (mLast.get()) {
        mLast.get()->getFrontScene()->removeChild(node);
    }
}

void ZVMediaEngine::addToScene(Node* node) {
    if (node && getCurScene() && !isInScene(node)) {
        getCurScene()->addChild(node);
    }
}

/// Puts the input where the first stage will draw it.
void ZVMediaEngine::linkInput() {
    Sprite* input = mInput.get();
    if (!input) {
        if (mChain.get()) {
            mChain.get()->setInputNode(nullptr);
        }
        return;
    }
    detach(input);
    if (isRenderChainValid()) {
        mChain.get()->setInputNode(input);
        // The chain takes no notice of the input that it has already. That one was just detached, so it hangs
        // nowhere until the chain sets itself up, at its next render.
        if (!input->getParent()) {
            mChain.get()->setNeedsSetup();
        }
    } else if (isLastEnable()) {
        mLast.get()->getFrontScene()->addChild(input);
    } else if (mRenderToScreen) {
        addToScene(input);
    }
}

void ZVMediaEngine::linkChainOutput() {
    if (!isRenderChainValid()) {
        return;
    }
    RenderTexture* output = mChain.get()->getOutput();
    detach(output);
    if (isLastEnable()) {
        mLast.get()->getFrontScene()->addChild(output);
    } else {
        addToScene(output);
    }
    mChain.get()->setLinkNode(output->getParent());
}

/// The chain draws for this engine no more: its output goes, and what it did to the input ends.
void ZVMediaEngine::unlinkChain() {
    detach(mChain.get()->getLinked());
    detach(mChain.get()->getOutput());
    mChain.get()->setLinkNode(nullptr);
    mChain.get()->setInputNode(nullptr);
}

void ZVMediaEngine::reSetupSticker() {
    Node* root = mStickerRoot.get();
    if (!root) {
        return;
    }
    root->removeFromParent();
    if (isLastEnable()) {
        mLast.get()->getFrontScene()->addChild(root);
    } else if (mRenderToScreen) {
        addToScene(root);
    }
}

/// What the scene shows beside its place in the pipeline. Nothing while the scene has the whole picture, or
/// while there is no last render texture: then the pipeline itself hangs in the scene.
Node* ZVMediaEngine::chooseScreenNode() const {
    if (!isLastEnable() || isInScene(mLast.get())) {
        return nullptr;
    }
    if (isRenderChainValid()) {
        return mChain.get()->getOutput();
    }
    return mInput.get();
}

/// The node stays where it is in the pipeline: its parent is still the one there, so that the pipeline finds
/// it when links change.
void ZVMediaEngine::showScreenNode() {
    Node* node = chooseScreenNode();
    if (!node || !getCurScene() || isInScene(node)) {
        return;
    }
    Node* parent = node->getParent();
    getCurScene()->addChild(node);
    if (parent) {
        node->setParent(parent);
    }
    mScreenNode.set(node);
}

void ZVMediaEngine::removeScreenNode() {
    Node* node = mScreenNode.get();
    if (node && getCurScene() && node->getParent() != getCurScene()) {
        Node* parent = node->getParent();
        getCurScene()->removeChild(node);
        node->setParent(parent);
    }
    mScreenNode.set(nullptr);
}

/// Follows the pipeline after a change of its links: with what it shows now, where it shows anything.
void ZVMediaEngine::syncScreenNode() {
    // With the last render texture off and no chain, nothing else would be shown: what is there stays.
    if (!mScreenNode.get() || (!isLastEnable() && !isRenderChainValid())) {
        return;
    }
    Node* wanted = chooseScreenNode();
    if (wanted == mScreenNode.get() && isInScene(wanted)) {
        return;
    }
    removeScreenNode();
    showScreenNode();
}

void ZVMediaEngine::addSticker(Node* sticker) {
    if (!sticker) {
        return;
    }
    if (!mStickerRoot.get()) {
        Node* root = Node::create();
        root->setLocalZOrder(kStickerOrder);
        mStickerRoot.set(root);
        reSetupSticker();
    }
    mStickerRoot.get()->addChild(sticker);
}

Node* ZVMediaEngine::getStickerByName(const std::string& name) const {
    return mStickerRoot.get() ? mStickerRoot.get()->getChildByName(name) : nullptr;
}

void ZVMediaEngine::removeStickerByName(const std::string& name) {
    if (mStickerRoot.get()) {
        mStickerRoot.get()->removeChildByName(name);
    }
}

void ZVMediaEngine::removeAllSticker() {
    if (mStickerRoot.get()) {
        mStickerRoot.get()->removeAllChildren();
    }
}

std::vector<Node*> ZVMediaEngine::getAllSticker() const {
    return mStickerRoot.get() ? mStickerRoot.get()->getAllChild() : std::vector<Node*>();
}

}  // namespace zv
