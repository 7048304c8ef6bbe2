#pragma once

#include <functional>
#include <string_view>

namespace zv::host {

/// Answers what an imported function is replaced with: the given address when it stays.
using ReplaceImport = std::function<void*(std::string_view name, void* address)>;

/// Windows only. Goes through what a loaded module imports by name from a library ("opengl32.dll", in any
/// case); what `replace` answers takes the place of the address, in that module alone.
/// @param module file name of the module; null for the program itself
void replaceImports(const char* module, std::string_view library, const ReplaceImport& replace);

}  // namespace zv::host
