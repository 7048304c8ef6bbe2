#pragma once

#include <array>
#include <cstdint>

#include "core/ZVExport.h"

namespace zv::gltf {

class GtModel;

/// One primitive of a model as a draw needs it: looked up once, at load, and compared with what the file
/// holds, because a model says of itself what it likes and GL reads where it is told to. All sizes and
/// offsets are bytes; a buffer is the GL buffer of a buffer view, so offsets count from the view's start.
struct ZV_API GtDrawCall {
    /// One vertex stream. The location is the kind of the model's attribute, which is numbered alike.
    struct Attribute {
        unsigned int location = 0;
        unsigned int view = 0;
        std::int32_t components = 0;
        unsigned int type = 0;
        std::int32_t stride = 0;  ///< 0: tight
        std::uint32_t offset = 0;
    };

    std::int32_t node = 0;
    std::uint32_t key = 0;  ///< of the vertex array: mesh x 100 + primitive
    std::array<Attribute, 4> attributes;
    std::uint32_t attributeCount = 0;
    std::uint64_t vertices = 0;  ///< how many every stream holds: what an index must stay below
    std::uint32_t indexView = 0;
    unsigned int indexType = 0;
    std::int32_t indexCount = 0;
    std::uint32_t indexOffset = 0;  ///< the accessor's; an animation may read elsewhere
    unsigned int mode = 0;
    std::uint32_t image = 0;
    /// The call of the list whose vertex array this one is drawn with: itself, or, where keys collide, the
    /// first one with its key.
    std::size_t layout = 0;
    std::int64_t checkedOffset = -1;
    bool checkedFits = false;

    /// Looks up a primitive. Both indices must be valid.
    /// @return false for one that cannot be drawn: it lacks a position, indices or an image, or states a
    ///   layout that leaves its buffers or that GL does not know.
    bool lookUp(const GtModel& model, std::int32_t mesh, std::int32_t primitive);
    bool has(unsigned int location) const;

    /// Whether the indices from `offset` on lie within the index buffer of `source` and select only vertices
    /// that it has. Reads them all, so the answer is kept until another offset is asked for.
    bool indicesFit(const GtModel& model, const GtDrawCall& source, std::int64_t offset);
};

/// Whether a buffer view lies within its buffer.
ZV_API bool isViewInside(const GtModel& model, std::int64_t view);

}  // namespace zv::gltf
