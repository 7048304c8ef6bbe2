#pragma once

#include <ctime>
#include <string>

#include "core/ZVExport.h"

namespace zv {

/// A named scope timer: its destructor logs the name and the elapsed milliseconds of the C run-time clock. A
/// copy times from the same start and logs a line of its own.
struct ZV_API Clock {
    explicit Clock(const std::string& clockName);
    Clock(const Clock&) = default;
    Clock& operator=(const Clock&) = default;
    ~Clock();

    std::string name;
    std::clock_t start;
};

}  // namespace zv
