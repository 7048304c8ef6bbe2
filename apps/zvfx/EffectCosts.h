#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace zv {
class RenderTextureChain;
}

namespace zvfx {

/// What one effect adds to a frame.
struct EffectCost {
    std::string name;  ///< that of its option
    double seconds = 0;
    long long calls = 0;  ///< of GL
};

/// Takes each effect out of the running chain, renders, and puts it back: what a frame takes without it is
/// what it does not cost.
/// @param chain null: no effects
/// @param frame renders one frame and waits until GL is done with it
std::vector<EffectCost> measureEffects(zv::RenderTextureChain* chain, const std::function<void()>& frame);

}  // namespace zvfx
