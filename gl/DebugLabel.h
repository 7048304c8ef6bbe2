#pragma once

#include <string>

namespace zv {

/// Names a GL object for frame captures and driver messages, where the context has KHR_debug; else does
/// nothing. `kind` is GL_PROGRAM, GL_TEXTURE, GL_RENDERBUFFER ...; the object must have been bound once. For
/// set-up only.
void setDebugLabel(unsigned int kind, unsigned int name, const std::string& label);

}  // namespace zv
