#pragma once

#include "core/ZVExport.h"

namespace zv {

class Node;

/// A link to a node that holds no reference and turns null when the node is destroyed. Only on the node's
/// thread, as nodes themselves.
class ZV_API NodeWeakRef {
public:
    NodeWeakRef() = default;
    NodeWeakRef(const NodeWeakRef& other) { set(other.mNode); }
    NodeWeakRef& operator=(const NodeWeakRef& other) {
        set(other.mNode);
        return *this;
    }
    ~NodeWeakRef() { set(nullptr); }

    Node* get() const { return mNode; }
    void set(Node* node);

    /// Clears every link to `node`, whose destructor calls it.
    static void nodeGone(const Node* node);

private:
    // The links that are set form a list, which is as short as there are chains.
    Node* mNode = nullptr;
    NodeWeakRef* mNext = nullptr;
    NodeWeakRef** mSelf = nullptr;  ///< what points at this link
};

}  // namespace zv
