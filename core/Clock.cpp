#include "core/Clock.h"

#include "core/ZVLog.h"

namespace zv {

Clock::Clock(const std::string& clockName) : name(clockName), start(std::clock()) {}

Clock::~Clock() {
    const double milliseconds = static_cast<double>(std::clock() - start) * 1000.0 / CLOCKS_PER_SEC;
    zvLog("%s:%f", name.c_str(), milliseconds);
}

}  // namespace zv
