#pragma once

#include <string>

#include "zvfx/Options.h"

namespace zvfx {

/// Sends a picture through as often as asked and writes the last frame as a PNG file.
/// @param resources folder that holds zv_res
/// @return what went wrong, or nothing
std::string runPicture(const Options& options, const std::string& resources);

}  // namespace zvfx
