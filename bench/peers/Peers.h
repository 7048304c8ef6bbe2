#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zv::bench {

struct Frame;

/// What a user could take instead of a stage of ours, on the same frame.
struct Peer {
    std::string name;
    std::function<void()> frame;  ///< does it once
    bool isDefault = true;        ///< the way that its library takes unless told otherwise
};

/// Edge-preserving smoothing, on two threads: OpenCV's bilateral filter and guided filter.
std::vector<Peer> makeOpenCvPeers(const Frame& frame);

/// Colour tables of 64 levels, on two threads: FFmpeg's lut3d, trilinear as ours, and tetrahedral, its
/// default.
/// @param folder for the table's file
std::vector<Peer> makeFfmpegPeers(const Frame& frame, const std::string& folder);

/// RGB to I420 on one thread: swscale and libyuv.
std::vector<Peer> makeYuvPeers(const Frame& frame);

}  // namespace zv::bench
