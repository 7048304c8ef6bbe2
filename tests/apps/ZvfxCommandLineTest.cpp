// How zvfx behaves as a command: what it says, how it ends, what it leaves behind.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "apps/RunProgram.h"
#include "gl/PictureFiles.h"

namespace zv::test {

TEST(ZvfxCommandLine, HelpAndVersionGoToStandardOutput) {
    const ProgramResult help = runZvfx({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.error, "");
    for (const char* word :
         {"-o,--output", "--size WxH", "--hsv H,S,V", "--effect NAME", "--res", "--gl", "--stats", "--frames",
          "--fps", "--quiet", "--version", "Examples:", "Exit status:"}) {
        EXPECT_NE(help.output.find(word), std::string::npos) << word;
    }
    const ProgramResult version = runZvfx({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output.rfind("zvfx " ZVFX_VERSION, 0), 0u) << version.output;
}

struct UsageCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* message;  ///< a part of it
};

class ZvfxBadUsage : public ::testing::TestWithParam<UsageCase> {};

TEST_P(ZvfxBadUsage, EndsWithTwoAndSaysWhyInOneLine) {
    const ProgramResult result = runZvfx(GetParam().arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.saysOneLine()) << result.error;
    EXPECT_NE(result.error.find(GetParam().message), std::string::npos) << result.error;
    EXPECT_EQ(result.output, "");
}

std::vector<std::string> with(std::vector<std::string> options) {
    options.insert(options.begin(), {"in.png", "-o", "out.png"});
    return options;
}

INSTANTIATE_TEST_SUITE_P(
    , ZvfxBadUsage,
    ::testing::Values(
        UsageCase{"Nothing", {}, "required"}, UsageCase{"NoOutput", {"in.png"}, "--output is required"},
        UsageCase{"UnknownOption", with({"--colour"}), "--colour"},
        UsageCase{"SecondInput", with({"other.png"}), "other.png"},
        UsageCase{"OptionWithoutValue", with({"--size"}), "--size"},
        UsageCase{"OptionTwice", with({"--size", "1x1", "--size", "2x2"}), "--size"},
        UsageCase{"SizeZero", with({"--size", "0x4"}), "from 1 to 65535, not \"0x4\""},
        UsageCase{"SizeNegative", with({"--size", "4x-4"}), "--size"},
        UsageCase{"SizeTooLarge", with({"--size", "65536x1"}), "from 1 to 65535"},
        UsageCase{"SizeOverflows", with({"--size", "99999999999x1"}), "--size"},
        UsageCase{"SizeWithTextAfter", with({"--size", "4x4px"}), "--size takes WIDTHxHEIGHT"},
        UsageCase{"SizeWithOneNumber", with({"--size", "4"}), "--size takes WIDTHxHEIGHT"},
        UsageCase{"SizeEmpty", with({"--size", ""}), "--size"},
        UsageCase{"HsvTwoNumbers", with({"--hsv", "1,1"}), "--hsv takes three factors"},
        UsageCase{"HsvFourNumbers", with({"--hsv", "1,1,1,1"}), "--hsv takes three factors"},
        UsageCase{"HsvText", with({"--hsv", "1,1,1x"}), "--hsv takes three factors"},
        UsageCase{"HsvNegative", with({"--hsv", "1,-1,1"}), "0 or more"},
        UsageCase{"HsvNegativeFirst", with({"--hsv", "-1,1,1"}), "0 or more"},
        UsageCase{"HsvNotANumber", with({"--hsv", "1,nan,1"}), "0 or more"},
        UsageCase{"HsvInfinite", with({"--hsv", "1,1,inf"}), "0 or more"},
        UsageCase{"SmoothTooStrong", with({"--smooth", "1.5"}), "from 0 to 1, not \"1.5\""},
        UsageCase{"SharpenAlone", with({"--sharpen", "1"}), "give --smooth as well"},
        UsageCase{"WhitenNotANumber", with({"--whiten", "nan"}), "--whiten takes a number"},
        UsageCase{"LutTooMuch", with({"--lut", "a.png,2"}), "from 0 to 1 behind the comma"},
        UsageCase{"EffectUnknown", with({"--effect", "sepia"}), "jitter or soul, not \"sepia\""},
        UsageCase{"DebugFacesAlone", with({"--debug-faces"}), "give --faces"},
        UsageCase{"ShapeWithoutFaces", with({"--shape", "eyes=1"}), "--faces auto"},
        UsageCase{"ShapeUnknown", with({"--shape", "ears=1", "--faces", "auto"}), "not \"ears=1\""},
        UsageCase{"ShapeTooStrong", with({"--shape", "eyes=1.5", "--faces", "auto"}), "not \"eyes=1.5\""},
        UsageCase{"StatsOverOutput", with({"--stats", "out.png"}), "the same file"},
        UsageCase{"GlUnknown", with({"--gl", "es"}), "core or compat, not \"es\""},
        UsageCase{"FramesZero", with({"--frames", "0"}), "--frames"},
        UsageCase{"FramesFraction", with({"--frames", "1.5"}), "--frames"},
        UsageCase{"FpsNotANumber", with({"--fps", "nan"}), "--fps"},
        UsageCase{"FpsZero", with({"--fps", "0"}), "--fps"},
        UsageCase{"MatrixUnknown", {"in.y4m", "-o", "out.y4m", "--matrix", "2020"}, "601, 601-full or 709"},
        UsageCase{"MatrixOfAPicture", with({"--matrix", "601"}), "for videos"},
        UsageCase{"VideoToAPicture", {"in.y4m", "-o", "out.png"}, "a video goes to .y4m"},
        UsageCase{"VideoTimed", {"in.y4m", "-o", "-", "--fps", "5"}, "for a picture as the"},
        UsageCase{"OutputOfAnotherKind", {"in.png", "-o", "out.jpg"}, "reads .png"},
        UsageCase{"OutputWithoutEnding", {"in.png", "-o", "out"}, "of no known kind"},
        UsageCase{"OutputEmpty", {"in.png", "-o", ""}, "empty"}),
    [](const auto& row) { return row.param.name; });

struct FailureCase {
    const char* name;
    const char* file;     ///< the input's name in a folder that holds it with `content`
    std::string content;  ///< empty: the file is not made
    std::vector<std::string> options;
    const char* message;
};

class ZvfxFailedWork : public ::testing::TestWithParam<FailureCase> {};

TEST_P(ZvfxFailedWork, EndsWithOneSaysWhyAndLeavesTheOldOutput) {
    const FailureCase& row = GetParam();
    const TempDir folder;
    if (!row.content.empty()) {
        folder.write(row.file, row.content);
    }
    folder.write("folder.png/keep", "x");
    folder.write("out.png", "what was there before");
    std::vector<std::string> arguments = {folder.file(row.file), "-o", folder.file("out.png"), "--quiet"};
    for (const std::string& option : row.options) {
        arguments.push_back(option[0] == '@' ? folder.file(option.substr(1)) : option);
    }
    const std::vector<std::string> before = folder.entries();
    const ProgramResult result = runZvfx(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.saysOneLine()) << result.error;
    EXPECT_NE(result.error.find(row.message), std::string::npos) << result.error;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(readFile(folder.file("out.png")), "what was there before");
    EXPECT_EQ(folder.entries(), before);
}

/// As many black pixels, of a bit each.
std::string blackPng(std::uint32_t width, std::uint32_t height) {
    const Bytes file = pngFile({width, height, 1, 0, Bytes(std::size_t{width + 7} / 8 * height)});
    return {file.begin(), file.end()};
}

std::string validPng() {
    return readFile(ZvfxFolder(Picture::noise(40, 40)).file("in.png"));
}

INSTANTIATE_TEST_SUITE_P(
    , ZvfxFailedWork,
    ::testing::Values(
        FailureCase{"MissingInput", "none.png", "", {}, "none.png: no such file"},
        FailureCase{"FolderAsInput", "folder.png", "", {}, "is a folder"},
        FailureCase{"NoPicture", "a.png", "this is a text", {}, "is no PNG, BMP or JPEG picture"},
        FailureCase{"CutShort", "a.png", validPng().substr(0, 2000), {}, "cannot be decoded"},
        FailureCase{"TooWide", "a.png", blackPng(70000, 1), {}, "65535"},
        FailureCase{"TooMuchMemory", "a.png", blackPng(8193, 8192), {}, "256 MiB"},
        FailureCase{"OutputTooMuchMemory", "a.png", validPng(), {"--size", "60000x60000"}, "256 MiB"},
        FailureCase{"WiderThanGl", "a.png", validPng(), {"--size", "65535x1"}, "pixels wide and high"},
        FailureCase{"NoShaders", "a.png", validPng(), {"--res", "@folder.png"}, "holds no zv_res/shaders"},
        FailureCase{
            "StatsFolderMissing", "a.png", validPng(), {"--stats", "@none/s.json"}, "folder does not exist"},
        FailureCase{"StatsIsAFolder", "a.png", validPng(), {"--stats", "@folder.png"}, "is a folder"}),
    [](const auto& row) { return row.param.name; });

TEST(ZvfxCommandLine, OutputThatCannotBeMadeFails) {
    const ZvfxFolder folder(Picture::noise(40, 40));
    folder.write("folder.png/keep", "x");
    for (const char* name : {"none/out.png", "folder.png"}) {
        const ProgramResult result = runZvfx({folder.file("in.png"), "-o", folder.file(name)});
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_TRUE(result.saysOneLine()) << result.error;
    }
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"folder.png", "in.png"}));
}

#if defined(__linux__)
TEST(ZvfxCommandLine, AFullDiskLeavesTheOldFileAndADeviceIsNotReplaced) {
    const TempDir folder;
    const std::string input = folder.write("in.png", validPng());
    const ProgramResult full = runZvfx({input, "-o", "-"}, "/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_TRUE(full.saysOneLine()) << full.error;
    // A disk that takes the beginning only: what was there stays, and the half is taken away.
    folder.write("old.png", "what was there before");
    const ProgramResult half =
        runZvfx({input, "-o", folder.file("old.png")}, {}, "trap '' XFSZ; ulimit -f 1; ");
    EXPECT_EQ(half.status, 1);
    EXPECT_TRUE(half.saysOneLine()) << half.error;
    EXPECT_EQ(readFile(folder.file("old.png")), "what was there before");
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.png", "old.png"}));
    // A link to a device: the device takes the bytes, and link and device stay.
    ASSERT_EQ(std::system(("ln -s /dev/null '" + folder.file("link.png") + "'").c_str()), 0);
    EXPECT_EQ(runZvfx({input, "-o", folder.file("link.png")}).status, 0);
    EXPECT_EQ(readFile("/dev/null"), "");
    EXPECT_EQ(folder.entries(), (std::vector<std::string>{"in.png", "link.png", "old.png"}));
}
#endif

TEST(ZvfxCommandLine, NamesMayHoldSpacesQuotesAndLettersOfAnyKind) {
    const TempDir folder;
    const Picture picture = Picture::noise(3, 3);
    const std::string input = folder.write("a b's \xC3\xA4\xE6\x97\xA5.png", "");
    ASSERT_TRUE(picture.save(input));
    const std::string output = folder.file("o \xC3\xBC.PNG");
    EXPECT_EQ(runZvfx({input, "-o", output}).status, 0);
    EXPECT_EQ(Picture::load(output), picture);
}

TEST(ZvfxCommandLine, StatsTellWhatTheRunTook) {
    const ZvfxFolder folder(Picture::noise(40, 40));
    const ProgramResult result = folder.run({"--stats", folder.file("s.json"), "--frames", "20", "--fps",
                                             "60", "--size", "64x32", "--hsv", "1,2,1"});
    ASSERT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "") << "no progress bar where there is no terminal";
    const auto stats = nlohmann::json::parse(readFile(folder.file("s.json")), nullptr, false);
    ASSERT_TRUE(stats.is_object());
    EXPECT_EQ(stats.value("frames", 0), 20);
    EXPECT_EQ(stats.value("width", 0), 64);
    EXPECT_EQ(stats.value("height", 0), 32);
    double sum = 0;
    for (const char* stage : {"decode", "setup", "render", "read", "encode"}) {
        ASSERT_TRUE(stats.at("stages").contains(stage)) << stage;
        EXPECT_GT(stats["stages"][stage].get<double>(), 0) << stage;
        sum += stats["stages"][stage].get<double>();
    }
    EXPECT_LE(sum, stats.value("seconds", 0.0) + 1e-6);
    EXPECT_NE(stats.value("renderer", ""), "");
    // Two passes and a read-back: more than a draw and a bind each, and nothing near the calls of a start.
    EXPECT_GT(stats.value("gl_calls_per_frame", 0), 15);
    EXPECT_LT(stats.value("gl_calls_per_frame", 0), 100);
    ASSERT_EQ(stats["effects"].size(), 1u);
    EXPECT_EQ(stats["effects"][0].value("name", ""), "hsv");
    EXPECT_GT(stats["effects"][0].value("gl_calls", 0), 5) << "a stage taken out is not drawn";
    EXPECT_LT(stats["effects"][0].value("gl_calls", 0), stats.value("gl_calls_per_frame", 0));
    EXPECT_NE(stats.value("gl_version", ""), "");
}

}  // namespace zv::test
