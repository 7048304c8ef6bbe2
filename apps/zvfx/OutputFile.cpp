#include "zvfx/OutputFile.h"

#include <filesystem>
#include <random>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

namespace zvfx {

namespace fs = std::filesystem;

namespace {

/// What a link leads to, so that the link stays and its target is replaced.
fs::path followLink(const fs::path& path) {
    std::error_code error;
    const fs::path followed = fs::weakly_canonical(path, error);
    return error ? path : followed;
}

}  // namespace

StandardOutput::~StandardOutput() {
    if (mStream != nullptr) {
        std::fclose(mStream);
    }
}

bool StandardOutput::take() {
    std::fflush(stdout);
#if defined(_WIN32)
    const int data = _dup(_fileno(stdout));
    if (data < 0 || _dup2(_fileno(stderr), _fileno(stdout)) != 0) {
        return false;
    }
    _setmode(data, _O_BINARY);
    mStream = _fdopen(data, "wb");
#else
    const int data = dup(STDOUT_FILENO);
    if (data < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        return false;
    }
    mStream = fdopen(data, "wb");
#endif
    return mStream != nullptr;
}

bool StandardOutput::write(const void* bytes, std::size_t count) {
    return std::fwrite(bytes, 1, count, mStream) == count;
}

bool StandardOutput::finish() {
    return std::fflush(mStream) == 0;
}

TargetFile::TargetFile(const std::string& path) : mTarget(followLink(fs::u8path(path))), mWritten(mTarget) {
    std::error_code error;
    if (!fs::exists(mTarget, error) || fs::is_regular_file(mTarget, error)) {
        mWritten += ".part-" + std::to_string(std::random_device{}());
    }
}

TargetFile::~TargetFile() {
    if (!mCommitted && mWritten != mTarget) {
        std::error_code error;
        fs::remove(mWritten, error);
    }
}

bool TargetFile::commit() {
    std::error_code error;
    if (mWritten != mTarget) {
        fs::rename(mWritten, mTarget, error);
    }
    mCommitted = !error;
    return mCommitted;
}

FileWriter::FileWriter(const std::string& path)
    : mFile(path), mStream(mFile.writePath(), std::ios::binary | std::ios::trunc) {}

bool FileWriter::write(const void* bytes, std::size_t count) {
    mStream.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
    return mStream.good();
}

bool FileWriter::finish() {
    mStream.close();
    return mStream.good() && mFile.commit();
}

std::string checkTarget(const std::string& path) {
    std::error_code error;
    const fs::path target = fs::u8path(path);
    if (fs::is_directory(target, error)) {
        return path + ": is a folder";
    }
    if (!fs::is_directory(target.parent_path(), error)) {
        return path + ": its folder does not exist";
    }
    return {};
}

std::string writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    FileWriter file(path);
    return file.write(bytes.data(), bytes.size()) && file.finish() ? std::string()
                                                                   : path + ": cannot be written";
}

}  // namespace zvfx
