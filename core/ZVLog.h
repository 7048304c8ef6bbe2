#pragma once

#include <cstdio>

#include "core/ZVExport.h"

namespace zv {

/// Writes one printf-formatted line, headed by "Zorvik: " and closed by a newline, to the log stream and on
/// Windows also to the debugger. Takes UTF-8 of any length. May be called from any thread; long lines of
/// different threads may interleave. Writes nothing when memory runs out or formatting keeps failing.
ZV_API void zvLog(const char* format, ...) ZV_PRINTF_LIKE(1, 2);

/// Sends the log to another stream, which must outlive its use; null means standard output, the default. For
/// programs that need standard output for their data.
ZV_API void setLogStream(std::FILE* stream);

}  // namespace zv
