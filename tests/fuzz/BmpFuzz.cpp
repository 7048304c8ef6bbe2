// Feeds the engine's BMP reader.
#include "fuzz/ImageInput.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    zv::test::decodeImage(data, size, "f.bmp");
    return 0;
}
