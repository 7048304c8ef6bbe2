#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zv::bench {
struct Frame;
}

namespace zv::bench::floor {

/// Something that GL does, alone, and what it reads and writes.
struct Price {
    std::string name;
    std::function<void()> order;  ///< does it once; it may still be going on afterwards
    double bytes = 0;             ///< of memory that it must touch
    bool waits = true;            ///< false for reads, which wait for what they need themselves

    /// Does it once, and waits if it is to.
    void frame() const;
};

/// The unit of all figures: one pass that copies the frame through a linear filter. The first price.
/// The others: the same copy with the nearest texel, a constant colour, another fetch of each kind, the
/// blocking read of RGBA, the read through two pack buffers with the copy of the bytes, and an upload.
/// Needs a core context current, now and in each frame.
std::vector<Price> makePrices(const Frame& frame);

}  // namespace zv::bench::floor
