#include <algorithm>
#include <stdexcept>

#include "gl/GLChecks.h"
#include "gl/Image.h"
#include "gl/PictureFiles.h"
#include "gl/Texture2D.h"
#include "gl/TextureRect.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

using TextureTest = GLTest;

TEST_F(TextureTest, OnlyOwnersDeleteTheirNames) {
    const unsigned int owned = newTextureName(), borrowed = newTextureName();
    {
        Texture2D owner;
        EXPECT_TRUE(owner.init(owned, Size16(7, 5), PXFORMAT_RGBA8888, true));
        EXPECT_EQ(owner.getRect(), RectF(0, 0, 7, 5));
        Texture2D borrower;
        borrower.init(borrowed, Size16(1, 1), PXFORMAT_RGBA8888, false);
    }
    EXPECT_TRUE(!glIsTexture(owned) && glIsTexture(borrowed));
    Texture2D texture;
    for (const bool owner : {false, true}) {
        texture.init(borrowed, Size16(1, 1), PXFORMAT_RGBA8888, owner);
        texture.reset();
        EXPECT_FALSE(texture.isValid());
        EXPECT_EQ(glIsTexture(borrowed) == GL_TRUE, !owner);
    }
}

TEST_F(TextureTest, AdoptingTheCurrentNameChangesNothing) {
    const unsigned int names[] = {newTextureName(), newTextureName(), newTextureName(), newTextureName()};
    const auto id = [&](int index) { return static_cast<int>(names[index]); };
    Texture texture;
    texture.updateTextureId(0, GL_TEXTURE_2D, PXFORMAT_RGB888, false);
    EXPECT_EQ(texture.getPxFormat(), PXFORMAT_RGB888) << "no name is no reason to keep the rest";
    texture.updateTextureId(id(0), GL_TEXTURE_2D, PXFORMAT_RGBA8888, true);
    texture.updateTextureId(id(0), GL_TEXTURE_RECTANGLE, PXFORMAT_R8, false);
    texture.updateTextureId(id(0));
    EXPECT_EQ(texture.getTarget(), 0x0DE1u);
    EXPECT_EQ(texture.getPxFormat(), PXFORMAT_RGBA8888);
    EXPECT_TRUE(texture.isOwner() && glIsTexture(names[0]));

    texture.updateTextureId(id(1));
    EXPECT_TRUE(texture.isOwner() && !glIsTexture(names[0])) << "the former name was owned";
    texture.updateTextureId(id(2), GL_TEXTURE_2D, PXFORMAT_RG88, false);
    EXPECT_FALSE(glIsTexture(names[1]));
    texture.updateTextureId(id(3));
    EXPECT_TRUE(glIsTexture(names[2])) << "the former name was borrowed";
    glDeleteTextures(4, names);
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
    TextureRect texture;
    const unsigned int name = newTextureName(GL_TEXTURE_RECTANGLE);
    texture.updateTextureId(static_cast<int>(name));
    texture.active(3);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE3);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_RECTANGLE), name);

    const GLCallRecorder recorder;
    texture.setTexParameters({GL_NEAREST, GL_LINEAR, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_BORDER}, false);
    ASSERT_EQ(recorder.total(), 4u) << recorder.summary();
    const double expected[][3] = {{GL_TEXTURE_RECTANGLE, GL_TEXTURE_MIN_FILTER, GL_NEAREST},
                                  {GL_TEXTURE_RECTANGLE, GL_TEXTURE_MAG_FILTER, GL_LINEAR},
                                  {GL_TEXTURE_RECTANGLE, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
                                  {GL_TEXTURE_RECTANGLE, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER}};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_TRUE(std::equal(expected[i], expected[i] + 3, recorder.calls()[i].args.begin())) << i;
    texture.setTexParameters(TexParams::DEFAULT, true);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE0);
}

/// `count` bytes, no two neighbours alike; a sanitizer sees a read past them.
Bytes pattern(std::size_t count, std::size_t seed = 1) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(seed * 31 + i * 37 + i / 7);
    return bytes;
}

bool coreContext() {
    return GLTest::kind() == GLTest::Kind::Core;
}

/// Level 0 as GL kept it, tight rows, in the layout it was uploaded in.
Bytes readBack(Texture2D& texture, PxFormat format, std::size_t bytes) {
    const PxFormatInfo& info = *Texture::getPxFormatInfo(format);
    const bool alphaInRed = format == PXFORMAT_A8 && coreContext();
    Bytes out(bytes);
    texture.active(0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, alphaInRed ? GLenum{GL_RED} : info.format, info.type, out.data());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    return out;
}

struct UploadCase {
    const char* name;
    PxFormat format;
    unsigned short width;
    bool padded = false;
};

class TextureUploadTest : public GLTest, public ::testing::WithParamInterface<UploadCase> {};

TEST_P(TextureUploadTest, EveryByteArrivesAndIsReplacedAtAnyWidth) {
    const auto& [name, format, width, padded] = GetParam();
    const unsigned short height = 5;
    const auto row = static_cast<std::size_t>(width * Texture::getPxFormatInfo(format)->bpp / 8);
    const std::size_t stride = padded ? (row + 3) / 4 * 4 : row;
    Texture2D texture;
    for (std::size_t round = 0; round < 2; ++round) {
        const Bytes bytes = pattern(stride * height, round);
        Bytes tight;
        for (std::size_t y = 0; y < height; ++y)
            tight.insert(tight.end(), &bytes[y * stride], &bytes[y * stride] + row);
        // A host's alignment must not matter; afterwards GL's default holds.
        glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
        const unsigned int before = texture.getName();
        ASSERT_TRUE(texture.updateWithData(bytes.data(), bytes.size(), format, Size16(width, height)));
        EXPECT_EQ(integer(GL_UNPACK_ALIGNMENT), 4);
        EXPECT_EQ(texture.getName() == before, round == 1) << "the second time the pixels alone are replaced";
        EXPECT_EQ(readBack(texture, format, tight.size()), tight) << "round " << round;
    }
    EXPECT_TRUE(texture.getPxFormat() == format && texture.getSize() == Size16(width, height));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, TextureUploadTest,
    ::testing::Values(UploadCase{"Rgb3", PXFORMAT_RGB888, 3}, UploadCase{"Rgb33", PXFORMAT_RGB888, 33},
                      UploadCase{"Rgb2Padded", PXFORMAT_RGB888, 2, true}, UploadCase{"R7", PXFORMAT_R8, 7},
                      UploadCase{"R5Padded", PXFORMAT_R8, 5, true}, UploadCase{"Rg3", PXFORMAT_RG88, 3},
                      UploadCase{"Alpha3", PXFORMAT_A8, 3}, UploadCase{"Alpha6Padded", PXFORMAT_A8, 6, true},
                      UploadCase{"Rgba7", PXFORMAT_RGBA8888, 7}, UploadCase{"Bgra3", PXFORMAT_BGRA8888, 3},
                      UploadCase{"Rgb565", PXFORMAT_RGB565, 3}, UploadCase{"Rgba4444", PXFORMAT_RGBA4444, 3},
                      UploadCase{"Rgb5A1", PXFORMAT_RGB5A1, 3}),
    [](const auto& row) { return row.param.name; });

using Texture2DTest = GLTest;

TEST_F(Texture2DTest, RefusedUploadsLeaveTheTextureAsItWas) {
    const Bytes bytes = pattern(12);
    const unsigned char* data = bytes.data();
    const Size16 size(2, 2);
    Texture2D texture;
    ASSERT_TRUE(texture.init(data, 12, PXFORMAT_RGB888, size));
    const unsigned int name = texture.getName();
    const UniqueDataPtr<unsigned char> shortData(11);
    const _MipmapInfo shortLevels[] = {{data, 12}, {data, 2}};
    Image empty;
    const bool answers[] = {texture.init(data, 11, PXFORMAT_RGB888, size),
                            texture.init(shortData, PXFORMAT_RGB888, size),
                            texture.init(data, 12, PXFORMAT_RGBA8888, Size16(65535, 65535)),
                            texture.init(data, 12, PXFORMAT_GRAY8, Size16(1, 1)),
                            texture.initWithMipmaps(shortLevels, 2, PXFORMAT_RGB888, size),
                            texture.initWithMipmaps(nullptr, 1, PXFORMAT_RGB888, size),
                            texture.init(static_cast<Image*>(nullptr)),
                            texture.init(&empty),
                            texture.init(std::string("abc")),
                            texture.init(std::string("/missing.png")),
                            texture.updateWithData(data, 11),
                            texture.updateWithData(shortData, PXFORMAT_RGB888, size),
                            texture.updateWithData(nullptr, 12),
                            texture.updateWithData(data, 12, PXFORMAT_S3TC_DXT1, size)};
    for (const bool& answer : answers)
        EXPECT_FALSE(answer) << "call " << &answer - answers;
    EXPECT_TRUE(texture.getName() == name && texture.getPxFormat() == PXFORMAT_RGB888);
    EXPECT_EQ(texture.getSize(), size);
    EXPECT_EQ(readBack(texture, PXFORMAT_RGB888, 12), bytes);
}

TEST_F(Texture2DTest, ReplacingPixelsOfAFormatWithoutARowThrows) {
    const Bytes bytes = pattern(16);
    Texture2D texture;
    for (const PxFormat kept : {PXFORMAT_NONE, PXFORMAT_RGBA8888}) {
        try {
            texture.updateWithData(bytes.data(), bytes.size(), PXFORMAT_GRAY8, Size16(2, 2));
            ADD_FAILURE() << "nothing thrown";
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid map<K, T> key");
        }
        EXPECT_EQ(texture.getPxFormat(), kept);
        texture.init(bytes.data(), bytes.size(), PXFORMAT_RGBA8888, Size16(2, 2));
    }
    int formats = 0;
    for (int format = -1; format <= 32; ++format)
        formats += Texture::getPxFormatInfo(static_cast<PxFormat>(format)) != nullptr ? 1 : 0;
    EXPECT_EQ(formats, 15) << "0, 6, 7 and 12 to 16 have no row";
}

TEST_F(Texture2DTest, NullAllocatesAndABorrowedNameIsLeftAlone) {
    Texture2D texture, second;
    ASSERT_TRUE(texture.init(nullptr, 0, PXFORMAT_RGBA8888, Size16(33, 9)));
    EXPECT_EQ(levelSize(), Size16(33, 9));
    second.init(texture.getName(), Size16(33, 9), PXFORMAT_RGBA8888, false);
    ASSERT_TRUE(second.init(UniqueDataPtr<unsigned char>(), PXFORMAT_R8, Size16(2, 2)));
    EXPECT_TRUE(second.isOwner() && glIsTexture(texture.getName()));
}

TEST_F(Texture2DTest, MipLevelsHalveDownToOne) {
    const Bytes bytes = pattern(std::size_t{5} * 3 * 3);
    const _MipmapInfo levels[] = {{bytes.data(), 45}, {bytes.data(), 6}, {bytes.data(), 3}};
    Texture2D texture;
    ASSERT_TRUE(texture.initWithMipmaps(levels, 3, PXFORMAT_RGB888, Size16(5, 3)));
    EXPECT_TRUE(texture.hasMipmaps());
    const Size16 sizes[] = {{5, 3}, {2, 1}, {1, 1}, {0, 0}};
    for (int level = 0; level < 4; ++level)
        EXPECT_EQ(levelSize(level), sizes[level]) << level;
    ASSERT_TRUE(texture.initWithMipmaps(levels, 1, PXFORMAT_RGB888, Size16(5, 3)));
    EXPECT_FALSE(texture.hasMipmaps());
    // Without a level there is a name, and no format is looked up.
    ASSERT_TRUE(texture.initWithMipmaps(nullptr, 0, PXFORMAT_GRAY8, Size16(4, 4)));
    EXPECT_TRUE(texture.isValid() && levelSize() == Size16(0, 0));
}

TEST_F(Texture2DTest, CompressedLevelsAreMeasuredInBlocks) {
    const Bytes bytes = pattern(32);
    struct Row {
        PxFormat format;
        std::uint64_t blockBytes;
        unsigned int internalFormat;
    };
    const Row rows[] = {
        {PXFORMAT_S3TC_DXT1, 8, 0x83F1},           {PXFORMAT_S3TC_DXT3, 16, 0x83F2},
        {PXFORMAT_S3TC_DXT5, 16, 0x83F3},          {PXFORMAT_ATC_RGB, 8, 0x8C92},
        {PXFORMAT_ATC_EXPLICIT_ALPHA, 16, 0x8C93}, {PXFORMAT_ATC_INTERPOLATED_ALPHA, 16, 0x87EE}};
    for (const Row& row : rows) {
        // 5 x 3 pixels are 2 x 1 blocks.
        Texture2D texture;
        EXPECT_FALSE(texture.init(bytes.data(), 2 * row.blockBytes - 1, row.format, Size16(5, 3)));
        EXPECT_EQ(Texture::getPxFormatInfo(row.format)->internalFormat, row.internalFormat);
        if (row.format > PXFORMAT_S3TC_DXT5 || !GLEW_EXT_texture_compression_s3tc)
            continue;
        const _MipmapInfo levels[] = {{bytes.data(), 32}, {bytes.data(), row.blockBytes}};
        ASSERT_TRUE(texture.initWithMipmaps(levels, 2, row.format, Size16(5, 3)));
        Bytes kept(2 * row.blockBytes);
        glGetCompressedTexImage(GL_TEXTURE_2D, 0, kept.data());
        EXPECT_TRUE(std::equal(kept.begin(), kept.end(), bytes.begin()));
        EXPECT_EQ(levelSize(1), Size16(2, 1));
        EXPECT_TRUE(texture.init(nullptr, 0, row.format, Size16(5, 3)));
        EXPECT_EQ(levelSize(), Size16(5, 3));
    }
}

TEST_F(Texture2DTest, AlphaIsSampledFromRedOnCoreContexts) {
    if (!coreContext())
        GTEST_SKIP() << "this context has an alpha format";
    Texture2D texture;
    ASSERT_TRUE(texture.init(nullptr, 0, PXFORMAT_A8, Size16(2, 2)));
    EXPECT_EQ(texture.getInternalFormat(), GLenum{GL_ALPHA});
    GLint swizzle[4] = {};
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, swizzle);
    EXPECT_EQ(std::vector<GLint>(swizzle, swizzle + 4), (std::vector<GLint>{0, 0, 0, GL_RED}));
}

TEST_F(Texture2DTest, PictureFilesUploadStraightAtOddWidths) {
    const TempDir dir;
    const Bytes rgb = pattern(std::size_t{3} * 3 * 2);
    // Two rows of 3 blue-green-red pixels, each padded to 12 bytes.
    Bytes bmp;
    for (std::size_t y = 0; y < 2; ++y) {
        for (std::size_t i = 0; i < 9; ++i)
            bmp.push_back(rgb[y * 9 + i / 3 * 3 + 2 - i % 3]);
        bmp.insert(bmp.end(), 3, 0xEE);
    }
    for (const std::string& path :
         {dir.write("a.png", pngFile({3, 2, 8, 2, rgb})), dir.write("a.bmp", bmpFile({3, 2, bmp, 24}))}) {
        Texture2D texture;
        ASSERT_TRUE(texture.init(path));
        EXPECT_TRUE(texture.getPxFormat() == PXFORMAT_RGB888 && texture.getSize() == Size16(3, 2));
        EXPECT_EQ(readBack(texture, PXFORMAT_RGB888, 18), rgb) << path;
    }
}

}  // namespace

}  // namespace zv::test
