#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/ImportTable.h"

namespace zv::host {

namespace {

bool sameName(const char* name, std::string_view other) {
    return CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, name, -1, other.data(),
                          static_cast<int>(other.size())) == CSTR_EQUAL;
}

void write(ULONG_PTR& slot, void* address) {
    DWORD before = 0;
    if (VirtualProtect(&slot, sizeof(slot), PAGE_READWRITE, &before) != FALSE) {
        slot = reinterpret_cast<ULONG_PTR>(address);
        VirtualProtect(&slot, sizeof(slot), before, &before);
    }
}

}  // namespace

void replaceImports(const char* module, std::string_view library, const ReplaceImport& replace) {
    // The layout of a loaded module: PE format, sections "Optional Header Data Directories" and ".idata".
    auto* base = reinterpret_cast<std::byte*>(GetModuleHandleA(module));
    if (base == nullptr) {
        return;
    }
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (imports == 0) {
        return;
    }
    for (auto* from = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports); from->Name != 0;
         ++from) {
        if (!sameName(reinterpret_cast<const char*>(base + from->Name), library)) {
            continue;
        }
        const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + from->OriginalFirstThunk);
        auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) {
                continue;
            }
            const auto* entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            auto* address = reinterpret_cast<void*>(slots->u1.Function);
            void* instead = replace(reinterpret_cast<const char*>(entry->Name), address);
            if (instead != address) {
                write(slots->u1.Function, instead);
            }
        }
    }
}

}  // namespace zv::host
