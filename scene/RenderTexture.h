#pragma once

#include <cstddef>
#include <cstdint>

#include "core/TRect.h"
#include "core/UniqueDataPtr.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/IFrameBuffer.h"
#include "scene/ReadBack.h"
#include "scene/Sprite.h"

namespace zv {

class RenderTarget;
class Scene;
class UpdatePass;

/// A sprite that shows a texture into which it draws a scene of its own; the base of every effect. Frame
/// buffer, render target and scene are made when they are first needed. It is flipped vertically from the
/// start, so that its bottom-up texture is shown upright.
/// Only on the engine's thread with its GL context current.
class ZV_API RenderTexture : public Sprite, public IFrameBuffer {
public:
    using Sprite::init;

    /// A null frame buffer: one is made at first need. Autoreleased; null when the sprite base fails.
    static RenderTexture* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                 PxFormat format);
    /// Draws into an existing target, with its size and its texture's format. Null without a target.
    static RenderTexture* create(RenderTarget* target);

    RenderTexture();
    ~RenderTexture() override;
    RenderTexture(const RenderTexture&) = delete;
    RenderTexture& operator=(const RenderTexture&) = delete;

    /// Updates the scene, then this node and its children, once an UpdatePass however often it is reached.
    /// An override that keeps time of its own runs at every call; that belongs into onUpdateSelf().
    void update(float dt) override;

    /// Slot 0 is never empty: asking for it makes the render target.
    Texture2D* getTexture(unsigned char index) override;

    /// New output size in pixels. The target and what is attached to the frame buffer are resized and lose
    /// their picture; what is shown is the whole new texture. The scene keeps its view port on purpose:
    /// who goes on drawing through it calls fitViewPort(). A frame buffer that others share resizes the
    /// target that it holds at the moment too; its owner gets its own size back when it next renders.
    virtual void resetSize(const TVec<2, unsigned short>& size);

    /// Draws the scene into the texture; nothing when there is no target, since GL refused its size. Frame
    /// buffer, view port and, when the frame buffer is shared with a pass that is under way, its target are
    /// as before afterwards. Ignored from inside itself.
    virtual void renderToTexture();

    /// Who takes the input of this object, for a nest of render textures its first pass; here this object.
    virtual RenderTexture* getFrontRenderTexture();
    /// The scene into which a parent puts the input.
    virtual Scene* getFrontScene();

    /// Reads the picture with a delay of one call, so that it waits for nothing: it starts the read of the
    /// present picture and hands out that of the call before (zeros at first). Rows are tightly packed, the
    /// bottom one first. `out` has its size already: width x height x bits a pixel / 8; bytes beyond what is
    /// kept are zero.
    virtual void getOutData(UniqueDataPtr<unsigned char>& out);
    /// The same into a buffer of the right size; an empty one when GL does not take textures of that size.
    virtual UniqueDataPtr<unsigned char> getOutData();

    /// Made at first need.
    FrameBuffer* getFrameBuffer() override;

    /// The picture's lower left `size` pixels in `format`. The memory behind a read is as large as the first
    /// call asks for and never grows: a later read that needs more, or one of a format that GL does not give
    /// as bytes, is left out with one log line and zeroes `out`.
    void getOutData(UniqueDataPtr<unsigned char>& out, TVec<2, unsigned short> size, PxFormat format);

    /// Retains `target`, which must not be null, and shows its whole texture. The size stays.
    void setRenderTarget(RenderTarget* target);
    /// Made at first need, of the present size and format; null when its texture cannot be made.
    virtual RenderTarget* getRenderTarget();

    /// Made at first need, with the present size as its view port.
    Scene* getScene();
    /// The scene held before is released first, even when it is the same one: a scene that only this render
    /// texture keeps alive is gone when it is handed over again. Must not be null.
    void setScene(Scene* scene);
    /// Gives the scene, if there is one, the whole of the present size as its view port.
    void fitViewPort();

    TVec<2, unsigned short> getSize() const { return mSize; }
    PxFormat getPxFormat() const { return mPxFormat; }

    /// Draws from now on into a GL texture made elsewhere, of the same size. The texture before is deleted if
    /// it was owned, and the new one takes over that ownership: a name that stays the caller's goes through
    /// the other form. Nothing for the present name.
    void updateTargetTextureId(unsigned int textureName);
    /// The same with its GL target, format and ownership.
    void updateTargetTextureId(unsigned int textureName, unsigned int target, PxFormat format, bool owner);

protected:
    /// False when the target is null or the other init() fails.
    virtual bool init(RenderTarget* target);
    /// Every render texture is initialised through this one. False when the sprite base fails.
    virtual bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format);

    void setEnable(bool enable) { mEnable = enable; }
    bool isEnable() const { return mEnable; }

    /// For overrides of update(): true only the first time in a pass.
    bool enterUpdate(const UpdatePass& pass);
    /// Updates the scene if there is one.
    void updateScene(float dt);

    /// getOutData() of any parts of a picture: reads them one behind another into one block and hands out
    /// the block of the call before. `source` is the frame buffer to read; null: this one's, with its render
    /// target attached. A derived class makes that target first if it is not of the present size.
    void readBack(UniqueDataPtr<unsigned char>& out, PxFormat format, const ViewPort* parts,
                  std::size_t count, FrameBuffer* source = nullptr);

    /// For derived classes that set or resize their fields by hand in init().
    void setSize(const TVec<2, unsigned short>& size) { mSize = size; }
    void setPxFormat(PxFormat format) { mPxFormat = format; }

private:
    void giveTargetItsSize();
    void showWholeTarget();

    RefHolder<RenderTarget> mRenderTarget;
    PxFormat mPxFormat = PXFORMAT_NONE;
    ReadBack mReadBack;
    TVec<2, unsigned short> mSize;
    RefHolder<Scene> mScene;
    bool mEnable = false;
    bool mRendering = false;
    TVec<2, unsigned short> mTargetSize;  ///< what the target was given; others may have resized it since
    TVec<2, unsigned short> mShownSize;   ///< size of the texture for which the shown rectangle was set
    std::uint64_t mUpdateStamp = 0;
};

}  // namespace zv
