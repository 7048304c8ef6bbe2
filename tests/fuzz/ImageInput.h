#pragma once

#include <cstdio>
#include <cstdlib>

#include "gl/PictureFiles.h"
#include "support/MemoryFile.h"

namespace zv::test {

/// Decodes the bytes as a file of that name and holds the reader to what it promises.
inline void decodeImage(const unsigned char* data, std::size_t size, const char* name) {
    // The reader tells about files that are none on standard output, by the million here.
    static const bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    serveAsEveryFile(data, size);
    Image image;
    if (quiet && image.initWithFile(name) && !keepsItsPromise(image)) {
        std::abort();
    }
}

}  // namespace zv::test
