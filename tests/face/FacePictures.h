#pragma once

#include <cmath>
#include <random>
#include <vector>

#include "core/TVec.h"
#include "face/FaceImage.h"
#include "support/Picture.h"

namespace zv::test {

/// Landmarks and where they are in samples/portrait.png, marked by hand in an enlargement: pixels, origin top
/// left. An outer eye corner is where the lids meet, not where the lashes end.
struct Mark {
    int landmark;
    Vec2f place;
};
constexpr Mark kMarks[] = {{52, {194.2F, 101.7F}}, {55, {213.2F, 103.6F}}, {58, {237.2F, 104.9F}},
                           {61, {257.1F, 104.6F}}, {46, {224.0F, 127.4F}}, {84, {202.3F, 139.3F}},
                           {90, {245.0F, 140.8F}}};
constexpr float kEyeDistance = 63.0F;  // between the outer corners
constexpr float kFaceWidth = 94.0F;
constexpr Vec2f kFaceMiddle{226.0F, 125.0F};
/// The landmark that a mirrored picture has in a mark's place.
inline int mirrored(int landmark) {
    constexpr int kPairs[][2] = {{52, 61}, {55, 58}, {84, 90}};
    for (const auto& pair : kPairs) {
        if (landmark == pair[0] || landmark == pair[1]) {
            return pair[0] + pair[1] - landmark;
        }
    }
    return landmark;
}

/// How the portrait lies in a frame.
struct Placing {
    Vec2f middle;          ///< of the face
    float scale = 1.0F;    ///< pixels of the frame for one of the portrait
    float degrees = 0.0F;  ///< clockwise
    bool mirror = false;

    Vec2f place(const Vec2f& of) const {
        const float radians = degrees * 0.01745329F, c = std::cos(radians) * scale,
                    s = std::sin(radians) * scale;
        const float x = (of.x - kFaceMiddle.x) * (mirror ? -1.0F : 1.0F), y = of.y - kFaceMiddle.y;
        return {middle.x + c * x - s * y, middle.y + s * x + c * y};
    }
    Vec2f back(const Vec2f& to) const {
        const float radians = degrees * 0.01745329F, c = std::cos(radians) / scale,
                    s = std::sin(radians) / scale;
        const float x = to.x - middle.x, y = to.y - middle.y;
        return {kFaceMiddle.x + (c * x + s * y) * (mirror ? -1.0F : 1.0F), kFaceMiddle.y + c * y - s * x};
    }
};

/// Draws the portrait into columns from..to of the frame, bilinear where it is enlarged, its border repeated.
inline void drawPortrait(const Picture& portrait, const Placing& placing, Picture& frame, int from, int to) {
    for (int y = 0; y < frame.height; ++y) {
        for (int x = from; x < to; ++x) {
            const Vec2f at = placing.back({static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F});
            const std::array<double, 4> mixed = portrait.between(at.x - 0.5, at.y - 0.5);
            Pixel pixel{};
            for (std::size_t i = 0; i < 4; ++i) {
                pixel[i] = static_cast<std::uint8_t>(mixed[i] + 0.5);
            }
            frame.set(x, y, pixel);
        }
    }
}

/// Multiplies the colours and adds noise of that deviation.
inline void spoil(Picture& frame, float gain, float noise, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<float> step(0.0F, std::fmax(noise, 1e-6F));
    for (std::size_t i = 0; i < frame.rgba.size(); ++i) {
        if (i % 4 != 3) {
            const float value = static_cast<float>(frame.rgba[i]) * gain + step(random);
            frame.rgba[i] = static_cast<std::uint8_t>(std::fmin(std::fmax(value + 0.5F, 0.0F), 255.0F));
        }
    }
}

inline FaceImage imageOf(const Picture& picture) {
    return {picture.rgba.data(),
            picture.width,
            picture.height,
            4,
            std::ptrdiff_t{4} * picture.width,
            {0.0F, 0.0F, static_cast<float>(picture.width), static_cast<float>(picture.height)}};
}

/// How far a face's landmarks are from the marks that lie in the frame: the largest distance, in its pixels.
inline float worstOf(const Vec2f* landmarks, const Placing& placing, int width, int height) {
    float worst = 0.0F;
    for (const Mark& mark : kMarks) {
        const Vec2f& found = landmarks[placing.mirror ? mirrored(mark.landmark) : mark.landmark];
        const Vec2f wanted = placing.place(mark.place);
        const bool isInside = wanted.x >= 0.0F && wanted.y >= 0.0F && wanted.x <= static_cast<float>(width) &&
                              wanted.y <= static_cast<float>(height);
        worst = !isInside ? worst : std::fmax(worst, std::hypot(found.x - wanted.x, found.y - wanted.y));
    }
    return worst;
}

/// 3 % of the distance of the eyes, or a pixel and a half.
inline float allowed(const Placing& placing) {
    return std::fmax(0.03F * kEyeDistance * placing.scale, 1.5F);
}

}  // namespace zv::test
