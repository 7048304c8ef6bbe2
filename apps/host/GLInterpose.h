#pragma once

namespace zv::host {

/// Lets GLCallLog see what the library and the program call. To be called before the first GL context is
/// made, by a program that exports its symbols (ENABLE_EXPORTS in CMake): on Linux the library finds the
/// watched functions of GL 1.1 there.
void linkGLInterpose();

}  // namespace zv::host
