// What zvfx does when the world around it goes: readers, disks, names, itself.
#include <gtest/gtest.h>

#include "apps/RunProgram.h"

#if defined(__linux__)
namespace zv::test {

struct LostCase {
    const char* name;
    std::string shell;  ///< runs "$@", the program, in the folder
    std::vector<std::string> arguments;
    int status;
    const char* message;
};

class ZvfxLostThings : public ::testing::TestWithParam<LostCase> {};

TEST_P(ZvfxLostThings, EndsWithItsStatusAndLeavesNoFileUnderTheFinalName) {
    const LostCase& row = GetParam();
    const ZvfxFolder folder(Picture::noise(64, 48));
    const ProgramResult result =
        runZvfx(row.arguments, {}, "run() { " + row.shell + "; }; cd '" + folder.path() + "'; run ");
    EXPECT_EQ(result.status, row.status) << result.error;
    if (row.status == 1) {
        EXPECT_TRUE(result.saysOneLine()) << result.error;
        EXPECT_EQ(folder.entries(), std::vector<std::string>{"in.png"});
    }
    EXPECT_NE(result.error.find(row.message), std::string::npos) << result.error;
    for (const std::string& entry : folder.entries()) {
        EXPECT_TRUE(entry == "in.png" || entry.find(".part-") != std::string::npos) << entry;
    }
}

const std::vector<std::string> kLongClip = {"in.png", "-o",    "out.y4m", "--frames",
                                            "100000", "--hsv", "1,1,0.9"};

INSTANTIATE_TEST_SUITE_P(
    , ZvfxLostThings,
    ::testing::Values(
        LostCase{
            "ClosedPipe",
            "mkfifo pipe; head -c 100 pipe >/dev/null & \"$@\" >pipe; status=$?; rm pipe; return $status",
            {"in.png", "-o", "-", "--frames", "100000"},
            1,
            "standard output"},
        LostCase{"DiskFullInAVideo", "trap '' XFSZ; ulimit -f 64; \"$@\"", kLongClip, 1, "out.y4m"},
        LostCase{"KilledInTheMiddle",
                 "\"$@\" & until [ \"$(cat out.y4m.part-* 2>/dev/null | wc -c)\" -gt 9000 ]; do sleep 0.05; "
                 "done; kill -KILL $!; wait $!",
                 kLongClip, 137, ""},
        LostCase{"NameOfTwoLines", "\"$@\"", {"a\nb.png", "-o", "out.png"}, 1, "a b.png: no such file"},
        LostCase{"NameTooLong", "\"$@\"", {std::string(300, 'n') + ".png", "-o", "out.png"}, 1, "nnn.png"},
        LostCase{"NameThatIsNoUtf8", "\"$@\"", {"\xC3(.png", "-o", "out.png"}, 1, "no such file"},
        LostCase{
            "OutputNameTooLong", "\"$@\"", {"in.png", "-o", std::string(300, 'n') + ".png"}, 1, "nnn.png"}),
    [](const auto& row) { return row.param.name; });

}  // namespace zv::test
#endif
