#include "face/FaceModel.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "core/FileUtil.h"
#include "core/ZVLog.h"
#include "face/OnnxRuntime.h"
#include "face/ShippedModels.h"

namespace zv {

namespace {

std::size_t elementsOf(const std::vector<std::int64_t>& shape) {
    const std::int64_t count =
        std::accumulate(shape.begin(), shape.end(), std::int64_t{1}, std::multiplies<std::int64_t>());
    return static_cast<std::size_t>(count);
}

}  // namespace

/// Everything that the runtime made for one network, and the memory that it reads and writes.
struct FaceModel::Session {
    explicit Session(const OnnxRuntime& runtime) : api(*runtime.api), environment(runtime.environment) {}
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Empty when the status is none; releases it.
    std::string textOf(OrtStatus* status) const;
    std::string open(const UniqueDataPtr<unsigned char>& bytes);
    std::string bind(const Tensor& wanted);
    std::string check(const Tensor& wanted, bool isInput) const;
    std::string compareShape(const OrtTypeInfo* type, const Tensor& wanted) const;

    const OrtApi& api;
    OrtEnv* environment;
    OrtSession* session = nullptr;
    std::vector<std::vector<float>> memory;  // the input first
    std::vector<OrtValue*> values;           // over that memory
    std::vector<std::string> nameTexts;
    std::vector<const char*> names;
    const OrtValue* source = nullptr;  // another network's output that is the input here
    bool failed = false;
};

FaceModel::Session::~Session() {
    for (OrtValue* value : values) {
        api.ReleaseValue(value);
    }
    if (session != nullptr) {
        api.ReleaseSession(session);
    }
}

std::string FaceModel::Session::textOf(OrtStatus* status) const {
    if (status == nullptr) {
        return {};
    }
    std::string text = api.GetErrorMessage(status);
    api.ReleaseStatus(status);
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text.empty() ? "the runtime gives no reason" : text;
}

std::string FaceModel::Session::open(const UniqueDataPtr<unsigned char>& bytes) {
    OrtSessionOptions* options = nullptr;
    std::string wrong = textOf(api.CreateSessionOptions(&options));
    if (!wrong.empty()) {
        return wrong;
    }
    // One thread: the networks are small, and the cores are the host's. No arena: it would keep the most that
    // was ever needed, and nothing is allocated between two runs that matters.
    OrtStatus* const steps[] = {api.SetIntraOpNumThreads(options, 1), api.SetInterOpNumThreads(options, 1),
                                api.DisableCpuMemArena(options),
                                api.SetSessionGraphOptimizationLevel(options, ORT_ENABLE_ALL)};
    for (OrtStatus* step : steps) {
        const std::string failure = textOf(step);
        wrong = wrong.empty() ? failure : wrong;
    }
    if (wrong.empty()) {
        wrong = textOf(api.CreateSessionFromArray(environment, bytes.get(0),
                                                  static_cast<std::size_t>(bytes.size()), options, &session));
    }
    api.ReleaseSessionOptions(options);
    return wrong;
}

std::string FaceModel::Session::bind(const Tensor& wanted) {
    OrtMemoryInfo* info = nullptr;
    std::string wrong = textOf(api.CreateCpuMemoryInfo(OrtDeviceAllocator, OrtMemTypeDefault, &info));
    if (!wrong.empty()) {
        return wrong;
    }
    std::vector<float>& block = memory.emplace_back(elementsOf(wanted.shape));
    OrtValue* value = nullptr;
    wrong = textOf(api.CreateTensorWithDataAsOrtValue(info, block.data(), block.size() * sizeof(float),
                                                      wanted.shape.data(), wanted.shape.size(),
                                                      ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT, &value));
    api.ReleaseMemoryInfo(info);
    if (value != nullptr) {
        values.push_back(value);
    }
    nameTexts.emplace_back(wanted.name);
    return wrong;
}

std::string FaceModel::Session::check(const Tensor& wanted, bool isInput) const {
    OrtAllocator* allocator = nullptr;
    std::size_t count = 0;
    std::string wrong = textOf(api.GetAllocatorWithDefaultOptions(&allocator));
    if (wrong.empty()) {
        wrong = textOf(isInput ? api.SessionGetInputCount(session, &count)
                               : api.SessionGetOutputCount(session, &count));
    }
    if (wrong.empty() && isInput && count != 1) {
        return "has " + std::to_string(count) + " inputs, not one";
    }
    for (std::size_t i = 0; wrong.empty() && i < count; ++i) {
        char* name = nullptr;
        wrong = textOf(isInput ? api.SessionGetInputName(session, i, allocator, &name)
                               : api.SessionGetOutputName(session, i, allocator, &name));
        if (!wrong.empty()) {
            break;
        }
        const bool isIt = std::string(wanted.name) == name;
        wrong = textOf(api.AllocatorFree(allocator, name));
        if (isIt && wrong.empty()) {
            OrtTypeInfo* type = nullptr;
            wrong = textOf(isInput ? api.SessionGetInputTypeInfo(session, i, &type)
                                   : api.SessionGetOutputTypeInfo(session, i, &type));
            if (wrong.empty()) {
                wrong = compareShape(type, wanted);
                api.ReleaseTypeInfo(type);
            }
            return wrong;
        }
    }
    return wrong.empty() ? std::string("has no tensor \"") + wanted.name + "\"" : wrong;
}

std::string FaceModel::Session::compareShape(const OrtTypeInfo* type, const Tensor& wanted) const {
    const OrtTensorTypeAndShapeInfo* tensor = nullptr;
    ONNXTensorElementDataType element = ONNX_TENSOR_ELEMENT_DATA_TYPE_UNDEFINED;
    std::size_t rank = 0;
    std::string wrong = textOf(api.CastTypeInfoToTensorInfo(type, &tensor));
    if (!wrong.empty() || tensor == nullptr) {
        return wrong.empty() ? std::string("\"") + wanted.name + "\" is no tensor" : wrong;
    }
    wrong = textOf(api.GetTensorElementType(tensor, &element));
    if (wrong.empty()) {
        wrong = textOf(api.GetDimensionsCount(tensor, &rank));
    }
    std::vector<std::int64_t> shape(rank);
    if (wrong.empty()) {
        wrong = textOf(api.GetDimensions(tensor, shape.data(), rank));
    }
    if (!wrong.empty()) {
        return wrong;
    }
    bool same = element == ONNX_TENSOR_ELEMENT_DATA_TYPE_FLOAT && rank == wanted.shape.size();
    for (std::size_t i = 0; same && i < rank; ++i) {
        same = shape[i] == wanted.shape[i] || shape[i] < 0;  // negative: any size, and ours is one
    }
    return same ? std::string() : std::string("\"") + wanted.name + "\" has another shape";
}

FaceModel::FaceModel() = default;

FaceModel::~FaceModel() = default;

bool FaceModel::load(const std::string& file, const Tensor& input, const std::vector<Tensor>& outputs) {
    mSession.reset();
    const OnnxRuntime* runtime = OnnxRuntime::get();
    if (runtime == nullptr) {
        return false;
    }
    FileUtil* files = FileUtil::getInstance();
    UniqueDataPtr<unsigned char> bytes;
    if (files == nullptr || !files->getDataFromFile(bytes, files->getFullFilePath(file)) ||
        bytes.size() == 0) {
        zvLog("no faces: the model %s cannot be read", file.c_str());
        return false;
    }
    if (!isShippedModel(bytes)) {
        zvLog("no faces: the model %s: damaged, or none that this library knows (%llu bytes, digest %016llX)",
              file.c_str(), static_cast<unsigned long long>(bytes.size()),
              static_cast<unsigned long long>(digestOfModel(bytes)));
        return false;
    }
    auto made = std::make_unique<Session>(*runtime);
    std::string wrong = made->open(bytes);
    if (wrong.empty()) {
        wrong = made->check(input, true);
    }
    if (wrong.empty()) {
        wrong = made->bind(input);
    }
    for (std::size_t i = 0; wrong.empty() && i < outputs.size(); ++i) {
        wrong = made->check(outputs[i], false);
        if (wrong.empty()) {
            wrong = made->bind(outputs[i]);
        }
    }
    if (!wrong.empty()) {
        zvLog("no faces: the model %s: %s", file.c_str(), wrong.c_str());
        return false;
    }
    for (const std::string& name : made->nameTexts) {
        made->names.push_back(name.c_str());
    }
    mSession = std::move(made);
    return true;
}

float* FaceModel::input() {
    return mSession ? mSession->memory[0].data() : nullptr;
}

void FaceModel::readFrom(const FaceModel& other) {
    if (mSession && other.mSession) {
        mSession->source = other.mSession->values[1];
    }
}

const float* FaceModel::output(std::size_t index) const {
    return mSession && index + 1 < mSession->memory.size() ? mSession->memory[index + 1].data() : nullptr;
}

bool FaceModel::run() {
    if (!mSession) {
        return false;
    }
    Session& s = *mSession;
    const OrtValue* input = s.source != nullptr ? s.source : s.values[0];
    const std::string wrong =
        s.textOf(s.api.Run(s.session, nullptr, s.names.data(), &input, 1, s.names.data() + 1,
                           s.values.size() - 1, s.values.data() + 1));
    if (!wrong.empty() && !s.failed) {
        s.failed = true;
        zvLog("a face model does not run: %s", wrong.c_str());
    }
    return wrong.empty();
}

}  // namespace zv
