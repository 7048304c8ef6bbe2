#pragma once

#include <string>

#include "zvfx/Options.h"

namespace zvfx {

class ByteWriter;

/// Sends a video, or a picture as often as asked, through the effects into a video. Ctrl-C ends it early,
/// with what is done until then as a complete video.
/// @param resources folder that holds zv_res
/// @param standardOutput for the output "-"
/// @return what went wrong, or nothing
std::string runVideo(const Options& options, const std::string& resources, ByteWriter& standardOutput);

}  // namespace zvfx
