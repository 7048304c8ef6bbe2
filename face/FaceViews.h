#pragma once

#include "face/FaceImage.h"

namespace zv {

/// Where a tracker gets its pixels: parts of the present picture, as fine as it needs them.
class FaceViews {
public:
    virtual ~FaceViews() = default;

    /// Pixels that show that area, or more, or what of it lies in the picture.
    /// @param area may reach beyond the picture
    /// @param pixels along the area's longer side that are of use
    /// @param image stays valid until the next call
    /// @return false when that part is not at hand; then the tracker does without it in this frame
    virtual bool view(const FaceArea& area, int pixels, FaceImage& image) = 0;
};

/// The whole picture in memory, whatever is asked for.
class WholeFaceView : public FaceViews {
public:
    explicit WholeFaceView(const FaceImage& image) : mImage(image) {}
    bool view(const FaceArea&, int, FaceImage& image) override {
        image = mImage;
        return true;
    }

private:
    FaceImage mImage;
};

}  // namespace zv
