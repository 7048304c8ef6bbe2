#pragma once

#include <cstdint>

#include "core/ZVExport.h"

namespace zv {

/// One run of the update pass over a graph. A render texture may be reached several times, through the list
/// that owns it and through every scene it is nested in; it works once a pass and ignores the rest.
/// The outermost object opens the pass, those inside join it. So each direct call of an update() by a host is
/// a pass of its own, and whoever updates several roots as one frame opens a pass around them.
/// Lives on the stack of the engine's thread.
class ZV_API UpdatePass {
public:
    UpdatePass();
    ~UpdatePass();
    UpdatePass(const UpdatePass&) = delete;
    UpdatePass& operator=(const UpdatePass&) = delete;

    /// True, once a pass, for the object that keeps `stamp`; a stamp starts at 0.
    bool enter(std::uint64_t& stamp) const;
};

}  // namespace zv
