#include "algorithm/AlgDongTu.h"

#include "algorithm/AlgDelivery.h"

namespace kel_algorithm {

AlgDongTu::AlgDongTu(AlgEngine* engine) : AlgBizBase(engine) {}

AlgDongTu::~AlgDongTu() = default;

void AlgDongTu::run() {
    const RunScope scope(*this);
    const std::shared_ptr<Detector> detector = mDetector;
    if (scope && detector && detector->detect(mResults)) {
        deliver(mResults, mSpare, ALG_FUNC_FACE_MESH, &AlgBizFunc::onCoverScores);
    }
}

}  // namespace kel_algorithm
