#include "core/ZVLog.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace zv {

namespace {

constexpr char kPrefix[] = "Zorvik: ";
constexpr std::size_t kPrefixLength = sizeof(kPrefix) - 1;
constexpr std::size_t kFirstBufferSize = 16384;
/// A format that still fails in a buffer of this size fails in any.
constexpr std::size_t kLargestRetrySize = std::size_t{64} << 20;
/// Bytes of a buffer that are not for the formatted text: newline, terminator and one spare.
constexpr std::size_t kReserve = 3;
constexpr std::size_t kChunkSize = 1024;

// Null stands for standard output, which is no constant.
std::atomic<std::FILE*> sStream{nullptr};

using TextBuffer = std::unique_ptr<char[]>;

/// Prefix, message, newline and terminator; `length` counts what precedes the newline. Null on failure.
TextBuffer formatLine(const char* format, std::va_list arguments, std::size_t& length) {
    std::size_t size = kFirstBufferSize;
    for (;;) {
        TextBuffer buffer(new (std::nothrow) char[size]);
        if (buffer == nullptr)
            return nullptr;
        const std::size_t allowance = size - kReserve;
        std::memcpy(buffer.get(), kPrefix, kPrefixLength);
        std::va_list again;
        va_copy(again, arguments);
        const int written =
            std::vsnprintf(buffer.get() + kPrefixLength, allowance + 1 - kPrefixLength, format, again);
        va_end(again);
        if (written < 0) {
            if (size >= kLargestRetrySize)
                return nullptr;
            size *= 2;
            continue;
        }
        length = kPrefixLength + static_cast<std::size_t>(written);
        if (length <= allowance) {
            buffer[length] = '\n';
            buffer[length + 1] = '\0';
            return buffer;
        }
        size = length + kReserve;
    }
}

/// Sends one zero-terminated chunk to the debugger, where there is one, and to the stream.
void emitChunk(const char* chunk, std::FILE* stream) {
#if defined(_WIN32)
    wchar_t wide[2050] = {};
    // Up to four bytes of the process's code page for each byte of UTF-8.
    char ansi[4 * kChunkSize + 1] = {};
    MultiByteToWideChar(CP_UTF8, 0, chunk, -1, wide, static_cast<int>(std::size(wide)) - 1);
    OutputDebugStringW(wide);
    WideCharToMultiByte(CP_ACP, 0, wide, -1, ansi, static_cast<int>(sizeof(ansi)) - 1, nullptr, nullptr);
    std::fprintf(stream, "%s", ansi);
#else
    std::fprintf(stream, "%s", chunk);
#endif
}

}  // namespace

void zvLog(const char* format, ...) {
    std::size_t length = 0;
    std::va_list arguments;
    va_start(arguments, format);
    const TextBuffer line = formatLine(format, arguments, length);
    va_end(arguments);
    if (line == nullptr)
        return;
    std::FILE* stream = sStream.load();
    if (stream == nullptr)
        stream = stdout;
    // A chunk may end inside a multi-byte character; on the stream the halves meet again.
    for (std::size_t start = 0; start < length + 1; start += kChunkSize) {
        char chunk[kChunkSize + 1] = {};
        std::memcpy(chunk, line.get() + start, std::min(kChunkSize, length + 1 - start));
        emitChunk(chunk, stream);
    }
}

void setLogStream(std::FILE* stream) {
    sStream.store(stream);
}

}  // namespace zv
