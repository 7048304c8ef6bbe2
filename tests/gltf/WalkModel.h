#pragma once

#include <limits>

#include "gltf/GtModel.h"

namespace zv::test {

/// Touches all that a model lets its users reach, so that a sanitizer sees what must not be.
/// @return a sum over what was read
inline double walkModel(const gltf::GtModel& model) {
    double sum = 0.0;
    const int accessors = static_cast<int>(model.accessors.size());
    for (int i = -1; i <= accessors; ++i) {
        const auto count = i >= 0 && i < accessors
                               ? static_cast<std::size_t>(model.accessors[static_cast<std::size_t>(i)].count)
                               : 1;
        for (const std::size_t element : {std::size_t{0}, std::size_t{1}, count - 1, SIZE_MAX}) {
            const unsigned char* address = model.getBufferByAccessorIndex(i, element);
            const std::size_t readable = model.getReadableBytes(i, element);
            if (address != nullptr)
                sum += address[0] + address[readable > 0 ? readable - 1 : 0];
        }
    }
    std::unordered_map<int, gltf::GtAniNode> entries;
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinite = std::numeric_limits<float>::infinity();
    for (int i = -1; i <= static_cast<int>(model.extAnimations.size()); ++i) {
        for (const float time : {0.0F, 0.5F, 1.0F, 1e30F, -1.0F, -infinite, infinite, none})
            sum += model.getExtAniChannal(time, i, entries);
    }
    for (const auto& entry : entries)
        sum += entry.second.visible + static_cast<double>(entry.second.byteOffset);
    return sum;
}

}  // namespace zv::test
