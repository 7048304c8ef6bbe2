#include "scene/IBlend.h"

namespace zv {

IBlend::~IBlend() = default;

void IBlend::setBlendFunc(const BlendFunc& blend) {
    mBlendFunc = blend;
}

const BlendFunc& IBlend::getBlendFunc() {
    return mBlendFunc;
}

}  // namespace zv
