#include "core/FileUtil.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "core/FileUtilPosix.h"
#include "support/TempDir.h"

#if !defined(_WIN32)

#include <sys/stat.h>

using namespace zv;

namespace {

std::string textOf(const UniqueDataPtr<unsigned char>& data) {
    return std::string(reinterpret_cast<const char*>(data.get(0)), data.size());
}

/// The whole-file reads, through the file streams of the base and through the platform's calls.
template <class Implementation>
class FileRead : public testing::Test {
protected:
    /// What the three whole-file reads answer alike.
    std::string read(const std::string& path, bool readable = true) {
        UniqueDataPtr<unsigned char> out(4);
        EXPECT_EQ(mFiles.getDataFromFile(out, path), readable) << path;
        EXPECT_EQ(textOf(mFiles.getDataFromFile(path)), textOf(out)) << path;
        EXPECT_EQ(mFiles.getTextFromFile(path), textOf(out)) << path;
        return textOf(out);
    }

    test::TempDir mFolder;
    Implementation mFiles;
};

}  // namespace

using Implementations = testing::Types<FileUtil, FileUtilPosix>;
TYPED_TEST_SUITE(FileRead, Implementations, );

TYPED_TEST(FileRead, GivesEveryByteBelowTheRoots) {
    this->mFiles.setUserRoot(this->mFolder.path());
    std::string bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += static_cast<char>(i % 251 - 100);
    for (const std::string& content : {bytes, std::string("\r\n\0\x1A", 4), std::string()}) {
        const std::string path = "d/h\xC3\xA9.bin";
        this->mFolder.write(path, content);
        EXPECT_EQ(this->read(path), content);
        const auto stream = this->mFiles.getiStreamFromFile(path, std::ios_base::binary);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(*stream), {}), content);
    }
}

TYPED_TEST(FileRead, GivesNothingForWhatIsNoFileOrAboveTheLimit) {
    const std::string pipe = this->mFolder.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {pipe, this->mFolder.path(), this->mFolder.file("missing"),
                                    std::string("/dev/zero"), std::string()}) {
        EXPECT_EQ(this->read(path, false), "");
        EXPECT_EQ(this->mFiles.getiStreamFromFile(path, 0), nullptr) << path;
    }
    // A hole takes no room on the disk.
    const std::string huge = this->mFolder.write("huge", std::string("x"));
    std::filesystem::resize_file(huge, FileUtil::MAX_FILE_SIZE + 1);
    EXPECT_EQ(this->read(huge, false), "");
}

TEST(FileUtil, ResolvesTheUserRootFirst) {
    const test::TempDir folder;
    const std::string path = folder.write("folder/here.png", std::string("x"));
    FileUtilPosix files;
    EXPECT_EQ(files.getFullFilePath("folder/here.png"), "folder/here.png");
    ASSERT_TRUE(files.init());
    EXPECT_EQ(files.getFullFilePath("folder/here.png"), "res/folder/here.png");
    files.setUserRoot(folder.path());
    EXPECT_EQ(files.getFullFilePath("folder/here.png"), path);
    EXPECT_EQ(files.getFullFilePath("missing.png"), "res/missing.png");
    EXPECT_EQ(files.getFullFilePath("folder"), "res/folder") << "a directory is not a file";
    EXPECT_EQ(files.getFullFilePath("/here.png"), "/here.png");
    EXPECT_FALSE(files.fileExist("folder/here.png")) << "no root is tried";
    EXPECT_TRUE(FileUtil().fileExist(folder.path()));
    EXPECT_TRUE(files.isAbsolutePath("/") && !files.isAbsolutePath("") && !files.isAbsolutePath("c:/x"));
}

TEST(FileUtil, InstanceIsMadeOnceAndAfreshAfterDestruction) {
    FileUtil* files = FileUtil::getInstance();
    ASSERT_NE(files, nullptr);
    EXPECT_EQ(FileUtil::getInstance(), files);
    files->setZvRoot("elsewhere");
    FileUtil::destoryInstance();
    FileUtil::destoryInstance();
    EXPECT_EQ(FileUtil::getInstance()->getFullFilePath("a"), "res/a");
    FileUtil::destoryInstance();
}

TEST(FileUtil, KnowsTheDirectoryOfTheProgram) {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(FileUtilPosix().getExeDir(), program.parent_path().string());
}

#endif
