#include "scene/RenderTextureChain.h"

#include <map>

#include "RenderTextureTools.h"

namespace zv::test {
namespace {

/// A chain whose protected operations can be called.
class OpenChain : public RenderTextureChain {
public:
    using RenderTextureChain::removeUnusedRenderTexture;
    void initNodes() override { add(MarkTexture::create(7, getFrameBuffer()), false, false); }
};

/// A chain over a red input that a render texture shows.
class RenderTextureChainTest : public EngineTest {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        shared = FrameBuffer::create();
        makeLink();
        input = FillNode::create(kRed);
        input->setName("i");
        chain = RenderTextureChain::create({8, 4}, shared);
        chain->retain();
        chain->setLinkNode(link->getScene());
        chain->setInputNode(input);
    }
    void TearDown() override {
        chain->release();
        link->release();
        EngineTest::TearDown();
    }
    void makeLink() {
        link = RenderTexture::create({8, 4}, shared, PXFORMAT_RGBA8888);
        link->retain();
    }
    MarkTexture* member(int column) { return MarkTexture::create(column, shared); }
    /// Adds enabled members that mark these columns, in this order.
    void add(const std::string& columns) {
        for (const char column : columns) {
            chain->add(members[column] = member(column - '0'), true, false);
        }
    }
    /// Enables or disables without linking.
    void enable(const char* names, bool on) {
        for (; *names != '\0'; ++names) {
            EXPECT_TRUE(chain->setRenderTextureEnable(std::string(1, *names), on, false));
        }
    }
    /// The marks on what the link node shows after a frame, the colour it has beside them, and in `updated`
    /// and `rendered` who was.
    std::string frame() {
        fillRect(*link, 0, 0, 8, 4, {});
        MarkTexture::log.clear();
        chain->update(0.5F);
        updated = MarkTexture::log;
        MarkTexture::log.clear();
        chain->render();
        rendered = MarkTexture::log;
        link->renderToTexture();
        std::string marks;
        const Picture picture = pictureOf(*link);
        for (int x = 1; x < picture.width; ++x) {
            marks += picture.at(x, 0) == MarkTexture::markOf(x) ? std::to_string(x) : "";
        }
        return marks + (picture.at(0, 0) == kRed ? " red" : picture.at(0, 0) == kBlue ? " blue" : "");
    }
    /// From the output down to the input.
    std::string tree() { return namesBelow(link->getScene()); }

    std::string updated, rendered;
    FrameBuffer* shared = nullptr;
    RenderTextureChain* chain = nullptr;
    RenderTexture* link = nullptr;
    FillNode* input = nullptr;
    std::map<char, MarkTexture*> members;
};

TEST_F(RenderTextureChainTest, RendersInZOrderEachMemberSeeingTheOneBefore) {
    EXPECT_EQ(input->getParent(), nullptr) << "nobody is there to take it";
    add("312");
    EXPECT_EQ(frame(), "123 red");
    EXPECT_EQ(updated, "312") << "the first update comes before the sort";
    EXPECT_EQ(rendered, "123");
    EXPECT_EQ(tree(), "321i");
    EXPECT_EQ(chain->getOutput(), members['3']);
    frame();
    EXPECT_EQ(updated, "123") << "once each, although the scenes reach them too";
    EXPECT_EQ(input->time, 0.5F) << "the first update came before it was linked";
    MarkTexture::log.clear();
    link->update(0.5F);
    EXPECT_EQ(MarkTexture::log, "123") << "the tree alone reaches them";

    FillNode* other = FillNode::create(kBlue);
    Node* elsewhere = Node::create();
    elsewhere->addChild(other);
    chain->setInputNode(other);
    EXPECT_EQ(elsewhere->getFirstChild(), nullptr);
    EXPECT_EQ(tree(), "321i") << "the old input is released, not detached";
    other->removeFromParent();
    chain->setInputNode(other);
    EXPECT_EQ(other->getParent(), nullptr) << "the present input again changes nothing";
    chain->setNeedsSetup();
    EXPECT_EQ(frame(), "123 blue");
    chain->setInputNode(members['1']);
    chain->setNeedsSetup();
    frame();
    EXPECT_EQ(tree(), "321i") << "an input is never put under its own scene";
}

TEST_F(RenderTextureChainTest, TheWalkStopsAtADisabledMemberAndRelinkAllDoesNot) {
    add("12");
    frame();
    chain->setRenderTextureEnable("2", false, true);
    EXPECT_EQ(tree(), "1i") << "hangs in one place only";
    chain->setRenderTextureEnable("2", true, true);
    EXPECT_EQ(tree(), "21i") << "takes the place of the old output";
    add("3");
    EXPECT_EQ(frame(), "123 red");
    chain->setRenderTextureEnable("2", false, true);
    EXPECT_EQ(tree(), "321i") << "the first member keeps its old place";
    EXPECT_EQ(frame(), "123 red") << "the disabled member goes on showing its last picture";
    EXPECT_EQ(rendered, "13");
    chain->relinkAll();
    EXPECT_EQ(frame(), "13 red");
    EXPECT_EQ(tree(), "31i");

    enable("3", false);
    enable("2", true);
    chain->relinkAll();
    EXPECT_EQ(frame(), "12 red");
    EXPECT_EQ(chain->getOutput(), members['2']);

    enable("12", false);
    chain->relinkAll();
    EXPECT_EQ(frame(), "");
    EXPECT_EQ(chain->getOutput(), nullptr);
    enable("12", true);
    frame();
    EXPECT_EQ(tree(), "2") << "the walk from the back meets a disabled member first";
    chain->relinkAll();
    EXPECT_EQ(frame(), "12 red");
}

TEST_F(RenderTextureChainTest, ARemovedMemberLeavesNothingBehind) {
    add("12346");
    frame();
    EXPECT_FALSE(chain->remove(nullptr, true));
    EXPECT_FALSE(chain->remove(member(9), true));
    EXPECT_TRUE(chain->remove(members['2'], true));
    EXPECT_EQ(members['2']->getParent(), nullptr);
    EXPECT_EQ(members['2']->getScene()->getFirstChild(), nullptr);
    EXPECT_EQ(frame(), "1346 red");
    EXPECT_TRUE(chain->removeByName("6", false));
    EXPECT_EQ(chain->getOutput(), members['4']);
    EXPECT_EQ(frame(), "134 red");
    EXPECT_EQ(chain->removeRange(0, 3, true), 2U);
    EXPECT_FALSE(chain->isNeedsSetup());
    EXPECT_EQ(frame(), "4 red");
    EXPECT_EQ(chain->removeRange(0, 3, true), 0U);
    EXPECT_TRUE(chain->isNeedsSetup());
    EXPECT_TRUE(chain->remove(members['4'], true));
    EXPECT_EQ(chain->getOutput(), nullptr);
    EXPECT_EQ(input->getParent(), nullptr);
}

TEST_F(RenderTextureChainTest, CountsEntriesFlagsAndReferences) {
    MarkTexture* twice = member(1);
    chain->add(twice, true, false);
    chain->add(twice, false, false);
    EXPECT_TRUE(chain->isRenderTextureEnable("1") && chain->isRenderTextureEnable(twice));
    chain->reAutoSetup();
    EXPECT_FALSE(chain->setRenderTextureEnable("1", true, true));
    EXPECT_FALSE(chain->setRenderTextureEnable("none", true, true));
    EXPECT_FALSE(chain->isNeedsSetup()) << "nothing changed";
    enable("1", false);
    chain->reAutoSetup();
    EXPECT_TRUE(chain->isNeedsSetup()) << "no member is enabled";
    EXPECT_EQ(twice->getRefCount(), 4U) << "pool, parent and two entries";
    chain->remove(twice, true);
    EXPECT_EQ(twice->getRefCount(), 2U);
    chain->clearAllRenderTexture();
    EXPECT_EQ(twice->getRefCount(), 1U);
}

TEST_F(RenderTextureChainTest, ArraysAreAddedDisabledAndLinkedAfterEachMember) {
    add("4");
    chain->addArray({member(3), member(2)}, false);
    EXPECT_EQ(tree(), "4i") << "linked although autoSetup is off";
    EXPECT_TRUE(chain->isNeedsSetup());
    chain->addArray({}, true);
    EXPECT_FALSE(chain->isNeedsSetup());
    EXPECT_EQ(frame(), "4 red");
}

TEST_F(RenderTextureChainTest, OutputAndLinkNodeHoldNoReferenceAndAreForgotten) {
    add("12");
    frame();
    EXPECT_EQ(members['2']->getRefCount(), 3U) << "pool, chain and parent";
    EXPECT_EQ(link->getScene()->getRefCount(), 2U) << "pool and render texture";
    drainPool();
    link->release();
    makeLink();
    chain->setRenderTextureEnable("2", false, true);
    EXPECT_EQ(namesBelow(members['2']->getScene()), "1i")
        << "the link node is gone: nothing is hung under it";
    EXPECT_EQ(chain->getOutput(), members['2']) << "still a member";
    chain->remove(members['2'], true);
    EXPECT_EQ(chain->getOutput(), members['1']);

    MarkTexture* stranger = member(5);
    link->getScene()->addChild(stranger);
    chain->setOutput(stranger);
    EXPECT_EQ(chain->getOutput(), stranger);
    chain->setNeedsSetup();
    chain->render();
    EXPECT_EQ(tree(), "1i") << "took over the output's parent";
    chain->setOutput(member(6));
    drainPool();
    EXPECT_EQ(chain->getOutput(), members['1']);
    chain->clearAllRenderTexture();
    EXPECT_EQ(chain->getOutput(), nullptr);
}

TEST_F(RenderTextureChainTest, ResizesEveryMemberWithTheViewPortOfItsScene) {
    add("123");
    enable("3", false);
    frame();
    chain->resetSize({12, 8});
    EXPECT_EQ(members['3']->getSize(), Size16(12, 8));
    chain->render();
    EXPECT_EQ(pictureOf(*members['1']), markedPicture("1", 12, 8));
}

TEST_F(RenderTextureChainTest, ACopyBorrows) {
    add("12");
    frame();
    {
        RenderTextureChain copy(*chain);
        EXPECT_EQ(copy.getOutput(), members['2']);
        MarkTexture* own = member(3);
        copy.add(own, true, false);
        RenderTextureChain assigned;
        assigned.add(members['1'], true, false);
        assigned = copy;
        EXPECT_EQ(assigned.getRenderTextureSize(), 3U);
        EXPECT_EQ(own->getRefCount(), 2U);
        EXPECT_EQ(members['1']->getRefCount(), 4U) << "a reference of its own stays with it";
    }
    EXPECT_EQ(members['1']->getRefCount(), 3U) << "pool, chain and parent";
    EXPECT_EQ(input->getRefCount(), 3U);
}

TEST_F(RenderTextureChainTest, PrunesDisabledMembersThatNobodyElseKeepsFromTheBack) {
    OpenChain open;
    open.init({4, 2}, shared);
    MarkTexture* kept = member(8);
    kept->retain();
    open.add(kept, false, false);
    open.add(member(9), false, false);
    const auto leftAfterPruning = [&] {
        drainPool();
        open.removeUnusedRenderTexture();
        return open.getRenderTextureSize();
    };
    EXPECT_EQ(leftAfterPruning(), 2U) << "the hook's, in front of a kept one, stays";
    kept->release();
    EXPECT_EQ(leftAfterPruning(), 0U);
    open.add(member(1), true, false);
    EXPECT_EQ(leftAfterPruning(), 1U);
}

}  // namespace
}  // namespace zv::test
