#pragma once

#include <string>
#include <vector>

#include "core/TVec.h"

namespace zv {
class ZVMediaEngine;
}

namespace zvfx {

/// Adds stickers to the engine's picture, the first one lowest, and the track that face stickers follow.
/// @param stickers folders, or names of those in zv_res/stickers. Of one that comes in sizes, which are parts
///   of the folders' names as in frame-1280x720, the output's is taken and has to be there.
/// @param faces file of the face track, see FaceTrack; "auto": the faces are found; empty: none
/// @param framesPerSecond of the input
/// @param resources folder that holds zv_res
/// @return what went wrong, or nothing
std::string addStickers(const std::vector<std::string>& stickers, const std::string& faces,
                        float framesPerSecond, const std::string& resources, const zv::Size16& size,
                        zv::ZVMediaEngine& engine);

}  // namespace zvfx
