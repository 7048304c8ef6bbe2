#include "gltf/GtNumbers.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "gl/GLEnv.h"
#include "gltf/GtModel.h"

namespace zv::gltf {

namespace {

/// The component types that are read; files number them as GL does.
constexpr int UNSIGNED_BYTE = 5121;
constexpr int UNSIGNED_SHORT = 5123;
constexpr int SIGNED_INT = 5124;
constexpr int UNSIGNED_INT = 5125;
constexpr int FLOAT = 5126;

/// Files are little-endian, and so is every machine that this is built for.
template <class T>
double numberAt(const unsigned char* address) {
    T number;
    std::memcpy(&number, address, sizeof(T));
    return static_cast<double>(number);
}

}  // namespace

GtNumbers::GtNumbers(const GtModel& model, int accessor) {
    const std::size_t readable = model.getReadableBytes(accessor, 0);
    if (readable == 0)
        return;
    const GtAccessor& source = model.accessors[static_cast<std::size_t>(accessor)];
    mFirst = model.getBufferByAccessorIndex(accessor, 0);
    mType = source.componentType;
    mStep = static_cast<std::size_t>(getGLEnumTypeSize(static_cast<unsigned>(mType)));
    // Numbers of unknown size are not read, but a file may not claim more of them than it has bytes either.
    mSize = std::min(static_cast<std::size_t>(std::max(source.count, 0)),
                     readable / std::max<std::size_t>(mStep, 1));
}

double GtNumbers::operator[](std::size_t index) const {
    const unsigned char* address = mFirst + index * mStep;
    switch (mType) {
        case UNSIGNED_BYTE:
            return numberAt<std::uint8_t>(address);
        case UNSIGNED_SHORT:
            return numberAt<std::uint16_t>(address);
        case SIGNED_INT:
            return numberAt<std::int32_t>(address);
        case UNSIGNED_INT:
            return numberAt<std::uint32_t>(address);
        case FLOAT:
            return static_cast<double>(numberAt<float>(address));
        default:
            return 0.0;
    }
}

}  // namespace zv::gltf
