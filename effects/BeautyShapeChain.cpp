#include "effects/BeautyShapeChain.h"

#include <GL/glew.h>

#include "core/RefCreate.h"
#include "effects/ColorFilter.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "effects/HsvNode.h"
#include "effects/SkinBuffingNode.h"
#include "effects/SkinWhitingNode.h"
#include "gl/FrameBuffer.h"
#include "gl/Texture2D.h"
#include "scene/Scene.h"

namespace zv {

namespace {

/// By stage; gaps leave room for members of a host.
enum StageOrder : int {
    kSkinBuffing = 10,
    kFaceBuffing = 13,
    kHsv = 15,
    kSkinWhiting = 20,
    kFaceShape = 30,
    kEffect = 40,
    kFilter = 50,
};

/// Whether the skin stage can read this node's texture as it is.
Sprite* asPlainPicture(Node* node) {
    auto* sprite = dynamic_cast<Sprite*>(node);
    const Texture2D* texture = sprite != nullptr ? sprite->getTexture(0) : nullptr;
    if (texture == nullptr || texture->getTarget() != GL_TEXTURE_2D) {
        return nullptr;
    }
    const unsigned int format = texture->getInternalFormat();
    return format == GL_RGBA || format == GL_RGB ? sprite : nullptr;
}

}  // namespace

BeautyShapeChain::BeautyShapeChain() = default;

BeautyShapeChain::BeautyShapeChain(const BeautyShapeChain& other)
    : RenderTextureChain(other),
      mHsv(other.mHsv),
      mFaceBuffing(other.mFaceBuffing),
      mSkinBuffing(other.mSkinBuffing),
      mSkinWhiting(other.mSkinWhiting),
      mFaceShape(other.mFaceShape),
      mEffect(other.mEffect),
      mFilter(other.mFilter) {}

BeautyShapeChain& BeautyShapeChain::operator=(const BeautyShapeChain& other) {
    if (this != &other) {
        giveInputBack();
        RenderTextureChain::operator=(other);
        mHsv = other.mHsv;
        mFaceBuffing = other.mFaceBuffing;
        mSkinBuffing = other.mSkinBuffing;
        mSkinWhiting = other.mSkinWhiting;
        mFaceShape = other.mFaceShape;
        mEffect = other.mEffect;
        mFilter = other.mFilter;
    }
    return *this;
}

BeautyShapeChain::~BeautyShapeChain() {
    giveInputBack();
}

BeautyShapeChain* BeautyShapeChain::create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer) {
    return createRef<BeautyShapeChain>(
        [&](BeautyShapeChain& chain) { return chain.init(size, frameBuffer); });
}

void BeautyShapeChain::setStage(NodeWeakRef& place, RenderTexture* stage, int order) {
    if (stage != nullptr) {
        stage->retain();  // it may be the one that is there, kept alive by this chain alone
    }
    remove(static_cast<RenderTexture*>(place.get()), true);
    place.set(stage);
    if (stage != nullptr) {
        stage->setLocalZOrder(order);
        add(stage, true, true);
        stage->release();
    }
}

void BeautyShapeChain::setSkinBuffing(SkinBuffingNode* stage) {
    setStage(mSkinBuffing, stage, kSkinBuffing);
    setBeautyInput();
}

void BeautyShapeChain::setFaceBuffingNode(FaceBuffingNode* stage) {
    setStage(mFaceBuffing, stage, kFaceBuffing);
}

void BeautyShapeChain::setHsv(HsvNode* stage) {
    setStage(mHsv, stage, kHsv);
}

void BeautyShapeChain::setSkinWhiting(SkinWhitingNode* stage) {
    setStage(mSkinWhiting, stage, kSkinWhiting);
}

void BeautyShapeChain::setFaceShape(FaceShapeNode* stage) {
    setStage(mFaceShape, stage, kFaceShape);
}

void BeautyShapeChain::setEffect(RenderTexture* stage) {
    setStage(mEffect, stage, kEffect);
}

void BeautyShapeChain::setFilter(ColorFilter* stage) {
    setStage(mFilter, stage, kFilter);
}

SkinBuffingNode* BeautyShapeChain::getSkinBuffing() const {
    return static_cast<SkinBuffingNode*>(mSkinBuffing.get());
}

FaceBuffingNode* BeautyShapeChain::getFaceBuffingNode() const {
    return static_cast<FaceBuffingNode*>(mFaceBuffing.get());
}

HsvNode* BeautyShapeChain::getHsv() const {
    return static_cast<HsvNode*>(mHsv.get());
}

SkinWhitingNode* BeautyShapeChain::getSkinWhiting() const {
    return static_cast<SkinWhitingNode*>(mSkinWhiting.get());
}

FaceShapeNode* BeautyShapeChain::getFaceShape() const {
    return static_cast<FaceShapeNode*>(mFaceShape.get());
}

RenderTexture* BeautyShapeChain::getEffect() const {
    return static_cast<RenderTexture*>(mEffect.get());
}

ColorFilter* BeautyShapeChain::getFilter() const {
    return static_cast<ColorFilter*>(mFilter.get());
}

void BeautyShapeChain::setSkinBuffingEnable(bool enable) {
    setRenderTextureEnable(getSkinBuffing(), enable, true);
}

void BeautyShapeChain::setInputNode(Node* input) {
    giveInputBack();
    RenderTextureChain::setInputNode(input);
    setBeautyInput();
}

void BeautyShapeChain::relinkAll() {
    giveInputBack();
    RenderTextureChain::relinkAll();
    setBeautyInput();
}

void BeautyShapeChain::setBeautyInput() {
    SkinBuffingNode* skin = getSkinBuffing();
    Node* source = getInputNode();
    if (source == nullptr || skin == nullptr || !isRenderTextureEnable(skin)) {
        return;
    }
    const bool isFirst = getFirstEnableRenderTexture() == skin;
    if (!isFirst) {
        source = skin->getFrontScene()->getFirstChild();
        if (source == nullptr) {
            return;
        }
    }
    source->retain();
    giveInputBack();
    source->removeFromParent();
    Sprite* picture = isFirst ? asPlainPicture(source) : nullptr;
    if (picture == nullptr) {
        picture = convert(source, skin->getFrameBuffer());
    }
    skin->setInputNode(picture);
    mWired.set(skin);
    source->release();
}

RenderTexture* BeautyShapeChain::convert(Node* source, FrameBuffer* frameBuffer) {
    RenderTexture* target = RenderTexture::create(getSize(), frameBuffer, PXFORMAT_RGB888);
    if (target != nullptr) {
        target->getScene()->addChild(source);
    }
    mConversion.set(target);
    return target;
}

void BeautyShapeChain::onLeave(RenderTexture* member) {
    if (member == mWired.get()) {
        giveInputBack();
    }
}

/// What the skin stage was fed with hangs nowhere afterwards.
void BeautyShapeChain::giveInputBack() {
    if (auto* target = static_cast<RenderTexture*>(mConversion.get())) {
        target->getScene()->removeAllChildren();
    }
    mConversion.set(nullptr);
    if (auto* skin = static_cast<SkinBuffingNode*>(mWired.get())) {
        skin->setInputNode(nullptr);
        setNeedsSetup();
    }
    mWired.set(nullptr);
}

}  // namespace zv
