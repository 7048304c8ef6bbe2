#pragma once

#include <memory>
#include <string>

#include "core/TVec.h"
#include "core/UniqueDataPtr.h"
#include "gl/PxFormat.h"

namespace zv {
class BeautyShapeChain;
class FrameBuffer;
class RenderTexture;
class Sprite;
class ZVMediaEngine;
namespace host {
class HeadlessContext;
}
}  // namespace zv

namespace zv::bench {

struct Frame;

/// An engine on a GL context of its own that shows one frame again and again. Several may live side by side:
/// each is made current before it works.
class EngineRig {
public:
    enum class Output {
        Picture,
        I420,    ///< packed and read
        Packed,  ///< packed alone
    };

    /// Check isGood() before anything else.
    /// @param context null: a core context of its own
    EngineRig(const Frame& frame, Output output, std::shared_ptr<host::HeadlessContext> context = nullptr);
    ~EngineRig();
    EngineRig(const EngineRig&) = delete;
    EngineRig& operator=(const EngineRig&) = delete;

    bool isGood() const { return mEngine != nullptr; }
    void makeCurrent();
    /// A host's frame without upload: update, render, and for I420 the read of the bytes.
    void frame();

    ZVMediaEngine& engine() { return *mEngine; }
    Size16 size() const { return mSize; }
    /// Where the stages of effects go; made and put to use at the first call.
    BeautyShapeChain& chain();
    /// What stages of the chain share.
    FrameBuffer* frameBuffer();
    /// Another input of the pipeline in place of the frame.
    void setInput(Sprite* input);
    /// What the last frame() has read; of I420 only, one frame late.
    const UniqueDataPtr<unsigned char>& bytes() const { return mBytes; }

    /// Smoothing, HSV, whitening and a colour table of 512, with the values of floor::Beauty.
    /// @return false when one of them cannot be made
    bool addBeauty(const std::string& resources);

private:
    Size16 mSize;
    std::shared_ptr<host::HeadlessContext> mContext;
    std::unique_ptr<ZVMediaEngine> mEngine;
    RenderTexture* mLast = nullptr;
    bool mReads;
    UniqueDataPtr<unsigned char> mBytes;
};

}  // namespace zv::bench
