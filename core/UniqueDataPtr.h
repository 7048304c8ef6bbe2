#pragma once

#include <new>
#include <utility>

#include "core/DataPtr.h"

namespace zv {

/// Owns an array of elements made with array new: every raw block that crosses an interface. It can be moved,
/// not copied. Elements of plain types start uninitialised.
template <class T>
class UniqueDataPtr : public DataPtr<T> {
public:
    UniqueDataPtr() = default;
    /// Allocates n elements; when there is no memory for them the buffer stays empty.
    explicit UniqueDataPtr(std::size_t n) { allocate(n); }
    UniqueDataPtr(const UniqueDataPtr&) = delete;
    UniqueDataPtr& operator=(const UniqueDataPtr&) = delete;
    /// The source is left empty.
    UniqueDataPtr(UniqueDataPtr&& other) noexcept { *this = std::move(other); }
    UniqueDataPtr& operator=(UniqueDataPtr&& other) noexcept {
        if (this != &other) {
            reset(other.mData, static_cast<std::size_t>(other.mSize));
            other.forget();
        }
        return *this;
    }

    T* get(std::size_t index) const override { return mData + index; }
    /// Reallocates and never keeps elements. When there is no memory for n elements the buffer is left empty.
    void resize(std::size_t n) override {
        T* old = mData;
        allocate(n);
        delete[] old;
    }
    /// Handing in the array that is owned already changes the count only.
    void reset(T* data, std::size_t n) override {
        T* old = mData;
        mData = data;
        this->mSize = n;
        if (old != data)
            delete[] old;
    }
    void reset() override { reset(nullptr, 0); }
    ~UniqueDataPtr() override { delete[] mData; }

private:
    void allocate(std::size_t n) {
        // Array new may throw, nothrow or not, when the size in bytes overflows: that far it is not asked.
        mData = n <= PTRDIFF_MAX / 2 / sizeof(T) ? new (std::nothrow) T[n] : nullptr;
        this->mSize = mData != nullptr ? n : 0;
    }
    void forget() {
        mData = nullptr;
        this->mSize = 0;
    }

    T* mData = nullptr;
};

}  // namespace zv
