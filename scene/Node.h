#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/HashString.h"
#include "core/Mat4.h"
#include "core/Ref.h"
#include "core/TVec.h"
#include "core/ZVExport.h"

namespace zv {

/// Element of the scene graph: a counted object with a position, a size, a scale, a draw order among its
/// siblings, a name and an ordered list of children. A node draws nothing itself; it drives the update and
/// the draw pass over its subtree. Transforms are not composed: every child gets the matrix of its parent
/// unchanged and applies its own position and scale.
/// Used only on the thread to which its engine is current.
class ZV_API Node : public Ref {
public:
    Node();

    /// A copy takes every field as it stands, the parent and the list of children included, and only borrows
    /// the children: it retains none, releases none, and must not outlive them. The children's parent stays
    /// the node copied from. The first addChild() on a copy gives it references of its own to all it lists.
    Node(const Node& other);
    Node& operator=(const Node& other);

    /// Releases the children. The node does not detach itself from its parent.
    ~Node() override;

    virtual bool init();

    /// Runs onUpdateSelf() and then update() of each child, in the order of the children at that moment. A
    /// child must not add or remove siblings meanwhile.
    virtual void update(float dt);

    /// Hook for the work of this node alone; empty here. @param dt seconds
    virtual void onUpdateSelf(float dt);

    virtual void setContentSize(const TVec<2, float>& size);
    virtual const TVec<2, float>& getContentSize() const;

    virtual void setName(const std::string& name);
    virtual const HashString& getName() const;

    /// Draws this node, then its children by ascending local Z order, equal ones in the order of addition.
    /// The children are sorted only when one was added since the last draw.
    virtual void onDraw(const Mat4& matrix);

    /// Hook that draws this node alone; empty here.
    virtual void onDrawSelf(const Mat4& matrix);

    /// Autoreleased; null when init() fails.
    static Node* create();

    void setPosition(const TVec<2, float>& position) { mPosition = position; }
    const TVec<2, float>& getPosition() const { return mPosition; }

    void setScaleX(float x) { mScale.x = x; }
    void setScaleY(float y) { mScale.y = y; }
    void setScale(float both) { mScale = TVec<2, float>(both, both); }
    void setScale(const TVec<2, float>& scale) { mScale = scale; }
    const TVec<2, float>& getScale() const { return mScale; }
    float getScaleX() const { return mScale.x; }
    float getScaleY() const { return mScale.y; }

    /// A new order of a node that already has a parent shows only after another child was added to that
    /// parent: setting it does not ask for a sort.
    void setLocalZOrder(int order) { mLocalZOrder = order; }
    int getLocalZOrder() const { return mLocalZOrder; }

    /// A plain link without a reference; addChild() and removeChild() keep it.
    void setParent(Node* parent) { mParent = parent; }
    Node* getParent() const { return mParent; }

    /// Retains the child and appends it. Checks neither for null nor for another parent nor for a second
    /// entry: a node that sits under another parent ends up in both lists, so detach it first.
    void addChild(Node* child);

    /// Clears the child's parent and releases it, which may delete it. Nothing for a node that is no child.
    void removeChild(Node* child);

    /// Removes the first child of that name, if there is one.
    void removeChildByName(const std::string& name);

    /// First direct child of that name in the present order, or null. A node never named is not found by "".
    Node* getChildByName(const std::string& name) const;

    /// Former parent, or null when there was none.
    Node* removeFromParent();

    void removeAllChildren();

    /// A snapshot that holds no references.
    std::vector<Node*> getAllChild() const { return mChildren; }
    /// The live list.
    const std::vector<Node*>& getChildRen() const { return mChildren; }
    /// Null when there are no children.
    Node* getFirstChild() const { return mChildren.empty() ? nullptr : mChildren.front(); }
    std::uint64_t getChildRenSize() const { return mChildren.size(); }

private:
    void removeChildAt(std::size_t index);
    void ownBorrowedChildren();

    TVec<2, float> mPosition;
    TVec<2, float> mContentSize;
    std::int32_t mLocalZOrder = 0;
    std::vector<Node*> mChildren;
    Node* mParent = nullptr;
    TVec<2, float> mScale{1.0F, 1.0F};
    HashString mName;
    bool mChildrenUnsorted = false;
    bool mBorrowsChildren = false;  ///< set in a copy, which releases none of the children it lists
};

}  // namespace zv
