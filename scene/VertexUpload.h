#pragma once

#include <cstddef>
#include <initializer_list>

#include "core/ZVExport.h"
#include "gl/AttribIndex.h"

namespace zv {

class RenderState;

/// Where a member of a vertex record lies, for glVertexAttribPointer.
struct VertexMember {
    AttribIndex::Enum index;
    int components;
    unsigned int type;  ///< GL enum
    bool normalized;
    std::size_t offset;  ///< in bytes
};

/// The GL side of a drawable that keeps its vertices in memory: a vertex buffer, with a vertex array where
/// the context has them, made at the first use and filled only after the vertices were changed. Only with the
/// drawable's GL context current.
class ZV_API VertexUpload {
public:
    using Layout = std::initializer_list<VertexMember>;

    VertexUpload() = default;
    /// A copy has no GL names and makes its own at its first use.
    VertexUpload(const VertexUpload&) : mDirty(true) {}
    VertexUpload& operator=(const VertexUpload&);
    /// Deletes buffer and vertex array. Asks for no engine, so that it may outlive the one it was drawn by.
    ~VertexUpload();

    /// The next bind() uploads.
    void markDirty() { mDirty = true; }

    /// Binds what is needed to draw `bytes` bytes of vertices that lie `stride` bytes apart.
    void bind(RenderState& state, const void* vertices, std::size_t bytes, int stride, Layout layout,
              const char* label);
    /// Leaves nothing bound and, without vertex arrays, no attribute of the layout enabled.
    static void unbind(RenderState& state, Layout layout);

private:
    unsigned int mVertexArray = 0;
    unsigned int mVertexBuffer = 0;
    bool mDirty = false;
};

}  // namespace zv
