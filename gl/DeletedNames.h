#pragma once

namespace zv {

/// Counts the textures and programs that the library has deleted on this thread: whoever remembers a name of
/// GL sees by it whether the name may have died meanwhile, without asking GL each time.
struct DeletedNames {
    static unsigned int count();
    static void add();
};

}  // namespace zv
