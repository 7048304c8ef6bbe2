#include "scene/NodeWeakRef.h"

namespace zv {

namespace {

thread_local NodeWeakRef* tFirst = nullptr;

}  // namespace

void NodeWeakRef::set(Node* node) {
    if (mNode == nullptr && node != nullptr) {
        mNext = tFirst;
        if (mNext != nullptr) {
            mNext->mSelf = &mNext;
        }
        mSelf = &tFirst;
        tFirst = this;
    } else if (mNode != nullptr && node == nullptr) {
        *mSelf = mNext;
        if (mNext != nullptr) {
            mNext->mSelf = mSelf;
        }
        mNext = nullptr;
        mSelf = nullptr;
    }
    mNode = node;
}

void NodeWeakRef::nodeGone(const Node* node) {
    NodeWeakRef* next = nullptr;
    for (NodeWeakRef* link = tFirst; link != nullptr; link = next) {
        next = link->mNext;
        if (link->mNode == node) {
            link->set(nullptr);
        }
    }
}

}  // namespace zv
