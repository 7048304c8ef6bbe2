#pragma once

#include <string>

#include "core/TVec.h"
#include "zvfx/Options.h"

namespace zv {
class FrameBuffer;
class RenderTextureChain;
}  // namespace zv

namespace zvfx {

/// Makes the chain of the effects that were asked for: smoothing, HSV, whitening, colour table, what
/// works on faces, animated look. Each stage is named as its option.
/// @param channels 3 or 4 of the output
/// @param resources folder that holds zv_res
/// @param chain the chain, autoreleased; null when no effect was asked for
/// @return what went wrong, or nothing
std::string makeEffects(const Options& options, const zv::Size16& size, int channels,
                        const std::string& resources, zv::FrameBuffer* frameBuffer,
                        zv::RenderTextureChain*& chain);

}  // namespace zvfx
