#include "core/FileUtilWindows.h"

#include <gtest/gtest.h>

#if defined(_WIN32)
#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "core/ZVLog.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

using zv::FileUtilWindows;

TEST(FileUtilWindows, AbsolutePathsHaveADriveOrTwoSlashes) {
    const FileUtilWindows files;
    for (const char* path : {"c:/", "Z:x", "//server/share"})
        EXPECT_TRUE(files.isAbsolutePath(path)) << path;
    for (const char* path : {"", "/", "/x", "c:", "1:/x", "cc/x", "\\\\server"})
        EXPECT_FALSE(files.isAbsolutePath(path)) << path;
}

TEST(FileUtilWindows, ReadsPathsBeyondTheCodePageAndBeyond260Characters) {
    const zv::test::TempDir folder;
    const std::string content("a\r\n\0b\x1A", 6);
    FileUtilWindows files;
    const std::string deep = std::string(120, 'd') + "/" + std::string(120, 'e') + "/";
    for (const std::string& name :
         {std::string("\xE6\x96\x87.txt"), std::string("\xF0\x9F\x98\x80/\xC3\xA4.txt"),
          deep + std::string(60, 'f')}) {
        // Only a system that was told to takes paths of more than 260 characters.
        std::error_code refused;
        std::filesystem::create_directories(std::filesystem::u8path(folder.file(name)).parent_path(),
                                            refused);
        if (refused && name.size() > 200) {
            std::puts("this system takes no long paths");
            continue;
        }
        const std::string path = folder.write(name, content);
        EXPECT_TRUE(files.fileExist(path)) << path;
        EXPECT_EQ(files.getTextFromFile(path), content);
        EXPECT_EQ(files.getDataFromFile(path).size(), content.size());
    }
    EXPECT_FALSE(files.fileExist(folder.path())) << "a directory is no file";
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

namespace {

std::wstring* sDebuggerText = nullptr;

/// What a debugger would be told, caught on the way: the text comes as an exception with its length and its
/// address. Where the wide form is not offered it comes in the code page.
LONG CALLBACK catchDebuggerText(EXCEPTION_POINTERS* pointers) {
    constexpr DWORD kPrintWide = 0x4001000A;  // DBG_PRINTEXCEPTION_WIDE_C
    constexpr DWORD kPrint = 0x40010006;      // DBG_PRINTEXCEPTION_C
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (sDebuggerText == nullptr || (record.ExceptionCode != kPrintWide && record.ExceptionCode != kPrint)) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    if (record.ExceptionCode == kPrintWide) {
        *sDebuggerText += reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]);
    } else {
        wchar_t wide[2050] = {};
        MultiByteToWideChar(CP_ACP, 0, reinterpret_cast<const char*>(record.ExceptionInformation[1]), -1,
                            wide, 2049);
        *sDebuggerText += wide;
    }
    return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

TEST(ZVLogWindows, MessagesReachTheDebuggerInChunksThatMaySplitALetter) {
    const zv::test::LogCapture log;
    std::wstring text;
    sDebuggerText = &text;
    void* handler = AddVectoredExceptionHandler(1, catchDebuggerText);
    // The prefix has 8 bytes, a chunk 1024: the letter of two bytes lies across their border.
    const std::string before(1015, 'a');
    zv::zvLog("%s\xC3\xA4.", before.c_str());
    zv::zvLog("\xC3\xA4");
    RemoveVectoredExceptionHandler(handler);
    sDebuggerText = nullptr;
    ASSERT_GT(text.size(), 1036u);
    EXPECT_EQ(text.substr(0, 1023), L"Zorvik: " + std::wstring(1015, L'a'));
    EXPECT_EQ(text.find(L'\xE4'), text.size() - 2) << "each chunk is converted for itself";
    EXPECT_EQ(text.substr(text.size() - 12), L".\nZorvik: \xE4\n");
}

#endif
