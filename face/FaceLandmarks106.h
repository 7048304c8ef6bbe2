#pragma once

#include "core/TVec.h"
#include "face/FaceExport.h"
#include "face/FaceMesh.h"

namespace zv {

/// The 106 landmarks, numbered by part; left and right are the picture's.
/// - 0 to 32 contour: from the left temple over the chin (16) to the right temple, evenly spaced on each side
/// - 33 to 42 upper edges of the brows, left to right; 64 to 71 their lower edges
/// - 43 to 46 bridge of the nose, downwards; 47 to 51 its base; 78 to 83 its sides
/// - 52 to 57 left eye, from the outer corner round over the lid; 58 to 63 right eye, from the inner corner;
///   72 to 74 and 75 to 77 upper lid, lower lid and middle of each; 104 and 105 the pupils, taken at the
///   middle
/// - 84 to 95 outer lips, 96 to 103 inner lips, from the left corner round over the upper lip
/// @param landmarks 106 of them, in the mesh's pixels
ZV_FACE_API void toLandmarks106(const FaceMeshPoints& mesh, Vec2f* landmarks);

}  // namespace zv
