#include "face/ShippedModels.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "core/HashString.h"

namespace zv {

namespace {

/// Who changes a model reads its new row in the line that the log has for a model that is not known.
struct Row {
    std::uint64_t bytes;
    std::uint64_t digest;
};
constexpr Row kModels[] = {
    {32805, 0xD926FE5BA6F83993},    // blazeface_back_1.onnx
    {519154, 0x7A14C327C8F61334},   // blazeface_back_2.onnx
    {410468, 0x02E9D2EADDBC2214},   // blazeface_front.onnx
    {2968027, 0xB49CF886B71CD67B},  // facemesh.onnx
};

}  // namespace

std::uint64_t digestOfModel(const UniqueDataPtr<unsigned char>& bytes) {
    const auto* text = reinterpret_cast<const char*>(bytes.get(0));
    return HashString(std::string(text, static_cast<std::size_t>(bytes.size()))).hash();
}

bool isShippedModel(const UniqueDataPtr<unsigned char>& bytes) {
    // Another length is told without a look at the bytes.
    return std::any_of(std::begin(kModels), std::end(kModels), [&](const Row& row) {
        return row.bytes == bytes.size() && row.digest == digestOfModel(bytes);
    });
}

}  // namespace zv
