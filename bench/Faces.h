#pragma once

#include <string>

#include "algorithm/AlgTypes.h"
#include "core/TVec.h"

namespace zv::bench {

/// Reads the points of the sample portrait's face, a pair of numbers a line, pixels of a picture of
/// 512 x 512 with the origin at the top left. Once, before the first sampleFaces().
bool loadSampleFace(const std::string& path);

/// So many faces, side by side over the picture when there are several, each shaken a little by the number
/// of a frame. One face lies where the portrait's is in the frame.
kel_algorithm::AlgLandmarksList sampleFaces(const Size16& size, int count, int frame);

}  // namespace zv::bench
