#include "algorithm/AlgGoods.h"

#include "algorithm/AlgDelivery.h"

namespace kel_algorithm {

AlgGoods::AlgGoods(AlgEngine* engine) : AlgBizBase(engine) {}

AlgGoods::~AlgGoods() = default;

void AlgGoods::run() {
    const RunScope scope(*this);
    const std::shared_ptr<Detector> detector = mDetector;
    if (scope && detector && detector->detect(mResults)) {
        deliver(mResults, mSpare, ALG_FUNC_FACE_MESH, &AlgBizFunc::onGoods);
    }
}

}  // namespace kel_algorithm
