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
    const std::wstring path = zv::StringUtf8ToWideChar(folder.file("plain.txt"));
    folder.write("plain.txt", content);
    const std::string renamed = folder.file("\xE6\x96\x87.txt");
    ASSERT_EQ(_wrename(path.c_str(), zv::StringUtf8ToWideChar(renamed).c_str()), 0);
    FileUtilWindows files;
    EXPECT_TRUE(files.fileExist(renamed));
    EXPECT_FALSE(files.fileExist(folder.path()));
    EXPECT_EQ(files.getTextFromFile(renamed), content);
    EXPECT_EQ(files.getDataFromFile(renamed).size(), content.size());
    zv::UniqueDataPtr<unsigned char> out;
    EXPECT_TRUE(files.getDataFromFile(out, renamed));
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
