#include "scene/Node.h"

#include <functional>
#include <string>

#include "core/RefCreate.h"
#include "support/GLTest.h"

namespace zv::test {
namespace {

/// What happened to the nodes of the running test. Outlives the test's body: the last drain comes after it.
std::string log;

class NodeTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        log.clear();
    }
};

/// Writes down what happens to it.
class Probe : public Node {
public:
    static Probe* create(const std::string& name, int zOrder = 0) {
        return createRef<Probe>([&](Probe& probe) {
            probe.setName(name);
            probe.setLocalZOrder(zOrder);
            return true;
        });
    }
    ~Probe() override {
        if (onGone) {
            onGone();
        }
        log += "~" + getName().str();
    }
    void onUpdateSelf(float dt) override { log += getName().str() + (dt == 0.25F ? " " : "! "); }
    void onDrawSelf(const Mat4& matrix) override {
        log += getName().str();
        lastMatrix = matrix;
    }

    std::function<void()> onGone;
    Mat4 lastMatrix;
};

std::string drawn(Node* node, const Mat4& matrix = Mat4::IDENTITY) {
    log.clear();
    node->onDraw(matrix);
    return log;
}

TEST_F(NodeTest, DrawsByZOrderThenByAdditionAndSortsOnlyAfterAnAddition) {
    Probe* root = Probe::create("r");
    Probe* c = Probe::create("c", 2);
    for (Probe* child : {c, Probe::create("a", 0), Probe::create("b", 1), Probe::create("d", 2)}) {
        root->addChild(child);
    }
    EXPECT_EQ(drawn(root), "rabcd");
    EXPECT_EQ(root->getChildRen().back()->getName(), "d") << "equal orders keep the order of addition";

    c->setLocalZOrder(-1);
    EXPECT_EQ(drawn(root), "rabcd") << "a new order alone asks for no sort";
    root->addChild(Probe::create("e", 9));
    EXPECT_EQ(drawn(root), "rcabde");

    Probe* single = Probe::create("s");
    Probe* first = Probe::create("x", 5);
    single->addChild(first);
    EXPECT_EQ(drawn(single), "sx");
    first->setLocalZOrder(7);
    single->addChild(Probe::create("y", 6));
    EXPECT_EQ(drawn(single), "syx");
}

TEST_F(NodeTest, ManySiblingsOfOneZOrderKeepTheOrderOfAddition) {
    Probe* root = Probe::create("", 0);
    std::string first, last;
    for (char name = 'a'; name <= 'z'; ++name) {
        const bool behind = name % 3 == 0;
        root->addChild(Probe::create(std::string(1, name), behind ? -1 : 4));
        (behind ? first : last) += name;
    }
    EXPECT_EQ(drawn(root), first + last);
}

TEST_F(NodeTest, UpdateGoesDownInTheOrderOfTheListWithoutSorting) {
    Probe* root = Probe::create("r");
    Probe* b = Probe::create("b", 1);
    b->addChild(Probe::create("b1"));
    root->addChild(b);
    root->addChild(Probe::create("a", 0));

    root->update(0.25F);
    EXPECT_EQ(log, "r b b1 a ");
    drawn(root);
    log.clear();
    root->update(0.25F);
    EXPECT_EQ(log, "r a b b1 ");
}

TEST_F(NodeTest, DrawPassesTheMatrixUnchangedToEveryDepth) {
    Probe* root = Probe::create("r");
    Probe* child = Probe::create("c");
    Probe* grandchild = Probe::create("g");
    root->addChild(child);
    child->addChild(grandchild);
    child->setPosition({5.0F, 6.0F});
    child->setScale(3.0F);
    const Mat4 matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    EXPECT_EQ(drawn(root, matrix), "rcg");
    for (const Probe* node : {root, child, grandchild}) {
        for (int i = 0; i < 16; ++i) {
            EXPECT_EQ(node->lastMatrix.m[i], matrix.m[i]);
        }
    }
}

TEST_F(NodeTest, AParentHoldsOneReferenceAndGivesItUpWhenItLetsGo) {
    Probe* root = Probe::create("r");
    root->retain();
    Probe* a = Probe::create("a");
    Probe* b = Probe::create("b");
    Probe* stranger = Probe::create("s");
    stranger->retain();
    root->addChild(a);
    root->addChild(b);
    EXPECT_EQ(a->getRefCount(), 2U);
    drainPool();
    EXPECT_EQ(a->getRefCount(), 1U);

    root->removeChild(stranger);
    EXPECT_EQ(stranger->getRefCount(), 1U);
    EXPECT_EQ(log, "");
    root->removeChild(a);
    EXPECT_EQ(log, "~a");
    EXPECT_EQ(root->getChildRen(), std::vector<Node*>{b});

    b->retain();
    EXPECT_EQ(root->removeFromParent(), nullptr);
    EXPECT_EQ(b->removeFromParent(), root);
    EXPECT_EQ(b->getParent(), nullptr);
    EXPECT_EQ(root->getFirstChild(), nullptr);

    root->addChild(b);
    root->addChild(stranger);
    root->addChild(stranger);
    EXPECT_EQ(root->getChildRenSize(), 3U) << "nothing keeps a node from being listed twice";
    root->removeChild(stranger);
    EXPECT_EQ(stranger->getRefCount(), 2U);
    root->release();
    EXPECT_EQ(log, "~a~r");
    EXPECT_EQ(b->getParent(), nullptr);
    EXPECT_EQ(b->getRefCount() + stranger->getRefCount(), 2U);
    b->release();
    stranger->release();
}

TEST_F(NodeTest, NamesFindTheFirstDirectChild) {
    Node* root = Node::create();
    Probe* first = Probe::create("x");
    Probe* second = Probe::create("x");
    Probe* deep = Probe::create("deep");
    root->addChild(Node::create());
    root->addChild(first);
    root->addChild(second);
    second->addChild(deep);
    EXPECT_EQ(root->getChildByName("x"), first);
    EXPECT_EQ(root->getChildByName("deep"), nullptr);
    EXPECT_EQ(root->getChildByName(""), nullptr) << "a node never named is not one named with the empty text";
    root->removeChildByName("deep");
    root->removeChildByName("x");
    EXPECT_EQ(root->getChildByName("x"), second);
    EXPECT_EQ(root->getAllChild().size(), 2U);
}

TEST_F(NodeTest, ADestructorThatReachesItsFormerParentFindsAWholeList) {
    Node* root = Node::create();
    Probe* a = Probe::create("a");
    Probe* b = Probe::create("b");
    Probe* c = Probe::create("c");
    for (Probe* child : {a, b, c}) {
        root->addChild(child);
    }
    root->retain();
    drainPool();
    a->onGone = [&] {
        EXPECT_EQ(root->getChildRen(), (std::vector<Node*>{b, c}));
        root->removeChild(b);
    };
    root->removeChild(a);
    EXPECT_EQ(log, "~b~a");
    EXPECT_EQ(root->getChildRen(), std::vector<Node*>{c});
    c->onGone = [&] { EXPECT_TRUE(root->getChildRen().empty()); };
    root->release();
    EXPECT_EQ(log, "~b~a~c");
}

TEST_F(NodeTest, ACopyBorrowsUntilAChildIsAdded) {
    Node* root = Node::create();
    Probe* a = Probe::create("a");
    Probe* b = Probe::create("b");
    root->addChild(a);
    root->addChild(b);
    root->setName("root");
    root->setPosition({1.0F, 2.0F});
    {
        const Node copy(*root);
        EXPECT_EQ(copy.getChildRen(), root->getChildRen());
        EXPECT_EQ(copy.getName(), root->getName());
        EXPECT_EQ(copy.getPosition(), root->getPosition());
        Node trimmed(copy);
        trimmed.removeChild(a);
        EXPECT_EQ(trimmed.getChildRenSize(), 1U);
        trimmed.removeAllChildren();
    }
    EXPECT_EQ(a->getRefCount() + b->getRefCount(), 4U) << "copies neither retain nor release";
    EXPECT_EQ(a->getParent(), root);
    {
        Node copy(*root);
        copy.addChild(Probe::create("c"));
        EXPECT_EQ(a->getRefCount(), 3U) << "now it owns what it lists";
    }
    EXPECT_EQ(a->getRefCount() + b->getRefCount(), 4U);
}

TEST_F(NodeTest, AssignmentLetsGoOfWhatTheTargetOwned) {
    Node* target = Node::create();
    target->retain();
    Probe* child = Probe::create("c");
    Probe* grandchild = Probe::create("g");
    child->addChild(grandchild);
    target->addChild(child);
    grandchild->retain();
    drainPool();

    const Node& same = *target;
    *target = same;
    EXPECT_EQ(target->getFirstChild(), child);
    EXPECT_EQ(log, "");

    *target = *child;  // the source dies with the children that the target had
    EXPECT_EQ(log, "~c");
    EXPECT_EQ(target->getFirstChild(), grandchild);
    EXPECT_EQ(grandchild->getRefCount(), 1U);
    delete target;
    EXPECT_EQ(log, "~c");
    grandchild->release();
    EXPECT_EQ(log, "~c~g");
}

}  // namespace
}  // namespace zv::test
