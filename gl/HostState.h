#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

/// The GL state of a host that draws with the same context as we do. What is covered: the program, the active
/// unit, the vertex array (below GL 3.0 all vertex arrays), the array and element buffer, both frame buffers,
/// the view port, blending, the colour mask, and the scissor, depth, stencil, cull and alpha test; and, of
/// what only some frames touch, the 2D and rectangle textures and samplers of the first eight units, the
/// blend factors and equations, the pixel store and the pack and unpack buffer. Those are read at the first
/// call of the functions before...(): the library makes them where it binds, blends, uploads and reads. A
/// node that calls GL itself makes them as well, or finds the host's state there and leaves its own behind.
/// A frame that binds three units costs about 30 GL calls; each item that differs from GL's default adds one
/// or two. GL thread only. They nest: an engine that another one draws within keeps and gives back what it
/// finds.
class ZV_API HostState {
public:
    /// Reads the host's state and replaces what would spoil our pictures by GL's defaults. No vertex array is
    /// bound afterwards. False, with nothing done, when this one is shielded already: a frame within a frame
    /// of its own leaves it to the outer one to restore.
    bool shield();
    /// Puts back what shield() and the functions below read.
    void restore();

    /// Before a texture of `target` (a GL enum) is bound to the active unit, which is `unit`. Without a state
    /// that is shielded on this thread this and the two below do nothing.
    static void beforeBinding(unsigned int unit, unsigned int target) {
        if (HostState* shielded = getShielded()) {
            shielded->keepUnit(unit, target);
        }
    }
    /// Before a blend function is set.
    static void beforeBlending() {
        if (HostState* shielded = getShielded()) {
            shielded->keepBlendFunction();
        }
    }
    /// Before pixels are uploaded or read.
    static void beforePixels() {
        if (HostState* shielded = getShielded()) {
            shielded->keepPixelStore();
        }
    }

private:
    static constexpr std::size_t kUnits = 8;
    static constexpr std::size_t kTests = 5;
    static constexpr std::size_t kStores = 9;

    struct Unit {
        bool used = false;
        std::array<bool, 2> kept{};  ///< of the 2D and the rectangle texture
        std::array<std::int32_t, 2> textures{};
        std::int32_t sampler = 0;
    };

    static HostState* getShielded();

    void learnContext();
    /// What was bound may have been one of ours, left there earlier and deleted since: GL refuses its name.
    void forgetDeleted();
    void keepUnit(std::size_t unit, unsigned int target);
    void keepBlendFunction();
    void keepPixelStore();
    void shieldBuffers();
    void shieldFragments();
    void restoreUnits();
    void restoreBuffers();
    void restoreBlend();
    void restoreFragments();
    void restorePixelStore();

    HostState* mOuter = nullptr;  ///< whose frame this one lies within
    bool mContextKnown = false;
    bool mIsCore = false;
    bool mHasVertexArrays = false;
    bool mHasReadFrameBuffer = false;
    bool mHasSamplers = false;
    unsigned int mDeleted = 0;  ///< DeletedNames::count() at shield()
    std::int32_t mProgram = 0;
    std::int32_t mActiveUnit = 0;
    std::array<Unit, kUnits> mUnits;
    std::int32_t mVertexArray = 0;
    std::int32_t mArrayBuffer = 0;
    std::int32_t mElementBuffer = 0;  ///< of the default vertex array
    std::int32_t mDrawFrameBuffer = 0;
    std::int32_t mReadFrameBuffer = 0;
    std::array<std::int32_t, 4> mViewPort{};
    bool mBlend = false;
    bool mKeepsBlendFunction = false;
    std::array<std::int32_t, 4> mBlendFactors{};  ///< source and destination of colour, then of alpha
    std::array<std::int32_t, 2> mBlendEquations{};
    std::array<unsigned char, 4> mColorMask{};
    bool mMasksColor = false;
    std::array<bool, kTests> mTests{};
    bool mKeepsPixelStore = false;
    std::int32_t mPackBuffer = 0;
    std::int32_t mUnpackBuffer = 0;
    std::array<std::int32_t, kStores> mStores{};
};

}  // namespace zv
