#pragma once

#include "algorithm/AlgBizBase.h"

namespace kel_algorithm {

// Copies for the consumers of one list. A destination that has the right number of elements keeps its memory.
template <class T>
void copyElement(const T& from, T& to) {
    to = from;
}

template <class T>
void copyElement(const zv::UniqueDataPtr<T>& from, zv::UniqueDataPtr<T>& to) {
    const std::size_t count = static_cast<std::size_t>(from.size());
    if (to.size() != count) {
        to.resize(count);
    }
    const std::size_t room = static_cast<std::size_t>(to.size());
    for (std::size_t i = 0; i < room; ++i) {
        copyElement(from[i], to[i]);
    }
}

inline void copyElement(const AlgFaceMesh& from, AlgFaceMesh& to) {
    to.faceId = from.faceId;
    to.pose = from.pose;
    copyElement(from.vertices, to.vertices);
    copyElement(from.indices, to.indices);
}

template <class List>
void AlgBizBase::deliver(List& list, List& spare, std::int32_t mask,
                         std::function<void(List&)> AlgBizFunc::*callback) {
    if (mDelivering) {
        return;
    }
    const RunScope scope(*this);
    const auto takes = [&](const AlgBizFunc& func) { return (func.type & mask) != 0 && func.*callback; };
    mDelivering = true;
    mNext = 0;
    while (mNext < mEnd) {
        // Held here, since the callback may unregister itself, and with it the callable that is running.
        const std::shared_ptr<AlgBizFunc> func = mFuncs[mNext++];
        if (!takes(*func)) {
            continue;
        }
        bool isLast = true;
        for (std::size_t i = mNext; i < mEnd && isLast; ++i) {
            isLast = !takes(*mFuncs[i]);
        }
        if (!isLast) {
            copyElement(list, spare);
        }
        ((*func).*callback)(isLast ? list : spare);
    }
    mDelivering = false;
}

}  // namespace kel_algorithm
