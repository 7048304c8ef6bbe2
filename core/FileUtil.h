#pragma once

#include <atomic>
#include <istream>
#include <memory>
#include <string>

#include "core/UniqueDataPtr.h"
#include "core/ZVExport.h"

namespace zv {

/// The process-wide gate to resource files: turns resource names into paths (the user root first, then the
/// resource root) and reads whole files. Paths are UTF-8. This base reads through standard file streams; a
/// platform class may replace any operation.
///
/// Nothing is logged and nothing throws: a file that is missing, is not a regular file, is larger than
/// MAX_FILE_SIZE or finds no memory gives an empty result or false.
class ZV_API FileUtil {
public:
    /// Bytes of the largest file that is read whole.
    static constexpr std::uint64_t MAX_FILE_SIZE = 0x7FFFFFFF;

    FileUtil() = default;
    FileUtil(const FileUtil&) = delete;
    FileUtil& operator=(const FileUtil&) = delete;
    virtual ~FileUtil();

    virtual bool init();
    /// True when the file was read, an empty one included; else `out` is emptied.
    virtual bool getDataFromFile(UniqueDataPtr<unsigned char>& out, const std::string& path);
    virtual UniqueDataPtr<unsigned char> getDataFromFile(const std::string& path);
    /// A stream opened with the std::ios_base::openmode bits of `mode`, plus input; null when it does not
    /// open.
    virtual std::unique_ptr<std::istream> getiStreamFromFile(const std::string& path, int mode);
    virtual std::string getTextFromFile(const std::string& path);
    /// Asks about the path as it is: no root is tried. This base also says true for a directory.
    virtual bool fileExist(const std::string& path);
    /// The directory of the host program with "/" between its parts and none at its end; empty when it is not
    /// known.
    virtual std::string getExeDir() const;
    virtual bool isAbsolutePath(const std::string& path) const;

    /// The platform's instance, made on first call; null when its init() fails.
    static FileUtil* getInstance();
    static void destoryInstance();
    /// Puts another one in its place, for hosts that keep resources elsewhere than in files. Owned; null
    /// brings back the platform's at the next call. The roots start empty. Not while others use the former
    /// instance.
    static void setInstance(std::unique_ptr<FileUtil> instance);

    /// The root becomes the text plus "/".
    void setZvRoot(const std::string& root);
    void setUserRoot(const std::string& root);
    /// An absolute path as it is; else below the user root when a file exists there; else below the resource
    /// root whether it exists or not; without roots the path as it is.
    std::string getFullFilePath(const std::string& path);

private:
    std::string mZvRoot;
    std::string mUserRoot;
    static std::atomic<FileUtil*> sFileUtil;
};

}  // namespace zv
