#include "StickerTest.h"
#include "gl/AttribIndex.h"
#include "support/NamedRow.h"

namespace zv::test {

constexpr Pixel kRed{255, 0, 0, 255}, kGreen{0, 255, 0, 255}, kBlue{0, 0, 255, 255};

/// Red, green over blue and half transparent white.
Picture corners() {
    Picture picture(2, 2);
    picture.set(0, 0, kRed);
    picture.set(1, 0, kGreen);
    picture.set(0, 1, kBlue);
    picture.set(1, 1, {255, 255, 255, 128});
    return picture;
}

class GtStickerPicture : public StickerTest {};

TEST_F(GtStickerPicture, AScreenStickerLiesInPixelsFromTheTopLeft) {
    StickerFiles files;
    files.addMesh(files.rectangle(2, -7, 6, -3));
    GtSticker* sticker = show(files.write("frame", corners()));
    frame();
    // 178 = 255 * 128/255 + 100 * 127/255. Nearest filtering is the sampler's, less its mipmap part.
    const Pixel mixed{178, 178, 178, 255};
    const Picture opaque =
        expected({{2, 3, 2, 2, kRed}, {4, 3, 2, 2, kGreen}, {2, 5, 2, 2, kBlue}, {4, 5, 2, 2, mixed}});
    EXPECT_TRUE(expectNear(output(), opaque, 1, 0.1, "sticker-screen"));
    EXPECT_EQ(media->getAlgEngine()->getBiz(0), nullptr) << "a screen sticker asks for no faces";
    EXPECT_EQ(sticker->getVao(0) != 0, kind() == Kind::Core || kind() == Kind::Compatibility);

    sticker->setBlendFunc(BlendFunc::DISABLE);
    frame();
    EXPECT_EQ(output().at(5, 6), (Pixel{255, 255, 255, 255}));
    media->resetSize({32, 24});  // pixels stay pixels
    frame();
    EXPECT_EQ(output().at(2, 3), kRed);
    EXPECT_EQ(output().at(8, 3), kGrey);
    sticker->clearAllResources();
    frame();
    EXPECT_EQ(output().at(2, 3), kGrey);
    EXPECT_TRUE(sticker->loadModelResources());
    frame();
    EXPECT_EQ(output().at(2, 3), kRed);
}

TEST_F(GtStickerPicture, FacesMoveVerticesByTheirBones) {
    // 2 x 2 units, each mesh skinned in another way. Bones 0, 1 and 2 of a face lie 4 pixels apart.
    struct Row {
        std::string skin;
        int x;  // where its middle is expected, from bone 0 on
    };
    StickerFiles files;
    const std::vector<Row> rows = {
        {files.skin({1, 2, 0, 0}, {1, 0, 0, 0}), 4}, {files.skin({1, 2, 0, 0}, {0.5F, 0.5F, 0, 0}), 6},
        {files.skin({0, 0, 0, 2}, {0, 0, 0, 7}), 8}, {"", 0},
        {files.skin({2, 1, 1, 1}, {0, 0, 0, 0}), 8}, {files.skin({1, 0, 2, 0}, {60, 0, 60, 0}), 6},
    };
    for (const Row& row : rows) {
        StickerFiles one;
        one.bytes = files.bytes;
        one.views = files.views;
        one.accessors = files.accessors;
        one.addMesh(one.rectangle(-1, -1, 1, 1, row.skin));
        media->removeAllSticker();
        GtSticker* sticker = show(one.write("face", Picture(1, 1, kRed)));
        detect({});
        frame();
        EXPECT_EQ(output(), expected({})) << "no face, no sticker";
        // y counts from the bottom. The second face is half as large.
        detect({{place(1, 2, 3), place(1, 6, 3), place(1, 10, 3)},
                {place(2, 3, 8), place(2, 7, 8), place(2, 11, 8)},
                {}});
        frame();
        expectSame(output(), expected({{row.x + 1, 8, 2, 2, kRed}, {row.x + 1, 2, 4, 4, kRed}}),
                   "sticker-bones-" + std::to_string(&row - rows.data()));
        if (sticker->getVao(0) == 0) {
            GLint enabled = 1;  // an array left enabled would outlive the sticker's buffers
            glGetVertexAttribiv(AttribIndex::POSITION, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
            EXPECT_EQ(enabled, 0);
        }
    }
}

TEST_F(GtStickerPicture, BonesBeyondTheListAreCutAndThatIsSaidOnce) {
    StickerFiles files;
    files.addMesh(files.rectangle(-1, -1, 1, 1, files.skin({30, 0, 0, 0}, {1, 0, 0, 0})) + "," +
                  files.rectangle(-1, -1, 1, 1, files.skin({255, 0, 0, 0}, {1, 0, 0, 0})));
    show(files.write("", Picture(1, 1, kBlue)));
    std::vector<Mat4> bones(40, place(1, 12, 9));
    bones[30] = place(1, 4, 4);
    detect({bones});
    const LogCapture log;
    frame();
    frame();
    expectSame(output(), expected({{3, 7, 2, 2, kBlue}}), "sticker-many-bones");
    const std::string text = log.text();
    EXPECT_NE(text.find("40 matrices"), std::string::npos);
    EXPECT_EQ(text.find("matrices"), text.rfind("matrices"));
}

TEST_F(GtStickerPicture, PlaysIndexRangesAndHidesNodes) {
    StickerFiles files;
    // One mesh of three places side by side, of which an animation picks; another that it hides at times.
    const std::size_t first = files.accessors.size();
    std::vector<float> positions;
    std::vector<std::uint16_t> indices;
    for (std::uint16_t i = 0; i < 3; ++i) {
        const std::vector<float> four = StickerFiles::corners(4.0F * i, -4, 4.0F * i + 4, 0);
        positions.insert(positions.end(), four.begin(), four.end());
        for (const int corner : {0, 1, 2, 2, 1, 3})
            indices.push_back(static_cast<std::uint16_t>(4 * i + corner));
    }
    files.add(positions, kFloat, "VEC3", 12);
    files.add(indices, kUShort, "SCALAR", 6, R"(, "target": 34963)");
    files.addMesh(R"({"mode": 4, "attributes": {"POSITION": 0}, "indices": 1})");
    files.addMesh(files.rectangle(0, -8, 4, -4));
    const std::size_t keys = files.add(std::vector<float>{0, 1, 2, 3}, kFloat, "SCALAR", 4);
    files.add(std::vector<std::uint16_t>{0, 12, 24, 0}, kUShort, "SCALAR", 4);
    files.add(std::vector<std::uint16_t>{1, 1, 0, 0}, kUShort, "SCALAR", 4);
    const auto k = [](std::size_t number) { return std::to_string(number); };
    files.animations = R"([{"extensions": {"WERNOX_property_animation_201903": {
        "channels": [{"sampler": 0, "target": {"node": 0, "path": "/accessors/1/byteOffset"}},
                     {"sampler": 1, "target": {"node": 1, "path": "/nodes/1/visible"}}],
        "samplers": [{"input": )" +
                       k(keys) + R"(, "output": )" + k(keys + 1) + R"(},
                     {"input": )" +
                       k(keys) + R"(, "output": )" + k(keys + 2) + "}]}}}]";
    ASSERT_EQ(first, 0u);
    GtSticker* sticker = show(files.write("foreground", Picture(1, 1, kGreen)));
    // A step, the time it leads to, the place shown, whether the second node is.
    const struct {
        float step, time;
        int place;
        bool second;
    } rows[] = {{0, 0, 0, true},       {1.25F, 1.25F, 1, true}, {1, 2.25F, 2, false}, {1, 3.25F, 0, true},
                {-1, 2.25F, 2, false}, {-10, 0, 0, true},       {7.5F, 7.5F, 1, true}};
    for (const auto& row : rows) {
        frame(row.step);
        EXPECT_FLOAT_EQ(sticker->getTime(), row.time);
        std::vector<Box> boxes{{4 * row.place, 0, 4, 4, kGreen}};
        if (row.second)
            boxes.push_back({0, 4, 4, 4, kGreen});
        expectSame(output(), expected(boxes), "sticker-time-" + std::to_string(row.time));
    }
    // However often it is reached in a frame, time passes once.
    media->addSticker(sticker);
    frame(0.25F);
    EXPECT_FLOAT_EQ(sticker->getTime(), 7.75F);
}

/// What is replaced in the model of a red rectangle; the green one behind it stays.
struct Damage {
    const char* name;
    std::string StickerFiles::*text;
    std::vector<std::string> StickerFiles::*list;
    std::size_t entry;
    const char* from;
    const char* to;
};

class GtStickerDamagePicture : public StickerTest, public testing::WithParamInterface<Damage> {};

TEST_P(GtStickerDamagePicture, LeavesThatPrimitiveUndrawnAndTheOthersWhole) {
    const Damage& damage = GetParam();
    StickerFiles files;
    const std::string skin = files.skin({0, 0, 0, 0}, {1, 0, 0, 0});
    files.addMesh(files.rectangle(0, -4, 4, 0, skin));
    files.addMesh(files.rectangle(8, -4, 12, 0));
    files.meshes[1].insert(files.meshes[1].find("\"mode\""), "\"material\": 1, ");
    files.materials = R"([{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}},
                          {"pbrMetallicRoughness": {"baseColorTexture": {"index": 1}}}])";
    files.textures = R"([{"source": 0}, {"source": 1}])";
    files.images = R"([{"uri": "a.png"}, {"uri": "b.png"}])";
    std::string& text = damage.text ? files.*damage.text : (files.*damage.list)[damage.entry];
    const std::size_t at = text.find(damage.from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string(damage.from).size(), damage.to);
    Picture(1, 1, kGreen).save(files.dir.file("b.png"));
    const LogCapture log;
    show(files.write("frame", Picture(1, 1, kRed)));
    frame(0.5F);
    expectSame(output(), expected({{8, 0, 4, 4, kGreen}}), std::string("sticker-damage-") + damage.name);
    EXPECT_NE(log.text().find("sticker test"), std::string::npos) << "it is said why";
}

constexpr auto kAccessors = &StickerFiles::accessors;
constexpr auto kViews = &StickerFiles::views;
// Accessors and views: 0 joints, 1 weights, 2 positions, 3 coordinates, 4 indices.
INSTANTIATE_TEST_SUITE_P(
    Rows, GtStickerDamagePicture,
    testing::Values(
        Damage{"PictureMissing", &StickerFiles::images, nullptr, 0, "a.png", "none.bmp"},
        Damage{"TextureMissing", &StickerFiles::materials, nullptr, 0, "\"index\": 0", "\"index\": 2"},
        Damage{"MaterialMissing", nullptr, &StickerFiles::meshes, 0, "\"mode\"", "\"material\": 9, \"mode\""},
        Damage{"NoPosition", nullptr, &StickerFiles::meshes, 0, "\"POSITION\": 2, ", ""},
        Damage{"UnknownMode", nullptr, &StickerFiles::meshes, 0, "\"mode\": 4", "\"mode\": 7"},
        Damage{"IndicesMissing", nullptr, &StickerFiles::meshes, 0, "\"indices\": 4", "\"indices\": 99"},
        Damage{"FloatJoints", nullptr, kAccessors, 0, "5121", "5126"},
        Damage{"HugeOffset", nullptr, kAccessors, 3, "\"count\"", "\"byteOffset\": 4294967295, \"count\""},
        Damage{"FewPositions", nullptr, kViews, 2, "\"byteLength\": 48", "\"byteLength\": 47"},
        Damage{"WideStride", nullptr, kViews, 2, "}", ", \"byteStride\": 13}"},
        Damage{"HugeStride", nullptr, kViews, 2, "}", ", \"byteStride\": 2147483648}"},
        Damage{"ViewOutside", nullptr, kViews, 1, "\"byteLength\": 64", "\"byteLength\": 4294967295"},
        Damage{"BufferMissing", nullptr, kViews, 1, "\"buffer\": 0", "\"buffer\": 1"},
        Damage{"FloatIndices", nullptr, kAccessors, 4, "5123", "5126"},
        Damage{"ByteIndicesRunOver", nullptr, kAccessors, 4, "\"count\": 6", "\"count\": 7"},
        Damage{"UnalignedIndices", nullptr, kAccessors, 4, "\"count\": 6", "\"byteOffset\": 1, \"count\": 3"},
        Damage{"IndexBeyondVertices", nullptr, kViews, 4, "\"byteOffset\": 160", "\"byteOffset\": 92"}),
    [](const auto& row) { return row.param.name; });

}  // namespace zv::test
