#include "gltf/GtModel.h"

#include <algorithm>
#include <cstdint>

namespace zv::gltf {

namespace {

/// Where an element lies. Sums and products are checked, so that none of the file's numbers wraps around.
struct Place {
    unsigned char* address = nullptr;
    std::size_t readable = 0;
};

template <class T>
const T* elementAt(const UniqueDataPtr<T>& array, int index) {
    const bool inside = index >= 0 && static_cast<std::uint64_t>(index) < array.size();
    return inside ? array.get(static_cast<std::size_t>(index)) : nullptr;
}

Place locate(const GtModel& model, int accessorIndex, std::uint64_t element) {
    const GtAccessor* accessor = elementAt(model.accessors, accessorIndex);
    const GtBufferView* view = accessor ? elementAt(model.bufferViews, accessor->bufferView) : nullptr;
    const UniqueDataPtr<unsigned char>* buffer = view ? elementAt(model.buffers, view->buffer) : nullptr;
    if (buffer == nullptr)
        return {};
    std::uint64_t offset = std::uint64_t{view->byteOffset} + accessor->byteOffset;
    if (offset >= buffer->size())
        return {};
    if (view->byteStride != 0) {
        if (element > (buffer->size() - 1 - offset) / view->byteStride)
            return {};
        offset += element * view->byteStride;
    }
    const std::uint64_t end =
        std::min<std::uint64_t>(std::uint64_t{view->byteOffset} + view->byteLength, buffer->size());
    return {buffer->get(static_cast<std::size_t>(offset)),
            static_cast<std::size_t>(end > offset ? end - offset : 0)};
}

}  // namespace

GtModel::GtModel() = default;
GtModel::GtModel(GtModel&&) noexcept = default;
GtModel& GtModel::operator=(GtModel&&) noexcept = default;
GtModel::~GtModel() = default;

unsigned char* GtModel::getBufferByAccessorIndex(int accessor, std::size_t element) const {
    return locate(*this, accessor, element).address;
}

std::size_t GtModel::getReadableBytes(int accessor, std::size_t element) const {
    return locate(*this, accessor, element).readable;
}

}  // namespace zv::gltf
