// Every file that is shipped, cut short and with single bits turned over, through the loader that reads it.
// By default some places of each file; with the environment variable ZV_TEST_THOROUGH every 97th one, and
// every bit of the small files, which takes minutes: ./zv nightly does so.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <ostream>

#include "gl/PictureFiles.h"
#include "gltf/GtSticker.h"
#include "gltf/WalkModel.h"
#include "support/LogCapture.h"
#include "support/MemoryFile.h"
#include "support/TempDir.h"
#include "zvfx/FaceTrack.h"
#if defined(ZV_TEST_FACE)
#include "face/FaceModel.h"
#endif

namespace zv::test {

namespace {

namespace fs = std::filesystem;

bool readModel(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = path.substr(0, slash + 1), name = path.substr(slash + 1);
    gltf::GtModel model;
    const bool isRead = model.parser(folder, folder + name.substr(0, name.rfind('.')) + ".gltf");
    walkModel(model);
    return isRead;
}

bool readSticker(const std::string& path) {
    gltf::GtSticker sticker;
    std::string folder = path.substr(0, path.rfind('/')), model;
    return sticker.parserJson(folder, model);
}

bool readTrack(const std::string& path) {
    zvfx::FaceTrack track;
    const auto stream = FileUtil::getInstance()->getiStreamFromFile(path, 0);
    return track.read(*stream, {512, 512}).empty();
}

using Reader = bool (*)(const std::string& path);
const std::map<std::string, Reader> kReaders = {
    {".png", decodes},
    {".bmp", decodes},
    {".gltf", readModel},
    {".bin", readModel},
    {".json", readSticker},
    {".jsonl", readTrack},
#if defined(ZV_TEST_FACE)
    {".onnx",
     [](const std::string& path) {
         return FaceModel().load(path, {"input", {1, 3, 128, 128}}, {});
     }},
#endif
};

struct Sample {
    std::string path;
    std::string bytes;
    Reader read;
};

/// What a failing test is told with.
void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.path;
}

/// What is shipped and has a reader, and a picture of the other kind.
std::vector<Sample> samples() {
    static const TempDir dir;
    std::vector<Sample> found;
    dir.write("a.bmp", bmpFile({5, 3, Bytes(48, 7), 48}));
    for (const std::string& folder :
         {std::string(ZV_TEST_DATA_DIR), std::string(ZV_TEST_RES_DIR "/zv_res"), dir.path()}) {
        for (const auto& entry : fs::recursive_directory_iterator(fs::u8path(folder))) {
            const auto reader = kReaders.find(entry.path().extension().string());
            if (reader != kReaders.end()) {
                const std::string path = entry.path().generic_u8string();
                found.push_back({path, readFile(path), reader->second});
            }
        }
    }
    std::sort(found.begin(), found.end(), [](auto& a, auto& b) { return a.path < b.path; });
    return found;
}

bool isThorough() {
    return std::getenv("ZV_TEST_THOROUGH") != nullptr;
}

/// Whether a file that is cut there is whole all the same: what is missing are white space or whole lines.
bool isWhole(const Sample& sample, std::size_t at) {
    const bool isText = sample.read == readSticker || sample.read == readTrack || sample.path.back() == 'f';
    return isText &&
           (sample.read == readTrack || sample.bytes.find_first_not_of(" \r\n\t", at) == std::string::npos);
}

/// One test for each file, so that a long run shows how far it is and can be dealt out to several cores.
class DamagedFiles : public testing::TestWithParam<Sample> {};

}  // namespace

TEST(DamagedFilesThemselves, AreMadeOfAllThatIsShipped) {
    EXPECT_GE(samples().size(), 50U);
}

TEST_P(DamagedFiles, AreRefusedOrReadAndNothingElseBreaks) {
    const Sample& sample = GetParam();
    MemoryFile& file = installFiles<MemoryFile>();
    file.path = sample.path;
    const LogCapture log;  // what is refused is told there
    int tried = 0;
    const auto reads = [&](std::string bytes) {
        ++tried;
        file.bytes = std::move(bytes);
        return sample.read(sample.path);
    };
    const std::size_t size = sample.bytes.size();
    const std::size_t few = size > 50000 ? 6 : 40;
    const std::size_t step = isThorough() ? 97 : std::max<std::size_t>(97, size / few / 97 * 97);
    for (std::size_t at = 0; at < size; at += step) {
        EXPECT_TRUE(!reads(sample.bytes.substr(0, at)) || isWhole(sample, at)) << "cut at " << at;
    }
    const bool isModel = sample.path.find("/models/") != std::string::npos;  // of those every byte counts
    const bool isEachBit = size < 4000 && (isThorough() || size < 200);
    for (std::size_t bit = 0; bit < size * 8; bit += isEachBit ? 1 : step * 8 + 1) {
        std::string flipped = sample.bytes;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ 1 << bit % 8);
        EXPECT_FALSE(reads(flipped) && isModel) << "bit " << bit;
    }
    EXPECT_EQ(reads(sample.bytes), !isModel || sample.path.find("front") != std::string::npos)
        << "the file as it was";
    FileUtil::setInstance(nullptr);
    RecordProperty("tried", tried);
}

INSTANTIATE_TEST_SUITE_P(Shipped, DamagedFiles, testing::ValuesIn(samples()), [](const auto& each) {
    std::string name = fs::u8path(each.param.path).filename().string() + '_' + std::to_string(each.index);
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
});

}  // namespace zv::test
