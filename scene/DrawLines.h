#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/TVec.h"
#include "core/VertexFormats.h"
#include "core/ZVExport.h"
#include "scene/IBlend.h"
#include "scene/IProgram.h"
#include "scene/Node.h"
#include "scene/VertexUpload.h"

namespace zv {

/// Draws coloured line segments in one call, for overlays such as the outlines of a face. Positions are clip
/// coordinates (-1 to 1 across the view port, y up); node position, scale and matrix are not applied.
/// Vertices are kept until clear() and uploaded at the first draw after a change.
/// Only on the engine's thread with its GL context current. A copy draws the same, with GL names of its own.
class ZV_API DrawLines : public Node, public virtual IBlend, public virtual IProgram {
public:
    DrawLines() = default;

    /// @param lineWidth as for setLineWidth()
    static DrawLines* create(unsigned short lineWidth);

    /// Width in pixels for all segments. 0 draws as 1, the least that GL has. A context may draw less than it
    /// is asked for: core contexts need not draw lines wider than 1, forward-compatible ones never do, and
    /// every driver has a limit.
    void setLineWidth(unsigned short width) { mLineWidth = width; }

    /// Appends the segments between neighbours among `count` points, and when `closed` one from the last
    /// point back to the first. A single point gives nothing when open, a segment without length when closed.
    void addPoly(const TVec<2, float>* points, std::size_t count, bool closed, const Color4B& color);

    /// Draws nothing from now on. Memory and GL buffer stay for the next vertices.
    void clear() { mVertices.clear(); }

    void onDrawSelf(const Mat4& matrix) override;

    using Node::init;

protected:
    /// True, always: without its shader files the node draws nothing.
    virtual bool init(unsigned short lineWidth);

private:
    std::vector<V2F_C4B> mVertices;  ///< two a segment
    VertexUpload mUpload;
    std::uint16_t mLineWidth = 1;
    bool mWideLinesKnown = false;
    bool mWideLines = false;  ///< whether the context takes a width above 1 without an error
};

}  // namespace zv
