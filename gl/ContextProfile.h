#pragma once

namespace zv {

/// What the current context leaves out of GL. Reading it asks GL: for set-up only.
struct ContextProfile {
    bool core = false;               ///< a core profile: no fixed-function state
    bool forwardCompatible = false;  ///< without what is deprecated, lines wider than one pixel among it

    static ContextProfile read();
};

}  // namespace zv
