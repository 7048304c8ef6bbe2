#pragma once

#include <memory>

#include "algorithm/AlgBizBase.h"
#include "algorithm/AlgDetector.h"

namespace kel_algorithm {

/// The cover business of animated pictures: scores of the current frame, as the host's detector supplies
/// them. The host makes it and fills a slot with it, see AlgEngine::setBiz(). Without a detector nothing is
/// delivered.
class ZV_API AlgDongTu : public AlgBizBase {
public:
    using Detector = AlgDetector<AlgCoverScoreList>;

    explicit AlgDongTu(AlgEngine* engine);
    ~AlgDongTu() override;

    static AlgBizType bizType() { return ALG_BIZ_DONG_TU; }
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
    AlgCoverScoreList mResults;
    AlgCoverScoreList mSpare;
};

}  // namespace kel_algorithm
