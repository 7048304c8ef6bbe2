#include <GL/glew.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "gl/ConfigGL.h"
#include "gl/Image.h"
#include "gl/PictureFiles.h"
#include "gl/Texture2D.h"
#include "support/GLTest.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

/// `count` bytes, no two neighbours alike.
Bytes pattern(std::size_t count, unsigned int seed = 1) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<unsigned char>(std::size_t{seed} * 31 + i * 37 + i / 7);
    }
    return bytes;
}

/// A block that ends where its bytes end, so that a sanitizer sees a read past them.
std::unique_ptr<unsigned char[]> exactBlock(const Bytes& bytes) {
    auto block = std::make_unique<unsigned char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    return block;
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
    glGetTexImage(GL_TEXTURE_2D, 0, alphaInRed ? static_cast<GLenum>(GL_RED) : info.format, info.type,
                  out.data());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    return out;
}

Size16 levelSize(int level) {
    GLint width = 0;
    GLint height = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &height);
    return Size16(static_cast<unsigned short>(width), static_cast<unsigned short>(height));
}

int unpackAlignment() {
    GLint alignment = 0;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    return alignment;
}

struct UploadCase {
    const char* name;
    PxFormat format;
    unsigned short width;
    bool padded;
};

void PrintTo(const UploadCase& upload, std::ostream* out) {
    *out << upload.name;
}

class TextureUploadTest : public GLTest, public ::testing::WithParamInterface<UploadCase> {};

TEST_P(TextureUploadTest, EveryByteArrivesAndIsReplacedAtAnyWidth) {
    const auto& [name, format, width, padded] = GetParam();
    const unsigned short height = 5;
    const auto row = static_cast<std::size_t>(width * Texture::getPxFormatInfo(format)->bpp / 8);
    const std::size_t stride = padded ? (row + 3) / 4 * 4 : row;
    Texture2D texture;
    for (unsigned int round = 0; round < 2; ++round) {
        const Bytes bytes = pattern(stride * height, round + 1);
        Bytes tight;
        for (std::size_t y = 0; y < height; ++y) {
            tight.insert(tight.end(), bytes.begin() + static_cast<std::ptrdiff_t>(y * stride),
                         bytes.begin() + static_cast<std::ptrdiff_t>(y * stride + row));
        }
        const auto block = exactBlock(bytes);
        // A host's alignment must not matter; afterwards GL's default holds.
        glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
        const unsigned int before = texture.getName();
        ASSERT_TRUE(texture.updateWithData(block.get(), bytes.size(), format, Size16(width, height)));
        EXPECT_EQ(unpackAlignment(), 4);
        EXPECT_EQ(texture.getName() == before, round == 1) << "the second time the pixels alone are replaced";
        EXPECT_EQ(readBack(texture, format, tight.size()), tight) << "round " << round;
    }
    EXPECT_EQ(texture.getPxFormat(), format);
    EXPECT_EQ(texture.getInternalFormat(), Texture::getPxFormatInfo(format)->internalFormat);
    EXPECT_EQ(texture.getSize(), Size16(width, height));
}

INSTANTIATE_TEST_SUITE_P(
    Formats, TextureUploadTest,
    ::testing::Values(
        UploadCase{"Rgb1", PXFORMAT_RGB888, 1, false}, UploadCase{"Rgb2Padded", PXFORMAT_RGB888, 2, true},
        UploadCase{"Rgb3", PXFORMAT_RGB888, 3, false}, UploadCase{"Rgb3Padded", PXFORMAT_RGB888, 3, true},
        UploadCase{"Rgb4", PXFORMAT_RGB888, 4, false}, UploadCase{"Rgb33", PXFORMAT_RGB888, 33, false},
        UploadCase{"R1", PXFORMAT_R8, 1, false}, UploadCase{"R7", PXFORMAT_R8, 7, false},
        UploadCase{"R5Padded", PXFORMAT_R8, 5, true}, UploadCase{"Rg3", PXFORMAT_RG88, 3, false},
        UploadCase{"Rg5Padded", PXFORMAT_RG88, 5, true}, UploadCase{"Alpha3", PXFORMAT_A8, 3, false},
        UploadCase{"Alpha6Padded", PXFORMAT_A8, 6, true}, UploadCase{"Rgba1", PXFORMAT_RGBA8888, 1, false},
        UploadCase{"Rgba7", PXFORMAT_RGBA8888, 7, false}, UploadCase{"Bgra3", PXFORMAT_BGRA8888, 3, false},
        UploadCase{"Rgb565Width3", PXFORMAT_RGB565, 3, false},
        UploadCase{"Rgba4444Width3", PXFORMAT_RGBA4444, 3, false},
        UploadCase{"Rgb5A1Width3", PXFORMAT_RGB5A1, 3, false}),
    [](const auto& row) { return row.param.name; });

using Texture2DTest = GLTest;

TEST_F(Texture2DTest, BytesBeyondThePictureAreIgnored) {
    const Bytes bytes = pattern(3 * 3 * 2 + 1);
    Texture2D texture;
    ASSERT_TRUE(texture.init(bytes.data(), bytes.size(), PXFORMAT_RGB888, Size16(3, 2)));
    EXPECT_EQ(readBack(texture, PXFORMAT_RGB888, 18), Bytes(bytes.begin(), bytes.begin() + 18));
}

TEST_F(Texture2DTest, RefusedUploadsLeaveTheTextureAsItWas) {
    const Bytes bytes = pattern(12);
    const auto block = exactBlock(bytes);
    Texture2D texture;
    ASSERT_TRUE(texture.init(block.get(), 12, PXFORMAT_RGB888, Size16(2, 2)));
    const unsigned int name = texture.getName();
    UniqueDataPtr<unsigned char> shortData(11);
    const _MipmapInfo shortLevels[] = {{block.get(), 12}, {block.get(), 2}};

    EXPECT_FALSE(texture.init(block.get(), 11, PXFORMAT_RGB888, Size16(2, 2)));
    EXPECT_FALSE(texture.init(shortData, PXFORMAT_RGB888, Size16(2, 2)));
    EXPECT_FALSE(texture.init(block.get(), 12, PXFORMAT_RGBA8888, Size16(65535, 65535)));
    EXPECT_FALSE(texture.init(block.get(), 12, PXFORMAT_GRAY8, Size16(1, 1)));
    EXPECT_FALSE(texture.init(block.get(), 12, PXFORMAT_NONE, Size16(1, 1)));
    EXPECT_FALSE(texture.initWithMipmaps(shortLevels, 2, PXFORMAT_RGB888, Size16(2, 2)));
    EXPECT_FALSE(texture.initWithMipmaps(nullptr, 1, PXFORMAT_RGB888, Size16(2, 2)));
    EXPECT_FALSE(texture.init(static_cast<Image*>(nullptr)));
    Image empty;
    EXPECT_FALSE(texture.init(&empty));
    EXPECT_FALSE(texture.updateWithData(block.get(), 11));
    EXPECT_FALSE(texture.updateWithData(shortData, PXFORMAT_RGB888, Size16(2, 2)));
    EXPECT_FALSE(texture.updateWithData(nullptr, 12));
    EXPECT_FALSE(texture.updateWithData(block.get(), 12, PXFORMAT_S3TC_DXT1, Size16(2, 2)));

    EXPECT_EQ(texture.getName(), name);
    EXPECT_EQ(texture.getPxFormat(), PXFORMAT_RGB888);
    EXPECT_EQ(texture.getSize(), Size16(2, 2));
    EXPECT_EQ(readBack(texture, PXFORMAT_RGB888, 12), bytes);
}

TEST_F(Texture2DTest, ReplacingPixelsOfAFormatWithoutARowThrows) {
    const Bytes bytes = pattern(16);
    Texture2D texture;
    for (int round = 0; round < 2; ++round) {
        try {
            texture.updateWithData(bytes.data(), bytes.size(), PXFORMAT_GRAY8, Size16(2, 2));
            ADD_FAILURE() << "nothing thrown in round " << round;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), "invalid map<K, T> key");
        }
        EXPECT_EQ(texture.getPxFormat(), round == 0 ? PXFORMAT_NONE : PXFORMAT_RGBA8888);
        texture.init(bytes.data(), bytes.size(), PXFORMAT_RGBA8888, Size16(2, 2));
    }
}

TEST_F(Texture2DTest, NullAllocatesAndANewUploadReplacesAnOwnedName) {
    Texture2D texture;
    ASSERT_TRUE(texture.init(nullptr, 0, PXFORMAT_RGBA8888, Size16(33, 9)));
    texture.active(0);
    EXPECT_EQ(levelSize(0), Size16(33, 9));
    GLint value = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &value);
    EXPECT_EQ(value, GL_LINEAR);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, &value);
    EXPECT_EQ(value, GL_CLAMP_TO_EDGE);

    const unsigned int former = texture.getName();
    ASSERT_TRUE(texture.init(nullptr, 0, PXFORMAT_RGBA8888, Size16(33, 9)));
    EXPECT_TRUE(texture.getName() == former || !glIsTexture(former)) << "GL may give the same name again";

    const unsigned int borrowed = texture.getName();
    Texture2D second;
    second.init(borrowed, Size16(33, 9), PXFORMAT_RGBA8888, false);
    ASSERT_TRUE(second.init(UniqueDataPtr<unsigned char>(), PXFORMAT_R8, Size16(2, 2)));
    EXPECT_TRUE(second.isOwner());
    EXPECT_NE(second.getName(), borrowed);
    EXPECT_TRUE(glIsTexture(borrowed)) << "a borrowed name is left alone";
    const unsigned int owned = second.getName();
    second.reset();
    EXPECT_FALSE(glIsTexture(owned));
}

TEST_F(Texture2DTest, MipLevelsHalveDownToOne) {
    const Bytes bytes = pattern(std::size_t{5} * 3 * 3);
    const _MipmapInfo levels[] = {{bytes.data(), 45}, {bytes.data(), 6}, {bytes.data(), 3}};
    Texture2D texture;
    ASSERT_TRUE(texture.initWithMipmaps(levels, 3, PXFORMAT_RGB888, Size16(5, 3)));
    EXPECT_TRUE(texture.hasMipmaps());
    EXPECT_EQ(texture.getSize(), Size16(5, 3));
    EXPECT_EQ(levelSize(0), Size16(5, 3));
    EXPECT_EQ(levelSize(1), Size16(2, 1));
    EXPECT_EQ(levelSize(2), Size16(1, 1));
    EXPECT_EQ(levelSize(3), Size16(0, 0));
    ASSERT_TRUE(texture.initWithMipmaps(levels, 1, PXFORMAT_RGB888, Size16(5, 3)));
    EXPECT_FALSE(texture.hasMipmaps());
    // Without a level there is a name, and no format is looked up.
    ASSERT_TRUE(texture.initWithMipmaps(nullptr, 0, PXFORMAT_GRAY8, Size16(4, 4)));
    EXPECT_TRUE(texture.isValid());
    EXPECT_EQ(levelSize(0), Size16(0, 0));
}

TEST_F(Texture2DTest, CompressedLevelsAreMeasuredInBlocks) {
    const Bytes bytes = pattern(64);
    Texture2D texture;
    // 5 x 3 pixels are 2 x 1 blocks.
    for (const PxFormat format : {PXFORMAT_S3TC_DXT1, PXFORMAT_ATC_RGB}) {
        EXPECT_FALSE(texture.init(bytes.data(), 15, format, Size16(5, 3))) << format;
    }
    for (const PxFormat format : {PXFORMAT_S3TC_DXT3, PXFORMAT_S3TC_DXT5, PXFORMAT_ATC_EXPLICIT_ALPHA,
                                  PXFORMAT_ATC_INTERPOLATED_ALPHA}) {
        EXPECT_FALSE(texture.init(bytes.data(), 31, format, Size16(5, 3))) << format;
    }
    EXPECT_FALSE(texture.isValid());
    if (!GLEW_EXT_texture_compression_s3tc)
        GTEST_SKIP() << "the driver has no S3TC";
    const auto block = exactBlock(Bytes(bytes.begin(), bytes.begin() + 32));
    const _MipmapInfo levels[] = {{block.get(), 32}, {block.get(), 16}};
    ASSERT_TRUE(texture.initWithMipmaps(levels, 2, PXFORMAT_S3TC_DXT5, Size16(5, 3)));
    Bytes kept(32);
    glGetCompressedTexImage(GL_TEXTURE_2D, 0, kept.data());
    EXPECT_EQ(kept, Bytes(bytes.begin(), bytes.begin() + 32));
    EXPECT_EQ(levelSize(1), Size16(2, 1));
    EXPECT_TRUE(texture.init(bytes.data(), 17, PXFORMAT_S3TC_DXT1, Size16(5, 3))) << "a byte too many";
    EXPECT_EQ(levelSize(0), Size16(5, 3));
    EXPECT_TRUE(texture.init(nullptr, 0, PXFORMAT_S3TC_DXT1, Size16(5, 3)));
    EXPECT_EQ(levelSize(0), Size16(5, 3));
}

TEST_F(Texture2DTest, AlphaIsSampledFromRedOnCoreContextsOnly) {
    const Bytes bytes = {1, 2, 3, 4};
    Texture2D texture;
    ASSERT_TRUE(texture.init(bytes.data(), 4, PXFORMAT_A8, Size16(2, 2)));
    EXPECT_EQ(texture.getInternalFormat(), static_cast<unsigned int>(GL_ALPHA));
    GLint stored = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_ALPHA_SIZE, &stored);
    EXPECT_EQ(stored, coreContext() ? 0 : 8);
    if (!coreContext())
        return;
    GLint swizzle[4] = {};
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, swizzle);
    EXPECT_EQ(swizzle[0], GL_ZERO);
    EXPECT_EQ(swizzle[1], GL_ZERO);
    EXPECT_EQ(swizzle[2], GL_ZERO);
    EXPECT_EQ(swizzle[3], GL_RED);
}

TEST_F(Texture2DTest, PictureFilesUploadStraightAtOddWidths) {
    const TempDir dir;
    const Bytes rgb = pattern(std::size_t{3} * 3 * 2);
    Texture2D texture;
    ASSERT_TRUE(texture.init(dir.write("a.png", pngFile({3, 2, 8, 2, rgb}))));
    EXPECT_EQ(texture.getPxFormat(), PXFORMAT_RGB888);
    EXPECT_EQ(texture.getSize(), Size16(3, 2));
    EXPECT_EQ(readBack(texture, PXFORMAT_RGB888, 18), rgb);

    // Two rows of 3 blue-green-red pixels, each padded to 12 bytes.
    Bytes bmp;
    for (std::size_t y = 0; y < 2; ++y) {
        for (std::size_t x = 0; x < 3; ++x) {
            for (std::size_t channel = 3; channel-- > 0;) {
                bmp.push_back(rgb[(y * 3 + x) * 3 + channel]);
            }
        }
        bmp.insert(bmp.end(), 3, 0xEE);
    }
    ASSERT_TRUE(texture.init(dir.write("a.bmp", bmpFile({3, 2, bmp, 24}))));
    EXPECT_EQ(readBack(texture, PXFORMAT_RGB888, 18), rgb);

    EXPECT_FALSE(texture.init(dir.write("grey.png", pngFile({1, 1, 8, 0, {1}}))));
    EXPECT_FALSE(texture.init(dir.file("missing.png")));
    EXPECT_FALSE(texture.init(std::string("abc")));
    EXPECT_EQ(texture.getSize(), Size16(3, 2)) << "a failed file leaves the texture as it was";
}

}  // namespace

}  // namespace zv::test
