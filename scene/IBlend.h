#pragma once

#include "core/ZVExport.h"
#include "gl/BlendFunc.h"

namespace zv {

/// What a drawable blends with. Starts as BlendFunc::DISABLE.
class ZV_API IBlend {
public:
    IBlend() = default;
    IBlend(const IBlend&) = default;
    IBlend& operator=(const IBlend&) = default;
    virtual ~IBlend();

    virtual void setBlendFunc(const BlendFunc& blend);
    virtual const BlendFunc& getBlendFunc();

private:
    BlendFunc mBlendFunc;
};

}  // namespace zv
