#pragma once

#include <onnxruntime_c_api.h>

namespace zv {

/// The ONNX Runtime's library, loaded when it is first asked for and kept for the life of the process. It is
/// looked for beside this library, then where the system looks. So a program that links the face library
/// starts without the runtime too; it finds no faces then.
class OnnxRuntime {
public:
    /// Null when the library is missing or too old, which the log says once. From any thread.
    static const OnnxRuntime* get();

    const OrtApi* api = nullptr;
    OrtEnv* environment = nullptr;

private:
    OnnxRuntime() = default;
    bool open();
};

}  // namespace zv
