#pragma once

#include <atomic>
#include <cstdint>
#include <set>
#include <thread>

#include "core/Ref.h"
#include "core/TVec.h"
#include "core/VertexFormats.h"
#include "core/ZVExport.h"

namespace zv {

class RenderTarget;
class RenderTargetDepthStencil;

/// One GL frame-buffer object with a colour target, clear values of its own and a dirty flag that puts the
/// GL attachment off until the buffer is next applied.
class ZV_API FrameBuffer : public Ref {
public:
    /// A frame-buffer object of our own, listed for clearAllFBOs(). Autoreleased.
    static FrameBuffer* create();
    /// Wraps the frame buffer that the host draws to (0: the window). Never deleted, cleared by
    /// clearAllFBOs() or attached to by us; becomes sDefaultFBO. Autoreleased.
    static FrameBuffer* createDefault(int fbo);

    /// The buffer that stands for the host's own target, the last one that createDefault() made; null when
    /// none. Not retained.
    static std::atomic<FrameBuffer*> sDefaultFBO;

    FrameBuffer() = default;
    ~FrameBuffer() override;
    FrameBuffer(const FrameBuffer&) = delete;
    FrameBuffer& operator=(const FrameBuffer&) = delete;

    /// Retains `target` in place of the held one. The held one again changes nothing.
    void attachRenderTarget(RenderTarget* target);
    /// Retains `target` in place of the held one. Makes the attachment dirty even for the held one.
    void attachDepthStencilTarget(RenderTargetDepthStencil* target);

    /// Attaches the colour target (none: empties the attachment) when dirty; the default buffer never is
    /// attached to. Bind this frame buffer first, through RenderState::pushFrameBuffer().
    /// The depth-stencil target is deliberately left out: depth and stencil tests see no buffer here.
    void apply();

    /// Clears colour, depth and stencil with this buffer's values. Needs a current render state.
    void clearFBO();
    /// clearFBO() on every living buffer that create() made on this thread.
    static void clearAllFBOs();

    /// Resizes the targets that are held and makes the attachment dirty, whatever they answer.
    void resetSize(const Size16& size);

    /// Does nothing: the default buffer is bound by the render state's stack.
    static void applyDefaultFBO();

    unsigned int getFBO() const { return mFBO; }
    RenderTarget* getRenderTarget() const { return mRenderTarget; }
    RenderTargetDepthStencil* getDepthStencilTarget() const { return mDepthStencilTarget; }
    bool isDefaultFBO() const { return mIsDefault; }

    void setClearColor(const Color4F& color) { mClearColor = color; }
    const Color4F& getClearColor() const { return mClearColor; }
    void setClearDepth(float depth) { mClearDepth = depth; }
    float getClearDepth() const { return mClearDepth; }
    void setClearStencil(std::int8_t stencil) { mClearStencil = stencil; }
    std::int8_t getClearStencil() const { return mClearStencil; }

    /// Set it when an attached texture got another GL name.
    void setFboBindingDirty(bool dirty) { mBindingDirty = dirty; }

protected:
    /// Adopts a GL name; `owns` says whether it is deleted with this object.
    virtual bool init(int fbo, bool owns);
    /// Generates a GL name and lists this object in sFrameBuffers.
    virtual bool init();

    /// Buffers that init() made, of every engine of the process. Locked wherever it is used.
    static std::set<FrameBuffer*> sFrameBuffers;

private:
    unsigned int mFBO = 0;
    Color4F mClearColor{0.0f, 0.0f, 0.0f, 1.0f};
    float mClearDepth = 1.0f;
    std::int8_t mClearStencil = 0;
    RenderTarget* mRenderTarget = nullptr;
    RenderTargetDepthStencil* mDepthStencilTarget = nullptr;
    bool mBindingDirty = true;
    bool mIsDefault = false;
    bool mOwnsFBO = false;
    /// Whose context knows the GL name: other threads must not clear it.
    std::thread::id mThread;
};

}  // namespace zv
