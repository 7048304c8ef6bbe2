#pragma once

#include <cstdint>
#include <vector>

#include "core/TRect.h"
#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/AttribIndex.h"
#include "gl/BlendFunc.h"

namespace zv {

class FrameBuffer;
class Program;

/// Through this drawing code binds frame buffers, view ports, blending, buffers and vertex arrays. Two
/// stacks let nested passes give their parent's target back, and what is remembered saves redundant GL
/// calls. State that is changed behind its back goes unnoticed until reset(). One an engine, GL thread only.
class ZV_API RenderState {
public:
    using Lookup = RenderState* (*)();

    /// Tells how to find the current engine's render state; the engine, a layer above, installs it.
    static void setLookup(Lookup lookup);
    /// The calling thread's render state, null without an engine (or a look-up).
    static RenderState* getCurrent();

    /// Needs a current GL context; the frame buffer that is bound now is the default one.
    RenderState();
    /// Deletes the vertex arrays that were collected, and the sampler.
    ~RenderState();
    /// A copy has both stacks and what is remembered; collected vertex arrays and the sampler stay with the
    /// original.
    RenderState(const RenderState& other);
    RenderState& operator=(const RenderState& other);

    /// Starts a frame: the frame buffer bound now is the default one, and the frame-buffer stack is empty.
    void begin();
    /// Forgets program, blend, vertex array and buffer, so that the next setBlend() calls GL.
    void reset();

    /// Does not retain. Binds unless the same GL name is current.
    void pushFrameBuffer(FrameBuffer* frameBuffer);
    /// The stack must not be empty. Binds what is below unless it has the same GL name.
    void popFrameBuffer();
    /// GL name of the frame buffer on top of the stack, of the default one when the stack is empty.
    unsigned int getCurFBO() const;

    /// `force` calls GL even when the top of the stack is the same rectangle.
    void pushViewPort(const ViewPort& viewPort, bool force);
    /// The stack must hold `count` entries. Emptying it makes no GL call: the last view port stays set.
    void popViewPort(unsigned short count);
    /// Empties the view-port stack without a GL call: the start of a frame.
    void clearViewPorts() { mViewPorts.clear(); }
    /// The stack must not be empty.
    const ViewPort& getCurViewPort() const;
    bool hasViewPort() const { return !mViewPorts.empty(); }
    /// Width and height of the render buffer bound to GL_RENDERBUFFER.
    Size16 getRenderBufferSize() const;

    void setBlend(const BlendFunc& blend);
    /// Does not retain. Always calls GL.
    void useProgram(Program* program);

    /// A vertex array without enabled attributes, new or reused. Below GL 3.0 answers 0 and does nothing.
    unsigned int genAndBindVao();
    void bindVao(unsigned int vao);
    /// Takes over the vertex array of a dead drawable for genAndBindVao() to give out again. 0 is ignored.
    void collectVao(unsigned int vao);

    unsigned int genAndBindVbo(unsigned int target);
    /// `bytes` bytes are read from `data`; null leaves them undefined.
    unsigned int genVbo(unsigned int target, std::int64_t bytes, const void* data, unsigned int usage);
    void bindVbo(unsigned int target, unsigned int buffer);
    void bufferData(unsigned int buffer, unsigned int target, std::int64_t bytes, const void* data,
                    unsigned int usage);
    /// Enables the attribute array, then sets its pointer.
    void vertexAttribPointer(AttribIndex::Enum index, int size, unsigned int type, unsigned char normalized,
                             int stride, const void* pointer);
    /// Unbinds the vertex array and the GL_ARRAY_BUFFER.
    void unBindVaoVbo();

    void drawArrays(unsigned int mode, int first, int count);
    /// Draws with the nearest texels of the texture that is bound to unit 0, whatever filter it has; below GL
    /// 3.3 with its own filter. Leaves no sampler bound there.
    void drawArraysUnfiltered(unsigned int mode, int first, int count);
    void drawElements(unsigned int mode, int count, unsigned int type, const void* indices);

    /// What is remembered: null, DISABLE and 0 at first and after reset().
    Program* getCurProgram() const { return mProgram; }
    const BlendFunc& getCurBlend() const { return mBlend; }
    unsigned int getCurVao() const { return mVao; }
    unsigned int getCurVbo() const { return mVbo; }

private:
    Program* mProgram = nullptr;
    BlendFunc mBlend;
    std::vector<FrameBuffer*> mFrameBuffers;
    std::vector<ViewPort> mViewPorts;
    std::int32_t mDefaultFBO = 0;
    unsigned int mVao = 0;
    unsigned int mVbo = 0;
    /// False after reset(): whether GL blends now is not known.
    bool mBlendKnown = true;
    std::vector<unsigned int> mCollectedVaos;
    unsigned int mNearestSampler = 0;  ///< made at first use
};

}  // namespace zv
