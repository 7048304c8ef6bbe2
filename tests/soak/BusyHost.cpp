#include "soak/BusyHost.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <limits>

#include "algorithm/AlgEngine.h"
#include "algorithm/AlgKelNN.h"
#include "core/RefCreate.h"
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
        if (*ending == '\0' || entry.path().extension() == ending) {
            paths.push_back(entry.path().generic_string());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// Autoreleased, as all that is made here.
Sprite* makeSprite(Texture2D* texture) {
    return createRef<Sprite>([&](Sprite& sprite) { return sprite.init(texture, false); });
}

/// A stage, or none.
template <class Stage>
Stage* makeStage(bool wanted, const Size16& size, FrameBuffer* frameBuffer) {
    return wanted ? Stage::create(size, frameBuffer, PXFORMAT_RGB888) : nullptr;
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
    mEngine = std::make_unique<ZVMediaEngine>(context);
    mEngine->setAutoUpdate(false);
    everything();
}

BusyHost::~BusyHost() {
    mInput.set(nullptr);
    mOutput.set(nullptr);
    mChain.set(nullptr);
    mEngine.reset();
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
        if (mChain.get() != nullptr) {
            otherEffect();
        }
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
        &BusyHost::otherStage,     &BusyHost::otherStage,    &BusyHost::otherEffect,
        &BusyHost::otherTable,     &BusyHost::otherFlags,    &BusyHost::otherFlags,
        &BusyHost::otherStrengths, &BusyHost::otherInput,    &BusyHost::otherOutput,
        &BusyHost::otherSize,      &BusyHost::otherSize,     &BusyHost::otherChain,
        &BusyHost::moreStickers,   &BusyHost::fewerStickers, &BusyHost::otherFaces,
        &BusyHost::otherSwitches};
    constexpr int kOfTheChain = 7;  // the first ones
    const int which = any(static_cast<int>(std::size(kDeeds)) - 1);
    if (which >= kOfTheChain || mChain.get() != nullptr) {
        (this->*kDeeds[which])();
    }
}

Texture2D* BusyHost::makePlane(const Size16& size, int channels) {
    const PxFormat format = channels == 4 ? PXFORMAT_RGBA8888 : channels == 2 ? PXFORMAT_RG88 : PXFORMAT_R8;
    const std::vector<unsigned char> grey(bytesOf(size, channels), 128);
    return createRef<Texture2D>(
        [&](Texture2D& texture) { return texture.init(grey.data(), grey.size(), format, size); });
}

void BusyHost::otherInput() {
    const Size16 size = anySize();
    const Size16 half{static_cast<unsigned short>((size.x + 1) / 2),
                      static_cast<unsigned short>((size.y + 1) / 2)};
    Texture2D* luma = makePlane(size, 1);
    Sprite* const inputs[] = {makeSprite(makePlane(size, 4)), YUVSprite::create(luma, makePlane(half, 2)),
                              YUVSprite::create(luma, makePlane(half, 1), makePlane(half, 1))};
    mInput.set(inputs[any(2)]);
    mEngine->init(mInput.get(), mSize, mOutput.get(), any(1) == 0);
}

void BusyHost::otherOutput() {
    mSize = anySize();
    // The last: the engine makes its own.
    RenderTexture* const outputs[] = {RenderTexture::create(mSize, nullptr, PXFORMAT_RGBA8888),
                                      Yuv420RenderTexture::create(mSize, nullptr),
                                      Yuv444RenderTexture::create(mSize, nullptr), nullptr};
    mOutput.set(outputs[any(3)]);
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
    BeautyShapeChain& chain = *mChain.get();
    FrameBuffer* frameBuffer = any(1) == 0 ? mEngine->getFrameBuffer() : nullptr;
    const bool add = any(2) != 0;
    switch (any(5)) {
        case 0:
            return chain.setSkinBuffing(makeStage<SkinBuffingNode>(add, mSize, frameBuffer));
        case 1:
            return chain.setHsv(makeStage<HsvNode>(add, mSize, frameBuffer));
        case 2:
            return chain.setSkinWhiting(makeStage<SkinWhitingNode>(add, mSize, frameBuffer));
        case 3:
            return chain.setFaceBuffingNode(makeStage<FaceBuffingNode>(add, mSize, frameBuffer));
        case 4:
            return chain.setFaceShape(makeStage<FaceShapeNode>(add, mSize, frameBuffer));
        default:
            return chain.setFilter(add ? ColorFilter::create(mSize, frameBuffer, anyLook()) : nullptr);
    }
}

void BusyHost::otherEffect() {
    BeautyShapeChain& chain = *mChain.get();
    RenderTexture* const looks[] = {Effect70SNode::create(mSize, nullptr, PXFORMAT_RGBA8888),
                                    GraffitiNode::create(mSize, nullptr, PXFORMAT_RGBA8888),
                                    JitterNode::create(mSize, nullptr, PXFORMAT_RGBA8888),
                                    SoulstuffNode::create(mSize, nullptr, PXFORMAT_RGBA8888), nullptr};
    chain.setEffect(looks[any(4)]);
}

void BusyHost::otherTable() {
    BeautyShapeChain& chain = *mChain.get();
    ColorFilter* filter = chain.getFilter();
    if (filter != nullptr && any(1) == 0) {
        filter->setFilterImage(any(5) == 0 ? mResources + "/none.png" : anyLook());
    } else {
        chain.setFilter(ColorFilter::create(mSize, nullptr, anyLook()));
    }
}

void BusyHost::otherFlags() {
    BeautyShapeChain& chain = *mChain.get();
    RenderTexture* const members[] = {
        chain.getSkinBuffing(),     chain.getHsv(),    chain.getSkinWhiting(), chain.getFaceShape(),
        chain.getFaceBuffingNode(), chain.getEffect(), chain.getFilter()};
    for (RenderTexture* member : members) {
        if (any(2) == 0) {
            chain.setRenderTextureEnable(member, any(1) == 0, any(1) == 0);
        }
    }
    chain.relinkAll();
}

void BusyHost::otherStrengths() {
    BeautyShapeChain& chain = *mChain.get();
    if (SkinBuffingNode* skin = chain.getSkinBuffing()) {
        skin->setSkinBuffing(anyAmount());
        skin->setSharpen(anyAmount());
    }
    if (HsvNode* hsv = chain.getHsv()) {
        hsv->setHue(anyAmount());
        hsv->setSaturation(anyAmount());
        hsv->setValue(anyAmount());
    }
    if (SkinWhitingNode* whitening = chain.getSkinWhiting()) {
        whitening->setSkinWhitening(anyAmount());
    }
    if (ColorFilter* filter = chain.getFilter()) {
        filter->setIntensity(anyAmount());
    }
    if (FaceBuffingNode* face = chain.getFaceBuffingNode()) {
        face->setFaceBuffing(anyAmount());
    }
    if (FaceShapeNode* shape = chain.getFaceShape()) {
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
    Texture2D* texture = makePlane(mSize, 4);
    texture->updateWithData(picture.data(), picture.size());
    mInput.set(makeSprite(texture));
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
