#include "core/FileUtilPosix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/ResizableBuffer.h"

namespace zv {

namespace {

/// Reads up to `size` bytes; answers how many there were before the end of the file or an error.
std::size_t readBytes(int file, unsigned char* destination, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::read(file, destination + done, size - done);
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            break;
    }
    return done;
}

/// Fills the buffer with a regular file; leaves it as it is when that cannot be read.
void readFile(const std::string& path, ResizableBuffer& buffer) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (file < 0)
        return;
    struct stat status = {};
    if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
        static_cast<std::uint64_t>(status.st_size) <= FileUtil::MAX_FILE_SIZE) {
        const std::size_t size = static_cast<std::size_t>(status.st_size);
        if (buffer.resize(size))
            buffer.shrink(readBytes(file, buffer.data(), size));
    }
    ::close(file);
}

std::string readExeDir() {
    char path[4096];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof(path));
    if (length <= 0)
        return {};
    const std::string program(path, static_cast<std::size_t>(length));
    return program.substr(0, program.rfind('/'));
}

}  // namespace

FileUtilPosix::~FileUtilPosix() = default;

bool FileUtilPosix::init() {
    setZvRoot("res");
    return true;
}

UniqueDataPtr<unsigned char> FileUtilPosix::getDataFromFile(const std::string& path) {
    ResizableBytes buffer;
    if (!path.empty())
        readFile(getFullFilePath(path), buffer);
    return buffer.take();
}

std::string FileUtilPosix::getTextFromFile(const std::string& path) {
    ResizableText buffer;
    if (!path.empty())
        readFile(getFullFilePath(path), buffer);
    return buffer.take();
}

bool FileUtilPosix::fileExist(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::string FileUtilPosix::getExeDir() const {
    static const std::string sExeDir = readExeDir();
    return sExeDir;
}

}  // namespace zv
