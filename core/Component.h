#pragma once

#include "core/Ref.h"

namespace zv {

/// A counted object that can be attached to others; it adds nothing to Ref.
class ZV_API Component : public Ref {
public:
    ~Component() override;
};

}  // namespace zv
