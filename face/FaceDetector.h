#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "core/TVec.h"
#include "face/FaceExport.h"
#include "face/FaceImage.h"
#include "face/FaceModel.h"

namespace zv {

/// A face as the detector sees it, in pixels of the picture.
struct FaceDetection {
    /// The key points: eyes, nose, mouth, ears; left and right are the picture's.
    enum Point { LeftEye, RightEye, Nose, Mouth, LeftEar, RightEar, Points };

    float score = 0.0F;  ///< 0 to 1
    Vec2f centre;
    Vec2f size;
    Vec2f points[Points];
};

/// Finds faces in a square of a picture that are nearly upright, by a network of the BlazeFace kind: it gives
/// a score, a box and six points for each of 896 anchors, of which those that lie over one another are
/// merged, weighted by their scores.
class ZV_FACE_API FaceDetector {
public:
    enum class Range {
        Near,  ///< 128 x 128: faces from about 13 % of the square's side
        Far    ///< 256 x 256: faces from about 4 % of it, at six times the time
    };

    explicit FaceDetector(Range range) : mRange(range) {}

    /// False, with the reason in the log, when the model cannot be used.
    bool load();

    /// Adds the faces in that square to `found`, each square's best first.
    void detect(const FaceImage& image, const FaceRegion& square, std::vector<FaceDetection>& found);

    /// The same in steps, so that no frame pays for all of it: begin() takes what it needs of the image, then
    /// each proceed() runs a part of the network. Another begin() or detect() drops what was under way.
    void begin(const FaceImage& image, const FaceRegion& square);
    /// @return true when that was the last step, whose faces have been added, and when nothing is under way
    bool proceed(std::vector<FaceDetection>& found);

private:
    struct Anchor {
        Vec2f centre;  ///< parts of the square
        float logit = 0.0F;
        const float* box = nullptr;
    };

    void collect(const FaceModel& model);
    FaceDetection decode(const Anchor& anchor) const;
    void merge(std::vector<FaceDetection>& found);

    Range mRange;
    int mSize = 0;
    std::array<FaceModel, 2> mModels;  ///< parts of the network, one after another
    std::size_t mParts = 0;            ///< 0 unless loaded
    std::size_t mNextPart = 0;         ///< as large as mParts when nothing is under way
    FaceRegion mSquare;
    std::vector<Anchor> mCandidates;
    std::vector<FaceDetection> mBoxes;
    std::vector<char> mTaken;
};

/// How much two detections cover each other: 0 not at all, 1 the same box.
ZV_FACE_API float overlapOf(const FaceDetection& a, const FaceDetection& b);

}  // namespace zv
