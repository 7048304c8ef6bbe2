#pragma once

#include "zvfx/Stats.h"

namespace zvfx {

/// A bar on standard error: share done, frames per second, time left. Redrawn at most ten times a second.
class Progress {
public:
    /// @param shown false draws nothing at all
    Progress(int total, bool shown) : mTotal(total), mShown(shown) {}
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void frameDone();

private:
    void draw();

    int mTotal;
    bool mShown;
    int mDone = 0;
    bool mDrawn = false;
    double mElapsed = 0;
    double mLastDrawn = 0;
    StopWatch mWatch;
};

/// Whether standard error is a terminal.
bool isTerminalError();
/// Whether standard output is a terminal.
bool isTerminalOutput();

}  // namespace zvfx
