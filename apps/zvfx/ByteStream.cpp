#include "zvfx/ByteStream.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "zvfx/Interrupt.h"

#if defined(_WIN32)
#include <io.h>
#else
#include <poll.h>
#include <unistd.h>
#endif

namespace zvfx {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;

#if defined(_WIN32)
int openFile(const fs::path& path) {
    return _wopen(path.c_str(), _O_RDONLY | _O_BINARY);
}

int standardInput() {
    _setmode(0, _O_BINARY);
    return 0;
}

void closeFile(int file) {
    _close(file);
}

std::ptrdiff_t readSome(int file, unsigned char* to, std::size_t most) {
    return _read(file, to, static_cast<unsigned int>(most));
}

/// Reads of pipes cannot be watched here: the wait is in the read.
bool waitFor(int) {
    return true;
}
#else
constexpr int kWaitMilliseconds = 100;

int openFile(const fs::path& path) {
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

int standardInput() {
    return STDIN_FILENO;
}

void closeFile(int file) {
    ::close(file);
}

std::ptrdiff_t readSome(int file, unsigned char* to, std::size_t most) {
    return ::read(file, to, most);
}

/// Waits a little for bytes. @return whether there is something to read, an end or an error included
bool waitFor(int file) {
    pollfd watched = {file, POLLIN, 0};
    return ::poll(&watched, 1, kWaitMilliseconds) > 0;
}
#endif

}  // namespace

FileReader::~FileReader() {
    if (mFile > 0) {
        closeFile(mFile);
    }
}

std::string FileReader::open(const std::string& path) {
    if (path == "-") {
        mFile = standardInput();
        return {};
    }
    const fs::path file = fs::u8path(path);
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        return path + ": no such file";
    }
    if (fs::is_directory(status)) {
        return path + ": is a folder, not a video";
    }
    mFile = openFile(file);
    if (fs::is_regular_file(status)) {
        mSize = fs::file_size(file, error);
    }
    return mFile < 0 || error ? path + ": cannot be read" : std::string();
}

std::ptrdiff_t FileReader::read(unsigned char* to, std::size_t most) {
    while (!stopRequested()) {
        if (!waitFor(mFile)) {
            continue;
        }
        const std::ptrdiff_t count = readSome(mFile, to, std::min(most, kMostAtOnce));
        if (count >= 0 || errno != EINTR) {
            return count < 0 ? static_cast<std::ptrdiff_t>(kFailed) : count;
        }
    }
    return kStopped;
}

}  // namespace zvfx
