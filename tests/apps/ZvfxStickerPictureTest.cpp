#include <gtest/gtest.h>

#include <tuple>

#include "apps/RunProgram.h"

namespace zv::test {

const std::string kMatrix = "[10,0,0,0, 0,10,0,0, 0,0,10,0, 16,8,0,1]";

TEST(ZvfxStickerPicture, GlassesFollowTheTrackAtAnySize) {
    const Pixel grey{90, 90, 90, 255};
    const ZvfxFolder folder(Picture(64, 32, grey));
    // In pixels of 32 x 16: a face in the middle, then none, then one that stays at the left.
    std::string left = kMatrix;
    left.replace(left.find("16,8"), 4, "3,8");
    folder.write("track.jsonl", R"({"size": [32, 16], "faces": [[)" + kMatrix + "," + kMatrix + "," +
                                    kMatrix + "]]}\n\n{\"faces\": []}\r\n{\"faces\": [[" + left + "," + left +
                                    "," + left + "]]}");
    // The frame that is kept, and whether the middle and the left edge of it are covered.
    struct Row {
        const char *frames, *size;
        bool middle, side;
    };
    for (const Row& row : {Row{"1", "64x32", true, false}, Row{"2", "64x32", false, false},
                           Row{"5", "64x32", false, true}, Row{"1", "128x32", true, false}}) {
        SCOPED_TRACE(std::string(row.frames) + " of " + row.size);
        const Picture out = folder.result({"--sticker", "glasses", "--faces", folder.file("track.jsonl"),
                                           "--frames", row.frames, "--size", row.size});
        EXPECT_EQ(out.at(out.width / 2, 16) != grey, row.middle);
        EXPECT_EQ(out.at(out.width * 3 / 32, 16) != grey, row.side);
        EXPECT_EQ(out.at(out.width - 1, 16), grey);
    }
}

TEST(ZvfxStickerPicture, FindsTheFacesItself) {
    const Picture before = Picture::load(ZV_TEST_DATA_DIR "/portrait.png");
    const ZvfxFolder folder(before);
    const ProgramResult ended = folder.run({"--sticker", "glasses", "--faces", "auto", "--quiet"});
    if (ended.error.find("built without zorvik-face") != std::string::npos) {
        GTEST_SKIP() << ended.error;
    }
    ASSERT_EQ(ended.status, 0) << ended.error;
    const Picture after = Picture::load(folder.file("out.png"));
    // A lens below each eye; mouth and flag stay.
    for (const auto& [x, y, isCovered] : {std::tuple(203, 112, true), std::tuple(247, 114, true),
                                          std::tuple(224, 146, false), std::tuple(40, 40, false)}) {
        EXPECT_EQ(before.at(x, y) != after.at(x, y), isCovered) << x << ", " << y;
    }
    // A hat sits on the forehead as it is shown: straw yellow from another line on, to another line.
    for (const auto& [forehead, top, middle, low] :
         {std::tuple("1", true, false, false), std::tuple("0", false, true, false),
          std::tuple("-1", false, true, true)}) {
        const Picture hat = folder.result(
            {"--sticker", "hat", "--faces", "auto", "--shape", std::string("forehead=") + forehead});
        const auto isStraw = [&](int y) { return hat.at(227, y)[0] - hat.at(227, y)[2] > 100; };
        EXPECT_EQ(std::tuple(isStraw(8), isStraw(72), isStraw(78)), std::tuple(top, middle, low)) << forehead;
    }
}

TEST(ZvfxStickerPicture, SaysWhatIsWrongAndInWhichLine) {
    const ZvfxFolder folder(Picture(16, 16, {1, 2, 3, 255}));
    const std::string good = R"({"faces": [[)" + kMatrix + "]]}\n";
    struct Row {
        std::string track, sticker, says;
    };
    for (const Row& row :
         {Row{good + "\n{", "hat", "line 3: is no JSON"}, Row{"[]", "hat", "line 1: is no JSON object"},
          Row{good + R"({"face": []})", "hat", "line 2: lacks \"faces\""},
          Row{R"({"faces": [[]]})", "hat", "at least one matrix"},
          Row{R"({"faces": [[[1, 2]]]})", "hat", "16 numbers"},
          Row{R"({"faces": [[[1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,1e300,1]]]})", "hat", "a float can hold"},
          Row{R"({"size": [0, 4], "faces": []})", "hat", "at least 1"}, Row{"\n", "hat", "holds no frame"},
          Row{good, "no-such", "no-such: is no folder"}, Row{good, "frame", "512x512, 720x1280"},
          Row{good, folder.path(), "no folder with a sticker.json"}, Row{"", "hat", "--faces"}}) {
        folder.write("track.jsonl", row.track);
        std::vector<std::string> options{"--sticker", row.sticker};
        if (!row.track.empty())
            options.insert(options.end(), {"--faces", folder.file("track.jsonl")});
        const ProgramResult ended = folder.run(options);
        EXPECT_EQ(ended.status, 1);
        EXPECT_NE(ended.error.find(row.says), std::string::npos) << ended.error << "instead of " << row.says;
    }
}

}  // namespace zv::test
