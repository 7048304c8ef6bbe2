#include "scene/UpdatePass.h"

namespace zv {

namespace {

thread_local unsigned tDepth = 0;
thread_local std::uint64_t tNumber = 0;

}  // namespace

UpdatePass::UpdatePass() {
    if (tDepth++ == 0) {
        ++tNumber;
    }
}

UpdatePass::~UpdatePass() {
    --tDepth;
}

bool UpdatePass::enter(std::uint64_t& stamp) const {
    if (stamp == tNumber) {
        return false;
    }
    stamp = tNumber;
    return true;
}

}  // namespace zv
