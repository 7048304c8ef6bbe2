#pragma once

#include "core/FileUtil.h"

#if defined(_WIN32)

namespace zv {

/// File access through the wide-character functions of Windows, so that UTF-8 paths work in any code page.
class ZV_API FileUtilWindows : public FileUtil {
public:
    ~FileUtilWindows() override;

    /// Sets the resource root to "res".
    bool init() override;
    using FileUtil::getDataFromFile;
    UniqueDataPtr<unsigned char> getDataFromFile(const std::string& path) override;
    std::string getTextFromFile(const std::string& path) override;
    /// A directory is not a file.
    bool fileExist(const std::string& path) override;
    std::string getExeDir() const override;
    /// A drive letter, a colon and more, or two slashes; a single slash is relative to the current drive.
    bool isAbsolutePath(const std::string& path) const override;
};

/// Conversions between UTF-8, UTF-16 and the process's code page; text that cannot be converted gives an
/// empty result.
ZV_API std::wstring StringUtf8ToWideChar(const std::string& text);
ZV_API std::string StringWideCharToUtf8(const std::wstring& text);
ZV_API std::string UTF8StringToMultiByte(const std::string& text);

}  // namespace zv

#endif
