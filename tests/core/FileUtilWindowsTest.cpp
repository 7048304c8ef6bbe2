#include "core/FileUtilWindows.h"

#include <gtest/gtest.h>

#include <string>

#include "support/TempDir.h"

#if defined(_WIN32)

using zv::FileUtilWindows;

TEST(FileUtilWindows, AbsolutePathsHaveADriveOrTwoSlashes) {
    const FileUtilWindows files;
    for (const char* path : {"c:/", "Z:x", "//server/share"})
        EXPECT_TRUE(files.isAbsolutePath(path)) << path;
    for (const char* path : {"", "/", "/x", "c:", "1:/x", "cc/x", "\\\\server"})
        EXPECT_FALSE(files.isAbsolutePath(path)) << path;
}

TEST(FileUtilWindows, ReadsPathsBeyondTheCodePage) {
    const zv::test::TempDir folder;
    const std::string content("a\r\n\0b\x1A", 6);
    const std::string path = folder.write("\xE6\x96\x87.txt", content);
    FileUtilWindows files;
    EXPECT_TRUE(files.fileExist(path) && !files.fileExist(folder.path()));
    EXPECT_EQ(files.getTextFromFile(path), content);
    EXPECT_EQ(files.getDataFromFile(path).size(), content.size());
    EXPECT_EQ(files.getTextFromFile(folder.path()), "");
    EXPECT_EQ(files.getExeDir().find('\\'), std::string::npos);
}

TEST(FileUtilWindows, ConvertsTextOfAnyLength) {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "\xE6\x96\x87";
    const std::wstring wide = zv::StringUtf8ToWideChar(text);
    EXPECT_EQ(wide, std::wstring(100000, L'\x6587'));
    EXPECT_EQ(zv::StringWideCharToUtf8(wide), text);
    EXPECT_EQ(zv::UTF8StringToMultiByte(std::string(5000, 'a')), std::string(5000, 'a'));
    EXPECT_TRUE(zv::StringUtf8ToWideChar("").empty());
}

#endif
