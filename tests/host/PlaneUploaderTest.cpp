// Planes of samples in textures.
#include "host/PlaneUploader.h"

#include <GL/glew.h>

#include "gl/ConfigGL.h"
#include "support/GLCallRecorder.h"
#include "support/GLTest.h"

namespace zv::test {

class PlaneUploaderTest : public GLTest {};

TEST_F(PlaneUploaderTest, EveryFrameArrivesWithItsEdgesRepeated) {
    using host::PlaneUploader;
    PlaneUploader uploader;
    ASSERT_TRUE(uploader.init({{6, 4, 1, false}, {3, 2, 2, true}}));
    const bool modern = ConfigGL::getInstance()->getVersionGL() >= 300;
    for (int frame = 0; frame < 3; ++frame) {
        // Luma 5 x 3 in rows of 7 bytes, the last one stored first; pairs 3 x 1.
        std::vector<unsigned char> luma(21);
        std::vector<unsigned char> pairs(6);
        for (std::size_t i = 0; i < luma.size(); ++i) {
            luma[i] = static_cast<unsigned char>(60 * frame + static_cast<int>(i));
            pairs[i % 6] = static_cast<unsigned char>(250 - 40 * frame - static_cast<int>(i % 6));
        }
        const PlaneUploader::Samples samples[] = {{luma.data() + 14, -7, 5, 3}, {pairs.data(), 6, 3, 1}};
        GLCallRecorder calls;
        ASSERT_TRUE(uploader.upload(samples));
        EXPECT_EQ(calls.countObjectCalls(), 0u);
        unsigned char read[24] = {};
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glBindTexture(GL_TEXTURE_2D, uploader.name(0));
        glGetTexImage(GL_TEXTURE_2D, 0, modern ? GL_RED : GL_LUMINANCE, GL_UNSIGNED_BYTE, read);
        for (int i = 0; i < 24; ++i) {
            const int x = std::min(i % 6, 4);
            const int y = std::min(i / 6, 2);
            EXPECT_EQ(read[i], luma[static_cast<std::size_t>(14 - 7 * y + x)]) << frame << " " << i;
        }
        glBindTexture(GL_TEXTURE_2D, uploader.name(1));
        glGetTexImage(GL_TEXTURE_2D, 0, modern ? GL_RG : GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, read);
        for (std::size_t i = 0; i < 12; ++i) {
            EXPECT_EQ(read[i], pairs[i % 6]) << frame << " " << i;
        }
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
    }
}

}  // namespace zv::test
