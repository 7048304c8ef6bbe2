#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/TVec.h"
#include "zvfx/EffectCosts.h"
#include "zvfx/Options.h"
#include "zvfx/PictureFile.h"

namespace zv {
class RenderTexture;
class Sprite;
class ZVMediaEngine;
namespace host {
class HeadlessContext;
}
}  // namespace zv

namespace zvfx {

/// A GL context of its own with the engine and the effects that were asked for, driven as any host drives it.
/// Everything on one thread. Operations that can fail answer what went wrong, or nothing.
class Pipeline {
public:
    /// @param options outlives the pipeline
    explicit Pipeline(const Options& options);
    ~Pipeline();
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    /// Makes context and engine, which find shaders and tables in `resources`, the folder that holds zv_res.
    std::string open(const std::string& resources);

    /// Whether GL has textures of this size.
    std::string checkSize(int width, int height) const;

    /// Puts the effects between input and output.
    /// @param output where pictures of `size` go; null: a render texture that the engine makes, RGB
    /// @param channels 3, or 4 to keep alpha
    std::string link(zv::Sprite* input, const zv::Size16& size, zv::RenderTexture* output, int channels);

    /// Updates by `seconds` and renders one frame.
    /// @param wait whether GL is to be done with it at the end
    void frame(float seconds, bool wait);

    /// What each effect adds to a frame; renders some.
    std::vector<EffectCost> effectCosts();

    /// What link() was given or made.
    zv::RenderTexture* output() const;

    std::string renderer() const;
    std::string version() const;

private:
    const Options& mOptions;
    std::string mResources;
    std::shared_ptr<zv::host::HeadlessContext> mContext;
    std::unique_ptr<zv::ZVMediaEngine> mEngine;
};

zv::Size16 toSize(int width, int height);

/// A sprite that shows a picture, autoreleased; null with the reason in `wrong`.
/// @param same whether it is shown pixel by pixel: then no rounding of a filter can touch the values
zv::Sprite* makePictureSprite(const Picture& picture, bool same, std::string& wrong);

/// Finds the folder that holds zv_res: the one given, else one beside the program, the installed one or the
/// source tree's. @return what is wrong, or nothing
std::string findResources(const std::string& given, std::string& folder);

}  // namespace zvfx
