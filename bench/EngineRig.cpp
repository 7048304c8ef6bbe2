#include "bench/EngineRig.h"

#include <GL/glew.h>

#include <utility>

#include "bench/Frame.h"
#include "effects/BeautyShapeChain.h"
#include "effects/ColorFilter.h"
#include "effects/HsvNode.h"
#include "effects/SkinBuffingNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/Yuv420RenderTexture.h"
#include "gl/FrameBuffer.h"
#include "gl/Texture2D.h"
#include "host/HeadlessContext.h"
#include "scene/ZVMediaEngine.h"

namespace zv::bench {

EngineRig::EngineRig(const Frame& frame, Output output, std::shared_ptr<host::HeadlessContext> context)
    : mSize{static_cast<unsigned short>(frame.width), static_cast<unsigned short>(frame.height)},
      mContext(context ? std::move(context)
                       : host::HeadlessContext::create(host::HeadlessContext::Kind::Core)),
      mReads(output == Output::I420) {
    if (mContext == nullptr) {
        return;
    }
    mEngine = std::make_unique<ZVMediaEngine>(mContext);
    mEngine->setAutoUpdate(false);
    auto* texture = new Texture2D;
    texture->autorelease();
    texture->init(frame.rgb.data(), frame.rgb.size(), PXFORMAT_RGB888, mSize);
    auto* input = new Sprite;
    input->autorelease();
    input->init(texture, false);
    FrameBuffer* shared = FrameBuffer::create();
    RenderTexture* last = output != Output::Picture
                              ? static_cast<RenderTexture*>(Yuv420RenderTexture::create(mSize, shared))
                              : RenderTexture::create(mSize, shared, PXFORMAT_RGB888);
    mLast = last;
    mEngine->init(input, mSize, last, false);
    if (mReads) {
        mBytes = last->getOutData();
    }
}

EngineRig::~EngineRig() {
    if (mEngine) {
        makeCurrent();
        mEngine.reset();
    }
}

void EngineRig::makeCurrent() {
    mEngine->makeCurrent();
}

void EngineRig::frame() {
    mEngine->update(0.04F);
    mEngine->render();
    if (mReads) {
        mLast->getOutData(mBytes);
    }
}

BeautyShapeChain& EngineRig::chain() {
    if (mEngine->getRenderChain() == nullptr) {
        mEngine->setRenderChain(BeautyShapeChain::create(mSize, frameBuffer()));
    }
    return *static_cast<BeautyShapeChain*>(mEngine->getRenderChain());
}

FrameBuffer* EngineRig::frameBuffer() {
    return mLast->getFrameBuffer();
}

void EngineRig::setInput(Sprite* input) {
    mEngine->init(input, mSize, mLast, false);
}

bool EngineRig::addBeauty(const std::string& resources) {
    makeCurrent();
    auto* smoothing = SkinBuffingNode::create(mSize, frameBuffer(), PXFORMAT_RGB888);
    auto* hsv = HsvNode::create(mSize, frameBuffer(), PXFORMAT_RGB888);
    auto* whitening = SkinWhitingNode::create(mSize, frameBuffer(), PXFORMAT_RGB888);
    auto* table = ColorFilter::create(mSize, frameBuffer(), resources + "/zv_res/lookups/natural-512.png");
    if (smoothing == nullptr || hsv == nullptr || whitening == nullptr || table == nullptr) {
        return false;
    }
    smoothing->setSkinBuffing(0.6F);
    hsv->setSaturation(1.1F);
    whitening->setSkinWhitening(0.3F);
    table->setIntensity(0.6F);
    chain().setSkinBuffing(smoothing);
    chain().setHsv(hsv);
    chain().setSkinWhiting(whitening);
    chain().setFilter(table);
    return true;
}

}  // namespace zv::bench
