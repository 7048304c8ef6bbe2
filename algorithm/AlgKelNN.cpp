#include "algorithm/AlgKelNN.h"

#include "algorithm/AlgDelivery.h"

namespace kel_algorithm {

AlgKelNN::AlgKelNN(AlgEngine* engine) : AlgBizBase(engine) {}

AlgKelNN::~AlgKelNN() = default;

void AlgKelNN::run() {
    const RunScope scope(*this);
    const std::shared_ptr<Detector> detector = mDetector;
    if (!scope || !detector || !detector->detect(mResults)) {
        return;
    }
    deliver(mResults.landmarks, mSpare.landmarks, ALG_FUNC_LANDMARKS, &AlgBizFunc::onLandmarks);
    deliver(mResults.mats, mSpare.mats, ALG_FUNC_FACE_MATS, &AlgBizFunc::onFaceMats);
}

bool AlgKelNN::conventFaceInfo(const AlgDetectedFace& face, const zv::Size16& picture,
                               const zv::Size16& viewPort, AlgFaceLandmarks& out) {
    if (picture.x == 0 || picture.y == 0) {
        return false;
    }
    const float scaleX = static_cast<float>(viewPort.x) / static_cast<float>(picture.x);
    const float scaleY = static_cast<float>(viewPort.y) / static_cast<float>(picture.y);
    for (int i = 0; i < kFacePoints; ++i) {
        out.points[i].x = face.points[i].x * scaleX;
        out.points[i].y = (static_cast<float>(picture.y) - face.points[i].y) * scaleY;
    }
    out.confidence = face.confidence;
    out.faceId = face.faceId;
    return true;
}

}  // namespace kel_algorithm
