// What a frame needs may go while it is drawn, or never come.
#include <filesystem>
#include <fstream>
#include <functional>

#include "core/FileUtil.h"
#include "effects/BeautyTest.h"
#include "effects/ColorFilter.h"
#include "effects/FaceBuffingNode.h"
#include "effects/HsvNode.h"
#include "effects/SkinWhitingNode.h"
#include "effects/Yuv420RenderTexture.h"
#include "effects/Yuv444RenderTexture.h"
#include "gl/ConfigGL.h"
#include "gl/Program.h"
#include "gl/RenderTarget.h"
#include "gltf/GtSticker.h"
#include "scene/MediaPipelineTest.h"
#include "scene/RenderTextureTools.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

/// Deletes what the host had bound, in the middle of a frame.
struct Thief : Node {
    unsigned int texture = 0;
    Program* program = nullptr;
    void onDrawSelf(const Mat4&) override {
        glDeleteTextures(1, &texture);
        program->release();
    }
};

Program* plainProgram() {
    auto* program = new Program;
    EXPECT_TRUE(program->init("attribute vec4 a_position; void main() { gl_Position = a_position; }",
                              "void main() { gl_FragColor = vec4(1.0); }"));
    return program;
}

using LostThings = MediaPipelineTest;

TEST_F(LostThings, WhatTheHostHadBoundMayDieDuringTheFrame) {
    media->init(makeSprite(picture), kSize, nullptr, false);
    frame();
    media->setKeepHostState(true);
    auto* thief = autoreleased(new Thief);
    glGenTextures(1, &thief->texture);
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, thief->texture);
    thief->program = plainProgram();
    glUseProgram(thief->program->getName());
    media->addSticker(thief);
    frame();
    EXPECT_EQ(glInteger(GL_CURRENT_PROGRAM), 0);
    EXPECT_EQ(glInteger(GL_TEXTURE_BINDING_2D), 0) << "unit 1";
    glActiveTexture(GL_TEXTURE0);
    EXPECT_EQ(output(), picture);
}

TEST_F(LostThings, AShaderThatIsCutLinksOrIsToldAndNothingElseBreaks) {
    const std::string folder = ZV_TEST_RES_DIR "/zv_res/shaders/";
    const std::string vertex = readFile(folder + "ZvShaderTexturePosition.vert"),
                      fragment = readFile(folder + "ZvShaderTexturePosition.frag");
    int refused = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string text = readFile(entry.path().generic_string());
        const bool isVertex = entry.path().extension() == ".vert";
        for (std::size_t at = 0; at < text.size(); at += 97) {
            const LogCapture logged;
            const std::string cut = text.substr(0, at);
            Program* program = Program::create(isVertex ? cut.c_str() : vertex.c_str(),
                                               isVertex ? fragment.c_str() : cut.c_str());
            ASSERT_NE(program, nullptr);
            EXPECT_EQ(program->getName() == 0, logged.text().find("does not link") != std::string::npos);
            refused += program->getName() == 0 ? 1 : 0;
            program->use();
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << entry.path() << " cut at " << at;
        }
        drainPool();
    }
    EXPECT_GT(refused, 300);
}

/// Lowers what GL takes while it is alive.
class SmallTextures {
public:
    explicit SmallTextures(int most) { ConfigGL::getInstance()->setMaxTextureSize(most); }
    ~SmallTextures() { ConfigGL::getInstance()->setMaxTextureSize(mBefore); }

private:
    int mBefore = ConfigGL::getInstance()->getMaxTextureSize();
};

class LostBeauty : public BeautyTest {
protected:
    const Picture picture = Picture::noise(kWidth, kHeight, 3, false);

    /// Every kind of stage that a chain has, at that size. @return the log
    std::string addStages(const Size16& size, const std::string& table) {
        const LogCapture logged;
        chain->setSkinBuffing(SkinBuffingNode::create(size, nullptr, PXFORMAT_RGB888));
        chain->setFaceBuffingNode(FaceBuffingNode::create(size, nullptr, PXFORMAT_RGBA8888));
        chain->setHsv(HsvNode::create(size, nullptr, PXFORMAT_RGB888));
        chain->setSkinWhiting(SkinWhitingNode::create(size, nullptr, PXFORMAT_RGB888));
        chain->setFilter(ColorFilter::create(size, nullptr, table));
        return logged.text();
    }
};

TEST_F(LostBeauty, TheResourceRootMayBeReplacedBetweenFrames) {
    namespace fs = std::filesystem;
    const TempDir dir;
    const std::string tree = dir.file("zv_res"), table = tree + "/lookups/film-64.png";
    const auto restore = [&] {
        fs::remove_all(tree);
        for (const char* part : {"/shaders", "/lookups", "/stickers/glasses"}) {
            fs::create_directories(tree + part);
            fs::copy(std::string(ZV_TEST_RES_DIR "/zv_res") + part, tree + part, fs::copy_options::recursive);
        }
    };
    const auto forEachFile = [&](auto&& change) {
        std::vector<fs::path> files;
        for (const auto& entry : fs::recursive_directory_iterator(tree)) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path());
            }
        }
        for (const fs::path& file : files) {
            change(file);
        }
    };
    const struct {
        const char* name;
        std::function<void()> happen;
    } kLosses[] = {
        {"the folder is gone", [&] { fs::remove_all(tree); }},
        {"a file in the folder's place", [&] { fs::remove_all(tree), dir.write("zv_res", "x"); }},
        {"no file can be read",
         [&] { forEachFile([](auto& f) { fs::remove(f), fs::create_directory(f); }); }},
        {"every file is empty", [&] { forEachFile([](auto& f) { fs::resize_file(f, 0); }); }},
        {"every file is half",
         [&] { forEachFile([](auto& f) { fs::resize_file(f, fs::file_size(f) / 2); }); }},
        {"every file is another",
         [&] { forEachFile([](auto& f) { std::ofstream(f) << std::string(3000, '{'); }); }},
    };
    FileUtil::getInstance()->setZvRoot(dir.path());
    restore();
    start(makeSprite(picture), sizeOf(picture));
    ASSERT_EQ(addStages(sizeOf(picture), table), "");
    frame();
    const Picture expected = output();
    for (const auto& loss : kLosses) {
        SCOPED_TRACE(loss.name);
        loss.happen();
        frame();
        expectSame(output(), expected, "what is loaded stays");
        {
            const LogCapture logged;
            EXPECT_EQ(gltf::GtSticker::create(tree + "/stickers/glasses"), nullptr);
            EXPECT_NE(logged.text().find("no sticker: "), std::string::npos);
            chain->getFilter()->setFilterImage(table);
            frame();
            expectSame(output(), expected, "a table that is not there changes nothing");
        }
        // New stages are made, say what they lack, and draw nothing; a frame has nothing to add.
        const std::string told = addStages(sizeOf(picture), table);
        for (const char* file : {"ZvBeautyBlendImageFilter.frag", "ZvShaderHSV.frag", "kel_white.png"}) {
            EXPECT_NE(told.find(file), std::string::npos) << told;
        }
        {
            const LogCapture logged;
            chain->getHsv()->setHue(0.5F);
            frame();
            EXPECT_EQ(logged.text(), "");
        }
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "making programs would swallow it";
        restore();
        EXPECT_EQ(addStages(sizeOf(picture), table), "");
        frame();
        expectSame(output(), expected, "everything is there again");
    }
    FileUtil::getInstance()->setZvRoot(ZV_TEST_RES_DIR);
}

TEST_F(LostBeauty, ATextureThatGlDoesNotTakeIsRefusedWithOneLine) {
    const Size16 size = sizeOf(picture), wide{1200, kHeight};
    const std::string table = ZV_TEST_RES_DIR "/zv_res/lookups/film-64.png";
    start(makeSprite(picture), size);
    EXPECT_EQ(addStages(size, table), "");
    media->resetSize({20, 10});
    media->resetSize(size);
    frame();
    const Picture expected = output();
    {
        const SmallTextures limit(520);
        const LogCapture logged;
        media->resetSize(wide);
        for (int i = 0; i < 3; ++i) {
            frame();
            EXPECT_EQ(media->getLastRenderTexture()->getOutData().size(), 0U);
        }
        const std::string text = logged.text();
        EXPECT_NE(text.find("Zorvik: a texture of 1200 x 12 is refused: GL takes up to 520 a side\n"),
                  std::string::npos);
        EXPECT_NE(text.find("of 600 x 6 is refused"), std::string::npos) << "the stages of half the size";
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
        EXPECT_EQ(media->getLastRenderTexture()->getRenderTarget()->getSize(), size) << "stays as it was";
        Texture2D* texture = input->getTexture(0);
        const unsigned int name = texture->getName();
        EXPECT_FALSE(texture->init(nullptr, 0, PXFORMAT_R8, {1, 521}));
        EXPECT_EQ(texture->getName(), name);
        EXPECT_FALSE(texture->updateWithData(std::vector<unsigned char>(4 * 521).data(), 4 * 521,
                                             PXFORMAT_RGBA8888, {1, 521}));
        // The packed picture of an I420 output is half as high again.
        auto* tall = Yuv420RenderTexture::create({8, 400}, nullptr);
        media->init(makeSprite(picture), {8, 400}, tall, false);
        for (int i = 0; i < 3; ++i) {
            frame();
            UniqueDataPtr<unsigned char> bytes(8 * 600);
            std::fill(bytes.get(0), bytes.get(0) + bytes.size(), std::uint8_t{1});
            tall->getOutData(bytes);
            EXPECT_EQ(std::count(bytes.get(0), bytes.get(0) + bytes.size(), 0), 8 * 600);
            EXPECT_EQ(tall->getOutData().size(), 0U);
        }
        // Made at that size from the start, everything is there and nothing is drawn.
        for (int kind = 2; kind >= 0; --kind) {
            RenderTexture* out = RenderTexture::create(wide, nullptr, PXFORMAT_RGBA8888);
            if (kind > 0) {
                out = kind == 1 ? static_cast<RenderTexture*>(Yuv420RenderTexture::create(wide, nullptr))
                                : Yuv444RenderTexture::create(wide, nullptr);
            }
            media->init(makeSprite(picture), wide, out, false);
            frame();
            UniqueDataPtr<unsigned char> bytes(1200 * kHeight * 4);
            bytes[0] = 1;
            out->getOutData(bytes);
            EXPECT_EQ(bytes[0], 0);
        }
    }
    {
        const SmallTextures limit(520);
        addStages(wide, table);
        frame();
    }
    media->resetSize(size);
    frame();
    expectSame(output(), expected, "the next size that fits");
}

}  // namespace

}  // namespace zv::test
