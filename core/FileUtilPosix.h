#pragma once

#include "core/FileUtil.h"

#if !defined(_WIN32)

namespace zv {

/// File access through the POSIX calls. Opening never waits, so a pipe without a writer is no trap.
class ZV_API FileUtilPosix : public FileUtil {
public:
    ~FileUtilPosix() override;

    /// Sets the resource root to "res".
    bool init() override;
    using FileUtil::getDataFromFile;
    UniqueDataPtr<unsigned char> getDataFromFile(const std::string& path) override;
    std::string getTextFromFile(const std::string& path) override;
    /// A directory is not a file.
    bool fileExist(const std::string& path) override;
    std::string getExeDir() const override;
};

}  // namespace zv

#endif
