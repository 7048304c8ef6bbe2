#include <GL/glew.h>

#include <array>
#include <functional>
#include <map>

#include "BeautyTest.h"
#include "effects/ColorFilter.h"
#include "effects/FaceBuffingNode.h"
#include "effects/FaceShapeNode.h"
#include "effects/HsvNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/Yuv420RenderTexture.h"
#include "scene/NodeWeakRef.h"
#include "scene/PoisonousHost.h"
#include "support/AllocationCounter.h"

namespace zv::test {

static const Picture& first() {
    static const Picture picture = Picture::load(ZV_TEST_DATA_DIR "/portrait.png").cropped(160, 60, 128, 96);
    return picture;
}

class BeautyShapeChainTest : public BeautyTest {
protected:
    static constexpr int kStages = 7, kSkin = 0, kHsv = 2;
    static constexpr int kOrders[kStages] = {10, 13, 15, 20, 30, 40, 50};

    template <class T>
    T* make(bool filled) {
        return filled ? T::create(chain->getSize(), media->getFrameBuffer(), PXFORMAT_RGB888) : nullptr;
    }
    /// Makes a stage, or empties its place.
    RenderTexture* set(int stage, bool filled = true) {
        const std::function<void()> setters[] = {
            [&] { chain->setSkinBuffing(make<SkinBuffingNode>(filled)); },
            [&] { chain->setFaceBuffingNode(make<FaceBuffingNode>(filled)); },
            [&] { chain->setHsv(make<HsvNode>(filled)); },
            [&] { chain->setSkinWhiting(make<SkinWhitingNode>(filled)); },
            [&] { chain->setFaceShape(make<FaceShapeNode>(filled)); },
            [&] { chain->setEffect(make<HsvNode>(filled)); },
            [&] {
                chain->setFilter(!filled ? nullptr
                                         : ColorFilter::create(chain->getSize(), media->getFrameBuffer(),
                                                               "zv_res/lookups/kel_white.png"));
            }};
        setters[stage]();
        if (auto* hsv = dynamic_cast<HsvNode*>(get(stage))) {
            hsv->setHue(stage == kHsv ? 2.0F : 0.5F);
            hsv->setValue(stage == kHsv ? 0.9F : 0.8F);
        }
        return get(stage);
    }
    RenderTexture* get(int stage) const {
        RenderTexture* const stages[] = {
            chain->getSkinBuffing(), chain->getFaceBuffingNode(), chain->getHsv(),   chain->getSkinWhiting(),
            chain->getFaceShape(),   chain->getEffect(),          chain->getFilter()};
        return stages[stage];
    }
    void startWith(const std::vector<int>& stages = {6, 3, 5, 0, 2, 4, 1}) {
        start(makeSprite(first()), sizeOf(first()));
        for (const int stage : stages)
            set(stage);
        frame();
    }
    /// From the output back to the input, by how the members are nested.
    void expectAllNested() {
        frame();
        std::vector<int> orders;
        for (RenderTexture* member : nestedIn(media->getLastRenderTexture()))
            orders.push_back(member->getLocalZOrder());
        orders.resize(kStages);  // the passes of smoothing follow
        EXPECT_EQ(orders, (std::vector<int>{50, 40, 30, 20, 15, 13, 10}));
    }
};

TEST_F(BeautyShapeChainTest, EachStageHasItsPlaceWhateverTheOrderOfCalls) {
    startWith();
    expectAllNested();
    for (int stage = 0; stage < kStages; ++stage) {
        SCOPED_TRACE(stage);
        RenderTexture* before = get(stage);
        before->retain();
        EXPECT_EQ(set(stage)->getLocalZOrder(), kOrders[stage]);
        expectAllNested();
        EXPECT_TRUE(before->getRefCount() == 1U && before->getParent() == nullptr) << "let go by the chain";
        before->release();
        EXPECT_EQ(set(stage, false), nullptr);
        EXPECT_EQ(chain->getRenderTextureSize(), unsigned{kStages - 1});
        set(stage);
    }
    chain->setFilter(chain->getFilter());
    chain->setSkinBuffing(chain->getSkinBuffing());
    expectAllNested();
    chain->remove(chain->getHsv(), true);
    frame();
    EXPECT_EQ(chain->getHsv(), nullptr) << "a stage that was destroyed is unset";
}

// Off: as the chain without it. On: as before. At once, with a new picture, and for a chain of this stage
// alone.
TEST_F(BeautyShapeChainTest, AnyStageLeavesARunningChainAndComesBack) {
    const Picture second = first().flippedY();
    for (int i = 0; i < 2 * kStages; ++i) {
        const int stage = i / 2;
        SCOPED_TRACE(::testing::Message() << "stage " << stage << (i % 2 ? " alone" : ""));
        const auto framesWith = [&](bool filled) {
            i % 2 ? startWith({stage}) : startWith();
            set(stage, filled);
            return std::array{frameOf(first()), frameOf(second)};
        };
        const auto without = framesWith(false), with = framesWith(true);
        EXPECT_TRUE(i % 2 == 0 || without[0] == first());
        EXPECT_EQ(with[0] == without[0], stage == 1 || stage == 4) << "two stages let the picture through";
        for (const bool on : {true, false, true, false, true}) {
            chain->setRenderTextureEnable(get(stage), on, false);
            chain->relinkAll();
            EXPECT_EQ((std::array{frameOf(first()), frameOf(second)}), on ? with : without);
            EXPECT_EQ(input->getProgram() != plain, chain->isRenderTextureEnable(get(kSkin)));
        }
    }
}

// Smoothing takes five passes, each other stage and the picture before packing one, packing two: 12 draws, 11
// targets, 17 textures. A draw binds its vertex array and unbinds it with both buffers.
TEST_F(BeautyShapeChainTest, ASteadyFrameMakesTheCallsOfItsPassesAndNoOther) {
    const bool legacy = kind() == Kind::Legacy;
    startWith({kSkin, kHsv, 3, 4, 6});
    auto* packed = Yuv420RenderTexture::create(sizeOf(first()), media->getFrameBuffer(), -1);
    media->setLastRenderTexture(packed, true);
    UniqueDataPtr<unsigned char> bytes = packed->getOutData();
    const auto frameAndRead = [&] {
        frame();
        packed->getOutData(bytes);
    };
    frameAndRead();
    frameAndRead();
    GLCallRecorder recorder;
    const AllocationCounter allocated;
    frameAndRead();
    const std::size_t allocations = allocated.allocations();
    EXPECT_EQ(allocations, 0U);
    std::map<std::string, std::size_t> made;
    for (const GLCall& call : recorder.calls())
        ++made[call.name];
    std::map<std::string, std::size_t> expected = {
        {"glActiveTexture", 17}, {"glBindBuffer", 27},      {"glBindFramebuffer", 4},
        {"glBindTexture", 17},   {"glDrawArrays", 12},      {"glFinish", 1},
        {"glGetIntegerv", 1},    {"glMapBuffer", 1},        {"glPixelStorei", 2},
        {"glReadPixels", 2},     {"glUnmapBuffer", 1},      {"glUseProgram", 12},
        {"glViewport", 14},      {"glBindVertexArray", 24}, {"glFramebufferTexture2D", 11},
        {"glBindSampler", 8}};
    if (legacy) {  // without vertex arrays each draw sets its layout and takes it back
        expected.erase("glBindVertexArray");
        expected.erase("glBindSampler");
        expected["glBindBuffer"] = 41;
        for (const char* name : {"Enable", "Disable"})
            expected["gl" + std::string(name) + "VertexAttribArray"] = 26;
        expected["glVertexAttribPointer"] = 26;
    }
    EXPECT_EQ(made, expected) << recorder.summary();

    const std::size_t unkept = recorder.total();
    const std::vector<unsigned char> picture(bytes.get(0), bytes.get(0) + bytes.size());
    media->setKeepHostState(true);
    for (const bool poisoned : {false, true}) {
        auto host = poisoned ? std::make_unique<PoisonousHost>(screen) : nullptr;
        const Snapshot before = snapshot();
        frame();
        recorder.clear();
        frame();
        const std::size_t calls = recorder.total();
        EXPECT_LE(calls, unkept - 11U + (poisoned ? 60U : 32U)) << recorder.summary();
        EXPECT_EQ(differences(snapshot(), before), Snapshot());
        host.reset();
        packed->getOutData(bytes);
        packed->getOutData(bytes);
        EXPECT_TRUE(std::equal(picture.begin(), picture.end(), bytes.get(0))) << poisoned;
    }
}

TEST_F(BeautyShapeChainTest, SwitchingSmoothingLeavesItsWiring) {
    startWith();
    EXPECT_EQ(chain->getFaceShape()->getClipEdge(), 30.0F);
    SkinBuffingNode* skin = chain->getSkinBuffing();
    const Picture before = frameOf(first());
    Program* blur = input->getProgram();
    chain->setSkinBuffingEnable(false);
    chain->setSkinBuffingEnable(false);
    EXPECT_TRUE(skin->getInputNode() == input && input->getProgram() == blur);
    chain->setSkinBuffingEnable(true);
    EXPECT_EQ(frameOf(first()), before);

    chain->setSkinBuffingEnable(false);
    Sprite* other = makeSprite(first());
    chain->setInputNode(other);
    EXPECT_EQ(other->getProgram(), plain) << "a disabled stage takes no input";
    EXPECT_TRUE(skin->getInputNode() == nullptr && input->getProgram() == plain) << "but lets one go";
    chain->setSkinBuffing(nullptr);
    chain->setSkinBuffingEnable(true);
}

TEST_F(BeautyShapeChainTest, TheInputGetsItsProgramBackWheneverItIsTakenAway) {
    const std::pair<std::string, std::function<void()>> rows[] = {
        {"another input", [&] { chain->setInputNode(makeSprite(first())); }},
        {"no input", [&] { chain->setInputNode(nullptr); }},
        {"stage unset", [&] { chain->setSkinBuffing(nullptr); }},
        {"stage removed", [&] { chain->remove(chain->getSkinBuffing(), true); }},
        {"all removed", [&] { chain->clearAllRenderTexture(); }},
        {"chain removed", [&] { media->removeRenderChain(); }},
        {"another chain",
         [&] {
             auto* other = BeautyShapeChain::create(chain->getSize(), media->getFrameBuffer());
             other->setSkinBuffing(SkinBuffingNode::create(other->getSize(), nullptr, PXFORMAT_RGB888));
             other->setInputNode(input);
             EXPECT_NE(input->getProgram(), plain);
             media->setRenderChain(other);
             frame();
             media->removeRenderChain();
         }},
        {"chain destroyed",
         [&] {
             media->removeRenderChain();
             chain->setInputNode(input);
             EXPECT_NE(input->getProgram(), plain);
             chain->release();
             media->update(0.0F);
         }},
    };
    for (const auto& [name, take] : rows) {
        SCOPED_TRACE(name);
        startWith();
        Sprite* taken = input;
        SkinBuffingNode* skin = chain->getSkinBuffing();
        taken->retain();
        skin->retain();  // a stage that lives on must not keep the input
        chain->retain();
        EXPECT_TRUE(skin->getInputNode() == taken && taken->getProgram() != plain);
        take();
        EXPECT_TRUE(skin->getInputNode() != taken && taken->getProgram() == plain);
        if (name != "chain destroyed")
            chain->release();
        skin->release();
        taken->release();
    }
}

TEST_F(BeautyShapeChainTest, WhatCannotBeReadDirectlyIsConverted) {
    const Size16 size(64, 48);
    const auto sprite = [&](PxFormat format, bool rectangle) {
        Texture2D* texture = makeTexture(Picture(size.x, size.y));
        const std::vector<unsigned char> bytes(size.x * size.y * 4U, 96);
        EXPECT_TRUE(texture->init(bytes.data(), bytes.size(), format, size));
        if (rectangle) {
            unsigned int name = 0;
            glGenTextures(1, &name);
            glBindTexture(GL_TEXTURE_RECTANGLE, name);
            glTexImage2D(GL_TEXTURE_RECTANGLE, 0, GL_RGB, size.x, size.y, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         bytes.data());
            glBindTexture(GL_TEXTURE_RECTANGLE, 0);
            texture->updateTextureId(static_cast<int>(name), GL_TEXTURE_RECTANGLE, format, true);
        }
        auto* made = new Sprite;
        made->autorelease();
        EXPECT_TRUE(made->init(texture, false));
        return made;
    };
    SkinBuffingNode* skin = startSkin(sprite(PXFORMAT_RGB888, false), {100, 80});
    frame();
    EXPECT_EQ(skin->getInputNode(), input) << "RGB is read as it is";
    NodeWeakRef former;
    for (const bool rectangle : {false, true}) {
        Sprite* converted = sprite(rectangle ? PXFORMAT_RGB888 : PXFORMAT_R8, rectangle);
        Program* own = converted->getProgram();
        converted->retain();
        chain->setInputNode(converted);
        auto* target = dynamic_cast<RenderTexture*>(skin->getInputNode());
        ASSERT_NE(target, nullptr);
        EXPECT_TRUE(target->getSize() == Size16(100, 80) && target->getPxFormat() == PXFORMAT_RGB888);
        EXPECT_EQ(converted->getParent(), target->getScene());
        EXPECT_EQ(converted->getProgram(), own);
        former.set(target);
        frame();
        EXPECT_EQ(output().at(50, 40), (rectangle ? Pixel{96, 96, 96, 255} : Pixel{96, 0, 0, 255}));
        media->resetSize({200, 160});
        EXPECT_EQ(target->getSize(), Size16(200, 160)) << "the conversion keeps the whole resolution";
        media->resetSize({100, 80});
        chain->setInputNode(input);
        media->update(0.0F);
        EXPECT_TRUE(converted->getParent() == nullptr && former.get() == nullptr) << "dropped with its input";
        converted->release();
    }
}

TEST_F(BeautyShapeChainTest, AMemberInFrontOfSmoothingFeedsIt) {
    startWith({kHsv});
    const Picture expected = frameOf(first());
    startWith({kSkin});
    chain->getSkinBuffing()->setSkinBuffing(0.0F);
    HsvNode* before = make<HsvNode>(true);
    before->setHue(2.0F);
    before->setValue(0.9F);
    before->setLocalZOrder(5);
    chain->add(before, true, false);
    chain->relinkAll();
    EXPECT_EQ(input->getProgram(), plain);
    expectNear(frameOf(first()), expected, 1, 0.01, "member-before-skin");
    chain->remove(before, true);
    chain->relinkAll();
    expectNear(frameOf(first()), first(), 1, 0.01, "member-before-skin-removed");
    EXPECT_EQ(BeautyShapeChain(*chain).getSkinBuffing(), chain->getSkinBuffing());
    EXPECT_EQ(chain->getSkinBuffing()->getInputNode(), input) << "a copy that goes takes nothing along";
}

}  // namespace zv::test
