#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "scene/NodeWeakRef.h"
#include "scene/RenderTextureChain.h"

namespace zv {

class ColorFilter;
class FaceBuffingNode;
class FaceShapeNode;
class HsvNode;
class SkinBuffingNode;
class SkinWhitingNode;

/// The beauty pipeline: a chain with one place for each stage. Whatever the order in which they are set, the
/// stages run as skin smoothing (local Z order 10), face smoothing (13), HSV (15), whitening (20), face
/// reshaping (30), any further effect (40) and colour table (50); other members take their place among them
/// by their own local Z order.
///
/// Skin smoothing reads the input itself instead of being handed a picture of it, so the input hangs in that
/// stage and is drawn with its program for as long as the stage is wired; it gets its own program back when
/// it leaves: for another input, with the stage, with relinkAll() while the stage is off, or with the chain.
/// To switch stages of a running chain, change the flags and call relinkAll().
class ZV_API BeautyShapeChain : public RenderTextureChain {
public:
    BeautyShapeChain();
    /// As with any chain, a copy borrows its members and must not outlive them.
    BeautyShapeChain(const BeautyShapeChain& other);
    BeautyShapeChain& operator=(const BeautyShapeChain& other);
    ~BeautyShapeChain() override;

    /// Autoreleased. @param frameBuffer retained
    static BeautyShapeChain* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);

    /// Each puts a stage into its place, enabled, links the chain anew and releases the stage that was there;
    /// null leaves the place empty.
    void setSkinBuffing(SkinBuffingNode* stage);
    void setFaceBuffingNode(FaceBuffingNode* stage);
    void setHsv(HsvNode* stage);
    void setSkinWhiting(SkinWhitingNode* stage);
    void setFaceShape(FaceShapeNode* stage);
    void setEffect(RenderTexture* stage);
    void setFilter(ColorFilter* stage);

    /// Null when the stage is unset or was destroyed.
    SkinBuffingNode* getSkinBuffing() const;
    FaceBuffingNode* getFaceBuffingNode() const;
    HsvNode* getHsv() const;
    SkinWhitingNode* getSkinWhiting() const;
    FaceShapeNode* getFaceShape() const;
    RenderTexture* getEffect() const;
    ColorFilter* getFilter() const;

    /// Switches the skin smoothing stage. Its wiring stays as it was, on purpose: a running chain shows its
    /// last picture until relinkAll() is called.
    void setSkinBuffingEnable(bool enable);

    /// As in the base, and wires the skin smoothing stage if that is enabled. A disabled one lets an input
    /// go, but takes none.
    void setInputNode(Node* input) override;
    /// As in the base, with the input wired as the flags ask for.
    void relinkAll() override;

protected:
    /// Feeds the skin smoothing stage, if it is there and enabled: with the input itself when that is a
    /// sprite with a 2D texture of RGB or RGBA, otherwise with a render texture of the chain's size and the
    /// stage's frame buffer into which the input is drawn. Where members run before the stage, it is fed with
    /// what they make in the same way.
    void setBeautyInput();

    void onLeave(RenderTexture* member) override;

private:
    void setStage(NodeWeakRef& place, RenderTexture* stage, int order);
    RenderTexture* convert(Node* source, FrameBuffer* frameBuffer);
    void giveInputBack();

    NodeWeakRef mHsv;
    NodeWeakRef mFaceBuffing;
    NodeWeakRef mSkinBuffing;
    NodeWeakRef mSkinWhiting;
    NodeWeakRef mFaceShape;
    NodeWeakRef mEffect;
    NodeWeakRef mFilter;
    NodeWeakRef mWired;       ///< the skin stage that this chain, not one that it was copied from, has fed
    NodeWeakRef mConversion;  ///< what it was fed with when that is not the input itself
};

}  // namespace zv
