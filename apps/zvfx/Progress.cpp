#include "zvfx/Progress.h"

#include <cmath>
#include <cstdio>
#include <string>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace zvfx {

namespace {

constexpr int kBarWidth = 30;
constexpr double kRedrawSeconds = 0.1;

bool isTerminal(std::FILE* stream) {
#if defined(_WIN32)
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

}  // namespace

bool isTerminalError() {
    return isTerminal(stderr);
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
    const double rate = mElapsed > 0 ? mDone / mElapsed : 0;
    const int left = rate > 0 ? static_cast<int>(std::lround((mTotal - mDone) / rate)) : 0;
    const auto filled = static_cast<std::size_t>(static_cast<double>(kBarWidth) * mDone / mTotal);
    const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %3d%%  %d/%d  %.1f fps  %d:%02d left ", bar.c_str(),
                 static_cast<int>(100.0 * mDone / mTotal), mDone, mTotal, rate, left / 60, left % 60);
    std::fflush(stderr);
    mDrawn = true;
}

}  // namespace zvfx
