#include "core/ZVLog.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "core/Clock.h"

namespace {

/// Keeps what is logged during a test.
class ZVLog : public testing::Test {
protected:
    ZVLog() : mFile(std::tmpfile()) { zv::setLogStream(mFile); }
    ~ZVLog() override {
        zv::setLogStream(nullptr);
        std::fclose(mFile);
    }

    std::string logged() const {
        std::string text;
        std::rewind(mFile);
        for (int c = std::fgetc(mFile); c != EOF; c = std::fgetc(mFile))
            text += static_cast<char>(c);
        return text;
    }

    std::FILE* mFile;
};

class ZVLogLength : public ZVLog, public testing::WithParamInterface<int> {};

}  // namespace

TEST_P(ZVLogLength, IsLoggedWhole) {
    std::string message;
    for (int i = 0; i < GetParam(); ++i)
        message += static_cast<char>('!' + i % 90);
    zv::zvLog("%s", message.c_str());
    zv::zvLog("next %d", 5);
    EXPECT_EQ(logged(), "Zorvik: " + message + "\nZorvik: next 5\n");
}

// The prefix has 8 characters. Around one chunk, around what the first buffer takes, and far above.
INSTANTIATE_TEST_SUITE_P(Lengths, ZVLogLength,
                         testing::Values(0, 1015, 1016, 1017, 16371, 16372, 16373, 16374, 16375, 16384,
                                         300000),
                         testing::PrintToStringParamName());

TEST_F(ZVLog, CharactersSplitBetweenChunksMeetAgain) {
    std::string message;
    for (int i = 0; i < 1000; ++i)
        message += "\xE2\x82\xAC";
    zv::zvLog("%s", message.c_str());
    EXPECT_EQ(logged(), "Zorvik: " + message + "\n");
}

TEST_F(ZVLog, WritesInChunksOf1024Bytes) {
    // A zero byte ends the text of its own chunk and of no other.
    zv::zvLog("%c%s", 0, std::string(1015, 'a').append("second chunk").c_str());
    EXPECT_EQ(logged(), "Zorvik: second chunk\n");
}

TEST_F(ZVLog, DropsAMessageThatCannotBeFormatted) {
    // The locale of a test program has no such character.
    zv::zvLog("%ls", L"\x20AC");
    zv::zvLog("alive");
    EXPECT_EQ(logged(), "Zorvik: alive\n");
}

TEST_F(ZVLog, GoesToStandardOutputByDefault) {
    zv::setLogStream(nullptr);
    testing::internal::CaptureStdout();
    zv::zvLog("%s=%.2f", "pi", 3.14159);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Zorvik: pi=3.14\n");
    EXPECT_EQ(logged(), "");
}

TEST_F(ZVLog, ClockLogsItsNameAndMilliseconds) {
    {
        const zv::Clock clock("stage");
        while (std::clock() - clock.start < CLOCKS_PER_SEC / 20) {
        }
        zv::Clock copy(clock);
        copy.name = "copy";
    }
    const std::string text = logged();
    const std::size_t second = text.find("Zorvik: stage:");
    ASSERT_EQ(text.rfind("Zorvik: copy:", 0), 0u) << text;
    ASSERT_NE(second, std::string::npos) << text;
    for (const std::size_t value : {std::size_t{13}, second + 14}) {
        const double milliseconds = std::strtod(text.c_str() + value, nullptr);
        EXPECT_GE(milliseconds, 50.0);
        EXPECT_LT(milliseconds, 5000.0);
    }
}
