#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "core/FileUtil.h"
#include "core/imemstream.h"

namespace zv::test {

/// The files as they are, but for one that is held in memory.
class MemoryFile : public FileUtil {
public:
    std::string path;   ///< which one; empty: every file
    std::string bytes;  ///< what it holds

    bool getDataFromFile(UniqueDataPtr<unsigned char>& out, const std::string& name) override {
        out = getDataFromFile(name);
        return isHeld(name) || out.size() > 0;
    }
    /// A copy of just this size, so that a read beyond the end is seen.
    UniqueDataPtr<unsigned char> getDataFromFile(const std::string& name) override {
        if (!isHeld(name)) {
            return FileUtil::getDataFromFile(name);
        }
        UniqueDataPtr<unsigned char> out(bytes.size());
        bytes.copy(reinterpret_cast<char*>(out.get(0)), bytes.size());
        return out;
    }
    std::unique_ptr<std::istream> getiStreamFromFile(const std::string& name, int mode) override {
        return isHeld(name) ? std::make_unique<imemstream>(bytes.data(), bytes.size())
                            : FileUtil::getiStreamFromFile(name, mode);
    }
    std::string getTextFromFile(const std::string& name) override {
        return isHeld(name) ? bytes : FileUtil::getTextFromFile(name);
    }

private:
    bool isHeld(const std::string& name) const { return path.empty() || name == path; }
};

/// Puts a new one in the place of the process-wide file utility, which owns it.
template <class Files>
Files& installFiles() {
    auto made = std::make_unique<Files>();
    Files& kept = *made;
    FileUtil::setInstance(std::move(made));
    return kept;
}

/// From now on every file that the library opens holds these bytes; for fuzzers, call by call.
inline void serveAsEveryFile(const unsigned char* data, std::size_t size) {
    static MemoryFile& file = installFiles<MemoryFile>();
    file.bytes.assign(data, data + size);
}

}  // namespace zv::test
