#include "StickerTest.h"
#include "support/AllocationCounter.h"

namespace zv::test {

class GtStickerTest : public StickerTest {
protected:
    std::size_t subscriptions() { return media->getAlgEngine()->getKelNN()->getFuncs().size(); }
};

const Picture kDot(1, 1, {255, 0, 0, 255});

TEST_F(GtStickerTest, ReadsWhatASheetSaysAndRefusesOneThatLacksIt) {
    struct Row {
        const char* text;
        bool loads, face;
    };
    StickerFiles files;
    files.addMesh(files.rectangle(0, -1, 1, 0));
    std::string folder = files.write("", kDot);
    std::string path;
    for (const Row& row :
         {Row{R"({"res": {"type": "foreground", "g": "m.gltf"}})", true, false},
          Row{R"({"res": {"type": "frame", "g": "m.gltf"}})", true, false},
          Row{R"({"res": {"type": "frames", "g": "m.gltf"}})", true, true},
          Row{R"({"name": "x", "id": 7, "res": {"type": "", "g": "m.gltf"}})", true, true},
          Row{R"({"res": {"type": 3, "g": "m.gltf"}})", false, true},
          Row{R"({"res": {"type": "face"}})", false, true}, Row{R"({"res": []})", false, true},
          Row{R"({"res": {"type": "face", "g": "none.gltf"}})", false, true}, Row{R"([1)", false, true},
          Row{"", false, true}}) {
        files.dir.write("sticker.json", row.text);
        GtSticker* sticker = GtSticker::create(folder);
        ASSERT_EQ(sticker != nullptr, row.loads) << row.text;
        EXPECT_TRUE(!sticker || sticker->isFaceSticker() == row.face) << row.text;
        drainPool();
        EXPECT_EQ(subscriptions(), 0u) << "a sticker that is gone, or was never made, stays subscribed";
    }
    EXPECT_FALSE(GtSticker().parserJson(folder, path));
    EXPECT_TRUE(folder.back() == '/' && path.empty());

    // Without a sheet: a face sticker that the host feeds, which the face business does not know.
    GtSticker* fed = GtSticker::create(folder, "m.gltf");
    ASSERT_TRUE(fed && fed->isFaceSticker());
    EXPECT_EQ(subscriptions(), 0u);
    UniqueDataPtr<UniqueDataPtr<Mat4>> faces(1);
    faces[0].resize(1);
    faces[0][0] = place(2, 4, 4);
    fed->updateFaceDetectMats(faces);
    EXPECT_EQ(faces.size(), 0u) << "the caller gets the older list";
    media->addSticker(fed);
    frame();
    EXPECT_EQ(output(), expected({{4, 8, 2, 2, {255, 0, 0, 255}}}));
}

TEST_F(GtStickerTest, ComesAndGoesWithTheFaceBusinessInAnyOrder) {
    StickerFiles files;
    files.addMesh(files.rectangle(0, -1, 1, 0));
    const std::string folder = files.write("face", kDot);
    auto survivor = std::make_unique<GtSticker>();
    ASSERT_TRUE(survivor->init(folder));
    ASSERT_TRUE(survivor->init(folder)) << "loading anew";
    EXPECT_EQ(subscriptions(), 1u);
    show(folder);
    EXPECT_EQ(subscriptions(), 2u);
    detect({{place(1, 0, 0)}});
    frame();
    media->removeAllSticker();
    EXPECT_EQ(subscriptions(), 1u);

    // A subscription in a business that lives on is out of reach: it must not call a sticker that is gone.
    const auto algorithms = std::make_unique<kel_algorithm::AlgEngine>();
    algorithms->registerAlgFunc(media->getAlgEngine()->getKelNN()->getFuncs().front());
    algorithms->getKelNN()->setDetector(detector);
    engine.reset();
    media = nullptr;
    EXPECT_FALSE(GtSticker().init(folder)) << "without an engine";
    survivor.reset();
    algorithms->run();
    glBindFramebuffer(GL_FRAMEBUFFER, screen);
}

TEST_F(GtStickerTest, PrimitivesThatShareAKeyShareTheFirstOnesArrayAndStayInside) {
    StickerFiles files;
    std::string hundred = files.rectangle(0, -1, 1, 0);
    const std::string small = hundred;
    for (int i = 1; i < 100; ++i)
        hundred += "," + small;
    // The 101st primitive of the first mesh and the first one of the second have one key, 100. That one takes
    // twice the indices, which the array of the other does not hold.
    files.addMesh(hundred + "," + files.rectangle(4, -1, 5, 0));
    const std::size_t first = files.add(StickerFiles::corners(8, -1, 9, 0), kFloat, "VEC3", 4);
    files.add(std::vector<std::uint16_t>{0, 1, 2, 2, 1, 3, 0, 1, 2, 2, 1, 3}, kUShort, "SCALAR", 12);
    files.addMesh(R"({"mode": 4, "attributes": {"POSITION": )" + std::to_string(first) + R"(}, "indices": )" +
                  std::to_string(first + 1) + "}");
    GtSticker* sticker = show(files.write("frame", kDot));
    frame();
    GLCallRecorder recorder;
    frame();
    const Pixel red{255, 0, 0, 255};
    const bool arrays = sticker->getVao(100) != 0;
    EXPECT_EQ(output().at(4, 0), red);
    EXPECT_EQ(output().at(8, 0), arrays ? kGrey : red);
    EXPECT_EQ(recorder.countDraws(), arrays ? 102u : 103u)
        << "the input, the 101, and without arrays the other";
    EXPECT_EQ(sticker->getVao(201), 0u);
}

TEST_F(GtStickerTest, TenStickersDrawOnceEachAndAllocateNothing) {
    const std::string shipped = std::string(ZV_TEST_RES_DIR) + "/zv_res/stickers/";
    for (const char* name : {"confetti", "frame-512x512", "glasses", "hat", "cat", "confetti",
                             "frame-512x512", "glasses", "hat", "cat"})
        show(shipped + name);
    std::vector<Mat4> bones(7, place(2, 8, 6));
    detect({bones});
    for (int i = 0; i < 10; ++i)
        frame();
    GLCallRecorder recorder;
    const AllocationCounter counter;
    for (int i = 0; i < 100; ++i) {
        detector->told.mats[0][0].m[12] = static_cast<float>(i);  // faces move, so matrices go out anew
        frame();
    }
    EXPECT_EQ(counter.allocations(), 0u);
    EXPECT_EQ(recorder.countObjectCalls(), 0u) << recorder.summary();
    EXPECT_EQ(recorder.countDraws(), 100u * (10 + 1)) << "each sticker and the input";
    RecordProperty("gl_calls_a_frame", static_cast<int>(recorder.calls().size() / 100));
}

TEST_F(GtStickerTest, ShippedArtworkIsWholeAndSitsWhereItBelongs) {
    const Picture portrait = Picture::load(std::string(ZV_TEST_DATA_DIR) + "/portrait.png");
    start(portrait);
    std::vector<Mat4> bones;
    for (const auto& [x, y] :
         {std::pair(225, 410), {203, 411}, {246, 409}, {223, 385}, {224, 366}, {227, 334}, {226, 443}})
        bones.push_back(place(65.5F, static_cast<float>(x), static_cast<float>(y)));
    detect({bones});
    // Points from the top left that a sticker covers, and that it leaves alone.
    struct Row {
        const char* name;
        std::vector<std::pair<int, int>> covers, leaves;
    };
    const std::vector<Row> rows = {
        {"glasses", {{203, 101}, {246, 103}, {225, 92}}, {{224, 146}, {225, 60}, {150, 101}, {300, 101}}},
        {"hat", {{225, 30}, {180, 58}, {270, 58}}, {{203, 101}, {246, 103}, {224, 146}}},
        {"cat", {{223, 127}, {165, 30}, {283, 30}}, {{203, 101}, {246, 103}, {225, 160}}},
        {"frame-512x512", {{2, 2}, {509, 2}, {2, 509}, {509, 509}, {256, 17}}, {{256, 256}, {225, 100}}},
        {"confetti", {}, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const LogCapture log;
        media->removeAllSticker();
        show(std::string(ZV_TEST_RES_DIR) + "/zv_res/stickers/" + row.name);
        frame();
        const Picture picture = output();
        const auto touched = [&](const std::pair<int, int>& at) {
            return picture.at(at.first, at.second) != portrait.at(at.first, at.second);
        };
        for (const auto& at : row.covers)
            EXPECT_TRUE(touched(at)) << at.first << ", " << at.second;
        for (const auto& at : row.leaves)
            EXPECT_FALSE(touched(at)) << at.first << ", " << at.second;
        EXPECT_NE(picture, portrait);
        EXPECT_EQ(log.text(), "") << "something of it is not drawn";
    }
    const Picture before = output();
    frame(0.1F);
    EXPECT_NE(output(), before) << "confetti falls";
}

}  // namespace zv::test
