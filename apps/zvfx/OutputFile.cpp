#include "zvfx/OutputFile.h"

#include <filesystem>
#include <fstream>
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

bool writeStream(const fs::path& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    return stream.good();
}

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

bool StandardOutput::write(const std::vector<std::uint8_t>& bytes) {
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), mStream) == bytes.size();
    return std::fflush(mStream) == 0 && written;
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
    std::error_code error;
    const fs::path target = followLink(fs::u8path(path));
    if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
        return writeStream(target, bytes) ? std::string() : path + ": cannot be written";
    }
    fs::path temporary = target;
    temporary += ".part-" + std::to_string(std::random_device{}());
    if (writeStream(temporary, bytes)) {
        fs::rename(temporary, target, error);
        if (!error) {
            return {};
        }
    }
    fs::remove(temporary, error);
    return path + ": cannot be written";
}

}  // namespace zvfx
