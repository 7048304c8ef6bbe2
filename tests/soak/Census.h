#pragma once

#include <array>
#include <numeric>

namespace zv::soak {

/// What a process holds at one moment.
struct Census {
    static constexpr std::array<const char*, 7> kKinds = {
        "textures", "buffers", "frame buffers", "programs", "render buffers", "samplers", "vertex arrays"};
    long residentKib = 0;  ///< 0 under a sanitizer
    int openFiles = 0;
    std::array<int, 7> objects{};  ///< of the GL context that is current, by kind

    int objectCount() const { return std::accumulate(objects.begin(), objects.end(), 0); }

    /// Asks the driver about names, so that it misses nothing that was left behind, whoever made it. Slow.
    static Census take();
};

}  // namespace zv::soak
