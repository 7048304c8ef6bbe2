#pragma once

#include <cstddef>
#include <cstdint>

namespace zv {

/// A typed buffer of counted elements, seen without knowing who owns them. Copying and moving this base carry
/// the count only.
template <class T>
class DataPtr {
public:
    DataPtr() = default;
    DataPtr(const DataPtr&) = default;
    DataPtr(DataPtr&&) noexcept = default;
    DataPtr& operator=(const DataPtr&) = default;
    DataPtr& operator=(DataPtr&&) noexcept = default;

    /// Pointer to an element; no bounds check.
    virtual T* get(std::size_t index) const = 0;
    /// Undefined on an empty buffer: it asks for the element before the first.
    virtual T* getLast() { return get(static_cast<std::size_t>(mSize - 1)); }
    /// Replaces the elements by n fresh ones; the old contents are gone.
    virtual void resize(std::size_t n) = 0;
    /// Takes ownership of n elements made with array new.
    virtual void reset(T* data, std::size_t n) = 0;
    /// Leaves no elements.
    virtual void reset() = 0;
    virtual ~DataPtr() = default;

    /// Number of elements.
    std::uint64_t size() const { return mSize; }
    T& operator[](std::size_t index) const { return *get(index); }

protected:
    std::uint64_t mSize = 0;
};

}  // namespace zv
