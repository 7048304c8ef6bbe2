#pragma once

#include <cstdint>

#include "core/Mat4.h"
#include "core/TRect.h"
#include "core/TVec.h"
#include "core/UniqueDataPtr.h"

namespace kel_algorithm {

/// Identifies a business. Goods and cover scoring share a value.
enum AlgBizType : std::int32_t {
    ALG_BIZ_FACE = 0,
    ALG_BIZ_FACE_3D = 1,
    ALG_BIZ_GOODS = 2,
    ALG_BIZ_DONG_TU = 2,
};

/// What a consumer asks for. A value is a set of bits; which values a business serves, each business's
/// supportFunc() says.
enum AlgFuncType : std::int32_t {
    ALG_FUNC_NONE = 0,       ///< keeps the business running and receives nothing
    ALG_FUNC_LANDMARKS = 1,  ///< AlgFaceLandmarks of every face
    ALG_FUNC_FACE_MATS = 2,  ///< the sticker matrices of every face
    ALG_FUNC_FACE_ALL = 3,   ///< landmarks and sticker matrices
    ALG_FUNC_FACE_MESH = 4,  ///< AlgFaceMesh of every face; goods and cover scores where those serve it
};

/// Points that a detected face consists of.
constexpr int kFacePoints = 106;

/// A face as a detector sees it: points in pixels of the picture, origin top left.
struct AlgDetectedFace {
    zv::Vec2f points[kFacePoints];
    float confidence = 0.0F;  ///< 0 to 1
    std::int32_t faceId = 0;  ///< stays with a face from frame to frame
};

/// A face as consumers get it: points in pixels of the view port, origin bottom left.
struct AlgFaceLandmarks {
    zv::Vec2f points[kFacePoints];
    float confidence = 0.0F;  ///< 0 to 1
    std::int32_t faceId = 0;  ///< stays with a face from frame to frame
};

/// Pose and dense mesh of one face.
struct AlgFaceMesh {
    std::int32_t faceId = 0;
    zv::Mat4 pose;                            ///< from model units to pixels of the view port
    zv::UniqueDataPtr<zv::Vec3f> vertices;    ///< in model units
    zv::UniqueDataPtr<std::int32_t> indices;  ///< three for each triangle
};

/// One article found in the picture.
struct AlgGoodsItem {
    std::int32_t goodsId = 0;
    float confidence = 0.0F;  ///< 0 to 1
    zv::RectF box;            ///< pixels of the view port, origin bottom left
};

/// How well the current frame would serve as a cover.
struct AlgCoverScore {
    float score = 0.0F;  ///< 0 to 1
};

using AlgLandmarksList = zv::UniqueDataPtr<AlgFaceLandmarks>;
/// One list of matrices for each face, in the order of the bones that sticker models name: 0 head, origin
/// midway between the eyes; 1 the eye at the picture's left; 2 the eye at its right; 3 nose tip; 4 mouth
/// centre; 5 chin; 6 forehead. Each matrix takes model units to pixels of the view port; one unit is the
/// distance of the outer eye corners, x to the picture's right, y up, z towards the viewer.
using AlgFaceMatsList = zv::UniqueDataPtr<zv::UniqueDataPtr<zv::Mat4>>;
using AlgFaceMeshList = zv::UniqueDataPtr<AlgFaceMesh>;
using AlgGoodsList = zv::UniqueDataPtr<AlgGoodsItem>;
using AlgCoverScoreList = zv::UniqueDataPtr<AlgCoverScore>;

}  // namespace kel_algorithm
