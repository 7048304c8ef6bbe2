#include "scene/RenderTextureChain.h"

#include <map>
#include <memory>

#include "RenderTextureTools.h"
#include "gl/FrameBuffer.h"
#include "support/AllocationCounter.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"

namespace zv::test {
namespace {

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};

/// A chain whose protected operations can be called.
class OpenChain : public RenderTextureChain {
public:
    using RenderTextureChain::removeUnusedRenderTexture;
    void initNodes() override { add(MarkTexture::create("own", 7), false, false); }
};

class RenderTextureChainTest : public EngineTest {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        shared = FrameBuffer::create();
        chain = RenderTextureChain::create({8, 4}, shared);
        link = RenderTexture::create({8, 4}, shared, PXFORMAT_RGBA8888);
        link->retain();
        input = FillNode::create(kRed);
        chain->retain();
        chain->setLinkNode(link->getScene());
    }
    void TearDown() override {
        chain->release();
        if (link != nullptr) {
            link->release();
        }
        EngineTest::TearDown();
    }
    MarkTexture* member(int column) {
        MarkTexture* made = MarkTexture::create(std::to_string(column), column, {8, 4}, shared);
        made->log = &log;
        return made;
    }
    /// Adds enabled members that mark these columns, in this order; their Z order is the column.
    void add(const std::string& columns) {
        for (const char column : columns) {
            members[column] = member(column - '0');
            chain->add(members[column], true, false);
        }
    }
    /// What the link node shows after a frame, as the marks on it.
    std::string frame() {
        log.clear();
        {
            const TargetPass pass(*link->getFrameBuffer(), *link->getRenderTarget());
            fillRect(0, 0, 8, 4, {});
        }
        chain->update(0.5F);
        updates = log;
        log.clear();
        chain->render();
        link->renderToTexture();
        const Picture picture = pictureOf(*link);
        std::string marks;
        for (int x = 0; x < picture.width; ++x) {
            if (picture.at(x, 0) == MarkTexture::markOf(x)) {
                marks += std::to_string(x);
            }
        }
        return marks + (picture.at(0, 0) == kRed ? " red" : picture.at(0, 0) == kBlue ? " blue" : "");
    }
    Node* parentOf(char column) { return members[column]->getParent(); }
    Node* sceneOf(char column) { return members[column]->getScene(); }

    std::string log;
    std::string updates;
    FrameBuffer* shared = nullptr;
    RenderTextureChain* chain = nullptr;
    RenderTexture* link = nullptr;
    FillNode* input = nullptr;
    std::map<char, MarkTexture*> members;
};

TEST_F(RenderTextureChainTest, RendersInZOrderEachMemberSeeingTheOneBefore) {
    chain->setInputNode(input);
    EXPECT_EQ(input->getParent(), nullptr) << "nobody is there to take it";
    add("312");
    EXPECT_TRUE(chain->isNeedsSetup());
    EXPECT_EQ(frame(), "123 red");
    EXPECT_EQ(updates, "312") << "the first update comes before the sort";
    EXPECT_EQ(log, "123");
    EXPECT_FALSE(chain->isNeedsSetup());
    EXPECT_EQ(input->getParent(), sceneOf('1'));
    EXPECT_EQ(parentOf('1'), sceneOf('2'));
    EXPECT_EQ(parentOf('2'), sceneOf('3'));
    EXPECT_EQ(parentOf('3'), link->getScene());
    EXPECT_EQ(chain->getOutput(), members['3']);
    EXPECT_EQ(chain->getFirstEnableRenderTexture(), members['1']);

    FillNode* other = FillNode::create(kBlue);
    Node* elsewhere = Node::create();
    elsewhere->addChild(other);
    chain->setInputNode(other);
    EXPECT_EQ(other->getParent(), sceneOf('1'));
    EXPECT_EQ(elsewhere->getFirstChild(), nullptr);
    EXPECT_EQ(input->getParent(), sceneOf('1')) << "the old input is released, not detached";
    EXPECT_EQ(chain->getInputNode(), other);
    other->removeFromParent();
    chain->setInputNode(other);
    EXPECT_EQ(other->getParent(), nullptr) << "the present input again changes nothing";
    chain->setNeedsSetup();
    EXPECT_EQ(frame(), "123 blue");
}

TEST_F(RenderTextureChainTest, AMemberIsUpdatedOnceAndThroughItsSceneOnlyWhenNobodyElseDid) {
    chain->setInputNode(input);
    add("123");
    frame();
    frame();
    EXPECT_EQ(updates, "123");
    EXPECT_EQ(input->time, 0.5F) << "the first update came before it was linked";
    log.clear();
    link->update(0.5F);
    EXPECT_EQ(log, "123") << "the tree alone reaches them in the same order";
    EXPECT_EQ(input->time, 1.0F);
}

TEST_F(RenderTextureChainTest, TheWalkStopsAtADisabledMemberAndRelinkAllDoesNot) {
    chain->setInputNode(input);
    add("123");
    frame();
    EXPECT_TRUE(chain->setRenderTextureEnable("2", false, true));
    EXPECT_EQ(parentOf('1'), sceneOf('2')) << "the first member keeps its old place";
    EXPECT_EQ(frame(), "123 red") << "the disabled member goes on showing its last picture";
    EXPECT_EQ(log, "13");
    chain->relinkAll();
    EXPECT_EQ(frame(), "13 red");
    EXPECT_EQ(parentOf('1'), sceneOf('3'));
    EXPECT_EQ(parentOf('2'), nullptr);

    chain->setRenderTextureEnable(members['3'], false, false);
    chain->setRenderTextureEnable(members['2'], true, false);
    chain->relinkAll();
    EXPECT_EQ(frame(), "12 red");
    EXPECT_EQ(chain->getOutput(), members['2']);
    EXPECT_EQ(parentOf('3'), nullptr);

    chain->setRenderTextureEnable("1", false, false);
    chain->setRenderTextureEnable("2", false, false);
    chain->relinkAll();
    EXPECT_EQ(frame(), "");
    EXPECT_EQ(chain->getOutput(), nullptr);
    EXPECT_EQ(input->getParent(), nullptr);
    chain->setRenderTextureEnable("1", true, false);
    chain->setRenderTextureEnable("2", true, false);
    frame();
    EXPECT_EQ(parentOf('2'), link->getScene());
    EXPECT_EQ(parentOf('1'), nullptr) << "the walk from the back meets a disabled member first";
    chain->relinkAll();
    EXPECT_EQ(frame(), "12 red");
}

TEST_F(RenderTextureChainTest, AnOutputThatIsEnabledBehindTheOldOneTakesItsPlace) {
    chain->setInputNode(input);
    add("12");
    frame();
    chain->setRenderTextureEnable("2", false, true);
    EXPECT_EQ(link->getScene()->getChildRen(), std::vector<Node*>{members['1']});
    EXPECT_EQ(members['2']->getScene()->getFirstChild(), nullptr) << "it hangs in one place only";
    EXPECT_EQ(frame(), "1 red");
    chain->setRenderTextureEnable("2", true, true);
    EXPECT_EQ(link->getScene()->getChildRen(), std::vector<Node*>{members['2']});
    EXPECT_EQ(frame(), "12 red");
}

TEST_F(RenderTextureChainTest, ARemovedMemberLeavesNothingBehind) {
    chain->setInputNode(input);
    add("1234");
    frame();
    MarkTexture* last = members['4'];
    EXPECT_FALSE(chain->remove(nullptr, true));
    EXPECT_FALSE(chain->remove(member(9), true));
    EXPECT_TRUE(chain->remove(members['2'], true));
    EXPECT_EQ(parentOf('2'), nullptr);
    EXPECT_EQ(members['2']->getScene()->getFirstChild(), nullptr);
    EXPECT_EQ(frame(), "134 red");
    EXPECT_TRUE(chain->removeByName("1", false));
    EXPECT_EQ(input->getParent(), nullptr);
    EXPECT_EQ(frame(), "34 red");

    EXPECT_TRUE(chain->removeByName("4", false));
    EXPECT_FALSE(chain->removeByName("4", false));
    EXPECT_NE(chain->getOutput(), last);
    EXPECT_EQ(frame(), "3 red");
    EXPECT_TRUE(chain->remove(members['3'], true));
    EXPECT_EQ(chain->getOutput(), nullptr);
    EXPECT_EQ(chain->getRenderTextureSize(), 0U);
}

TEST_F(RenderTextureChainTest, RemovesRangesOfZOrders) {
    const std::map<char, int> orders{{'1', 5}, {'2', 10}, {'3', 11}};
    add("123");
    for (const auto& [column, order] : orders) {
        members[column]->setLocalZOrder(order);
    }
    chain->setInputNode(input);
    frame();
    EXPECT_EQ(chain->removeRange(0, 10, true), 2U);
    EXPECT_FALSE(chain->isNeedsSetup());
    EXPECT_EQ(members['1']->getRefCount(), 1U);
    EXPECT_EQ(frame(), "3 red");
    EXPECT_EQ(chain->removeRange(0, 10, true), 0U);
    EXPECT_TRUE(chain->isNeedsSetup());
}

TEST_F(RenderTextureChainTest, CountsEntriesFlagsAndReferences) {
    MarkTexture* twice = member(1);
    chain->add(twice, true, false);
    chain->add(twice, false, false);
    EXPECT_EQ(twice->getRefCount(), 3U);
    EXPECT_EQ(chain->getRenderTextureSize(), 2U);
    EXPECT_EQ(chain->getEnabledSize(), 1U);
    EXPECT_TRUE(chain->isRenderTextureEnable("1"));
    EXPECT_TRUE(chain->isRenderTextureEnable(twice));
    EXPECT_FALSE(chain->isRenderTextureEnable("2"));
    EXPECT_EQ(chain->getByName("1"), twice);
    chain->reAutoSetup();
    EXPECT_FALSE(chain->setRenderTextureEnable(twice, true, true));
    EXPECT_FALSE(chain->setRenderTextureEnable("none", true, true));
    EXPECT_FALSE(chain->isNeedsSetup()) << "nothing changed";
    EXPECT_TRUE(chain->setRenderTextureEnable("1", false, false));
    EXPECT_TRUE(chain->isNeedsSetup());
    chain->reAutoSetup();
    EXPECT_TRUE(chain->isNeedsSetup()) << "no member is enabled";

    chain->remove(twice, true);
    EXPECT_EQ(twice->getRefCount(), 2U);
    chain->clearAllRenderTexture();
    EXPECT_EQ(twice->getRefCount(), 1U);
    EXPECT_EQ(chain->getFirstEnableRenderTexture(), nullptr);
    EXPECT_EQ(chain->getLastEnableRenderTexture(), nullptr);
}

TEST_F(RenderTextureChainTest, ArraysAreAddedDisabledAndLinkedAfterEachMember) {
    chain->addArray({}, false);
    EXPECT_TRUE(chain->isNeedsSetup());
    chain->setInputNode(input);
    add("4");
    chain->addArray({member(3), member(2)}, false);
    EXPECT_EQ(chain->getEnabledSize(), 1U);
    EXPECT_EQ(parentOf('4'), link->getScene()) << "linked although autoSetup is off";
    EXPECT_TRUE(chain->isNeedsSetup());
    chain->addArray({}, true);
    EXPECT_FALSE(chain->isNeedsSetup());
    EXPECT_EQ(frame(), "4 red");
}

TEST_F(RenderTextureChainTest, OutputAndLinkNodeHoldNoReferenceAndAreForgotten) {
    chain->setInputNode(input);
    add("12");
    frame();
    EXPECT_EQ(members['2']->getRefCount(), 3U) << "pool, chain and parent";
    EXPECT_EQ(link->getScene()->getRefCount(), 2U) << "pool and render texture";
    drainPool();
    link->release();
    link = nullptr;
    EXPECT_EQ(parentOf('2'), nullptr);
    chain->setRenderTextureEnable("2", false, true);
    EXPECT_EQ(parentOf('1'), sceneOf('2')) << "the link node is gone, so nothing is hung under it";
    EXPECT_EQ(chain->getOutput(), members['2']) << "still a member";
    chain->remove(members['2'], true);
    EXPECT_EQ(chain->getOutput(), members['1']);

    MarkTexture* stranger = member(5);
    Node* shows = Node::create();
    shows->addChild(stranger);
    chain->setOutput(stranger);
    EXPECT_EQ(chain->getOutput(), stranger);
    chain->setNeedsSetup();
    chain->render();
    EXPECT_EQ(shows->getChildRen(), std::vector<Node*>{members['1']}) << "took over the output's parent";
    chain->setOutput(member(6));
    drainPool();
    EXPECT_EQ(chain->getOutput(), members['1']);
    chain->clearAllRenderTexture();
    EXPECT_EQ(chain->getOutput(), nullptr);
    chain->setInputNode(nullptr);
}

TEST_F(RenderTextureChainTest, ResizesEveryMemberWithTheViewPortOfItsScene) {
    chain->setInputNode(input);
    add("123");
    chain->setRenderTextureEnable("3", false, false);
    frame();
    chain->resetSize({6, 4});
    EXPECT_EQ(chain->getSize(), Size16(6, 4));
    for (const auto& [column, made] : members) {
        EXPECT_EQ(made->getSize(), Size16(6, 4)) << column;
        EXPECT_EQ(made->getScene()->getViewPort(), ViewPort(0, 0, 6, 4)) << column;
    }
    chain->render();
    EXPECT_EQ(pictureOf(*members['1']), markedPicture(kRed, "1", 6, 4));
}

TEST_F(RenderTextureChainTest, ACopyBorrows) {
    chain->setInputNode(input);
    add("12");
    frame();
    const std::uint32_t count = members['1']->getRefCount();
    {
        RenderTextureChain copy(*chain);
        EXPECT_EQ(copy.getByName("1"), members['1']);
        EXPECT_EQ(copy.getOutput(), members['2']);
        EXPECT_EQ(copy.getFrameBuffer(), shared);
        MarkTexture* own = member(3);
        copy.add(own, true, false);
        EXPECT_EQ(own->getRefCount(), 2U);
        RenderTextureChain assigned;
        assigned.add(members['1'], true, false);
        assigned = copy;
        EXPECT_EQ(assigned.getRenderTextureSize(), 3U);
        EXPECT_EQ(own->getRefCount(), 2U);
        EXPECT_EQ(members['1']->getRefCount(), count + 1) << "a reference of its own stays with it";
    }
    EXPECT_EQ(members['1']->getRefCount(), count);
    EXPECT_EQ(input->getRefCount(), 3U) << "pool, chain and parent";
}

TEST_F(RenderTextureChainTest, PrunesDisabledMembersThatNobodyElseKeepsFromTheBack) {
    auto* open = new OpenChain;
    EXPECT_TRUE(open->init({4, 2}, shared));
    EXPECT_EQ(open->getFrameBuffer(), shared);
    EXPECT_NE(open->getByName("own"), nullptr) << "made by the hook";
    MarkTexture* kept = member(8);
    kept->retain();
    open->add(kept, false, false);
    open->add(member(9), false, false);
    drainPool();
    open->removeUnusedRenderTexture();
    EXPECT_EQ(open->getRenderTextureSize(), 2U) << "one in front of a kept one stays";
    kept->release();
    open->removeUnusedRenderTexture();
    EXPECT_EQ(open->getRenderTextureSize(), 0U);
    open->add(member(1), true, false);
    drainPool();
    open->removeUnusedRenderTexture();
    EXPECT_EQ(open->getRenderTextureSize(), 1U);
    open->release();
}

TEST_F(RenderTextureChainTest, AnInputIsNeverPutUnderItsOwnScene) {
    add("12");
    chain->setInputNode(members['1']);
    frame();
    EXPECT_EQ(parentOf('1'), sceneOf('2'));
    EXPECT_EQ(members['1']->getScene()->getFirstChild(), nullptr);
}

TEST_F(RenderTextureChainTest, TheSecondEqualFrameAllocatesNothing) {
    ZV_NEEDS_RECORDER();
    ZV_NEEDS_ALLOCATION_COUNTER();
    chain->setInputNode(input);
    add("123");
    frame();
    const auto draw = [&] {
        log.clear();
        chain->update(0.1F);
        chain->render();
    };
    draw();
    GLCallRecorder calls;
    draw();
    calls.clear();
    std::size_t allocations = 0;
    {
        const AllocationCounter counter;
        draw();
        allocations = counter.allocations();
    }
    EXPECT_EQ(allocations, 0U);
    EXPECT_EQ(calls.countObjectCalls(), 0U) << calls.summary();
    EXPECT_EQ(calls.countDraws(), 2U);
}

}  // namespace
}  // namespace zv::test
