#include "algorithm/AlgFace3D.h"

#include "algorithm/AlgDelivery.h"

namespace kel_algorithm {

AlgFace3D::AlgFace3D(AlgEngine* engine) : AlgBizBase(engine) {}

AlgFace3D::~AlgFace3D() = default;

void AlgFace3D::run() {
    const RunScope scope(*this);
    const std::shared_ptr<Detector> detector = mDetector;
    if (scope && detector && detector->detect(mResults)) {
        deliver(mResults, mSpare, ALG_FUNC_FACE_MESH, &AlgBizFunc::onFaceMeshes);
    }
}

}  // namespace kel_algorithm
