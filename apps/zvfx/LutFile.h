#pragma once

#include <string>

#include "zvfx/PictureFile.h"

namespace zvfx {

/// Finds a colour table: a file, or a look in zv_res/lookups by its bare name ("film").
/// @param resources folder that holds zv_res
/// @param path absolute path of the table
/// @return what is wrong, or nothing
std::string findLut(const std::string& fileOrLook, const std::string& resources, std::string& path);

/// Whether the file can be used as a colour table, and if not, what was given instead.
/// @return what is wrong, or nothing
std::string checkLutFile(const std::string& path);

/// Whether a picture of 512 x 512 or 64 x 64 holds its colours as a HALD image does, with red, green and blue
/// counting on along the rows of the whole picture, rather than in tiles.
bool looksLikeHald(const Picture& picture);

}  // namespace zvfx
