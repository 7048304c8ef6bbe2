// Pictures and names that the internet has in store. The pictures of libpng's own test suite join in where
// the environment variable ZV_PNG_SUITE names their folder; ./zv nightly fetches them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "core/FileUtil.h"
#include "files/PeakMemory.h"
#include "gl/PictureFiles.h"
#include "support/Picture.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kLittle = 64u << 20;

/// Every picture that lies below a folder.
std::vector<std::string> picturesBelow(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(fs::u8path(folder))) {
        if (entry.path().extension() == ".png") {
            paths.push_back(entry.path().u8string());
        }
    }
    return paths;
}

}  // namespace

TEST(BadFiles, APictureThatPromisesTooMuchIsRefusedBeforeItTakesMemory) {
    const TempDir dir;
    const Bytes small = pngFile({1, 1, 8, 6, {1, 2, 3, 4}});
    Bytes huge = pngFile({65535, 1, 1, 0, Bytes(65535 / 8 + 1)});
    // The header of 65,535 x 65,535 pixels of one bit, from their height to its sum.
    const Bytes header = {0, 0, 0xFF, 0xFF, 1, 0, 0, 0, 0, 0x9E, 0x7E, 0xE4, 0xFD};
    std::copy(header.begin(), header.end(), huge.begin() + 20);
    Bytes text(small.begin(), small.begin() + 33);
    const Bytes claim = {0x7D, 0, 0, 0x10, 'z', 'T', 'X', 't', 'a', 0, 0};
    text.insert(text.end(), claim.begin(), claim.end());
    Bytes wide = bmpFile({65535, 65535, Bytes(100), 0xFFFFFFFF});
    const std::uint64_t before = peakMemory();
    for (const auto& [name, file] :
         {std::pair("huge.png", huge), std::pair("text.png", text), std::pair("wide.bmp", wide)}) {
        EXPECT_FALSE(decodes(dir.write(name, file))) << name;
        EXPECT_LT(peakMemory() - before, kLittle) << name;
    }
}

TEST(BadFiles, NamesOfAnyKindOpenWhatTheyName) {
    const TempDir dir;
    const Bytes png = pngFile({1, 1, 8, 2, {1, 2, 3}});
    std::string deep;
    for (int i = 0; i < 3; ++i) {
        deep += std::string(100, static_cast<char>('a' + i)) + "/";
    }
    for (const std::string& name : {
             deep + "a.png", std::string("\xC3\xA4 \xE6\x97\xA5 \xF0\x9F\x98\x80.png")
#if !defined(_WIN32)
                                 ,
                 std::string("line\nbreak.png"), std::string("per %s %n cent.png"),
                 std::string("\xC3\x28.png")
#endif
         }) {
        EXPECT_TRUE(decodes(dir.write(name, png))) << name;
        EXPECT_FALSE(decodes(dir.file(name + "x/" + name))) << name;
    }
    EXPECT_FALSE(decodes(dir.file(std::string(5000, 'n') + ".png")));
    EXPECT_FALSE(decodes(dir.file(std::string("nul\0in.png", 10))));
}

TEST(BadFiles, ThePngSuiteDecodesOrIsRefused) {
    const char* folder = std::getenv("ZV_PNG_SUITE");
    if (folder == nullptr) {
        GTEST_SKIP() << "ZV_PNG_SUITE names no folder; ./zv nightly sets it";
    }
    int whole = 0;
    const TempDir dir;
    for (const std::string& path : picturesBelow(folder)) {
        const bool good = decodes(path);
        whole += good ? 1 : 0;
        // What libpng itself calls broken is in a folder of its own; all else must be read.
        const bool broken =
            path.find("crashers") != std::string::npos || path.find("/bad") != std::string::npos;
        EXPECT_TRUE(good || broken) << path;
        const std::string bytes = readFile(path);
        for (std::size_t at = 0; at < bytes.size(); at += 97) {
            std::string changed = bytes;
            changed[at] = static_cast<char>(changed[at] ^ 0x10);
            decodes(dir.write("a.png", changed));
            changed.resize(at);
            decodes(dir.write("a.png", changed));
        }
    }
    EXPECT_GT(whole, 100);
}

}  // namespace zv::test
