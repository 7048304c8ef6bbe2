#pragma once

#include "core/Ref.h"

namespace zv {

/// The body of every static create(): makes a T and runs `bool initialise(T&)` on it. On true the new object
/// is answered autoreleased, on false it is deleted and null is answered.
template <class T, class Initialise>
T* createRef(Initialise&& initialise) {
    T* object = new T;
    Ref* counted = object;
    if (!initialise(*object)) {
        delete counted;
        return nullptr;
    }
    counted->autorelease();
    return object;
}

}  // namespace zv
