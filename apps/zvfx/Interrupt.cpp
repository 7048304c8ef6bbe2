#include "zvfx/Interrupt.h"

#include <atomic>
#include <csignal>
#include <initializer_list>

namespace zvfx {

namespace {

std::atomic<bool> sInterrupted{false};
std::atomic<bool> sStop{false};

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

extern "C" void onInterrupt(int number) {
    sInterrupted = true;
    sStop = true;
    std::signal(number, SIG_DFL);
}

}  // namespace

void watchInterrupt() {
    for (const int number : {SIGINT, SIGTERM}) {
        // Who starts a program in the background may have it ignore Ctrl-C; that stays.
        if (std::signal(number, onInterrupt) == SIG_IGN) {
            std::signal(number, SIG_IGN);
        }
    }
#if !defined(_WIN32)
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

bool wasInterrupted() {
    return sInterrupted;
}

void requestStop() {
    sStop = true;
}

bool stopRequested() {
    return sStop;
}

}  // namespace zvfx
