#pragma once

#include <cstdio>
#include <string>

#include "core/ZVLog.h"

namespace zv::test {

/// Keeps what the library logs while it is alive. One at a time.
class LogCapture {
public:
    LogCapture() : mFile(std::tmpfile()) { setLogStream(mFile); }
    ~LogCapture() {
        setLogStream(nullptr);
        std::fclose(mFile);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Everything so far, line by line as it was written.
    std::string text() const {
        std::fflush(mFile);
        std::rewind(mFile);
        std::string all;
        char block[512];
        for (std::size_t got; (got = std::fread(block, 1, sizeof(block), mFile)) > 0;) {
            all.append(block, got);
        }
        std::fseek(mFile, 0, SEEK_END);
        return all;
    }

private:
    std::FILE* mFile;
};

}  // namespace zv::test
