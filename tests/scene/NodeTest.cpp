#include "scene/Node.h"

#include <algorithm>
#include <functional>
#include <string>

#include "core/RefCreate.h"
#include "support/GLTest.h"

namespace zv::test {
namespace {

/// What happened to the nodes of the running test. Outlives the test's body: the last drain comes after it.
std::string log;

/// What every test draws with: it reaches every depth unchanged.
const Mat4 kMatrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);

using NodeTest = GLTest;

/// Writes down what happens to it.
class Probe : public Node {
public:
    ~Probe() override {
        onGone();
        log += "~" + getName().str();
    }
    void onUpdateSelf(float dt) override { log += getName().str() + (dt == 0.25F ? " " : "! "); }
    void onDrawSelf(const Mat4& matrix) override {
        log += getName().str() + (std::equal(kMatrix.m, kMatrix.m + 16, matrix.m) ? "" : "!");
    }

    std::function<void()> onGone = [] {};
};

Probe* probe(const std::string& name, Node* parent = nullptr, int zOrder = 0) {
    Probe* made = createRef<Probe>([](Probe&) { return true; });
    made->setName(name);
    made->setLocalZOrder(zOrder);
    if (parent) {
        parent->addChild(made);
    }
    return made;
}

std::string drawn(Node* node) {
    log.clear();
    node->onDraw(kMatrix);
    return log;
}

std::string updated(Node* node) {
    log.clear();
    node->update(0.25F);
    return log;
}

TEST_F(NodeTest, DrawSortsByZOrderAfterAnAdditionAndUpdateFollowsTheList) {
    Probe* root = probe("r");
    Probe* first = probe("c", root, 2);
    probe("c1", first)->setPosition({5.0F, 6.0F});
    first->setScale(3.0F);
    std::string many;
    for (char name = 'd'; name <= 'z'; ++name) {  // more than an unstable sort leaves in order
        probe(std::string(1, name), root, 2);
        many += name;
    }
    probe("a", root, 1);
    EXPECT_EQ(updated(root).substr(0, 9), "r c c1 d ") << "not sorted yet";
    EXPECT_EQ(drawn(root), "racc1" + many);
    EXPECT_EQ(updated(root).substr(0, 9), "r a c c1 ");
    first->setLocalZOrder(-1);
    EXPECT_EQ(drawn(root), "racc1" + many) << "a new order alone asks for no sort";
    probe("b", root, 1);
    EXPECT_EQ(drawn(root), "rcc1ab" + many);
}

TEST_F(NodeTest, AParentHoldsOneReferenceAndGivesItUpWhenItLetsGo) {
    Probe* root = probe("r");
    root->retain();
    root->addChild(Node::create());
    probe("a", root);
    Probe* b = probe("a", root);
    Probe* stranger = probe("s", b);
    stranger->retain();
    drainPool();
    EXPECT_EQ(b->getRefCount(), 1U);
    log.clear();
    root->removeChild(stranger);
    root->removeChildByName("s");
    EXPECT_EQ(stranger->getRefCount(), 2U) << "not a direct child";
    root->removeChildByName("a");
    EXPECT_EQ(log, "~a");
    EXPECT_EQ(root->getChildByName("a"), b) << "the first of that name went";
    EXPECT_EQ(root->getChildByName(""), nullptr) << "a node never named is not one named with the empty text";

    EXPECT_EQ(root->removeFromParent(), nullptr);
    EXPECT_EQ(stranger->removeFromParent(), b);
    EXPECT_EQ(stranger->getParent(), nullptr);
    for (int i = 0; i < 2; ++i) {
        root->addChild(stranger);
    }
    EXPECT_EQ(stranger->getRefCount(), 3U) << "nothing keeps a node from being listed twice";
    root->removeChild(stranger);
    EXPECT_EQ(stranger->getRefCount(), 2U);
    root->release();
    EXPECT_EQ(log, "~a~r~a");
    EXPECT_EQ(stranger->getParent(), nullptr);
    stranger->release();
}

TEST_F(NodeTest, ADestructorThatReachesItsFormerParentFindsAWholeList) {
    Node* root = Node::create();
    Probe* a = probe("a", root);
    Probe* b = probe("b", root);
    Probe* c = probe("c", root);
    root->retain();
    drainPool();
    log.clear();
    a->onGone = [&] {
        EXPECT_EQ(root->getChildRen(), (std::vector<Node*>{b, c}));
        root->removeChild(b);
    };
    root->removeChild(a);
    EXPECT_EQ(log, "~b~a");
    c->onGone = [&] { EXPECT_TRUE(root->getChildRen().empty()); };
    root->release();
    EXPECT_EQ(log, "~b~a~c");
}

TEST_F(NodeTest, ACopyBorrowsUntilAChildIsAddedAndAnAssignmentLetsGo) {
    Node* root = Node::create();
    Probe* a = probe("a", root);
    probe("b", root);
    {
        Node copy(*root);
        Node trimmed(copy);
        trimmed.removeChild(a);
        EXPECT_EQ(trimmed.getChildRenSize(), 1U);
        EXPECT_EQ(a->getRefCount(), 2U) << "copies neither retain nor release";
        EXPECT_EQ(a->getParent(), root);
        probe("c", &copy);
        EXPECT_EQ(a->getRefCount(), 3U) << "now it owns what it lists";
    }
    EXPECT_EQ(a->getRefCount(), 2U);

    Probe* grandchild = probe("g", a);
    grandchild->retain();
    root->retain();
    drainPool();
    log.clear();
    const Node& same = *root;
    *root = same;
    EXPECT_EQ(log, "");
    *root = *a;  // the source dies with the children that the target had
    EXPECT_EQ(log, "~a~b");
    EXPECT_EQ(root->getFirstChild(), grandchild);
    delete root;
    EXPECT_EQ(grandchild->getRefCount(), 1U);
    grandchild->release();
}

}  // namespace
}  // namespace zv::test
