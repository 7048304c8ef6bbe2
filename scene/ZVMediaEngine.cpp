#include "scene/ZVMediaEngine.h"

#include <GL/glew.h>

#include "algorithm/AlgEngine.h"
#include "core/PoolMgr.h"
#include "core/RefPool.h"
#include "gl/FrameBuffer.h"
#include "gl/HostState.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "scene/RenderTexture.h"
#include "scene/RenderTextureChain.h"
#include "scene/Scene.h"
#include "scene/Sprite.h"
#include "scene/UpdatePass.h"

namespace zv {

/// Keeps the host's GL state for one render operation, if that is asked for.
class ZVMediaEngine::HostStateScope {
public:
    explicit HostStateScope(const ZVMediaEngine& engine)
        : mState(engine.mKeepHostState ? engine.mHostState.get() : nullptr),
          mRenderState(engine.getRenderState()) {
        if (mState && !mState->shield()) {
            mState = nullptr;  // an operation within another one of this engine
        }
        if (mState) {
            mRenderState->reset();
        }
    }
    ~HostStateScope() {
        if (mState) {
            mState->restore();
            mRenderState->reset();
        }
    }
    HostStateScope(const HostStateScope&) = delete;
    HostStateScope& operator=(const HostStateScope&) = delete;

private:
    HostState* mState;
    RenderState* mRenderState;
};

ZVMediaEngine::ZVMediaEngine(const std::shared_ptr<GLContext>& context) : ZVEngine(context) {}

ZVMediaEngine::~ZVMediaEngine() {
    dropPipeline();
    if (mStickerRoot.get()) {
        mStickerRoot.get()->removeFromParent();
    }
    mChain.set(nullptr);
    mStickerRoot.set(nullptr);
    setCurScene(nullptr);
    // What was only waiting for the next drain may still ask for this engine, so it goes while that is whole.
    getPoolMgr()->getCurPool()->clear();
    mAlgEngine.reset();
    setFrameBuffer(nullptr);
}

ZVMediaEngine* ZVMediaEngine::getCurrent() {
    return static_cast<ZVMediaEngine*>(ZVEngine::getCurrent());
}

bool ZVMediaEngine::init(Sprite* input, const TVec<2, unsigned short>& size, Ref* output,
                         bool renderToScreen) {
    // Either may be what only this engine keeps alive, from the first call.
    RefHolder<Sprite> newInput;
    RefHolder<Ref> newOutput;
    newInput.set(input);
    newOutput.set(output);
    dropPipeline();
    mInput.set(input);
    setWinSize(size);
    mRenderToScreen = renderToScreen;
    setCurScene(Scene::create());
    if (!makeLast(output, size)) {
        relink();
    }
    return true;
}

void ZVMediaEngine::dropPipeline() {
    removeScreenNode();
    if (mChain.get()) {
        unlinkChain();
    }
    if (mLast.get()) {
        mLast.get()->removeFromParent();
    }
    detach(mInput.get());
    mLast.set(nullptr);
    mInput.set(nullptr);
}

bool ZVMediaEngine::makeLast(Ref* output, const TVec<2, unsigned short>& size) {
    if (auto* renderTexture = dynamic_cast<RenderTexture*>(output)) {
        setFrameBuffer(renderTexture->getFrameBuffer());
        setLastRenderTexture(renderTexture, true);
        return true;
    }
    setFrameBuffer(FrameBuffer::create());
    auto* texture = dynamic_cast<Texture2D*>(output);
    if (!texture && mRenderToScreen) {
        return false;
    }
    // RGB by design: stages that need alpha work in render textures of their own.
    RenderTexture* own = RenderTexture::create(size, getFrameBuffer(), PXFORMAT_RGB888);
    if (own && texture) {
        own->setRenderTarget(RenderTargetTexture::create(texture));
    }
    setLastRenderTexture(own, true);
    return true;
}

void ZVMediaEngine::setRenderChain(RenderTextureChain* chain) {
    if (chain == mChain.get()) {
        return;
    }
    if (chain) {
        chain->retain();
    }
    removeRenderChain();
    mChain.set(chain);
    if (chain) {
        chain->release();
    }
    if (isRenderChainValid()) {
        mChainValid = true;
        linkChainOutput();
        linkInput();
    }
}

void ZVMediaEngine::removeRenderChain() {
    if (!mChain.get()) {
        return;
    }
    unlinkChain();
    mChain.set(nullptr);
    mChainValid = false;
    linkInput();
    syncScreenNode();
}

bool ZVMediaEngine::isRenderChainValid() const {
    return mChain.get() && mChain.get()->getEnabledSize() > 0;
}

void ZVMediaEngine::setLastRenderTexture(RenderTexture* renderTexture, bool enable) {
    if (renderTexture == mLast.get()) {
        return;
    }
    if (mLast.get()) {
        mLast.get()->removeFromParent();
    }
    mLastEnable = enable;
    mLast.set(renderTexture);
    if (isLastEnable() && mRenderToScreen) {
        addToScene(renderTexture);
    }
    relink();
}

bool ZVMediaEngine::isLastEnable() const {
    return mLastEnable && mLast.get();
}

void ZVMediaEngine::setLastEnable(bool enable) {
    if (enable == mLastEnable) {
        return;
    }
    mLastEnable = enable;
    if (isLastEnable() && mRenderToScreen) {
        addToScene(mLast.get());
    }
    if (isRenderChainValid()) {
        linkChainOutput();
        linkInput();
    }
    reSetupSticker();
    syncScreenNode();
}

void ZVMediaEngine::setRenderToScreen(bool on) {
    if (on == mRenderToScreen) {
        return;
    }
    mRenderToScreen = on;
    if (on) {
        if (isLastEnable()) {
            showScreenNode();
        } else {
            addToScene(mLast.get());
        }
    }
    reSetupSticker();
}

void ZVMediaEngine::relink() {
    mChainValid = isRenderChainValid();
    if (!mChainValid && mChain.get()) {
        // Its last picture must not lie over the live one.
        unlinkChain();
        mChain.get()->setOutput(nullptr);
    }
    linkInput();
    linkChainOutput();
    reSetupSticker();
    syncScreenNode();
}

void ZVMediaEngine::resetSize(const TVec<2, unsigned short>& size) {
    const TVec<2, unsigned short> old = getWinSize();
    if (size == old) {
        return;
    }
    setWinSize(size);
    if (mChain.get()) {
        mChain.get()->resetSize(size);
    }
    if (mLast.get()) {
        mLast.get()->resetSize(size);
        mLast.get()->fitViewPort();
    }
    Scene* scene = getCurScene();
    if (scene && scene->getViewPort() == ViewPort(0, 0, old.x, old.y)) {
        scene->setViewPort(ViewPort(0, 0, size.x, size.y));
    }
}

void ZVMediaEngine::update(float dt) {
    PoolMgr::getInstance()->getCurPool()->clear();
    if (isRenderChainValid() != mChainValid) {
        relink();
    }
    updateTree(dt);
}

void ZVMediaEngine::updateTree(float dt) {
    const UpdatePass pass;
    Scene* scene = getCurScene();
    if (!mRenderToScreen) {
        if (isLastEnable()) {
            mLast.get()->update(dt);
        }
    } else if (scene && isLastEnable() && !isInScene(mLast.get())) {
        // The scene shows a node of the pipeline beside its place there. The pipeline is updated as a whole,
        // with the stickers, so that node is left out here.
        scene->onUpdateSelf(dt);
        for (std::size_t i = 0; i < scene->getChildRen().size(); ++i) {
            if (scene->getChildRen()[i] != mScreenNode.get()) {
                scene->getChildRen()[i]->update(dt);
            }
        }
        mLast.get()->update(dt);
    } else if (scene) {
        scene->update(dt);
    }
}

void ZVMediaEngine::render() {
    const HostStateScope keep(*this);
    if (drawToLast() && mRenderToScreen) {
        drawToScreen();
    }
}

void ZVMediaEngine::renderToLast() {
    const HostStateScope keep(*this);
    drawToLast();
}

void ZVMediaEngine::renderToScreen() {
    const HostStateScope keep(*this);
    drawToScreen();
}

bool ZVMediaEngine::drawToLast() {
    logFps();
    if (getAutoUpdate()) {
        update(getDurationNow());
    }
    Texture2D* texture = mInput.get() ? mInput.get()->getTexture(0) : nullptr;
    if (!texture || texture->getName() == 0) {
        return false;
    }
    RenderState* state = getRenderState();
    // Before the algorithms, so that one that draws finds its way back to the host's frame buffer.
    state->begin();
    if (mAlgEngine) {
        mAlgEngine->run();
    }
    const TVec<2, unsigned short> size = getWinSize();
    state->clearViewPorts();
    state->pushViewPort(ViewPort(0, 0, size.x, size.y), false);
    state->pushFrameBuffer(getFrameBuffer());
    if (isRenderChainValid()) {
        mChain.get()->render();
        syncScreenNode();
    }
    if (isLastEnable()) {
        mLast.get()->renderToTexture();
        if (mFinishAfterRender) {
            glFinish();
        }
    }
    state->popFrameBuffer();
    state->popViewPort(1);
    return true;
}

void ZVMediaEngine::drawToScreen() {
    if (getCurScene()) {
        getCurScene()->render();
    }
}

void ZVMediaEngine::setKeepHostState(bool on) {
    if (on && !mHostState) {
        mHostState = std::make_unique<HostState>();
    }
    mKeepHostState = on;
}

void ZVMediaEngine::setLastRenderTarget(RenderTarget* target) {
    if (mLast.get() && target) {
        mLast.get()->setRenderTarget(target);
    }
}

kel_algorithm::AlgEngine* ZVMediaEngine::getAlgEngine() {
    if (!mAlgEngine) {
        mAlgEngine = std::make_unique<kel_algorithm::AlgEngine>();
    }
    return mAlgEngine.get();
}

}  // namespace zv
