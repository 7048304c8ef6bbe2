#pragma once

#include <algorithm>
#include <cmath>

#include "core/TVec.h"
#include "face/FaceImage.h"

namespace zv {

/// Squares of half a picture's long side, which the detector looks at for faces that are too small in the
/// whole picture. They overlap by a quarter at least, so that every small face lies whole in one of them.
class FaceZones {
public:
    explicit FaceZones(const Size16& picture) {
        const int longSide = std::max(picture.x, picture.y);
        if (longSide < kLeastPicture) {
            return;
        }
        mSide = static_cast<float>(longSide) * 0.5F;
        const auto along = [&](float length) {
            return length > mSide ? static_cast<int>(std::ceil((length - mSide) / (0.75F * mSide))) + 1 : 1;
        };
        mColumns = along(picture.x);
        mRows = along(picture.y);
    }

    /// None in small pictures, in which no face would be worth it.
    int count() const { return mColumns * mRows; }

    FaceRegion at(int index, const Size16& picture) const {
        const auto middle = [&](int i, int n, float length) {
            return n > 1 ? mSide / 2.0F + (length - mSide) * static_cast<float>(i) / static_cast<float>(n - 1)
                         : length / 2.0F;
        };
        return {{middle(index % mColumns, mColumns, picture.x), middle(index / mColumns, mRows, picture.y)},
                mSide,
                0.0F};
    }

private:
    static constexpr int kLeastPicture = 600;  // pixels along the long side

    float mSide = 0.0F;
    int mColumns = 0;
    int mRows = 0;
};

}  // namespace zv
