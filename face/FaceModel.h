#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "face/FaceExport.h"

namespace zv {

/// A network in an ONNX file, with one input and some outputs, all floats of fixed shape. Runs on the calling
/// thread alone; one thread at a time.
class ZV_FACE_API FaceModel {
public:
    struct Tensor {
        const char* name;
        std::vector<std::int64_t> shape;
    };

    FaceModel();
    ~FaceModel();
    FaceModel(const FaceModel&) = delete;
    FaceModel& operator=(const FaceModel&) = delete;

    /// Reads the file, which is found as all resources are, through FileUtil.
    /// @param input what the network must have
    /// @param outputs those that are wanted
    /// @return false, with the reason in the log, when the file is missing, no such network, or not byte for
    /// byte one of the models that come with this library
    bool load(const std::string& file, const Tensor& input, const std::vector<Tensor>& outputs);
    bool isLoaded() const { return mSession != nullptr; }

    /// Where to write before run(); null unless loaded.
    float* input();
    /// From now on the input is what the other's first output holds, of the same shape. The other must stay
    /// loaded as long.
    void readFrom(const FaceModel& other);
    /// What run() left, in the order given to load().
    const float* output(std::size_t index) const;

    /// False, with the reason in the log once, when the network fails, or none is loaded.
    bool run();

private:
    struct Session;
    std::unique_ptr<Session> mSession;
};

}  // namespace zv
