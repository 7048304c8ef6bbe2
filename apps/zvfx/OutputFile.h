#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "zvfx/ByteStream.h"

namespace zvfx {

/// Takes the program's standard output for data: whatever else is printed there (the log, the library's
/// messages) goes to standard error from then on. To be called once, before anything is printed.
class StandardOutput : public ByteWriter {
public:
    ~StandardOutput() override;

    bool take();
    bool write(const void* bytes, std::size_t count) override;
    bool finish() override;

private:
    std::FILE* mStream = nullptr;
};

/// A file that is to get its name when it is complete: it is written under a temporary name in the same
/// folder. A device or pipe of that name is written into.
class TargetFile {
public:
    explicit TargetFile(const std::string& path);
    /// Removes what was not committed.
    ~TargetFile();
    TargetFile(const TargetFile&) = delete;
    TargetFile& operator=(const TargetFile&) = delete;

    /// Where to write meanwhile.
    const std::filesystem::path& writePath() const { return mWritten; }
    /// Gives the file its name; it must be closed.
    bool commit();

private:
    std::filesystem::path mTarget;
    std::filesystem::path mWritten;
    bool mCommitted = false;
};

/// A TargetFile that is written byte by byte.
class FileWriter : public ByteWriter {
public:
    explicit FileWriter(const std::string& path);

    /// Also when the file could not be opened, it is the write that fails.
    bool write(const void* bytes, std::size_t count) override;
    bool finish() override;

private:
    TargetFile mFile;  // before the stream: it is removed after that is closed
    std::ofstream mStream;
};

/// Whether a file can be put there: the folder exists, and the name is no folder's.
/// @return what is wrong, or nothing
std::string checkTarget(const std::string& path);

/// Writes a whole file, see TargetFile.
/// @return what went wrong, or nothing
std::string writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes);

}  // namespace zvfx
