#include "scene/Node.h"

#include <algorithm>

#include "core/RefCreate.h"
#include "scene/NodeWeakRef.h"

namespace zv {

Node::Node() = default;

Node::Node(const Node& other)
    : Ref(other),
      mPosition(other.mPosition),
      mContentSize(other.mContentSize),
      mLocalZOrder(other.mLocalZOrder),
      mChildren(other.mChildren),
      mParent(other.mParent),
      mScale(other.mScale),
      mName(other.mName),
      mChildrenUnsorted(other.mChildrenUnsorted),
      mBorrowsChildren(true) {}

Node& Node::operator=(const Node& other) {
    if (this == &other) {
        return *this;
    }
    // The source may be one of the children that this node is about to let go: they go last.
    Node former;
    former.mChildren.swap(mChildren);
    former.mBorrowsChildren = mBorrowsChildren;
    Ref::operator=(other);
    mPosition = other.mPosition;
    mContentSize = other.mContentSize;
    mLocalZOrder = other.mLocalZOrder;
    mChildren = other.mChildren;
    mParent = other.mParent;
    mScale = other.mScale;
    mName = other.mName;
    mChildrenUnsorted = other.mChildrenUnsorted;
    mBorrowsChildren = true;
    return *this;
}

Node::~Node() {
    NodeWeakRef::nodeGone(this);
    removeAllChildren();
}

Node* Node::create() {
    return createRef<Node>([](Node& node) { return node.init(); });
}

bool Node::init() {
    return true;
}

void Node::update(float dt) {
    onUpdateSelf(dt);
    const std::size_t count = mChildren.size();
    // The second bound keeps a child that removes a sibling against the rule from reading past the list.
    for (std::size_t i = 0; i < count && i < mChildren.size(); ++i) {
        mChildren[i]->update(dt);
    }
}

void Node::onUpdateSelf(float) {}

void Node::setContentSize(const TVec<2, float>& size) {
    mContentSize = size;
}

const TVec<2, float>& Node::getContentSize() const {
    return mContentSize;
}

void Node::setName(const std::string& name) {
    mName = HashString(name);
}

const HashString& Node::getName() const {
    return mName;
}

void Node::onDraw(const Mat4& matrix) {
    onDrawSelf(matrix);
    // With one child or none the mark stays, to no effect but a sort of a later pair.
    if (mChildrenUnsorted && mChildren.size() > 1) {
        std::stable_sort(mChildren.begin(), mChildren.end(),
                         [](const Node* a, const Node* b) { return a->mLocalZOrder < b->mLocalZOrder; });
        mChildrenUnsorted = false;
    }
    const std::size_t count = mChildren.size();
    for (std::size_t i = 0; i < count && i < mChildren.size(); ++i) {
        mChildren[i]->onDraw(matrix);
    }
}

void Node::onDrawSelf(const Mat4&) {}

void Node::addChild(Node* child) {
    ownBorrowedChildren();
    child->retain();
    child->setParent(this);
    mChildren.push_back(child);
    mChildrenUnsorted = true;
}

void Node::removeChild(Node* child) {
    const auto found = std::find(mChildren.begin(), mChildren.end(), child);
    if (found != mChildren.end()) {
        removeChildAt(static_cast<std::size_t>(found - mChildren.begin()));
    }
}

void Node::removeChildByName(const std::string& name) {
    if (Node* child = getChildByName(name)) {
        removeChild(child);
    }
}

Node* Node::getChildByName(const std::string& name) const {
    const HashString wanted(name);
    for (Node* child : mChildren) {
        if (child->getName() == wanted) {
            return child;
        }
    }
    return nullptr;
}

Node* Node::removeFromParent() {
    Node* parent = mParent;
    if (parent) {
        parent->removeChild(this);
    }
    return parent;
}

void Node::removeAllChildren() {
    // A child's destructor may reach this node: it finds the list empty, not half released.
    std::vector<Node*> children;
    children.swap(mChildren);
    if (!mBorrowsChildren) {
        for (Node* child : children) {
            child->setParent(nullptr);
            child->release();
        }
    }
    mBorrowsChildren = false;
    if (mChildren.empty()) {
        children.clear();
        mChildren.swap(children);  // keeps the capacity
    }
}

void Node::removeChildAt(std::size_t index) {
    Node* child = mChildren[index];
    // Out of the list before its last reference may go, so that its destructor finds the list whole.
    mChildren.erase(mChildren.begin() + static_cast<std::ptrdiff_t>(index));
    if (!mBorrowsChildren) {
        child->setParent(nullptr);
        child->release();
    }
}

void Node::ownBorrowedChildren() {
    if (mBorrowsChildren) {
        for (Node* child : mChildren) {
            child->retain();
        }
        mBorrowsChildren = false;
    }
}

}  // namespace zv
