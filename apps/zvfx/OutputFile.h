#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace zvfx {

/// Takes the program's standard output for data: whatever else is printed there (the log, the library's
/// messages) goes to standard error from then on. To be called once, before anything is printed.
class StandardOutput {
public:
    ~StandardOutput();
    StandardOutput() = default;
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    bool take();
    bool write(const std::vector<std::uint8_t>& bytes);

private:
    std::FILE* mStream = nullptr;
};

/// Whether a file can be put there: the folder exists, and the name is no folder's.
/// @return what is wrong, or nothing
std::string checkTarget(const std::string& path);

/// Writes a whole file. It is written under a temporary name in the same folder and renamed at the end, so
/// that the name never belongs to half a file; a device or pipe of that name is written into.
/// @return what went wrong, or nothing
std::string writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes);

}  // namespace zvfx
