#pragma once

#include <string>
#include <string_view>

#include "zvfx/VideoFrame.h"

namespace zvfx {

/// First word of every Y4M stream; its header is a line.
constexpr std::string_view kY4mMagic = "YUV4MPEG2";
/// First word of every frame's header, a line as well.
constexpr std::string_view kY4mFrame = "FRAME";

/// Reads a stream header. Full colour range becomes the full-range matrix, anything else the video-range one
/// of BT.601: Y4M cannot tell of another matrix.
/// @param line without the newline
/// @param format left as it was where the header says nothing
/// @return what is wrong, or nothing
std::string parseY4mHeader(std::string_view line, VideoFormat& format);

/// The stream header with its newline: the parameters that the format came with, brought up to date, or new
/// ones.
std::string makeY4mHeader(const VideoFormat& format);

}  // namespace zvfx
