#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zvfx {

/// Seconds of steady time since it was made or last asked.
class StopWatch {
public:
    StopWatch() : mStart(std::chrono::steady_clock::now()) {}
    double lap() {
        const auto now = std::chrono::steady_clock::now();
        const double seconds = std::chrono::duration<double>(now - mStart).count();
        mStart = now;
        return seconds;
    }

private:
    std::chrono::steady_clock::time_point mStart;
};

/// What one run took. Times are seconds.
struct Stats {
    int frames = 0;
    int width = 0;
    int height = 0;
    double seconds = 0;  ///< from reading the input to having written the output
    double decode = 0;   ///< reading and decoding the input
    double setup = 0;  ///< making the context, the engine and the nodes, loading shaders, uploading the input
    double render = 0;                         ///< update and render of all frames, the wait for GL included
    double read = 0;                           ///< reading all frames back
    double encode = 0;                         ///< encoding and writing the output
    std::optional<std::size_t> callsPerFrame;  ///< GL calls of the last frame with its read-back, where known
    std::string renderer;
    std::string version;

    /// The numbers as a JSON object, ending in a newline.
    std::vector<std::uint8_t> toJson() const;
};

}  // namespace zvfx
