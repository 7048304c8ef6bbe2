#pragma once

#include <cstddef>

namespace zv::gltf {

class GtModel;

/// The numbers of an accessor, one after the other, as animations take them: tightly packed whatever stride
/// the view has, and as many as the accessor claims and its view really holds. Borrows from the model.
class GtNumbers {
public:
    /// Holds none when the accessor does not exist or lies outside its buffer.
    GtNumbers(const GtModel& model, int accessor);

    std::size_t size() const { return mSize; }
    /// Exact for every type. Signed 8 and 16 bit types, and those that GL does not know, read as 0.
    /// @param index below size()
    double operator[](std::size_t index) const;

private:
    const unsigned char* mFirst = nullptr;
    std::size_t mSize = 0;
    std::size_t mStep = 0;  ///< 0 for a type of unknown size
    int mType = 0;
};

}  // namespace zv::gltf
