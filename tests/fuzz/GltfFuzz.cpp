// Feeds the glTF loader and all that users of a model can reach. The input is JSON text up to the first zero
// byte, the rest is what its buffer files hold: a URI of digits names a file of that many bytes, so that a
// "byteLength" of equal digits is right; any other URI names a file of all of them.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "gltf/GtDrawCall.h"
#include "gltf/WalkModel.h"
#include "support/MemoryFile.h"

namespace {

using namespace zv;

/// Serves the input instead of files.
class InputFiles : public FileUtil {
public:
    void setInput(const unsigned char* data, std::size_t size) {
        const unsigned char* end = data + size;
        const unsigned char* zero = std::find(data, end, 0);
        mText.assign(data, zero);
        mBytes.assign(zero == end ? end : zero + 1, end);
    }
    std::string getTextFromFile(const std::string&) override { return mText; }
    using FileUtil::getDataFromFile;
    bool getDataFromFile(UniqueDataPtr<unsigned char>& out, const std::string& path) override {
        const std::string name = path.substr(path.rfind('/') + 1);
        const bool isSized = !name.empty() && std::all_of(name.begin(), name.end(),
                                                          [](char c) { return c >= '0' && c <= '9'; });
        const std::size_t size =
            isSized ? std::min<std::size_t>(std::strtoul(name.c_str(), nullptr, 10), 4096) : mBytes.size();
        out.resize(size);
        for (std::size_t i = 0; i < size; ++i)
            out[i] = i < mBytes.size() ? static_cast<unsigned char>(mBytes[i]) : 0;
        return true;
    }

private:
    std::string mText;
    std::string mBytes;
};

/// What a draw looks up in a model before it trusts it.
void lookUpDraws(const gltf::GtModel& model) {
    for (std::size_t mesh = 0; mesh < model.meshes.size(); ++mesh) {
        for (std::size_t i = 0; i < model.meshes[mesh].primitives.size(); ++i) {
            gltf::GtDrawCall call;
            if (call.lookUp(model, static_cast<int>(mesh), static_cast<int>(i))) {
                for (const std::int64_t offset :
                     {std::int64_t{call.indexOffset}, std::int64_t{2}, INT64_MAX, INT64_MIN})
                    call.indicesFit(model, call, offset);
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static InputFiles& files = test::installFiles<InputFiles>();
    files.setInput(data, size);
    gltf::GtModel model;
    model.parser("m", "m/m.gltf");
    // A model whose parser failed is walked as well: what was read so far stays sound.
    test::walkModel(model);
    lookUpDraws(model);
    return 0;
}
