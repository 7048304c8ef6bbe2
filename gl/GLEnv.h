#pragma once

#include "core/ZVExport.h"

namespace zv {

/// Loads the GL entry points, once a process. Needs a current context on the first call; later calls do
/// nothing. Silent: a start that failed is neither reported nor tried again.
ZV_API void glEnvInit();

/// The name of a GL error or object enum as a constant text; "<GLenum?>" for one that is not known here.
ZV_API const char* glEnumName(unsigned int value);

/// Bytes of one element of a GL data type, 1, 2 or 4; 0 for a type that is not known here.
ZV_API int getGLEnumTypeSize(unsigned int type);

}  // namespace zv
