#include "core/ZVLog.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "core/Clock.h"
#include "support/LogCapture.h"

using zv::test::LogCapture;

TEST(ZVLog, MessagesOfAnyLengthAreLoggedWhole) {
    // The prefix has 8 characters. Around one chunk, around what the first buffer takes, and far above.
    for (const int length : {0, 1015, 1016, 1017, 16371, 16372, 16373, 16374, 16375, 16384, 300000}) {
        std::string message;
        for (int i = 0; i < length; ++i)
            message += static_cast<char>('!' + i % 90);
        const LogCapture log;
        zv::zvLog("%s", message.c_str());
        zv::zvLog("next %d", 5);
        EXPECT_EQ(log.text(), "Zorvik: " + message + "\nZorvik: next 5\n") << length;
    }
}

TEST(ZVLog, WritesInChunksOf1024BytesAndDropsWhatCannotBeFormatted) {
    const LogCapture log;
    // A zero byte ends the text of its own chunk and of no other.
    zv::zvLog("%c%s", 0, std::string(1015, 'a').append("second chunk").c_str());
#if !defined(_WIN32)
    // The locale of a test program has no such character; on Windows every text can be formatted.
    zv::zvLog("%ls", L"\x20AC");
#endif
    EXPECT_EQ(log.text(), "Zorvik: second chunk\n");
}

TEST(ZVLog, GoesToStandardOutputByDefault) {
    const LogCapture log;
    zv::setLogStream(nullptr);
    testing::internal::CaptureStdout();
    zv::zvLog("%s=%.2f", "pi", 3.14159);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Zorvik: pi=3.14\n");
    EXPECT_EQ(log.text(), "");
}

TEST(ZVLog, ClockLogsItsNameAndMilliseconds) {
    const LogCapture log;
    {
        const zv::Clock clock("stage");
        while (std::clock() - clock.start < CLOCKS_PER_SEC / 20) {
        }
    }
    const std::string text = log.text(), prefix = "Zorvik: stage:";
    ASSERT_EQ(text.rfind(prefix, 0), 0u) << text;
    const double milliseconds = std::strtod(text.c_str() + prefix.size(), nullptr);
    EXPECT_TRUE(milliseconds >= 50.0 && milliseconds < 5000.0) << text;
}
