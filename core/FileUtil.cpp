#include "core/FileUtil.h"

#include <sys/stat.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <system_error>

#include "core/FileUtilPosix.h"
#include "core/FileUtilWindows.h"
#include "core/ResizableBuffer.h"

namespace zv {

namespace {

std::mutex sInstanceMutex;

/// Null when the file is missing or is not a regular one: opening a pipe would wait for its writer, and a
/// directory opens but has no size.
std::unique_ptr<std::ifstream> openStream(const std::string& path, std::ios_base::openmode mode) {
    try {
        const std::filesystem::path file = std::filesystem::u8path(path);
        std::error_code error;
        if (!std::filesystem::is_regular_file(file, error))
            return nullptr;
        auto stream = std::make_unique<std::ifstream>(file, mode | std::ios_base::in);
        return stream->is_open() ? std::move(stream) : nullptr;
    } catch (const std::exception&) {
        return nullptr;  // A path that the platform cannot express.
    }
}

bool readStream(const std::string& path, ResizableBuffer& buffer) {
    const std::unique_ptr<std::ifstream> stream =
        openStream(path, std::ios_base::binary | std::ios_base::ate);
    if (stream == nullptr)
        return false;
    const std::streamoff size = stream->tellg();
    if (size < 0 || static_cast<std::uint64_t>(size) > FileUtil::MAX_FILE_SIZE ||
        !buffer.resize(static_cast<std::size_t>(size)))
        return false;
    stream->seekg(0);
    stream->read(reinterpret_cast<char*>(buffer.data()), size);
    buffer.shrink(static_cast<std::size_t>(stream->gcount()));
    return true;
}

}  // namespace

std::atomic<FileUtil*> FileUtil::sFileUtil{nullptr};

FileUtil::~FileUtil() = default;

bool FileUtil::init() {
    return true;
}

bool FileUtil::getDataFromFile(UniqueDataPtr<unsigned char>& out, const std::string& path) {
    ResizableBytes buffer;
    const bool read = readStream(getFullFilePath(path), buffer);
    out = buffer.take();
    return read;
}

UniqueDataPtr<unsigned char> FileUtil::getDataFromFile(const std::string& path) {
    ResizableBytes buffer;
    readStream(getFullFilePath(path), buffer);
    return buffer.take();
}

std::unique_ptr<std::istream> FileUtil::getiStreamFromFile(const std::string& path, int mode) {
    return openStream(getFullFilePath(path), static_cast<std::ios_base::openmode>(mode));
}

std::string FileUtil::getTextFromFile(const std::string& path) {
    ResizableText buffer;
    readStream(getFullFilePath(path), buffer);
    return buffer.take();
}

bool FileUtil::fileExist(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0;
}

std::string FileUtil::getExeDir() const {
    return {};
}

bool FileUtil::isAbsolutePath(const std::string& path) const {
    return !path.empty() && path.front() == '/';
}

FileUtil* FileUtil::getInstance() {
    if (FileUtil* instance = sFileUtil.load())
        return instance;
    const std::lock_guard<std::mutex> lock(sInstanceMutex);
    if (FileUtil* instance = sFileUtil.load())
        return instance;
#if defined(_WIN32)
    std::unique_ptr<FileUtil> created = std::make_unique<FileUtilWindows>();
#else
    std::unique_ptr<FileUtil> created = std::make_unique<FileUtilPosix>();
#endif
    if (!created->init())
        return nullptr;
    sFileUtil.store(created.get());
    return created.release();
}

void FileUtil::destoryInstance() {
    setInstance(nullptr);
}

void FileUtil::setInstance(std::unique_ptr<FileUtil> instance) {
    const std::lock_guard<std::mutex> lock(sInstanceMutex);
    delete sFileUtil.exchange(instance.release());
}

void FileUtil::setZvRoot(const std::string& root) {
    mZvRoot = root + "/";
}

void FileUtil::setUserRoot(const std::string& root) {
    mUserRoot = root + "/";
}

std::string FileUtil::getFullFilePath(const std::string& path) {
    if (isAbsolutePath(path))
        return path;
    if (!mUserRoot.empty()) {
        std::string userPath = mUserRoot + path;
        if (fileExist(userPath))
            return userPath;
    }
    return mZvRoot.empty() ? path : mZvRoot + path;
}

}  // namespace zv
