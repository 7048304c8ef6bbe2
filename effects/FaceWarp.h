#pragma once

#include <array>
#include <cstddef>

#include "core/TVec.h"
#include "effects/FaceGeometry.h"
#include "effects/FaceGrid.h"

namespace zv {

/// The displacement of one face: for a place of the result, the place of the picture that is seen there. It
/// is a chain of fields, each zero outside of its own area. A field moves places along one line only, the
/// line through its centre or one parallel to an axis of the face, and keeps their order on it; so each is
/// one to one, and with them the chain.
class FaceWarp {
public:
    /// @param values strengths, -1 to 1, by FaceShapeType
    /// @return false when nothing moves
    bool set(const FaceGeometry& face, const float* values);

    /// The border of a picture of this size, in pixels, does not move, nor what is closer to it than that.
    void keepBorder(const TVec<2, unsigned short>& size, float clipEdge);

    /// Where things move, in pixels.
    const FaceArea& area() const { return mArea; }

    Vec2f sourceOf(Vec2f pixel) const;

private:
    /// How a field moves places.
    enum class Kind : unsigned char {
        SCALE,    ///< along the ray from the centre
        ALONG_X,  ///< away from the midline
        ALONG_Y,
    };

    struct Field {
        Kind kind = Kind::SCALE;
        bool keepsMiddle = false;  ///< ALONG_X: little happens near the midline
        float amount =
            0.0F;  ///< SCALE: part of the distance; else length, a part of `left`, `right` for ALONG_X
        Vec2f centre{};
        float left = 0.0F, right = 0.0F, down = 0.0F, up = 0.0F;  ///< reach from the centre, above 0
        float narrowing = 0.0F;  ///< ALONG_X: how much `left` and `right` are less at the chin
    };

    void add(const Field& field);
    void addFields(const float* values);
    void measureArea();
    Vec2f apply(const Field& field, Vec2f place) const;
    Vec2f scaled(const Field& field, Vec2f place, float most) const;
    Vec2f movedAlongX(const Field& field, Vec2f place, float most) const;
    Vec2f movedAlongY(const Field& field, Vec2f place, float most) const;
    float mostAt(Vec2f place) const;

    FaceGeometry mFace;
    std::array<Field, 8> mFields;
    std::size_t mFieldCount = 0;
    FaceArea mArea;
    bool mNearBorder = false;
    Vec2f mLow, mHigh;  ///< in pixels: what may move lies between
};

}  // namespace zv
