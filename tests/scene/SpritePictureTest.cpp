#include <GL/glew.h>

#include "SpriteTarget.h"
#include "gl/ConfigGL.h"
#include "gl/Program.h"
#include "support/EngineTest.h"
#include "support/PictureCompare.h"

namespace zv::test {
namespace {

using SpritePicture = EngineTest;

// Texels are sampled at their centres, where the linear filter gives the texel itself: nothing to round.
constexpr double kExact = 0;

constexpr int kSide = 6;

struct Turn {
    const char* name;
    Sprite::RotationType rotation;
    bool flipX, flipY;
    /// Which texel (column, row from the top) the pixel (column, row from the top) shows.
    std::pair<int, int> (*texel)(int x, int y);
};

class SpriteTurnPicture : public EngineTest, public ::testing::WithParamInterface<Turn> {};

TEST_P(SpriteTurnPicture, FillsTheViewPortAndNothingElse) {
    const Turn& turn = GetParam();
    const Picture source = Picture::noise(kSide, kSide);
    PoisonedTarget target(11, 9);
    Sprite* sprite = spriteOf(textureOf(source));
    sprite->setTextureRotationType(turn.rotation);
    sprite->setFlipX(turn.flipX);
    sprite->setFlipY(turn.flipY);
    // The view port's lower left corner lies at (3, 2), so its top row is row 1 of the target.
    const Picture actual = target.draw(sprite, {3, 2, kSide, kSide});
    const Picture expected = Picture::make(11, 9, [&](int x, int y) {
        const int column = x - 3, row = y - 1;
        if (column < 0 || column >= kSide || row < 0 || row >= kSide) {
            return kPoison;
        }
        const auto [u, v] = turn.texel(column, row);
        return source.at(u, v);
    });
    expectNear(actual, expected, kExact, kExact, std::string("sprite-") + turn.name);
}

constexpr int kLast = kSide - 1;

const Turn kTurns[] = {
    {"Upright", Sprite::ROTATION_0, false, false, [](int x, int y) { return std::pair(x, y); }},
    {"FlipX", Sprite::ROTATION_0, true, false, [](int x, int y) { return std::pair(kLast - x, y); }},
    {"FlipY", Sprite::ROTATION_0, false, true, [](int x, int y) { return std::pair(x, kLast - y); }},
    {"Rotation1", Sprite::ROTATION_90, false, false, [](int x, int y) { return std::pair(y, kLast - x); }},
    {"Rotation2", Sprite::ROTATION_180, false, false,
     [](int x, int y) { return std::pair(kLast - x, kLast - y); }},
    {"Rotation3", Sprite::ROTATION_270, false, false, [](int x, int y) { return std::pair(kLast - y, x); }},
    {"Rotation1FlipY", Sprite::ROTATION_90, false, true, [](int x, int y) { return std::pair(y, x); }},
};

std::string turnName(const ::testing::TestParamInfo<Turn>& turn) {
    return turn.param.name;
}

INSTANTIATE_TEST_SUITE_P(Table, SpriteTurnPicture, ::testing::ValuesIn(kTurns), turnName);

TEST_F(SpritePicture, APositionedSpriteStaysWhereItWasFirstDrawn) {
    PoisonedTarget target(8, 8);
    const Pixel red{255, 0, 0, 255};
    Sprite* sprite = spriteOf(textureOf(Picture(2, 2, red)));
    sprite->setFillMode(false);
    sprite->setPosition({0.5F, 0.25F});
    sprite->setContentSize({0.5F, 1.0F});
    sprite->setScale(Vec2f{0.5F, 0.75F});
    // From (0.5, 0.25) to (0.75, 1.0) in clip space: one column and three rows of eight.
    const auto placed = [&](int left, int bottom, int width, int height) {
        return Picture::make(8, 8, [&, top = 8 - bottom - height](int x, int y) {
            const bool inside = x >= left && x < left + width && y >= top && y < top + height;
            return inside ? red : kPoison;
        });
    };
    expectSame(target.draw(sprite), placed(6, 5, 1, 3), "sprite-positioned");
    sprite->setPosition({-1.0F, -1.0F});
    expectSame(target.draw(sprite), placed(6, 5, 1, 3), "sprite-moved-in-vain");
    sprite->setFillMode(true);
    sprite->setFillMode(false);
    expectSame(target.draw(sprite), placed(0, 0, 1, 3), "sprite-moved");
    sprite->setFillMode(true);
    expectSame(target.draw(sprite), placed(0, 0, 4, 6), "sprite-filling-by-its-scale");
}

TEST_F(SpritePicture, AnInnerRectangleIsReadByItsFarEdges) {
    const Picture source = Picture::noise(8, 8);
    PoisonedTarget target(4, 4);
    Sprite* sprite = spriteOf(textureOf(source));
    sprite->setRect({2, 3, 6, 7});
    expectNear(target.draw(sprite), source.cropped(2, 3, 4, 4), kExact, kExact, "sprite-inner-rectangle");
}

/// Shows slot 0 in red and slot 2, by coordinates of its own, in green.
Program* twoSlotProgram() {
    return Program::create(
        "attribute vec4 a_position; attribute vec2 a_texcoord0; attribute vec2 a_texcoord2;\n"
        "varying vec2 v_first; varying vec2 v_second;\n"
        "void main() { gl_Position = a_position; v_first = a_texcoord0; v_second = a_texcoord2; }\n",
        "uniform sampler2D ZV_Tex0; uniform sampler2D ZV_Tex2;\n"
        "varying vec2 v_first; varying vec2 v_second;\n"
        "void main() {\n"
        "  gl_FragColor = vec4(texture2D(ZV_Tex0, v_first).r, texture2D(ZV_Tex2, v_second).g, 0.0, 1.0);\n"
        "}\n");
}

class TwoSlots {
public:
    TwoSlots() : sprite(spriteOf(textureOf(first))) { sprite->setProgram(twoSlotProgram()); }

    /// `secondTexel` says which column of the second picture a column shows.
    template <class SecondTexel>
    Picture expected(SecondTexel secondTexel) const {
        return Picture::make(kSide, kSide, [&](int x, int y) {
            const auto [u, v] = secondTexel(x, y);
            return Pixel{first.at(x, y)[0], second.at(u, v)[1], 0, 255};
        });
    }

    const Picture first = Picture::noise(kSide, kSide, 1);
    const Picture second = Picture::noise(kSide, kSide, 2);
    T2F_Quad mirrored{{{1, 0}, {1, 1}, {0, 0}, {0, 1}}};
    Sprite* sprite;
};

std::pair<int, int> mirroredTexel(int x, int y) {
    return {kLast - x, y};
}

TEST_F(SpritePicture, SlotsHaveUnitsAndCoordinatesOfTheirOwn) {
    PoisonedTarget target(kSide, kSide);
    TwoSlots slots;
    slots.sprite->setTexture(textureOf(Picture::noise(2, 2)), 1, nullptr);
    slots.sprite->setTexture(textureOf(slots.second), 2, &slots.mirrored);
    slots.mirrored = T2F_Quad();  // the sprite has its copy
    expectNear(target.draw(slots.sprite), slots.expected(mirroredTexel), kExact, kExact, "sprite-two-slots");
}

TEST_F(SpritePicture, LateCoordinatesMissTheRecordedLayout) {
    PoisonedTarget target(kSide, kSide);
    TwoSlots slots;
    Texture2D* second = textureOf(slots.second);
    slots.sprite->setTexture(second, 2, nullptr);
    // Without coordinates the attribute is GL's constant (0, 0): the corner of the first texel.
    const auto corner = [](int, int) { return std::pair(0, 0); };
    expectNear(target.draw(slots.sprite), slots.expected(corner), kExact, kExact, "sprite-no-coordinates");
    slots.sprite->setTexture(second, 2, &slots.mirrored);
    const Picture late = target.draw(slots.sprite);
    if (ConfigGL::getInstance()->supportVAO()) {
        expectNear(late, slots.expected(corner), kExact, kExact, "sprite-late-coordinates");
    } else {
        expectNear(late, slots.expected(mirroredTexel), kExact, kExact, "sprite-late-coordinates");
    }
}

TEST_F(SpritePicture, ARectangleTextureGetsTheProgramForIt) {
    const Picture source = Picture::noise(7, 5);
    unsigned int name = 0;
    glGenTextures(1, &name);
    Texture2D* texture = createRef<Texture2D>([&](Texture2D& t) {
        t.updateTextureId(static_cast<int>(name), GL_TEXTURE_RECTANGLE, PXFORMAT_RGBA8888, true);
        return t.init(name, {7, 5}, PXFORMAT_RGBA8888, true);
    });
    texture->setTexParameters(TexParams::DEFAULT, true);
    glTexImage2D(GL_TEXTURE_RECTANGLE, 0, GL_RGBA8, 7, 5, 0, GL_RGBA, GL_UNSIGNED_BYTE, source.rgba.data());
    PoisonedTarget target(7, 5);
    Sprite* sprite = spriteOf(texture);
    const auto program = static_cast<GLint>(sprite->getProgram()->getName());
    GLint used = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &used);
    EXPECT_EQ(used, program);
    const Uniform* texSize = sprite->getProgram()->getUniform("texSize");
    ASSERT_NE(texSize, nullptr);
    float size[2] = {};
    glGetUniformfv(static_cast<GLuint>(program), texSize->location, size);
    EXPECT_EQ(size[0], 7.0F);
    EXPECT_EQ(size[1], 5.0F);
    expectNear(target.draw(sprite), source, kExact, kExact, "sprite-rectangle-texture");
}

TEST_F(SpritePicture, AdditiveBlendingAddsBySourceAlpha) {
    PoisonedTarget target(1, 1);
    Sprite* sprite = spriteOf(textureOf(Picture(1, 1, {0, 100, 40, 51})));
    sprite->setBlendFunc(BlendFunc::ADDITIVE);
    // 51 of 255 is a fifth: 255, 0 + 20, 255 and 128 + 10.2; GL may round either way.
    expectNear(target.draw(sprite), Picture(1, 1, {255, 20, 255, 138}), 1, 1, "sprite-additive");
}

}  // namespace
}  // namespace zv::test
