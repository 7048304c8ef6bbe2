#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

/// The GL state of a host that draws with the same context as we do. What is covered: the program, the active
/// unit, the 2D textures and samplers of the first four units (and the rectangle texture of the first one),
/// the vertex array (below GL 3.0 all vertex arrays), the array, element, pack and unpack buffer, both frame
/// buffers, the view port, blending with its factors and equations, the colour mask, the scissor, depth,
/// stencil, cull and alpha test, and the pixel store.
/// A host with plain state costs about 60 GL calls a frame; each item that differs from GL's default adds one
/// or two. GL thread only; calls do not nest.
class ZV_API HostState {
public:
    /// Reads the host's state and replaces what would spoil our pictures by GL's defaults. Unit 0 is active
    /// and no vertex array is bound afterwards.
    void shield();
    /// Puts back what shield() read.
    void restore();

private:
    static constexpr std::size_t kUnits = 4;
    static constexpr std::size_t kTests = 5;
    static constexpr std::size_t kStores = 9;

    struct Unit {
        std::int32_t texture = 0;
        std::int32_t sampler = 0;
    };

    void learnContext();
    /// What was bound may have been one of ours, left there earlier and deleted since: GL refuses its name.
    void forgetDeleted();
    void shieldUnits();
    void shieldBuffers();
    void shieldBlend();
    void shieldFragments();
    void shieldPixelStore();
    void restoreUnits();
    void restoreBuffers();
    void restoreBlend();
    void restoreFragments();
    void restorePixelStore();

    bool mContextKnown = false;
    bool mIsCore = false;
    bool mHasVertexArrays = false;
    bool mHasReadFrameBuffer = false;
    bool mHasSamplers = false;
    bool mHasRectangles = false;
    unsigned int mDeleted = 0;  ///< DeletedNames::count() at shield()
    std::int32_t mProgram = 0;
    std::int32_t mActiveUnit = 0;
    std::array<Unit, kUnits> mUnits;
    std::int32_t mRectangle = 0;
    std::int32_t mVertexArray = 0;
    std::int32_t mArrayBuffer = 0;
    std::int32_t mElementBuffer = 0;  ///< of the default vertex array
    std::int32_t mPackBuffer = 0;
    std::int32_t mUnpackBuffer = 0;
    std::int32_t mDrawFrameBuffer = 0;
    std::int32_t mReadFrameBuffer = 0;
    std::array<std::int32_t, 4> mViewPort{};
    bool mBlend = false;
    std::array<std::int32_t, 4> mBlendFactors{};  ///< source and destination of colour, then of alpha
    std::array<std::int32_t, 2> mBlendEquations{};
    std::array<unsigned char, 4> mColorMask{};
    bool mMasksColor = false;
    std::array<bool, kTests> mTests{};
    std::array<std::int32_t, kStores> mStores{};
};

}  // namespace zv
