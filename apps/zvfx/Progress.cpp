#include "zvfx/Progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace zvfx {

namespace {

constexpr int kBarWidth = 30;
constexpr double kRedrawSeconds = 0.1;

bool isTerminal(std::FILE* stream) {
#if defined(_WIN32)
    // _isatty() takes the null device for a terminal as well.
    DWORD mode = 0;
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != FALSE;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

}  // namespace

bool isTerminalError() {
    return isTerminal(stderr);
}

bool isTerminalInput() {
    return isTerminal(stdin);
}

bool isTerminalOutput() {
    return isTerminal(stdout);
}

Progress::~Progress() {
    if (mDrawn) {
        std::fputc('\n', stderr);
    }
}

void Progress::frameDone() {
    ++mDone;
    if (!mShown) {
        return;
    }
    mElapsed += mWatch.lap();
    if (mDone == mTotal || mElapsed - mLastDrawn >= kRedrawSeconds) {
        mLastDrawn = mElapsed;
        draw();
    }
}

void Progress::draw() {
    const double rate = mElapsed > 0 ? static_cast<double>(mDone) / mElapsed : 0;
    if (mTotal == 0) {
        std::fprintf(stderr, "\r%lld frames  %.1f fps ", static_cast<long long>(mDone), rate);
    } else {
        // A video may hold a few frames more than its file says.
        const std::int64_t total = std::max(mDone, mTotal);
        const double share = static_cast<double>(mDone) / static_cast<double>(total);
        const long left = rate > 0 ? std::lround(static_cast<double>(total - mDone) / rate) : 0;
        const auto filled = static_cast<std::size_t>(kBarWidth * share);
        const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
        std::fprintf(stderr, "\r[%s] %3d%%  %lld/%lld  %.1f fps  %ld:%02ld left ", bar.c_str(),
                     static_cast<int>(100 * share), static_cast<long long>(mDone),
                     static_cast<long long>(total), rate, left / 60, left % 60);
    }
    std::fflush(stderr);
    mDrawn = true;
}

}  // namespace zvfx
