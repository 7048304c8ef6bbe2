#include "core/FileUtilWindows.h"

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <climits>

#include "core/ResizableBuffer.h"

namespace zv {

namespace {

std::wstring toWide(const std::string& text, UINT codePage) {
    if (text.empty() || text.size() > INT_MAX)
        return {};
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    if (needed <= 0)
        return {};
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    const int written = MultiByteToWideChar(codePage, 0, text.data(), length, &wide[0], needed);
    wide.resize(static_cast<std::size_t>(std::max(written, 0)));
    return wide;
}

std::string fromWide(const std::wstring& wide, UINT codePage) {
    if (wide.empty() || wide.size() > INT_MAX)
        return {};
    const int length = static_cast<int>(wide.size());
    const int needed = WideCharToMultiByte(codePage, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0)
        return {};
    std::string text(static_cast<std::size_t>(needed), '\0');
    const int written =
        WideCharToMultiByte(codePage, 0, wide.data(), length, &text[0], needed, nullptr, nullptr);
    text.resize(static_cast<std::size_t>(std::max(written, 0)));
    return text;
}

/// The size of a file on a disk that may be read whole; false for anything else.
bool getReadableSize(HANDLE file, DWORD& size) {
    DWORD high = 0;
    SetLastError(NO_ERROR);
    size = GetFileSize(file, &high);
    const bool known = size != INVALID_FILE_SIZE || GetLastError() == NO_ERROR;
    return known && GetFileType(file) == FILE_TYPE_DISK && high == 0 && size <= FileUtil::MAX_FILE_SIZE;
}

/// Fills the buffer with a file; leaves it as it is when that cannot be read.
void readFile(const std::string& path, ResizableBuffer& buffer) {
    const HANDLE file = CreateFileW(StringUtf8ToWideChar(path).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    DWORD size = 0;
    if (getReadableSize(file, size) && buffer.resize(size)) {
        DWORD count = 0;
        if (!ReadFile(file, buffer.data(), size, &count, nullptr))
            count = 0;
        buffer.shrink(count);
    }
    CloseHandle(file);
}

std::string readExeDir() {
    wchar_t path[1024] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, 1023);
    const std::wstring program(path, length);
    const std::size_t cut = program.rfind(L'\\');
    if (cut == std::wstring::npos)
        return {};
    std::string directory = StringWideCharToUtf8(program.substr(0, cut));
    std::replace(directory.begin(), directory.end(), '\\', '/');
    return directory;
}

}  // namespace

std::wstring StringUtf8ToWideChar(const std::string& text) {
    return toWide(text, CP_UTF8);
}

std::string StringWideCharToUtf8(const std::wstring& text) {
    return fromWide(text, CP_UTF8);
}

std::string UTF8StringToMultiByte(const std::string& text) {
    return fromWide(toWide(text, CP_UTF8), CP_ACP);
}

FileUtilWindows::~FileUtilWindows() = default;

bool FileUtilWindows::init() {
    setZvRoot("res");
    return true;
}

UniqueDataPtr<unsigned char> FileUtilWindows::getDataFromFile(const std::string& path) {
    ResizableBytes buffer;
    if (!path.empty())
        readFile(getFullFilePath(path), buffer);
    return buffer.take();
}

std::string FileUtilWindows::getTextFromFile(const std::string& path) {
    ResizableText buffer;
    if (!path.empty())
        readFile(getFullFilePath(path), buffer);
    return buffer.take();
}

bool FileUtilWindows::fileExist(const std::string& path) {
    if (path.empty())
        return false;
    const DWORD attributes = GetFileAttributesW(StringUtf8ToWideChar(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::string FileUtilWindows::getExeDir() const {
    static const std::string sExeDir = readExeDir();
    return sExeDir;
}

bool FileUtilWindows::isAbsolutePath(const std::string& path) const {
    const bool letter =
        !path.empty() && ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z'));
    if (path.size() > 2 && letter && path[1] == ':')
        return true;
    return path.compare(0, 2, "//") == 0;
}

}  // namespace zv
