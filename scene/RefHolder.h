#pragma once

namespace zv {

/// The one place that knows how a drawable keeps a counted object: retained when stored, released when
/// replaced or when the holder goes. A copy of a holder only borrows: it shows the same object without a
/// reference of its own, and neither replacing it nor destroying the copy releases that object, which must
/// outlive the borrowing.
/// T needs to be complete only where these operations are used, so keep their users in source files.
template <class T>
class RefHolder {
public:
    RefHolder() = default;
    RefHolder(const RefHolder& other) : mObject(other.mObject), mBorrowed(true) {}
    RefHolder& operator=(const RefHolder& other) {
        if (this != &other && mObject != other.mObject) {
            drop();
            mObject = other.mObject;
            mBorrowed = true;
        }
        return *this;
    }
    ~RefHolder() { drop(); }

    T* get() const { return mObject; }

    /// The setter rule: releases the old object, retains the new one; the same pointer changes nothing.
    void set(T* object) {
        if (object != mObject) {
            replace(object);
        }
    }

    /// Releases the old object before the new one is retained, also when both are the same. The object that
    /// only this holder kept alive is gone when it is handed over again: the holder is empty afterwards.
    void replace(T* object) {
        const bool goes = object && object == mObject && !mBorrowed && object->getRefCount() == 1;
        drop();
        if (object && !goes) {
            object->retain();
            mObject = object;
        }
    }

private:
    void drop() {
        T* object = mObject;
        const bool owned = !mBorrowed;
        mObject = nullptr;
        mBorrowed = false;
        if (object && owned) {
            object->release();
        }
    }

    T* mObject = nullptr;
    bool mBorrowed = false;
};

}  // namespace zv
