#pragma once

#include <string>
#include <vector>

namespace zv::bench {

/// A picture file as it is decoded: top row first, rows tight.
struct Pixels {
    int width = 0;
    int height = 0;
    int channels = 0;  ///< 3 or 4; 0 when the file could not be read
    std::vector<unsigned char> bytes;

    static Pixels load(const std::string& path);
};

/// The picture that everything here works on: the sample portrait, cut to the frame's shape and enlarged.
/// Top row first, rows tight.
struct Frame {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgb;
    std::vector<unsigned char> rgba;

    std::size_t pixels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }

    /// Reads pictures of RGB only. An empty frame when the file cannot be read.
    static Frame load(const std::string& path, int width, int height);
};

}  // namespace zv::bench
