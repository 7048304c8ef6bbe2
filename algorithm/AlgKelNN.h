#pragma once

#include <memory>

#include "algorithm/AlgBizBase.h"
#include "algorithm/AlgDetector.h"

namespace kel_algorithm {

/// What is known about the faces of one frame.
struct AlgFaceResults {
    AlgLandmarksList landmarks;
    AlgFaceMatsList mats;
};

/// The face business, slot 0: landmarks (function type 1), sticker matrices (2) or both (3), as the host's
/// detector supplies them. Without a detector nothing is delivered.
class ZV_API AlgKelNN : public AlgBizBase {
public:
    using Detector = AlgDetector<AlgFaceResults>;

    explicit AlgKelNN(AlgEngine* engine);
    ~AlgKelNN() override;

    static AlgBizType bizType() { return ALG_BIZ_FACE; }
    /// The types 0 to 3.
    static bool supportFunc(AlgFuncType type) { return type == (type & 3); }

    void run() override;
    bool isSupportFunc(AlgFuncType type) const override { return supportFunc(type); }
    AlgBizType getBizType() const override { return bizType(); }

    /// Shares ownership of the detector; null takes it away. A change made from inside detect() or a callback
    /// shows in the next frame.
    void setDetector(const std::shared_ptr<Detector>& detector) { mDetector = detector; }

    /// Converts a detector's face to what consumers get: from pixels of the picture with the origin top left
    /// to pixels of the view port with the origin bottom left. The whole picture covers the whole view port.
    /// @return false, with the output left alone, when a side of the picture is 0.
    static bool conventFaceInfo(const AlgDetectedFace& face, const zv::Size16& picture,
                                const zv::Size16& viewPort, AlgFaceLandmarks& out);

private:
    std::shared_ptr<Detector> mDetector;
    AlgFaceResults mResults;
    AlgFaceResults mSpare;
};

}  // namespace kel_algorithm
