#pragma once

#include <functional>

#include "algorithm/AlgTypes.h"

namespace kel_algorithm {

/// A consumer's subscription, shared between the consumer and the business: who it belongs to, what it asks
/// for, and the callables that receive it. Only those are called that are set and that the type asks for.
/// A callable gets a list of its own and may move it out, or swap an older list in: what is left in the
/// argument is memory for the next frame.
struct AlgBizFunc {
    void* owner = nullptr;  ///< the consumer; the key for taking the subscription back
    AlgFuncType type = ALG_FUNC_NONE;
    std::function<void(AlgFaceMatsList&)> onFaceMats;       ///< ALG_FUNC_FACE_MATS, ALG_FUNC_FACE_ALL
    std::function<void(AlgLandmarksList&)> onLandmarks;     ///< ALG_FUNC_LANDMARKS, ALG_FUNC_FACE_ALL
    std::function<void(AlgFaceMeshList&)> onFaceMeshes;     ///< ALG_FUNC_FACE_MESH, from AlgFace3D
    std::function<void(AlgGoodsList&)> onGoods;             ///< ALG_FUNC_FACE_MESH, from AlgGoods
    std::function<void(AlgCoverScoreList&)> onCoverScores;  ///< ALG_FUNC_FACE_MESH, from AlgDongTu
};

}  // namespace kel_algorithm
