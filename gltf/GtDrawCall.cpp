#include "gltf/GtDrawCall.h"

#include <GL/glew.h>

#include <cstring>

#include "gl/AttribIndex.h"
#include "gl/GLEnv.h"
#include "gltf/GtModel.h"

namespace zv::gltf {

namespace {

constexpr std::uint32_t kKeysOfMesh = 100;
constexpr unsigned int kLargestStride = 2048;  // what every GL takes

using Kind = GtPrimitive::Attribute;
static_assert(Kind::POSITION == AttribIndex::POSITION && Kind::TEXCOORD_0 == AttribIndex::TEXCOORD0 &&
                  Kind::JOINTS_0 == AttribIndex::JOINT && Kind::WEIGHTS_0 == AttribIndex::WEIGHT,
              "the kind of an attribute is its location");

template <class T>
const T* elementOf(const UniqueDataPtr<T>& list, std::int64_t index) {
    const bool inside = index >= 0 && static_cast<std::uint64_t>(index) < list.size();
    return inside ? list.get(static_cast<std::size_t>(index)) : nullptr;
}

/// Components of an accessor type code, 0 for one that is no stream of vertices.
int componentsOf(int type) {
    switch (type) {
        case GtAccessor::SCALAR:
            return 1;
        case GtAccessor::VEC2:
            return 2;
        case GtAccessor::VEC3:
            return 3;
        case GtAccessor::VEC4:
            return 4;
        default:
            return 0;
    }
}

bool isKnownKind(unsigned int kind) {
    return kind == Kind::POSITION || kind == Kind::TEXCOORD_0 || kind == Kind::JOINTS_0 ||
           kind == Kind::WEIGHTS_0;
}

/// How many elements of a stream lie wholly inside the view.
std::uint64_t elementsInside(const GtBufferView& view, const GtDrawCall::Attribute& attribute) {
    const auto size = static_cast<std::uint64_t>(attribute.components) *
                      static_cast<std::uint64_t>(getGLEnumTypeSize(attribute.type));
    const std::uint64_t stride = attribute.stride != 0 ? static_cast<std::uint64_t>(attribute.stride) : size;
    const std::uint64_t first = attribute.offset + size;
    return first > view.byteLength ? 0 : (view.byteLength - first) / stride + 1;
}

bool lookUpAttribute(const GtModel& model, const GtPrimitive::Attribute& from, GtDrawCall::Attribute& to,
                     std::uint64_t& vertices) {
    const GtAccessor* accessor = elementOf(model.accessors, from.accessor);
    if (!accessor || !isViewInside(model, accessor->bufferView)) {
        return false;
    }
    const GtBufferView& view = *elementOf(model.bufferViews, accessor->bufferView);
    to.location = from.kind;
    to.view = static_cast<unsigned int>(accessor->bufferView);
    to.components = componentsOf(accessor->type);
    to.type = static_cast<unsigned int>(accessor->componentType);
    to.stride = static_cast<std::int32_t>(view.byteStride);
    to.offset = accessor->byteOffset;
    const bool isKnown = to.components != 0 && getGLEnumTypeSize(to.type) != 0;
    // A joint selects a bone in the shader: of a float that is no number nobody knows which.
    if (!isKnown || view.byteStride > kLargestStride ||
        (to.location == Kind::JOINTS_0 && to.type == GL_FLOAT)) {
        return false;
    }
    const std::uint64_t inside = elementsInside(view, to);
    vertices = inside < vertices ? inside : vertices;
    return inside > 0;
}

/// The image that a material shows, -1 for none.
std::int64_t imageOf(const GtModel& model, int material) {
    const GtMaterial* shown = elementOf(model.materials, material);
    const GtTexture* texture =
        shown ? elementOf(model.textures, shown->pbrMetallicRoughness.baseColorTexture.index) : nullptr;
    return texture && elementOf(model.images, texture->source) ? texture->source : -1;
}

template <class Index>
bool allBelow(const unsigned char* bytes, std::int32_t count, std::uint64_t limit) {
    for (std::int32_t i = 0; i < count; ++i, bytes += sizeof(Index)) {
        Index index;  // a view may start at any byte
        std::memcpy(&index, bytes, sizeof(index));
        if (index >= limit) {
            return false;
        }
    }
    return true;
}

bool indicesBelow(const unsigned char* bytes, unsigned int type, std::int32_t count, std::uint64_t limit) {
    switch (type) {
        case GL_UNSIGNED_BYTE:
            return allBelow<std::uint8_t>(bytes, count, limit);
        case GL_UNSIGNED_SHORT:
            return allBelow<std::uint16_t>(bytes, count, limit);
        default:
            return allBelow<std::uint32_t>(bytes, count, limit);
    }
}

}  // namespace

bool isViewInside(const GtModel& model, std::int64_t view) {
    const GtBufferView* found = elementOf(model.bufferViews, view);
    const UniqueDataPtr<unsigned char>* buffer = found ? elementOf(model.buffers, found->buffer) : nullptr;
    return buffer && static_cast<std::uint64_t>(found->byteOffset) + found->byteLength <= buffer->size();
}

bool GtDrawCall::has(unsigned int location) const {
    for (std::uint32_t i = 0; i < attributeCount; ++i) {
        if (attributes[i].location == location) {
            return true;
        }
    }
    return false;
}

bool GtDrawCall::lookUp(const GtModel& model, std::int32_t mesh, std::int32_t primitive) {
    const GtPrimitive& from =
        model.meshes[static_cast<std::size_t>(mesh)].primitives[static_cast<std::size_t>(primitive)];
    key = static_cast<std::uint32_t>(mesh) * kKeysOfMesh + static_cast<std::uint32_t>(primitive);
    vertices = UINT64_MAX;
    for (std::size_t i = 0; i < from.attributes.size(); ++i) {
        const GtPrimitive::Attribute& attribute = from.attributes[i];
        // Attributes of no known name have the kind of a position. The first of that kind is the position.
        if (!isKnownKind(attribute.kind) || has(attribute.kind)) {
            continue;
        }
        if (!lookUpAttribute(model, attribute, attributes[attributeCount], vertices)) {
            return false;
        }
        ++attributeCount;
    }
    const GtAccessor* indices = elementOf(model.accessors, from.indices);
    const std::int64_t shown = imageOf(model, from.material);
    if (!has(Kind::POSITION) || !indices || !isViewInside(model, indices->bufferView) || shown < 0) {
        return false;
    }
    indexView = static_cast<std::uint32_t>(indices->bufferView);
    indexType = static_cast<unsigned int>(indices->componentType);
    indexCount = indices->count;
    indexOffset = indices->byteOffset;
    mode = static_cast<unsigned int>(from.mode);
    image = static_cast<std::uint32_t>(shown);
    const bool isIndex =
        indexType == GL_UNSIGNED_BYTE || indexType == GL_UNSIGNED_SHORT || indexType == GL_UNSIGNED_INT;
    return isIndex && indexCount > 0 && from.mode >= GL_POINTS && from.mode <= GL_TRIANGLE_FAN;
}

bool GtDrawCall::indicesFit(const GtModel& model, const GtDrawCall& source, std::int64_t offset) {
    if (offset == checkedOffset) {
        return checkedFits;
    }
    checkedOffset = offset;
    checkedFits = false;
    const GtBufferView& view = model.bufferViews[source.indexView];
    const auto size = static_cast<std::int64_t>(getGLEnumTypeSize(indexType));
    const std::int64_t bytes = size * indexCount;
    // GL wants indices at multiples of their size.
    if (offset < 0 || offset % size != 0 || bytes > view.byteLength || offset > view.byteLength - bytes) {
        return false;
    }
    const unsigned char* first =
        model.buffers[static_cast<std::size_t>(view.buffer)].get(0) + view.byteOffset;
    checkedFits = indicesBelow(first + offset, indexType, indexCount, source.vertices);
    return checkedFits;
}

}  // namespace zv::gltf
