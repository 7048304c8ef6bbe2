#pragma once

#include "core/ZVExport.h"

namespace zv {

class FrameBuffer;
class RenderState;
class RenderTarget;

/// Draws into, or reads from, a target for as long as it lives: attaches the target to the frame buffer,
/// binds that through the current render state and gives the binding back. Several render textures may share
/// one frame buffer: a pass that runs inside another one on the same frame buffer also gives the outer
/// pass its target back.
/// Lives on the stack of the engine's thread; passes end in the reverse of the order in which they began.
class ZV_API TargetPass {
public:
    /// Retains both for its duration.
    TargetPass(FrameBuffer& frameBuffer, RenderTarget& target);
    ~TargetPass();
    TargetPass(const TargetPass&) = delete;
    TargetPass& operator=(const TargetPass&) = delete;

    /// Goes on in another target of the same frame buffer.
    void changeTarget(RenderTarget& target);

private:
    void attach();

    RenderState& mState;
    FrameBuffer& mFrameBuffer;
    RenderTarget* mTarget;
    TargetPass* mOuter;
};

}  // namespace zv
