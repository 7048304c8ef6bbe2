#include "core/Component.h"

namespace zv {

Component::~Component() = default;

}  // namespace zv
