#pragma once

#include <cstdint>

#include "core/Mat4.h"
#include "core/TVec.h"
#include "face/FaceExport.h"
#include "face/FaceMesh.h"

namespace zv {

constexpr int kFaceMeshIndices = 898 * 3;
constexpr int kFaceFitPoints = 33;
constexpr int kFaceBones = 7;

/// How a head is held. Angles in degrees, all 0 when it looks straight out of the picture.
struct FacePose {
    float roll = 0.0F;   ///< tilted clockwise as seen
    float yaw = 0.0F;    ///< the nose turned to the picture's left
    float pitch = 0.0F;  ///< the nose turned down
    float unit = 0.0F;   ///< distance of the outer eye corners in pixels, as if seen from the front
};

/// Fits the average face to the mesh (turned, scaled and moved; weighted least squares) and corrects the
/// angles by what the network is known to underrate.
ZV_FACE_API FacePose fitFacePose(const FaceMeshPoints& mesh);

/// The places that a face's matrices are for, in the order of the bones: head (midway between the eyes), the
/// picture's left eye, right eye, nose tip, mouth centre, chin, forehead. z counts from the head's, away from
/// the viewer.
/// @param places kFaceBones of them, in the mesh's pixels
ZV_FACE_API void findFaceBones(const FaceMeshPoints& mesh, Vec3f* places);

/// The matrix of a bone at that place: model units (x to the picture's right, y up, z towards the viewer) to
/// pixels of a view port of that height, origin bottom left.
/// @param scale shrinks the model; 1 is as large as the face
ZV_FACE_API Mat4 faceBoneMatrix(const FacePose& pose, const Vec3f& place, float height, float scale);

/// Corners of the mesh's triangles, kFaceMeshIndices of them.
ZV_FACE_API const std::int32_t* faceMeshIndices();

/// For each of the mesh's points the one that a mirror shows in its place, kFaceMeshPoints of them.
ZV_FACE_API const std::int32_t* faceMeshMirror();

}  // namespace zv
