#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace zv::test {

namespace fs = std::filesystem;

TempDir::TempDir() {
    std::random_device random;
    std::error_code error;
    for (int attempt = 0; attempt < 100; ++attempt) {
        const fs::path path = fs::temp_directory_path() / ("zv-test-" + std::to_string(random()));
        if (fs::create_directory(path, error)) {
            mPath = path.generic_u8string();
            return;
        }
    }
    ADD_FAILURE() << "cannot make a temporary folder: " << error.message();
}

TempDir::~TempDir() {
    if (mPath.empty()) {
        return;
    }
    std::error_code error;
    // A test may have taken away the right to write.
    fs::permissions(fs::u8path(mPath), fs::perms::owner_all, fs::perm_options::add, error);
    fs::remove_all(fs::u8path(mPath), error);
}

std::string TempDir::write(const std::string& name, std::string_view bytes) const {
    const std::string target = file(name);
    const fs::path path = fs::u8path(target);
    fs::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    EXPECT_TRUE(stream.good()) << "cannot write " << target;
    return target;
}

std::string TempDir::write(const std::string& name, const std::vector<unsigned char>& bytes) const {
    return write(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::vector<std::string> TempDir::entries() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::u8path(mPath))) {
        names.push_back(entry.path().filename().u8string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string readFile(const std::string& path) {
    std::ifstream stream(fs::u8path(path), std::ios::binary);
    EXPECT_TRUE(stream.good()) << "cannot read " << path;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace zv::test
