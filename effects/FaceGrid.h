#pragma once

#include <cstddef>
#include <vector>

#include "core/TVec.h"

namespace zv {

/// A part of a picture, in pixels, and how fine a mesh must be there.
struct FaceArea {
    Vec2f low, high;
    float step = 1.0F;  ///< pixels between two lines, above 0

    bool holds(Vec2f pixel) const {
        return pixel.x > low.x && pixel.x < high.x && pixel.y > low.y && pixel.y < high.y;
    }
};

/// A grid of lines over a picture: close together where areas are, far apart elsewhere. Where the areas ask
/// for more than some 192 lines across or down, all are wider apart.
class FaceGrid {
public:
    void lay(const TVec<2, unsigned short>& size, const FaceArea* areas, std::size_t count);

    /// Writes the grid as one triangle strip, row by row, joined by triangles without extent.
    /// @param vertexAt makes the vertex of a place in pixels
    template <class Vertex, class VertexAt>
    void strip(std::vector<Vertex>& out, const VertexAt& vertexAt) {
        out.clear();
        const std::size_t columns = mX.size();
        for (std::size_t row = 0; row + 1 < mY.size(); ++row) {
            const std::size_t start = out.size();
            for (std::size_t column = 0; column < columns; ++column) {
                // The lower line of a row is the upper one of the row before: every second vertex there.
                const Vertex low =
                    row == 0 ? vertexAt(Vec2f(mX[column], mY[row])) : out[start - 2 * (columns - column) + 1];
                if (row != 0 && column == 0) {
                    out.push_back(out.back());
                    out.push_back(low);
                }
                out.push_back(low);
                out.push_back(vertexAt(Vec2f(mX[column], mY[row + 1])));
            }
        }
    }

private:
    static void layLines(std::vector<float>& lines, float extent, const FaceArea* areas, std::size_t count,
                         float Vec2f::*axis);

    std::vector<float> mX;
    std::vector<float> mY;
};

}  // namespace zv
