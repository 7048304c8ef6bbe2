// Feeds "sticker.json" to a sticker. What is read is at least two texts, so an answer of true without them,
// or a path that is touched on false, is a fault as well.
#include <cstdlib>

#include "core/ZVLog.h"
#include "gltf/GtSticker.h"
#include "support/MemoryFile.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    zv::test::serveAsEveryFile(data, size);
    zv::gltf::GtSticker sticker;
    std::string folder = "folder";
    std::string path = "as it was";
    const bool read = sticker.parserJson(folder, path);
    if (folder != "folder/" || (read ? path.rfind(folder, 0) != 0 : path != "as it was")) {
        std::abort();
    }
    return 0;
}
