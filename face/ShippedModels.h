#pragma once

#include <cstdint>

#include "core/UniqueDataPtr.h"

namespace zv {

/// A 64-bit sum over all bytes. It tells damage, not malice.
std::uint64_t digestOfModel(const UniqueDataPtr<unsigned char>& bytes);

/// Whether these are the bytes of one of the models that come with the library. The runtime believes what it
/// reads: a few wrong bytes in a model make it take gigabytes, or leak. So it gets to see no others.
bool isShippedModel(const UniqueDataPtr<unsigned char>& bytes);

}  // namespace zv
