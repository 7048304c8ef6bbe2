#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "core/FileUtil.h"
#include "core/imemstream.h"

namespace zv::test {

/// Every file that the library opens holds the input.
class InputFile : public FileUtil {
public:
    /// The process-wide one, in the place of the platform's from the first call on.
    static InputFile& instance() {
        static InputFile* const installed = [] {
            auto made = std::make_unique<InputFile>();
            InputFile* kept = made.get();
            FileUtil::setInstance(std::move(made));
            return kept;
        }();
        return *installed;
    }

    /// Copies, so that a read beyond the end is seen.
    void setBytes(const unsigned char* data, std::size_t size) { mBytes.assign(data, data + size); }

    using FileUtil::getDataFromFile;
    bool getDataFromFile(UniqueDataPtr<unsigned char>& out, const std::string& path) override {
        out = getDataFromFile(path);
        return true;
    }
    UniqueDataPtr<unsigned char> getDataFromFile(const std::string&) override {
        UniqueDataPtr<unsigned char> out(mBytes.size());
        mBytes.copy(reinterpret_cast<char*>(out.get(0)), mBytes.size());
        return out;
    }
    std::unique_ptr<std::istream> getiStreamFromFile(const std::string&, int) override {
        return std::make_unique<imemstream>(mBytes.data(), mBytes.size());
    }
    std::string getTextFromFile(const std::string&) override { return mBytes; }

private:
    std::string mBytes;
};

}  // namespace zv::test
