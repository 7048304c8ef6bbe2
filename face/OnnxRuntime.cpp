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

GetApiBase findEntry() {
    void* library =
        dlopen("libonnxruntime.so.1", RTLD_NOW | RTLD_LOCAL);  // this library's run path comes first
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
