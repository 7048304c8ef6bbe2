#pragma once

#include <memory>

#include "algorithm/AlgBizBase.h"
#include "algorithm/AlgDetector.h"

namespace kel_algorithm {

/// The face 3D business, slot 3: pose and dense mesh of every face (function type 4), as the host's detector
/// supplies them. Without a detector nothing is delivered.
class ZV_API AlgFace3D : public AlgBizBase {
public:
    using Detector = AlgDetector<AlgFaceMeshList>;

    explicit AlgFace3D(AlgEngine* engine);
    ~AlgFace3D() override;

    static AlgBizType bizType() { return ALG_BIZ_FACE_3D; }
    /// The types 0 and 4.
    static bool supportFunc(AlgFuncType type) { return type == (type & 4); }

    void run() override;
    bool isSupportFunc(AlgFuncType type) const override { return supportFunc(type); }
    AlgBizType getBizType() const override { return bizType(); }

    /// Shares ownership of the detector; null takes it away. A change made from inside detect() or a callback
    /// shows in the next frame.
    void setDetector(const std::shared_ptr<Detector>& detector) { mDetector = detector; }

private:
    std::shared_ptr<Detector> mDetector;
    AlgFaceMeshList mResults;
    AlgFaceMeshList mSpare;
};

}  // namespace kel_algorithm
