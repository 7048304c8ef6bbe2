#include "face/OnnxRuntime.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <string>

#include "core/ZVLog.h"

namespace zv {

namespace {

/// The oldest interface that has what is used here, so that an older library serves as well.
constexpr std::uint32_t kApiVersion = 11;

using GetApiBase = const OrtApiBase*(ORT_API_CALL*)();

#if defined(_WIN32)

/// Windows brings an old runtime of its own under the same name, so the one beside this library is named in
/// full.
GetApiBase findEntry() {
    HMODULE self = nullptr;
    const auto here = reinterpret_cast<LPCWSTR>(&findEntry);
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       here, &self);
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(self, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return nullptr;
    }
    std::wstring beside(path, length);
    beside.resize(beside.find_last_of(L"\\/") + 1);
    beside += L"onnxruntime.dll";
    HMODULE library = LoadLibraryExW(beside.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == nullptr) {
        return nullptr;
    }
    return reinterpret_cast<GetApiBase>(reinterpret_cast<void*>(GetProcAddress(library, "OrtGetApiBase")));
}

#else

/// Beside this library first, then where the system looks. The path is spelled out since a sanitizer stands
/// between this library and the loader, which then would not know whose run path to follow.
GetApiBase findEntry() {
    constexpr char kName[] = "libonnxruntime.so.1";
    Dl_info self{};
    void* library = nullptr;
    if (dladdr(reinterpret_cast<const void*>(&findEntry), &self) != 0 && self.dli_fname != nullptr) {
        std::string beside(self.dli_fname);
        beside.resize(beside.find_last_of('/') + 1);
        library = dlopen((beside + kName).c_str(), RTLD_NOW | RTLD_LOCAL);
    }
    if (library == nullptr) {
        library = dlopen(kName, RTLD_NOW | RTLD_LOCAL);
    }
    return library != nullptr ? reinterpret_cast<GetApiBase>(dlsym(library, "OrtGetApiBase")) : nullptr;
}

#endif

}  // namespace

bool OnnxRuntime::open() {
    const GetApiBase entry = findEntry();
    if (entry == nullptr) {
        zvLog("no faces: the ONNX Runtime's library is not there");
        return false;
    }
    api = entry()->GetApi(kApiVersion);
    if (api == nullptr) {
        zvLog("no faces: the ONNX Runtime %s is too old", entry()->GetVersionString());
        return false;
    }
    if (OrtStatus* status = api->CreateEnv(ORT_LOGGING_LEVEL_FATAL, "zorvik", &environment)) {
        zvLog("no faces: the ONNX Runtime does not start: %s", api->GetErrorMessage(status));
        api->ReleaseStatus(status);
        return false;
    }
    return true;
}

const OnnxRuntime* OnnxRuntime::get() {
    static OnnxRuntime runtime;
    static const bool isOpen = runtime.open();
    return isOpen ? &runtime : nullptr;
}

}  // namespace zv
