#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zv::host {

/// Streams planes of 8-bit samples (luma, chroma, or chroma pairs) into textures, through two pixel-unpack
/// buffers that take turns: what was handed over last time may still be on its way to its textures. Samples
/// lie in red (and green) on contexts of GL 3.0 and newer, in luminance (and alpha) below, as the shaders for
/// YUV expect. The first row lies at v = 0. Only on one thread with its GL context current.
class PlaneUploader {
public:
    /// Size of a plane's texture.
    struct Texture {
        int width;
        int height;
        int channels;  ///< 1, or 2 for interleaved pairs
        bool linear;   ///< filtered, or else the nearest sample
    };
    /// Where a plane's samples are. Its texture may be larger: the last column and row are repeated there.
    struct Samples {
        const unsigned char* data;  ///< the first row
        std::ptrdiff_t stride;      ///< bytes from a row to the next
        int width;                  ///< 1 to the texture's
        int height;
    };

    PlaneUploader() = default;
    /// Deletes the textures.
    ~PlaneUploader();
    PlaneUploader(const PlaneUploader&) = delete;
    PlaneUploader& operator=(const PlaneUploader&) = delete;

    /// Makes textures and buffers. To be called once.
    /// @return false when GL refuses
    bool init(const std::vector<Texture>& textures);

    /// Replaces what all textures hold; `samples` has an element a texture. Leaves no buffer and, on the
    /// active unit, no texture bound; the row alignment is GL's default of 4.
    /// @return false, with the textures as they were, when there is no memory for the buffer
    bool upload(const Samples* samples);

    /// GL name of a texture; stays the uploader's.
    unsigned int name(std::size_t index) const { return mPlanes[index].name; }

private:
    struct Plane {
        Texture texture;
        unsigned int name;
        std::size_t offset;  ///< in the buffer
        std::size_t stride;  ///< there, a multiple of the row alignment
    };

    bool makeTexture(Plane& plane);

    std::vector<Plane> mPlanes;
    unsigned int mBuffers[2] = {0, 0};
    std::size_t mBytes = 0;  ///< of each buffer
    bool mFirstNext = true;
};

}  // namespace zv::host
