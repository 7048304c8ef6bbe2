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

    /// Writes the grid as one triangle strip, row by row, joined by triangles without extent: first the cells
    /// at whose corners nothing changes, then the others.
    /// @param points room for the vertices of the grid
    /// @param vertexAt makes the vertex of a place in pixels, and tells by its second argument that something
    ///                 changes there
    /// @return how many vertices belong to cells in which nothing changes
    template <class Vertex, class VertexAt>
    std::size_t strip(std::vector<Vertex>& points, std::vector<Vertex>& out, const VertexAt& vertexAt) {
        points.clear();
        mChanges.clear();
        for (const float y : mY) {
            for (const float x : mX) {
                bool changes = false;
                points.push_back(vertexAt(Vec2f(x, y), changes));
                mChanges.push_back(changes);
            }
        }
        out.clear();
        cells(points, out, false);
        const std::size_t still = out.size();
        cells(points, out, true);
        return still;
    }

private:
    static void layLines(std::vector<float>& lines, float extent, const FaceArea* areas, std::size_t count,
                         float Vec2f::*axis);

    bool cellChanges(std::size_t row, std::size_t column) const {
        const std::size_t low = row * mX.size() + column;
        const std::size_t high = low + mX.size();
        return mChanges[low] || mChanges[low + 1] || mChanges[high] || mChanges[high + 1];
    }

    template <class Vertex>
    void cells(const std::vector<Vertex>& points, std::vector<Vertex>& out, bool changing) const {
        for (std::size_t row = 0; row + 1 < mY.size(); ++row) {
            const std::size_t low = row * mX.size();
            const std::size_t high = low + mX.size();
            bool inside = false;
            for (std::size_t column = 0; column + 1 < mX.size(); ++column) {
                if (cellChanges(row, column) != changing) {
                    inside = false;
                    continue;
                }
                if (!inside) {
                    inside = true;
                    if (!out.empty()) {
                        out.push_back(out.back());
                        out.push_back(points[low + column]);
                    }
                    out.push_back(points[low + column]);
                    out.push_back(points[high + column]);
                }
                out.push_back(points[low + column + 1]);
                out.push_back(points[high + column + 1]);
            }
        }
    }

    std::vector<float> mX;
    std::vector<float> mY;
    std::vector<bool> mChanges;  ///< by place of the grid
};

}  // namespace zv
