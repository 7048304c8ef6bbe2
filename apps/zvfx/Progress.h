#pragma once

#include <cstdint>

#include "zvfx/Stats.h"

namespace zvfx {

/// A bar on standard error: share done, frames per second, time left. Redrawn at most ten times a second.
class Progress {
public:
    /// @param total how many frames are expected; 0: nobody knows, there is no bar and no time left
    /// @param shown false draws nothing at all
    Progress(std::int64_t total, bool shown) : mTotal(total), mShown(shown) {}
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void frameDone();

private:
    void draw();

    std::int64_t mTotal;
    bool mShown;
    std::int64_t mDone = 0;
    bool mDrawn = false;
    double mElapsed = 0;
    double mLastDrawn = 0;
    StopWatch mWatch;
};

/// Whether standard error is a terminal.
bool isTerminalError();
/// Whether standard input is a terminal.
bool isTerminalInput();
/// Whether standard output is a terminal.
bool isTerminalOutput();

}  // namespace zvfx
