#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "scene/MutilRenderTexture.h"
#include "scene/NodeWeakRef.h"

namespace zv {

/// Blurs its input with a box of a fixed share of the picture, 1/48 of its width across, so that the blur
/// looks the same at every size. The box is cut into two passes: the input is blurred vertically when it is
/// drawn into this effect's texture, and horizontally when the effect itself is drawn.
/// - Input: one sprite, which is drawn with a program of this effect from then on and gets its own back when
///   it is taken away. A render texture becomes an inner one and is rendered first.
/// - Output: the size it was made with, RGB. The finished blur is in no texture of this effect, but where it
///   is drawn.
/// - Cost: two passes of four fetches, one at the size of this effect and one at that of where it is drawn.
/// - State: the input's program, see above.
/// - Setters: setInput().
class ZV_API MeanBlurEffect : public MutilRenderTexture {
public:
    MeanBlurEffect();
    /// Gives the input its program back.
    ~MeanBlurEffect() override;

    static MeanBlurEffect* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer);
    static MeanBlurEffect* create(Sprite* input, const TVec<2, unsigned short>& size,
                                  FrameBuffer* frameBuffer);

    /// Takes the input from where it hangs and puts it into this effect; it is not retained beyond that. The
    /// input before gets its own program back, unless it was given another one meanwhile, and leaves. An
    /// input feeds one blur at a time: the one that it fed before lets it go. Null: no input.
    void setInput(Sprite* input);
    /// Null once it is destroyed.
    Sprite* getInput() const;

    /// Steps follow the new size; an input that is a render texture is resized too.
    void resetSize(const TVec<2, unsigned short>& size) override;

protected:
    bool initWithInput(Sprite* input, const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                       PxFormat format);

private:
    void releaseInput();
    void releaseFromOthers(const Sprite* input);
    void sendSteps();

    NodeWeakRef mInput;
    RefHolder<Program> mInputProgram;   ///< what the input is drawn with
    RefHolder<Program> mFormerProgram;  ///< what it was drawn with before
    /// Effects with an input, on this thread.
    MeanBlurEffect* mNextWired = nullptr;
};

}  // namespace zv
