#pragma once

#include <string>
#include <vector>

#include "core/ZVExport.h"
#include "scene/RenderTexture.h"

namespace zv {

/// A render texture of several passes that acts towards its parent like one of a single pass: the input goes
/// into the front of the nest, its own texture holds the result of the last pass. It owns a list of inner
/// render textures, which setup() nests into one another.
class ZV_API MutilRenderTexture : public RenderTexture {
public:
    /// Autoreleased; null when init() fails.
    static MutilRenderTexture* create(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                                      PxFormat format);

    ~MutilRenderTexture() override;

    /// Every inner render texture in list order, then the own scene and this node; each once an UpdatePass.
    void update(float dt) override;
    /// Every inner render texture first, in list order, then this one. Their scenes follow the new sizes.
    void resetSize(const TVec<2, unsigned short>& size) override;
    /// Every inner render texture in list order, then the own scene.
    void renderToTexture() override;
    /// Looks through nested multi render textures; this object when the list is empty.
    RenderTexture* getFrontRenderTexture() override;
    Scene* getFrontScene() override;

    /// Retains and appends. The order of addition is the order of the passes. Checks neither for null nor for
    /// a second entry.
    void addRenderTexture(RenderTexture* renderTexture);
    /// Releases the inner render textures; those that are nested stay where they are.
    void clearAllRenderTexture();
    /// First inner render texture of that name, or null.
    RenderTexture* getByName(const std::string& name) const;

    /// Puts the last inner render texture into the own scene and each one before it into the front scene of
    /// the one behind it. One that has a parent already stays there.
    void setup();

protected:
    const std::vector<RenderTexture*>& getRenderTextures() const { return mRenderTextures; }

private:
    std::vector<RenderTexture*> mRenderTextures;
};

}  // namespace zv
