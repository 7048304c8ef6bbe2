#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "core/UniqueDataPtr.h"
#include "face/FaceExport.h"
#include "face/FaceImage.h"
#include "face/FaceTracker.h"
#include "face/FaceViews.h"
#include "scene/RefHolder.h"

namespace zv {

class RenderTexture;
class Scene;
class Sprite;

/// Pixels of some parts of one picture, kept in memory.
class FaceShots : public FaceViews {
public:
    /// The shot that shows the middle of the area at the finest scale.
    bool view(const FaceArea& area, int pixels, FaceImage& image) override;

    FaceShots();

    /// Memory for the next shot, of four channels, its bottom row first and no gaps between rows. Kept for
    /// later ones; empty when there is none.
    UniqueDataPtr<unsigned char>& room(const Size16& size);
    /// What lies in the room handed out last is a shot of that area.
    const FaceImage& add(const Size16& size, const FaceArea& area);
    void clear() { mLarge.count = mSmall.count = 0; }
    bool isEmpty() const { return mLarge.count + mSmall.count == 0; }

private:
    struct Shot {
        FaceImage image;
        UniqueDataPtr<unsigned char> bytes;
    };

    /// Shots of about one size; those behind the count are memory for later ones.
    struct Shelf {
        std::vector<Shot> shots;
        std::size_t count = 0;
    };

    Shelf& shelfOf(const Size16& size);

    Shelf mLarge;
    Shelf mSmall;
};

/// Draws parts of an engine's input, with a sprite of its own, into small targets and reads those back. Never
/// the full frame: the whole picture comes out coarse, and finer only where a face is. On the engine's thread
/// with its GL context current.
class ZV_FACE_API FaceCamera : public FaceViews {
public:
    FaceCamera();
    ~FaceCamera() override;
    FaceCamera(const FaceCamera&) = delete;
    FaceCamera& operator=(const FaceCamera&) = delete;

    /// Takes the input of a frame; to be called before it is looked at. An input of one texture is drawn as
    /// it is, without the program that an effect may have lent it; one of several planes through its own
    /// program.
    /// @param picture size of what the input fills, in whose pixels all areas are
    /// @return false when there is nothing to draw
    bool aim(Sprite* input, const Size16& picture);

    /// In step: draws that part of the present frame and waits for it.
    bool view(const FaceArea& area, int pixels, FaceImage& image) override;

    /// Live: starts to read those parts of the present frame, and hands out the parts of the call before;
    /// waits for nothing.
    void exchange(const std::vector<FaceTracker::Wish>& wishes, FaceShots& shots);

private:
    static constexpr std::size_t kLargePlates = 2, kSmallPlates = FaceTracker::kMostFaces;

    /// A target for one part, read through two buffers that take turns.
    struct Plate {
        RefHolder<RenderTexture> target;
        FaceArea area;
        Size16 size{0, 0};  ///< of what is drawn; 0 when nothing is
    };

    bool initSprite(Sprite& input);
    bool syncSprite(Sprite& input);
    bool prepare(Plate& plate, unsigned short side);
    bool draw(Plate& plate, const FaceArea& area, int pixels);
    void read(Plate& plate, UniqueDataPtr<unsigned char>& finished);

    RefHolder<Sprite> mSprite;
    RefHolder<Scene> mScene;
    Size16 mPicture{0, 0};
    Size16 mTextureSize{0, 0};
    unsigned int mTextureTarget = 0;
    FaceShots mShot;                        // in step
    UniqueDataPtr<unsigned char> mNothing;  // for reads whose result is not wanted
    std::array<Plate, kLargePlates> mLarge;
    std::array<Plate, kSmallPlates> mSmall;
};

}  // namespace zv
