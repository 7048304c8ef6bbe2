#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

#include "support/Picture.h"

namespace zv::test {

/// The two layouts of colour tables: `side` levels a channel, `tiles` tiles in a row.
struct TableLayout {
    const char* name;
    int side, tiles;
    int width() const { return side * tiles; }
};
constexpr TableLayout kSmallTable{"Layout64", 16, 4};
constexpr TableLayout kLargeTable{"Layout512", 64, 8};

inline std::uint8_t toStep(double value) {
    return static_cast<std::uint8_t>(std::lround(std::min(std::max(value, 0.0), 255.0)));
}

/// Tiles in reading order, one a level of blue; colour(r, g, b) takes levels of 0 to side - 1.
template <class Colour>
Picture makeTable(const TableLayout& layout, Colour&& colour) {
    return Picture::make(layout.width(), layout.width(), [&](int x, int y) {
        return colour(x % layout.side, y % layout.side, x / layout.side + y / layout.side * layout.tiles);
    });
}
inline Picture identityTable(const TableLayout& layout) {
    const auto level = [&](int i) { return toStep(255.0 * i / (layout.side - 1)); };
    return makeTable(layout, [&](int r, int g, int b) { return Pixel{level(r), level(g), level(b), 255}; });
}

/// The entry of three levels.
inline Pixel entry(const Picture& table, const TableLayout& layout, int r, int g, int b) {
    return table.at(b % layout.tiles * layout.side + r, b / layout.tiles * layout.side + g);
}

/// Trilinear interpolation in double precision, in 8-bit steps but not rounded.
inline std::array<double, 3> lookUp(const Picture& table, const TableLayout& layout, const Pixel& colour) {
    int low[3];
    double part[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const double level = colour[i] / 255.0 * (layout.side - 1);
        low[i] = std::min(static_cast<int>(level), layout.side - 2);
        part[i] = level - low[i];
    }
    std::array<double, 3> sum{};
    for (int corner = 0; corner < 8; ++corner) {
        const int up[3] = {corner & 1, corner >> 1 & 1, corner >> 2};
        double weight = 1.0;
        for (std::size_t i = 0; i < 3; ++i) {
            weight *= up[i] != 0 ? part[i] : 1.0 - part[i];
        }
        const Pixel found = entry(table, layout, low[0] + up[0], low[1] + up[1], low[2] + up[2]);
        for (std::size_t i = 0; i < 3; ++i) {
            sum[i] += weight * found[i];
        }
    }
    return sum;
}

/// `steps` values of each channel.
inline Picture colourCube(int steps) {
    const auto level = [=](int i) { return toStep(255.0 * i / (steps - 1)); };
    return Picture::make(steps * steps, steps, [&](int x, int y) {
        return Pixel{level(x % steps), level(x / steps), level(y), 255};
    });
}

}  // namespace zv::test
