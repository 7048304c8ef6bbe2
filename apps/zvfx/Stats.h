#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/GLCallLog.h"
#include "zvfx/EffectCosts.h"

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

/// What one run took. Times are seconds. The stages of a video run beside one another, on three threads, and
/// are counted without their waits for one another.
struct Stats {
    std::int64_t frames = 0;
    int width = 0;
    int height = 0;
    double seconds = 0;  ///< from opening the input to having written the output
    double loop = 0;     ///< of these, from the first frame to the last
    double decode = 0;   ///< reading and decoding the input
    double setup = 0;  ///< making the context, the engine and the nodes, loading shaders, uploading a picture
    double render = 0;                         ///< uploads, updates and renders of all frames
    double read = 0;                           ///< reading all frames back
    double encode = 0;                         ///< encoding and writing the output
    std::optional<std::size_t> callsPerFrame;  ///< GL calls of a late frame with its read-back, where known
    std::vector<EffectCost> effects;           ///< of what was asked for, in the chain's order
    std::string renderer;                      ///< empty when no GL was needed
    std::string version;

    /// The numbers as a JSON object, ending in a newline.
    std::vector<std::uint8_t> toJson() const;
};

/// Counts the GL calls of frames.
class CallCount {
public:
    /// Whether it counts at all.
    explicit CallCount(bool wanted) : mWanted(wanted) {}

    void begin() {
        if (mWanted) {
            mCalls.emplace();
        }
    }
    void end(Stats& stats) {
        if (mCalls) {
            stats.callsPerFrame = mCalls->total();
            mCalls.reset();
        }
    }

private:
    bool mWanted;
    std::optional<zv::host::GLCallLog> mCalls;
};

}  // namespace zvfx
