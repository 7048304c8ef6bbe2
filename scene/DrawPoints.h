#pragma once

#include <cstddef>
#include <vector>

#include "core/TVec.h"
#include "core/VertexFormats.h"
#include "core/ZVExport.h"
#include "scene/IBlend.h"
#include "scene/IProgram.h"
#include "scene/Node.h"
#include "scene/VertexUpload.h"

namespace zv {

/// Draws coloured round points, each of its own size, in one call, for overlays such as the points of a face.
/// Positions are clip coordinates (-1 to 1 across the view port, y up); node position, scale and matrix are
/// not applied. Vertices are kept until clear() and uploaded at the first draw after a change.
/// The rim is softened through alpha, which needs a blend function that weighs by it
/// (BlendFunc::ALPHA_NON_PREMULTIPLIED or ADDITIVE); without blending the rim is half a pixel larger and
/// hard. Only on the engine's thread with its GL context current. A copy draws the same, with GL names of its
/// own.
class ZV_API DrawPoints : public Node, public virtual IBlend, public virtual IProgram {
public:
    DrawPoints() = default;

    static DrawPoints* create();

    /// True, always: without its shader files the node draws nothing. Leaves its program in use.
    bool init() override;

    /// Appends `count` points.
    /// @param size diameter in pixels; below 1 draws as 1. Every driver has a largest size.
    void addPoints(const TVec<2, float>* points, std::size_t count, float size, const Color4B& color);

    /// Draws nothing from now on. Memory and GL buffer stay for the next vertices.
    void clear() { mVertices.clear(); }

    void onDrawSelf(const Mat4& matrix) override;

private:
    std::vector<V2F_C4B_T2F> mVertices;  ///< the texture coordinates hold (size, 0)
    VertexUpload mUpload;
    bool mProfileKnown = false;
    bool mNeedsSprites = false;  ///< whether the place inside a point must be switched on in this context
};

}  // namespace zv
