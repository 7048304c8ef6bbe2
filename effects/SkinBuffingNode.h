#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "scene/MutilRenderTexture.h"
#include "scene/NodeWeakRef.h"

namespace zv {

class MeanBlurEffect;

/// Smooths skin and keeps edges: a blurred copy of the picture and a blurred measure of how far the picture
/// departs from it tell, for each pixel, how much of its detail is skin texture and may go. How, the head of
/// ZvBeautyBlendImageFilter.frag tells. The look does not change with the size of the picture.
/// - Input: one sprite with a 2D texture of RGB or RGBA, whose texture is read directly; see setInputNode().
///   What else is put into the front scene is blurred with it, but not seen by the last pass.
/// - Output: its own texture holds the blurred measure. The smoothed picture appears where the node is drawn,
///   at that size; alpha is that of the input's texture.
/// - Cost: five passes at half size and the last one at full size, 10.5 fetches a pixel of the full size in
///   all (15 more where a spot may be), four targets of half size. Its own one is of full size after a
///   resetSize(), by design.
/// - State: the input is drawn with a program of this stage for as long as it is the input.
/// - Setters: see each; they take effect at the next draw.
class ZV_API SkinBuffingNode : public MutilRenderTexture {
public:
    SkinBuffingNode();
    ~SkinBuffingNode() override;

    /// @param frameBuffer retained, shared by all passes; null for one of its own
    /// @param format of the own target, which needs red, green and blue
    static SkinBuffingNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                   PxFormat format);

    using MutilRenderTexture::init;

    /// The picture to smooth. It leaves its parent for this stage, is drawn with another program and gets its
    /// own back when it is taken away. Not retained beyond that; null: no input. A render texture is rendered
    /// by this stage.
    void setInputNode(Sprite* input);
    /// Null once it is destroyed.
    Sprite* getInputNode() const;
    /// Takes texture and coordinates of the input anew. Happens by itself before a frame when the input's
    /// coordinates are dirty or its texture is another one.
    void updateInputTexCoords();

    /// Strength, 0 (the picture as it is) to 1, default 0.6. Goes to the shader as given, which cuts it
    /// there.
    void setSkinBuffing(float strength);
    float getSkinBuffing() const { return mBlurAlpha; }
    /// Sharpening of what the smoothing leaves, 0 to 2, default 1. Goes to the shader as given, which cuts it
    /// there. It scales with the strength: at strength 0 nothing is sharpened.
    void setSharpen(float amount);
    float getSharpen() const { return mSharpen; }

    /// The passes get half of it, the own target all of it. An input that is a render texture follows when it
    /// was as large as this stage, and keeps its size otherwise.
    void resetSize(const TVec<2, unsigned short>& size) override;
    void renderToTexture() override;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;

private:
    void emptyInputSlots();
    void sendTexelSize(const TVec<2, unsigned short>& size);

    float mBlurAlpha = 0.6F;
    float mSharpen = 1.0F;
    RefHolder<MeanBlurEffect> mMeanBlur;
    RefHolder<RenderTexture> mMeanFilter;
    RefHolder<MeanBlurEffect> mVarianceBlur;
    NodeWeakRef mInput;
    TVec<2, unsigned short> mFullSize;
};

}  // namespace zv
