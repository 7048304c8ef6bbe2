#pragma once

namespace zv::host {

/// Does nothing. Calling it makes the linker take the functions of GLInterpose.cpp, which nothing else names,
/// into the program. The library finds them when the program exports its symbols (ENABLE_EXPORTS in CMake).
void linkGLInterpose();

}  // namespace zv::host
