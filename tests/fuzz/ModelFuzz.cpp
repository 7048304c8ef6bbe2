// Feeds the loader of face models: each input as a whole file, and as damage to a model that is shipped, four
// bytes a place and the value that it gets. What is not byte for byte a shipped model must be refused before
// the runtime sees it, which takes gigabytes for some and leaks with others.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "core/ZVLog.h"
#include "face/FaceModel.h"
#include "support/MemoryFile.h"

namespace {

std::string smallestModel() {
    std::filesystem::directory_entry smallest;
    for (const auto& entry : std::filesystem::directory_iterator(ZV_FUZZ_RES_DIR "/zv_res/models")) {
        if (entry.path().extension() == ".onnx" &&
            (smallest.path().empty() || entry.file_size() < smallest.file_size())) {
            smallest = entry;
        }
    }
    std::ifstream file(smallest.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool loads(const std::string& bytes) {
    zv::test::serveAsEveryFile(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    zv::FaceModel model;
    return model.load("f.onnx", {"input", {1, 3, 256, 256}}, {});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const std::string shipped = smallestModel();
    static const bool silent = (zv::setLogStream(std::fopen("/dev/null", "w")), loads(shipped));
    std::string damaged = shipped;
    for (std::size_t at = 0; at + 4 <= size; at += 4) {
        const std::size_t place = data[at] | std::size_t{data[at + 1]} << 8 | std::size_t{data[at + 2]} << 16;
        damaged[place % damaged.size()] = static_cast<char>(data[at + 3]);
    }
    if (!silent || loads(std::string(data, data + size)) || (damaged != shipped && loads(damaged))) {
        std::abort();
    }
    return 0;
}
