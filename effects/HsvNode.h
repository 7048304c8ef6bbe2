#pragma once

#include "core/TVec.h"
#include "core/ZVExport.h"
#include "gl/PxFormat.h"
#include "scene/RenderTexture.h"

namespace zv {

/// Scales hue, saturation and value of the picture. The node draws its input into its own target unchanged;
/// the factors act when the node itself is drawn, by the next stage or on the screen.
/// - Input: what is in the front scene, any format, any orientation.
/// - Output: the size and format it was made with; alpha passes through.
/// - Cost: one pass at full size, one target; 1 fetch a pixel.
/// - State: leaves its program in use; each setter also makes its program the one in use.
/// - Setters: see each; all take effect at once, and need the GL context current. Values go to the shader as
///   given; the default of all three is 1, which leaves the picture as it is.
class ZV_API HsvNode : public RenderTexture {
public:
    HsvNode() = default;

    /// @param frameBuffer retained; null for one of its own
    static HsvNode* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format);

    /// Multiplies the hue, counted in turns from red (0) over green (1/3) and blue (2/3); the product wraps
    /// around. Red stays red, greys stay grey.
    void setHue(float factor);
    /// Multiplies the saturation: 0 is grey, results above full saturation or below none are cut off.
    void setSaturation(float factor);
    /// Multiplies the value (the largest of red, green and blue): 0 is black, results above 1 or below 0 are
    /// cut off.
    void setValue(float factor);
    float getHue() const { return mAdjust[0]; }
    float getSaturation() const { return mAdjust[1]; }
    float getValue() const { return mAdjust[2]; }

    using RenderTexture::init;

protected:
    bool init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer, PxFormat format) override;

private:
    void sendAdjust();

    float mAdjust[3] = {1.0F, 1.0F, 1.0F};  ///< hue, saturation, value, as they are sent
};

}  // namespace zv
