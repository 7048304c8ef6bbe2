#include "scene/Sprite.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "NodeDrawingTest.h"
#include "gl/ConfigGL.h"
#include "gl/Program.h"
#include "support/GLCallRecorder.h"
#include "support/PictureCompare.h"

namespace zv::test {
namespace {

bool hasVertexArrays() {
    return ConfigGL::getInstance()->supportVAO();
}

/// A texture whose row 0 is the picture's top row. Autoreleased.
Texture2D* textureOf(const Picture& picture) {
    return createRef<Texture2D>([&](Texture2D& texture) {
        return texture.init(picture.rgba.data(), picture.rgba.size(), PXFORMAT_RGBA8888, sizeOf(picture));
    });
}

Texture2D* textureOf(int width, int height) {
    return textureOf(Picture::noise(width, height));
}

/// A sprite that shows the whole texture. Autoreleased.
Sprite* spriteOf(Texture2D* texture) {
    return createRef<Sprite>([&](Sprite& sprite) { return sprite.init(texture, false); });
}

using SpriteTest = NodeDrawingTest;
using SpritePicture = SpriteTest;

/// Rotation, flip X and flip Y.
using Turn = std::tuple<int, bool, bool>;

class SpriteTurnPicture : public SpriteTest, public ::testing::WithParamInterface<Turn> {};

std::string nameOf(const ::testing::TestParamInfo<Turn>& turn) {
    const auto [rotation, flipX, flipY] = turn.param;
    return "Rotation" + std::to_string(rotation) + (flipX ? "FlipX" : "") + (flipY ? "FlipY" : "");
}

// Texels are sampled at their centres, where the linear filter gives the texel itself: nothing to round.
TEST_P(SpriteTurnPicture, PutsTheRectangleIntoTheViewPortAndNothingElse) {
    const auto [rotation, flipX, flipY] = GetParam();
    const Picture source = Picture::noise(9, 10);
    const auto texelAt = [&, turns = rotation, mirrorX = flipX, mirrorY = flipY](int x, int y) {
        for (int i = 0; i < turns; ++i) {
            x = std::exchange(y, 5 - x);
        }
        return source.at(2 + (mirrorX ? 5 - x : x), 1 + (mirrorY ? 5 - y : y));
    };
    bindTarget({11, 9});
    Sprite* sprite = spriteOf(textureOf(source));
    sprite->setRect({2, 1, 8, 7});  // its last two values are far edges
    sprite->setTextureRotationType(static_cast<Sprite::RotationType>(rotation));
    sprite->setFlipX(flipX);
    sprite->setFlipY(flipY);
    // The view port's lower left corner lies at (3, 2), so its top row is row 1 of the target.
    const Picture actual = draw(sprite, {3, 2, 6, 6});
    const Picture expected = Picture::make(11, 9, [&](int x, int y) {
        const bool inside = x >= 3 && x < 9 && y >= 1 && y < 7;
        return inside ? texelAt(x - 3, y - 1) : kPoison;
    });
    expectSame(actual, expected, "sprite-" + nameOf({GetParam(), 0}));
}

INSTANTIATE_TEST_SUITE_P(All, SpriteTurnPicture,
                         ::testing::Combine(::testing::Range(0, 4), ::testing::Bool(), ::testing::Bool()),
                         nameOf);

TEST_F(SpriteTest, WhatCannotBeShownIsRefusedOrHarmless) {
    Sprite* sprite = createRef<Sprite>([](Sprite& s) { return !s.init(nullptr, false); });
    EXPECT_FALSE(sprite->init(std::string("zv_res/no_such_picture.png")));
    EXPECT_EQ(sprite->getTexCoords().texCoords[3], Vec2f()) << "nothing to map yet";
    EXPECT_EQ(sprite->getTexture(4), nullptr);
    sprite->setTexture(textureOf(2, 2), 9, nullptr);
    sprite->setTexture(nullptr, 0, nullptr);
    EXPECT_EQ(sprite->getValidTextureCount(), 0);
    bindTarget({4, 4});
    EXPECT_EQ(draw(sprite), Picture(4, 4, kPoison));
    Sprite* shown = spriteOf(textureOf(4, 4));
    shown->setProgram(Program::create("void main() { nonsense }", "void main() { nonsense }"));
    EXPECT_EQ(draw(shown), Picture(4, 4, kPoison));

    Texture2D* without = createRef<Texture2D>([](Texture2D& t) {
        return t.init(0U, {0, 0}, PXFORMAT_RGBA8888, false);
    });
    ASSERT_TRUE(sprite->init(without, {1, 1, 5, 5}, false));
    EXPECT_EQ(sprite->getTexCoords().texCoords[3], Vec2f())
        << "a texture without extent has no coordinates but 0";

    shown = spriteOf(textureOf(4, 4));
    EXPECT_EQ(draw(shown), Picture::noise(4, 4));
    shown->setTextureRotationType(static_cast<Sprite::RotationType>(7));
    EXPECT_EQ(draw(shown), Picture::noise(4, 4)) << "an unknown rotation keeps the coordinates";
}

TEST_F(SpriteTest, ReplacingReleasesFirstAndTheLastHolderLosesTheTexture) {
    Texture2D* kept = textureOf(2, 2);
    Sprite* sprite = spriteOf(kept);
    for (int i = 0; i < 2; ++i) {
        sprite->setTexture(kept, {0, 0, 1, 1});
        sprite->setTexture(kept, 1, nullptr);
        EXPECT_EQ(kept->getRefCount(), 3U);
    }
    sprite->setTexture(textureOf(2, 2), 1, nullptr);
    EXPECT_EQ(kept->getRefCount(), 2U);
    EXPECT_EQ(sprite->getValidTextureCount(), 2);
    sprite->retain();
    drainPool();
    sprite->setTexture(kept, {0, 0, 1, 1});
    EXPECT_EQ(sprite->getTexture(0), nullptr) << "it died when it was released, before it could be retained";
    sprite->onDrawSelf(Mat4::IDENTITY);
    sprite->release();
}

TEST_F(SpriteTest, ACopyDrawsTheSameAndReleasesNothing) {
    bindTarget({6, 4});
    Texture2D* texture = textureOf(6, 4);
    Sprite* sprite = spriteOf(texture);
    const Picture shown = draw(sprite);
    const auto references = [&] { return texture->getRefCount() + sprite->getProgram()->getRefCount(); };
    const unsigned before = references();
    {
        Sprite copy(*sprite);
        copy.retain();  // the pool below may not be the last to let go
        EXPECT_EQ(draw(&copy), shown);
        copy.setFlipX(true);
        EXPECT_NE(draw(&copy), shown);
        EXPECT_EQ(draw(sprite), shown) << "a copy does not write into the buffers of the other";
        Sprite assigned;
        Texture2D* former = textureOf(2, 2);
        assigned.setTexture(former, 1, nullptr);
        assigned = copy;
        EXPECT_EQ(former->getRefCount(), 1U) << "an assignment gives up what the target owned";
        assigned.setTexture(texture, 1, nullptr);
        EXPECT_EQ(references(), before + 1);
    }
    EXPECT_EQ(references(), before);
    EXPECT_EQ(draw(sprite), shown);
}

TEST_F(SpriteTest, UploadsGrowWithTheCoordinateSets) {
    bindTarget({4, 4});
    Sprite* sprite = spriteOf(textureOf(4, 4));
    GLCallRecorder calls;
    const auto uploaded = [&] {
        calls.clear();
        draw(sprite);
        return calls.argumentsOf("glBufferData", 1);
    };
    using Sizes = std::vector<long long>;
    T2F_Quad coords;
    sprite->setTexture(textureOf(4, 4), 1, nullptr);
    sprite->setTexture(textureOf(4, 4), 2, &coords);
    EXPECT_EQ(uploaded(), (Sizes{64, 32}));
    sprite->setTexture(textureOf(4, 4), 3, &coords);
    EXPECT_EQ(uploaded(), (Sizes{128, 64}));
    // With one set less the buffer keeps its size: a recorded layout still points at the second set.
    sprite->setTexture(textureOf(4, 4), 3, nullptr);
    sprite->setFlipX(true);
    EXPECT_EQ(uploaded(), (Sizes{96, 64}));
}

TEST_F(SpriteTest, DeathDeletesTheBuffersAndLeavesTheVertexArrayForReuse) {
    bindTarget({4, 4});
    Texture2D* texture = textureOf(4, 4);
    T2F_Quad coords;
    GLCallRecorder calls;
    for (int i = 0; i < 3; ++i) {
        Sprite sprite;
        sprite.retain();
        ASSERT_TRUE(sprite.init(texture, false));
        sprite.setTexture(texture, 3, &coords);
        draw(&sprite);
    }
    EXPECT_EQ(calls.count("glGenBuffers"), 6U);
    EXPECT_EQ(calls.count("glDeleteBuffers"), 6U);
    EXPECT_EQ(calls.count("glGenVertexArrays"), hasVertexArrays() ? 1U : 0U);
    EXPECT_EQ(calls.count("glDeleteVertexArrays"), 0U);
    EXPECT_EQ(texture->getRefCount(), 1U);
    // What the dead sprites had enabled does not reach the next one's drawing.
    EXPECT_EQ(draw(spriteOf(texture)), Picture::noise(4, 4));
}

TEST_F(SpritePicture, APositionedSpriteStaysWhereItWasFirstDrawn) {
    bindTarget({8, 8});
    Sprite* sprite = spriteOf(textureOf(Picture(2, 2, kRed)));
    const auto expectAt = [&](int left, int bottom, int width, int height, const char* name) {
        fillRect(0, 0, 8, 8, kPoison);
        fillRect(left, bottom, width, height, kRed);
        const Picture expected = Picture::readFrameBuffer(8, 8).flippedY();
        expectSame(draw(sprite), expected, name);
    };
    sprite->setFillMode(false);
    sprite->setPosition({0.5F, 0.25F});
    sprite->setContentSize({0.5F, 1.0F});
    sprite->setScale(Vec2f{0.5F, 0.75F});
    // From (0.5, 0.25) to (0.75, 1.0) in clip space: one column and three rows of eight.
    expectAt(6, 5, 1, 3, "sprite-positioned");
    sprite->setPosition({-1.0F, -1.0F});
    expectAt(6, 5, 1, 3, "sprite-moved-in-vain");
    sprite->setFillMode(true);
    sprite->setFillMode(false);
    expectAt(0, 0, 1, 3, "sprite-moved");
    sprite->setFillMode(true);
    expectAt(0, 0, 4, 6, "sprite-filling-by-its-scale");
}

TEST_F(SpritePicture, SlotsHaveUnitsAndCoordinatesOfTheirOwnButLateOnesMissTheRecordedLayout) {
    const Picture first = Picture::noise(6, 6, 1), second = Picture::noise(6, 6, 2);
    Texture2D* texture = textureOf(second);
    // Slot 0 in red and slot 2, by its own coordinates, in green.
    Program* program = Program::create(
        "attribute vec4 a_position; attribute vec2 a_texcoord0; attribute vec2 a_texcoord2;\n"
        "varying vec2 uv0; varying vec2 uv2;\n"
        "void main() { gl_Position = a_position; uv0 = a_texcoord0; uv2 = a_texcoord2; }\n",
        "uniform sampler2D ZV_Tex0; uniform sampler2D ZV_Tex2; varying vec2 uv0; varying vec2 uv2;\n"
        "void main() { gl_FragColor = vec4(texture2D(ZV_Tex0, uv0).r, texture2D(ZV_Tex2, uv2).g, 0.0, 1.0); "
        "}\n");
    bindTarget({6, 6});
    for (const bool late : {false, true}) {
        Sprite* sprite = spriteOf(textureOf(first));
        sprite->setProgram(program);
        T2F_Quad unused;
        sprite->setTexture(textureOf(2, 2), 1, &unused);  // the next coordinates lie behind these
        if (late) {
            sprite->setTexture(texture, 2, nullptr);
            draw(sprite);
        }
        T2F_Quad mirror{{{1, 0}, {1, 1}, {0, 0}, {0, 1}}};
        sprite->setTexture(texture, 2, &mirror);
        mirror = T2F_Quad();  // the sprite has its copy
        const Picture expected = Picture::make(6, 6, [&](int x, int y) {
            // An attribute that is not recorded is GL's constant (0, 0): the first texel.
            const Pixel green = late && hasVertexArrays() ? second.at(0, 0) : second.at(5 - x, y);
            return Pixel{first.at(x, y)[0], green[1], 0, 255};
        });
        expectSame(draw(sprite), expected, late ? "sprite-late-slot" : "sprite-slots");
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
    bindTarget({7, 5});
    expectSame(draw(spriteOf(texture)), source, "sprite-rectangle-texture");
}

TEST_F(SpritePicture, AdditiveBlendingAddsBySourceAlpha) {
    bindTarget({1, 1});
    Sprite* sprite = spriteOf(textureOf(Picture(1, 1, {0, 100, 40, 51})));
    sprite->setBlendFunc(BlendFunc::ADDITIVE);
    // 51 of 255 is a fifth: 255, 0 + 20, 255 and 128 + 10.2; GL may round either way.
    expectNear(draw(sprite), Picture(1, 1, {255, 20, 255, 138}), 1, 1, "sprite-additive");
    EXPECT_EQ(draw(spriteOf(textureOf(1, 1))), Picture::noise(1, 1)) << "the next one does not blend";
}

}  // namespace
}  // namespace zv::test
