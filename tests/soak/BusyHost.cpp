#include "soak/BusyHost.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <limits>

#include "algorithm/AlgEngine.h"
#include "algorithm/AlgKelNN.h"
#include "core/FileUtil.h"
#include "effects/BeautyShapeChain.h"
#include "effects/ColorFilter.h"
#include "effects/Effect70SNode.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "effects/GraffitiNode.h"
#include "effects/HsvNode.h"
#include "effects/JitterNode.h"
#include "effects/SkinBuffingNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/SoulstuffNode.h"
#include "effects/YUVSprite.h"
#include "effects/Yuv420RenderTexture.h"
#include "effects/Yuv444RenderTexture.h"
#include "gl/Texture2D.h"
#include "gltf/GtSticker.h"
#include "host/HeadlessContext.h"
#include "scene/RenderTexture.h"
#include "scene/Sprite.h"
#include "support/SomeFace.h"

namespace zv::soak {

namespace {

constexpr std::size_t kMostStickers = 4;
constexpr Size16 kRestSize{37, 23};

/// Some faces, each a whole list of bones, and landmarks that move and now and then are no numbers.
class Faces : public kel_algorithm::AlgKelNN::Detector {
public:
    explicit Faces(int count) : mCount(static_cast<std::size_t>(count)) {}
    bool detect(kel_algorithm::AlgFaceResults& results) override {
        if (results.mats.size() != mCount) {
            results.mats.resize(mCount);
        }
        if (results.landmarks.size() != mCount) {
            results.landmarks.resize(mCount);
        }
        ++mFrame;
        for (std::size_t face = 0; face < mCount; ++face) {
            place(results.landmarks[face], static_cast<float>(face));
            if (results.mats[face].size() != kBones) {
                results.mats[face].resize(kBones);
            }
            for (std::size_t bone = 0; bone < kBones; ++bone) {
                const float at = 10.0F + 5.0F * static_cast<float>(face);
                results.mats[face][bone].set(9, 0, 0, at, 0, 9, 0, at, 0, 0, 9, 0, 0, 0, 0, 1);
            }
        }
        return true;
    }

private:
    void place(kel_algorithm::AlgFaceLandmarks& face, float number) const {
        test::placeFace(face, {20.0F + 9.0F * number + static_cast<float>(mFrame % 40), 20.0F}, 14.0F);
        if (mFrame % 50 == 0) {
            face.points[mFrame % kel_algorithm::kFacePoints].x = std::numeric_limits<float>::quiet_NaN();
        }
        face.faceId = static_cast<std::int32_t>(number);
    }

    static constexpr std::size_t kBones = 7;
    std::size_t mCount;
    int mFrame = 0;
};

std::vector<std::string> entriesOf(const std::string& folder, const char* ending) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string path = entry.path().generic_string();
        if (path.size() > std::strlen(ending) &&
            path.compare(path.size() - std::strlen(ending), std::string::npos, ending) == 0) {
            paths.push_back(path);
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::uint64_t bytesOf(const Size16& size, int channels) {
    return std::uint64_t{size.x} * size.y * static_cast<std::uint64_t>(channels);
}

}  // namespace

BusyHost::BusyHost(const std::shared_ptr<host::HeadlessContext>& context, std::string resources,
                   std::uint32_t seed)
    : mRandom(seed),
      mResources(std::move(resources)),
      mLooks(entriesOf(mResources + "/zv_res/lookups", ".png")),
      mStickers(entriesOf(mResources + "/zv_res/stickers", "")) {
    glGenTextures(1, &mScreenTexture);
    glBindTexture(GL_TEXTURE_2D, mScreenTexture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 64, 48, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glGenFramebuffers(1, &mScreen);
    glBindFramebuffer(GL_FRAMEBUFFER, mScreen);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mScreenTexture, 0);
    mEngine = std::make_unique<ZVMediaEngine>(context);
    mEngine->setAutoUpdate(false);
    everything();
}

BusyHost::~BusyHost() {
    mInput.set(nullptr);
    mOutput.set(nullptr);
    mChain.set(nullptr);
    mEngine.reset();
    glDeleteFramebuffers(1, &mScreen);
    glDeleteTextures(1, &mScreenTexture);
}

float BusyHost::anyAmount() {
    constexpr float kOdd[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                              -1.0F, 1e30F};
    return any(20) == 0 ? kOdd[any(3)] : static_cast<float>(any(100)) / 100.0F;
}

Size16 BusyHost::anySize() {
    return {static_cast<unsigned short>(1 + any(any(1) == 0 ? 3 : 95)),
            static_cast<unsigned short>(1 + any(any(1) == 0 ? 3 : 71))};
}

const std::string& BusyHost::anyLook() {
    return mLooks[static_cast<std::size_t>(any(static_cast<int>(mLooks.size()) - 1))];
}

/// Every look once and every sticker, in a small picture.
void BusyHost::everything() {
    for (int kind = 0; kind < 3; ++kind) {
        otherInput();
        otherOutput();
    }
    for (int i = 0; i < 12; ++i) {
        otherChain();
        otherEffect();
        drawFrame();
    }
    for (std::size_t i = 0; i < kMostStickers; ++i) {
        moreStickers();
    }
    otherFaces();
    drawFrame();
}

void BusyHost::deed() {
    using Deed = void (BusyHost::*)();
    static constexpr Deed kDeeds[] = {
        &BusyHost::otherInput,   &BusyHost::otherOutput,   &BusyHost::otherSize,  &BusyHost::otherSize,
        &BusyHost::otherChain,   &BusyHost::otherStage,    &BusyHost::otherStage, &BusyHost::otherEffect,
        &BusyHost::otherTable,   &BusyHost::otherFlags,    &BusyHost::otherFlags, &BusyHost::otherStrengths,
        &BusyHost::moreStickers, &BusyHost::fewerStickers, &BusyHost::otherFaces, &BusyHost::otherSwitches};
    (this->*kDeeds[any(static_cast<int>(std::size(kDeeds)) - 1)])();
}

Texture2D* BusyHost::makePlane(const Size16& size, int channels) {
    auto* texture = new Texture2D;
    texture->autorelease();
    const PxFormat format = channels == 4 ? PXFORMAT_RGBA8888 : channels == 2 ? PXFORMAT_RG88 : PXFORMAT_R8;
    const std::vector<unsigned char> grey(bytesOf(size, channels), 128);
    texture->init(grey.data(), grey.size(), format, size);
    return texture;
}

void BusyHost::otherInput() {
    const Size16 size = anySize();
    const Size16 half{static_cast<unsigned short>((size.x + 1) / 2),
                      static_cast<unsigned short>((size.y + 1) / 2)};
    switch (any(2)) {
        case 0: {
            auto* sprite = new Sprite;
            sprite->autorelease();
            sprite->init(makePlane(size, 4), false);
            mInput.set(sprite);
            break;
        }
        case 1:
            mInput.set(YUVSprite::create(makePlane(size, 1), makePlane(half, 2)));
            break;
        default:
            mInput.set(YUVSprite::create(makePlane(size, 1), makePlane(half, 1), makePlane(half, 1)));
    }
    mEngine->init(mInput.get(), mSize, mOutput.get(), any(1) == 0);
}

void BusyHost::otherOutput() {
    mSize = anySize();
    switch (any(3)) {
        case 0:
            mOutput.set(RenderTexture::create(mSize, nullptr, PXFORMAT_RGBA8888));
            break;
        case 1:
            mOutput.set(Yuv420RenderTexture::create(mSize, nullptr));
            break;
        case 2:
            mOutput.set(Yuv444RenderTexture::create(mSize, nullptr));
            break;
        default:
            mOutput.set(nullptr);  // the engine makes its own
    }
    mEngine->init(mInput.get(), mSize, mOutput.get(), any(1) == 0);
}

void BusyHost::otherSize() {
    mSize = anySize();
    mEngine->resetSize(mSize);
}

void BusyHost::otherChain() {
    if (any(5) == 0) {
        mChain.set(nullptr);
        mEngine->removeRenderChain();
        return;
    }
    FrameBuffer* frameBuffer = mEngine->getFrameBuffer();
    mChain.set(BeautyShapeChain::create(mSize, frameBuffer));
    mEngine->setRenderChain(mChain.get());
    mChain.get()->setSkinBuffing(SkinBuffingNode::create(mSize, frameBuffer, PXFORMAT_RGBA8888));
    mChain.get()->setFaceBuffingNode(FaceBuffingNode::create(mSize, frameBuffer, PXFORMAT_RGBA8888));
    mChain.get()->setHsv(HsvNode::create(mSize, frameBuffer, PXFORMAT_RGBA8888));
    mChain.get()->setSkinWhiting(SkinWhitingNode::create(mSize, frameBuffer, PXFORMAT_RGB888));
    mChain.get()->setFaceShape(FaceShapeNode::create(mSize, frameBuffer, PXFORMAT_RGBA8888));
    otherTable();
}

void BusyHost::otherStage() {
    if (mChain.get() == nullptr) {
        return;
    }
    FrameBuffer* frameBuffer = any(1) == 0 ? mEngine->getFrameBuffer() : nullptr;
    const bool add = any(2) != 0;
    switch (any(5)) {
        case 0:
            mChain.get()->setSkinBuffing(add ? SkinBuffingNode::create(mSize, frameBuffer, PXFORMAT_RGB888)
                                             : nullptr);
            break;
        case 1:
            mChain.get()->setHsv(add ? HsvNode::create(mSize, frameBuffer, PXFORMAT_RGB888) : nullptr);
            break;
        case 2:
            mChain.get()->setSkinWhiting(add ? SkinWhitingNode::create(mSize, frameBuffer, PXFORMAT_RGB888)
                                             : nullptr);
            break;
        case 3:
            mChain.get()->setFaceBuffingNode(
                add ? FaceBuffingNode::create(mSize, frameBuffer, PXFORMAT_RGB888) : nullptr);
            break;
        case 4:
            mChain.get()->setFaceShape(add ? FaceShapeNode::create(mSize, frameBuffer, PXFORMAT_RGB888)
                                           : nullptr);
            break;
        default:
            mChain.get()->setFilter(add ? ColorFilter::create(mSize, frameBuffer, anyLook()) : nullptr);
    }
}

void BusyHost::otherEffect() {
    if (mChain.get() == nullptr) {
        return;
    }
    RenderTexture* const looks[] = {Effect70SNode::create(mSize, nullptr, PXFORMAT_RGBA8888),
                                    GraffitiNode::create(mSize, nullptr, PXFORMAT_RGBA8888),
                                    JitterNode::create(mSize, nullptr, PXFORMAT_RGBA8888),
                                    SoulstuffNode::create(mSize, nullptr, PXFORMAT_RGBA8888), nullptr};
    mChain.get()->setEffect(looks[any(4)]);
}

void BusyHost::otherTable() {
    if (mChain.get() == nullptr) {
        return;
    }
    ColorFilter* filter = mChain.get()->getFilter();
    if (filter != nullptr && any(1) == 0) {
        filter->setFilterImage(any(5) == 0 ? mResources + "/none.png" : anyLook());
    } else {
        mChain.get()->setFilter(ColorFilter::create(mSize, nullptr, anyLook()));
    }
}

void BusyHost::otherFlags() {
    if (mChain.get() == nullptr) {
        return;
    }
    RenderTexture* const members[] = {mChain.get()->getSkinBuffing(),     mChain.get()->getHsv(),
                                      mChain.get()->getSkinWhiting(),     mChain.get()->getFaceShape(),
                                      mChain.get()->getFaceBuffingNode(), mChain.get()->getEffect(),
                                      mChain.get()->getFilter()};
    for (RenderTexture* member : members) {
        if (any(2) == 0) {
            mChain.get()->setRenderTextureEnable(member, any(1) == 0, any(1) == 0);
        }
    }
    mChain.get()->relinkAll();
}

void BusyHost::otherStrengths() {
    if (mChain.get() == nullptr) {
        return;
    }
    if (SkinBuffingNode* skin = mChain.get()->getSkinBuffing()) {
        skin->setSkinBuffing(anyAmount());
        skin->setSharpen(anyAmount());
    }
    if (HsvNode* hsv = mChain.get()->getHsv()) {
        hsv->setHue(anyAmount());
        hsv->setSaturation(anyAmount());
        hsv->setValue(anyAmount());
    }
    if (SkinWhitingNode* whitening = mChain.get()->getSkinWhiting()) {
        whitening->setSkinWhitening(anyAmount());
    }
    if (ColorFilter* filter = mChain.get()->getFilter()) {
        filter->setIntensity(anyAmount());
    }
    if (FaceBuffingNode* face = mChain.get()->getFaceBuffingNode()) {
        face->setFaceBuffing(anyAmount());
    }
    if (FaceShapeNode* shape = mChain.get()->getFaceShape()) {
        shape->updateFaceShape(any(8), 2.0F * anyAmount() - 1.0F);
        shape->setClipEdge(anyAmount());
    }
}

void BusyHost::moreStickers() {
    if (mEngine->getAllSticker().size() >= kMostStickers) {
        return fewerStickers();
    }
    const int which = any(static_cast<int>(mStickers.size()) - 1);
    if (auto* sticker = gltf::GtSticker::create(mStickers[static_cast<std::size_t>(which)])) {
        sticker->setName(which % 2 == 0 ? "even" : "odd");
        mEngine->addSticker(sticker);
    }
}

void BusyHost::fewerStickers() {
    if (any(3) == 0) {
        mEngine->removeAllSticker();
    } else {
        mEngine->removeStickerByName(any(1) == 0 ? "even" : "odd");
    }
}

void BusyHost::otherFaces() {
    mEngine->getAlgEngine()->getKelNN()->setDetector(std::make_shared<Faces>(any(3)));
}

void BusyHost::otherSwitches() {
    mEngine->setKeepHostState(any(1) == 0);
    mEngine->setRenderToScreen(any(1) == 0);
    mEngine->setLastEnable(any(2) != 0);
    mEngine->setFinishAfterRender(any(1) == 0);
    mEngine->relink();
}

void BusyHost::refreshInput() {
    Texture2D* texture = mInput.get() != nullptr ? mInput.get()->getTexture(0) : nullptr;
    if (texture == nullptr) {
        return;
    }
    const bool luma = dynamic_cast<YUVSprite*>(mInput.get()) != nullptr;
    const std::vector<unsigned char> bytes(bytesOf(texture->getSize(), luma ? 1 : 4),
                                           static_cast<unsigned char>(any(255)));
    texture->updateWithData(bytes.data(), bytes.size());
}

void BusyHost::readBack() {
    RenderTexture* last = mEngine->getLastRenderTexture();
    if (last == nullptr || any(9) == 0) {
        return;
    }
    if (any(1) == 0) {
        mBytes = last->getOutData();
    } else if (mBytes.size() > 0) {
        last->getOutData(mBytes);
    }
}

std::string BusyHost::drawFrame() {
    refreshInput();
    mEngine->update(0.04F);
    mEngine->render();
    readBack();
    const GLenum error = glGetError();
    return error == GL_NO_ERROR ? std::string() : "GL error " + std::to_string(error);
}

std::string BusyHost::frame() {
    deed();
    return drawFrame();
}

std::string BusyHost::rest() {
    mChain.set(nullptr);
    mEngine->removeRenderChain();
    mEngine->removeAllSticker();
    mEngine->setRenderToScreen(false);
    mEngine->setKeepHostState(false);
    mEngine->getAlgEngine()->getKelNN()->setDetector(nullptr);
    mSize = kRestSize;
    std::vector<unsigned char> picture(bytesOf(mSize, 4));
    std::generate(picture.begin(), picture.end(), [&] { return static_cast<unsigned char>(any(255)); });
    auto* sprite = new Sprite;
    sprite->autorelease();
    Texture2D* texture = makePlane(mSize, 4);
    texture->updateWithData(picture.data(), picture.size());
    sprite->init(texture, false);
    mInput.set(sprite);
    mOutput.set(RenderTexture::create(mSize, nullptr, PXFORMAT_RGBA8888));
    mEngine->init(mInput.get(), mSize, mOutput.get(), false);
    mEngine->setLastRenderTexture(mOutput.get(), true);
    for (int i = 0; i < 3; ++i) {
        mEngine->update(0.04F);
        mEngine->render();
        mBytes = mOutput.get()->getOutData();
    }
    // Read bottom row first.
    const std::size_t row = bytesOf({mSize.x, 1}, 4);
    for (std::size_t y = 0; y < mSize.y; ++y) {
        if (std::memcmp(mBytes.get(y * row), &picture[(mSize.y - 1 - y) * row], row) != 0) {
            return "the bare engine does not show its input, row " + std::to_string(y);
        }
    }
    return {};
}

}  // namespace zv::soak
