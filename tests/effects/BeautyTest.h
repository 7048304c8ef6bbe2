#pragma once

#include "effects/BeautyShapeChain.h"
#include "effects/MeanBlurEffect.h"
#include "effects/SkinBuffingNode.h"
#include "gl/GLChecks.h"
#include "gl/Program.h"
#include "support/GLCallRecorder.h"
#include "support/MediaTest.h"
#include "support/PictureCompare.h"

namespace zv::test {

/// A media engine with a beauty chain between its input and an RGBA output.
class BeautyTest : public MediaTest {
protected:
    /// Sets everything up anew, with an empty chain.
    void start(Sprite* sprite, const Size16& size) {
        input = sprite;
        plain = sprite->getProgram();
        media->removeRenderChain();
        media->init(sprite, size, RenderTexture::create(size, nullptr, PXFORMAT_RGBA8888), false);
        chain = BeautyShapeChain::create(size, media->getFrameBuffer());
        media->setRenderChain(chain);
    }
    /// The same with skin smoothing.
    SkinBuffingNode* startSkin(const Picture& picture) {
        return startSkin(makeSprite(picture), sizeOf(picture));
    }
    SkinBuffingNode* startSkin(Sprite* sprite, const Size16& size) {
        start(sprite, size);
        auto* skin = SkinBuffingNode::create(chain->getSize(), media->getFrameBuffer(), PXFORMAT_RGB888);
        chain->setSkinBuffing(skin);
        return skin;
    }
    Picture frameOf(const Picture& picture) {
        input->getTexture(0)->updateWithData(picture.rgba.data(), picture.rgba.size());
        frame();
        return output();
    }

    /// What hangs in the scene of a render texture, what hangs in the scene of that, and so on.
    static std::vector<RenderTexture*> nestedIn(RenderTexture* outer) {
        std::vector<RenderTexture*> found;
        while ((outer = dynamic_cast<RenderTexture*>(outer->getScene()->getFirstChild())) != nullptr)
            found.push_back(outer);
        return found;
    }

    BeautyShapeChain* chain = nullptr;
    Sprite* input = nullptr;
    Program* plain = nullptr;  ///< what the input is drawn with on its own
};

}  // namespace zv::test
