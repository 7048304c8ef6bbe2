#include "gl/Texture.h"

#include <GL/glew.h>

#include "gl/Texture2D.h"
#include "gl/TextureRect.h"
#include "support/GLCallRecorder.h"
#include "support/GLTest.h"

namespace zv::test {

namespace {

using TextureTest = GLTest;

unsigned int newName(unsigned int target = GL_TEXTURE_2D) {
    unsigned int name = 0;
    glGenTextures(1, &name);
    glBindTexture(target, name);
    glBindTexture(target, 0);
    return name;
}

TEST(Texture, FormatTableTellsGLWhatToDo) {
    struct Row {
        int number;
        unsigned int internalFormat, format, type;
        int bits;
        bool compressed, alpha;
    };
    const unsigned int unused = 0xFFFFFFFF;
    const Row rows[] = {
        {1, GL_RGBA, GL_BGRA, GL_UNSIGNED_BYTE, 32, false, true},
        {2, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE, 32, false, true},
        {10, GL_RGBA, GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, 16, false, true},
        {11, GL_RGBA, GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1, 16, false, true},
        {4, GL_RGB, GL_RGB, GL_UNSIGNED_SHORT_5_6_5, 16, false, false},
        {3, GL_RGB, GL_RGB, GL_UNSIGNED_BYTE, 24, false, false},
        {5, GL_ALPHA, GL_ALPHA, GL_UNSIGNED_BYTE, 8, false, false},
        {8, GL_RED, GL_RED, GL_UNSIGNED_BYTE, 8, false, false},
        {9, GL_RG, GL_RG, GL_UNSIGNED_BYTE, 16, false, false},
        {17, 0x83F1, unused, unused, 4, true, false},
        {18, 0x83F2, unused, unused, 8, true, false},
        {19, 0x83F3, unused, unused, 8, true, false},
        {20, 0x8C92, unused, unused, 4, true, false},
        {21, 0x8C93, unused, unused, 8, true, false},
        {22, 0x87EE, unused, unused, 8, true, false},
    };
    int found = 0;
    for (int number = -1; number <= 32; ++number) {
        found += Texture::getPxFormatInfo(static_cast<PxFormat>(number)) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(found, 15) << "0, 6, 7 and 12 to 16 have no row";
    for (const Row& row : rows) {
        const PxFormatInfo* info = Texture::getPxFormatInfo(static_cast<PxFormat>(row.number));
        ASSERT_NE(info, nullptr) << row.number;
        EXPECT_EQ(info->internalFormat, row.internalFormat) << row.number;
        EXPECT_EQ(info->format, row.format) << row.number;
        EXPECT_EQ(info->type, row.type) << row.number;
        EXPECT_EQ(info->bpp, row.bits) << row.number;
        EXPECT_EQ(info->compressed, row.compressed) << row.number;
        EXPECT_EQ(info->alpha, row.alpha) << row.number;
    }
    EXPECT_EQ(Texture::getPxFormatInfo(PXFORMAT_GRAY8), nullptr);
    EXPECT_EQ(Texture::getPxFormatInfo(PXFORMAT_GRAY_ALPHA88), nullptr);
}

TEST_F(TextureTest, StartsWithoutANameAndAsOwner) {
    const Texture texture;
    EXPECT_FALSE(texture.isValid());
    EXPECT_TRUE(texture.isOwner());
    EXPECT_TRUE(texture.isTexture());
    EXPECT_FALSE(texture.isOES());
    EXPECT_EQ(texture.getTarget(), 0x0DE1u);
    EXPECT_EQ(texture.getPxFormat(), PXFORMAT_NONE);
    EXPECT_EQ(texture.getInternalFormat(), 0u);
    EXPECT_EQ(TextureRect().getTarget(), 0x84F5u);
}

TEST_F(TextureTest, OnlyOwnersDeleteTheirNames) {
    const unsigned int owned = newName();
    const unsigned int borrowed = newName();
    {
        Texture2D owner;
        EXPECT_TRUE(owner.init(owned, Size16(7, 5), PXFORMAT_RGBA8888, true));
        EXPECT_EQ(owner.getSize(), Size16(7, 5));
        EXPECT_EQ(owner.getRect(), RectF(0, 0, 7, 5));
        EXPECT_EQ(owner.getInternalFormat(), static_cast<unsigned int>(GL_RGBA));
        Texture2D borrower;
        borrower.init(borrowed, Size16(1, 1), PXFORMAT_RGBA8888, false);
        EXPECT_FALSE(borrower.isOwner());
    }
    EXPECT_FALSE(glIsTexture(owned));
    EXPECT_TRUE(glIsTexture(borrowed));

    Texture2D texture;
    texture.init(borrowed, Size16(1, 1), PXFORMAT_RGBA8888, false);
    texture.reset();
    EXPECT_FALSE(texture.isValid());
    EXPECT_TRUE(glIsTexture(borrowed));
    texture.init(borrowed, Size16(1, 1), PXFORMAT_RGBA8888, true);
    texture.reset();
    EXPECT_FALSE(glIsTexture(borrowed));
}

TEST_F(TextureTest, AdoptingTheCurrentNameChangesNothing) {
    const unsigned int name = newName();
    Texture texture;
    texture.updateTextureId(0, GL_TEXTURE_2D, PXFORMAT_RGB888, false);
    EXPECT_EQ(texture.getPxFormat(), PXFORMAT_RGB888) << "no name is no reason to keep the rest";
    texture.updateTextureId(static_cast<int>(name), GL_TEXTURE_2D, PXFORMAT_RGBA8888, true);
    texture.updateTextureId(static_cast<int>(name), GL_TEXTURE_RECTANGLE, PXFORMAT_R8, false);
    texture.updateTextureId(static_cast<int>(name));
    EXPECT_EQ(texture.getTarget(), static_cast<unsigned int>(GL_TEXTURE_2D));
    EXPECT_EQ(texture.getPxFormat(), PXFORMAT_RGBA8888);
    EXPECT_TRUE(texture.isOwner());
    EXPECT_TRUE(glIsTexture(name));

    const unsigned int second = newName();
    texture.updateTextureId(static_cast<int>(second));
    EXPECT_FALSE(glIsTexture(name)) << "the former name was owned";
    EXPECT_TRUE(texture.isOwner());
    const unsigned int third = newName();
    texture.updateTextureId(static_cast<int>(third), GL_TEXTURE_2D, PXFORMAT_RG88, false);
    EXPECT_FALSE(glIsTexture(second));
    const unsigned int fourth = newName();
    texture.updateTextureId(static_cast<int>(fourth));
    EXPECT_TRUE(glIsTexture(third)) << "the former name was borrowed";
    glDeleteTextures(1, &third);
    glDeleteTextures(1, &fourth);
}

TEST_F(TextureTest, NamesAbove16BitsAreBoundWhole) {
    if (kind() == Kind::Core)
        GTEST_SKIP() << "core contexts bind only names that they gave out";
    Texture texture;
    texture.updateTextureId(0x12345, GL_TEXTURE_2D, PXFORMAT_RGBA8888, true);
    texture.active(0);
    EXPECT_TRUE(glIsTexture(0x12345));
    texture.reset();
    EXPECT_FALSE(glIsTexture(0x12345));
}

TEST_F(TextureTest, BindsToItsUnitAndSetsParametersInOrder) {
    ZV_NEEDS_RECORDER();
    TextureRect texture;
    const unsigned int name = newName(GL_TEXTURE_RECTANGLE);
    texture.updateTextureId(static_cast<int>(name), GL_TEXTURE_RECTANGLE, PXFORMAT_RGBA8888, true);
    texture.active(3);
    GLint value = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &value);
    EXPECT_EQ(value, GL_TEXTURE3);
    glGetIntegerv(GL_TEXTURE_BINDING_RECTANGLE, &value);
    EXPECT_EQ(value, static_cast<GLint>(name));

    const GLCallRecorder recorder;
    const TexParams params{GL_NEAREST, GL_LINEAR, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_BORDER};
    texture.setTexParameters(params, false);
    const auto calls = recorder.callsOf("glTexParameteri");
    ASSERT_EQ(recorder.total(), 4u) << recorder.summary();
    ASSERT_EQ(calls.size(), 4u);
    const int names[] = {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T};
    const int values[] = {GL_NEAREST, GL_LINEAR, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_BORDER};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(calls[i].integer(0), GL_TEXTURE_RECTANGLE);
        EXPECT_EQ(calls[i].integer(1), names[i]);
        EXPECT_EQ(calls[i].integer(2), values[i]);
    }
    texture.setTexParameters(TexParams::DEFAULT, true);
    glGetIntegerv(GL_ACTIVE_TEXTURE, &value);
    EXPECT_EQ(value, GL_TEXTURE0);
    glGetTexParameteriv(GL_TEXTURE_RECTANGLE, GL_TEXTURE_WRAP_T, &value);
    EXPECT_EQ(value, GL_CLAMP_TO_EDGE);
}

}  // namespace

}  // namespace zv::test
