#include "effects/ColorFilter.h"

#include "gl/Program.h"
#include "support/GLCallRecorder.h"
#include "support/MediaTest.h"
#include "support/TempDir.h"

namespace zv::test {

class ColorFilterTest : public MediaTest {
protected:
    std::string save(const std::string& name, int width, int height) {
        EXPECT_TRUE(Picture::noise(width, height).save(folder.file(name)));
        return folder.file(name);
    }
    template <class Source>
    static ColorFilter* make(const Source& imageOrType) {
        return ColorFilter::create(kSize, nullptr, imageOrType);
    }

    const TempDir folder;
};

TEST_F(ColorFilterTest, TheImageOrTheTypeChoosesTheLayoutOnce) {
    GLCallRecorder recorder;
    const auto layout = [&] {
        const std::string text = recorder.callsOf("glShaderSource").back().text;
        recorder.clear();
        return text.find("SIDE = 64.0;") != text.npos ? 512 : text.find("SIDE = 16.0;") != text.npos ? 64 : 0;
    };
    for (const int type : {0, 1, 2, -1}) {
        EXPECT_NE(make(static_cast<ColorFilter::FilterType>(type)), nullptr);
        EXPECT_EQ(layout(), type == 1 ? 512 : 64) << type;
    }
    for (const int width : {511, 64, 512}) {
        ColorFilter* filter = make(save("table.png", width, 512));
        EXPECT_EQ(layout(), width == 512 ? 512 : 64) << width;
        EXPECT_EQ(filter->getPxFormat(), PXFORMAT_RGB888);
        filter->setFilterImage(save("other.png", 512 + 64 - width, 64));
        EXPECT_EQ(filter->getTexture(1)->getSize().x, 512 + 64 - width);
        EXPECT_EQ(recorder.count("glShaderSource"), 0U) << "the program is not chosen again";
    }
}

TEST_F(ColorFilterTest, TakesOnlyImagesThatLoadAndKeepsOne) {
    ColorFilter* filter = make(save("table.png", 64, 64));
    filter->retain();
    Texture2D* first = filter->getTexture(1);
    first->retain();
    for (const std::string& path : {folder.file("none.png"), folder.write("broken.png", "no picture"),
                                    std::string("x"), std::string()}) {
        EXPECT_EQ(make(path), nullptr) << path;
        filter->setFilterImage(path);
        EXPECT_EQ(filter->getTexture(1), first) << path;
    }
    EXPECT_FALSE(first->hasMipmaps());
    filter->setFilterImage(folder.file("table.png"));
    EXPECT_NE(filter->getTexture(1), first);
    drainPool();
    EXPECT_EQ(first->getRefCount(), 1U);
    EXPECT_EQ(filter->getTexture(1)->getRefCount(), 1U);
    first->release();
    filter->release();
}

TEST_F(ColorFilterTest, TheIntensityWaitsForTheDrawAndTheDirectionIsSentAtOnce) {
    GLCallRecorder recorder;
    ColorFilter* filter = make(save("table.png", 512, 512));
    EXPECT_EQ(filter->getIntensity(), 0.5F);
    using Values = std::vector<float>;
    filter->onDrawSelf(Mat4());
    EXPECT_EQ(recorder.takeValuesOf("glUniform1f"), Values{0.5F});
    filter->setIntensity(-2.0F);
    filter->setIntensity(3.0F);
    EXPECT_EQ(filter->getIntensity(), 3.0F);
    EXPECT_EQ(recorder.takeValuesOf("glUniform1f"), Values{});
    filter->onDrawSelf(Mat4());
    EXPECT_EQ(recorder.takeValuesOf("glUniform1f"), Values{3.0F});

    glUseProgram(0);
    filter->setImageDirection(true);
    filter->setImageDirection(true);
    EXPECT_EQ(recorder.callsOf("glUseProgram").back().integer(0), filter->getProgram()->getName());
    EXPECT_EQ(recorder.takeValuesOf("glUniform1i"), Values{1.0F});
    filter->setImageDirection(false);
    EXPECT_EQ(recorder.takeValuesOf("glUniform1i"), Values{0.0F});
}

}  // namespace zv::test
