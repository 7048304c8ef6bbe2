#include "effects/FaceGrid.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {

constexpr float kMostLines = 192.0F;

}  // namespace

void FaceGrid::lay(const TVec<2, unsigned short>& size, const FaceArea* areas, std::size_t count) {
    layLines(mX, static_cast<float>(size.x), areas, count, &Vec2f::x);
    layLines(mY, static_cast<float>(size.y), areas, count, &Vec2f::y);
}

void FaceGrid::layLines(std::vector<float>& lines, float extent, const FaceArea* areas, std::size_t count,
                        float Vec2f::*axis) {
    float wanted = 0.0F;
    for (std::size_t i = 0; i < count; ++i) {
        const float low = std::max(areas[i].low.*axis, 0.0F);
        const float high = std::min(areas[i].high.*axis, extent);
        wanted += std::max(high - low, 0.0F) / areas[i].step;
    }
    const float wider = std::max(wanted / kMostLines, 1.0F);
    lines.clear();
    lines.push_back(0.0F);
    while (lines.back() < extent) {
        const float from = lines.back();
        float to = extent;
        float step = extent;
        for (std::size_t i = 0; i < count; ++i) {
            const float low = areas[i].low.*axis;
            const float high = areas[i].high.*axis;
            to = low > from ? std::min(to, low) : to;
            to = high > from ? std::min(to, high) : to;
            step = low <= from && high > from ? std::min(step, areas[i].step * wider) : step;
        }
        const auto parts = static_cast<int>(std::ceil((to - from) / step));
        for (int i = 1; i < parts; ++i) {
            lines.push_back(from + (to - from) * static_cast<float>(i) / static_cast<float>(parts));
        }
        lines.push_back(to);
    }
}

}  // namespace zv
