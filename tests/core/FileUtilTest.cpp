#include "core/FileUtil.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>

#include "core/FileUtilPosix.h"
#include "support/TempDir.h"

using zv::FileUtil;
using zv::FileUtilPosix;
using zv::UniqueDataPtr;

#if !defined(_WIN32)

#include <sys/stat.h>

namespace {

std::string textOf(const UniqueDataPtr<unsigned char>& data) {
    return std::string(reinterpret_cast<const char*>(data.get(0)), data.size());
}

/// The whole-file reads, through the file streams of the base and through the platform's calls.
template <class Implementation>
class FileRead : public testing::Test {
protected:
    void expectNothing(const std::string& path) {
        SCOPED_TRACE(path);
        UniqueDataPtr<unsigned char> out(4);
        EXPECT_FALSE(mFiles.getDataFromFile(out, path));
        EXPECT_EQ(out.size(), 0u);
        EXPECT_EQ(mFiles.getDataFromFile(path).size(), 0u);
        EXPECT_EQ(mFiles.getTextFromFile(path), "");
        EXPECT_EQ(mFiles.getiStreamFromFile(path, 0), nullptr);
    }

    zv::test::TempDir mFolder;
    Implementation mImplementation;
    FileUtil& mFiles = mImplementation;
};

using Implementations = testing::Types<FileUtil, FileUtilPosix>;

struct ImplementationNames {
    template <class Implementation>
    static std::string GetName(int) {
        return std::is_same_v<Implementation, FileUtil> ? "Streams" : "Posix";
    }
};

}  // namespace

TYPED_TEST_SUITE(FileRead, Implementations, ImplementationNames);

TYPED_TEST(FileRead, GivesEveryByte) {
    std::string bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += static_cast<char>(i % 251 - 100);
    for (const std::string& content : {bytes, std::string("\r\n\0\x1A", 4), std::string()}) {
        const std::string path = this->mFolder.write("d/h\xC3\xA9.bin", content);
        UniqueDataPtr<unsigned char> out(7);
        EXPECT_TRUE(this->mFiles.getDataFromFile(out, path));
        EXPECT_EQ(textOf(out), content);
        EXPECT_EQ(textOf(this->mFiles.getDataFromFile(path)), content);
        EXPECT_EQ(this->mFiles.getTextFromFile(path), content);
        const auto stream = this->mFiles.getiStreamFromFile(path, std::ios_base::binary);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(*stream), {}), content);
    }
}

TYPED_TEST(FileRead, GivesNothingForWhatIsNoReadableFile) {
    const std::string pipe = this->mFolder.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    this->expectNothing(pipe);
    this->expectNothing(this->mFolder.path());
    this->expectNothing(this->mFolder.file("missing"));
    this->expectNothing("/dev/zero");
    this->expectNothing("");
}

TYPED_TEST(FileRead, RefusesAFileAboveTheLimit) {
    // A hole takes no room on the disk.
    const std::string path = this->mFolder.write("huge", std::string("x"));
    std::filesystem::resize_file(path, FileUtil::MAX_FILE_SIZE + 1);
    UniqueDataPtr<unsigned char> out;
    EXPECT_FALSE(this->mFiles.getDataFromFile(out, path));
    EXPECT_EQ(this->mFiles.getDataFromFile(path).size(), 0u);
    EXPECT_EQ(this->mFiles.getTextFromFile(path), "");
}

TYPED_TEST(FileRead, ReadsBelowTheRoots) {
    this->mFolder.write("zv/zv_res/a.txt", std::string("library"));
    this->mFolder.write("user/zv_res/a.txt", std::string("user"));
    this->mFiles.setZvRoot(this->mFolder.file("zv"));
    EXPECT_EQ(this->mFiles.getTextFromFile("zv_res/a.txt"), "library");
    this->mFiles.setUserRoot(this->mFolder.file("user"));
    EXPECT_EQ(this->mFiles.getTextFromFile("zv_res/a.txt"), "user");
    EXPECT_EQ(textOf(this->mFiles.getDataFromFile("zv_res/a.txt")), "user");
    UniqueDataPtr<unsigned char> out;
    EXPECT_TRUE(this->mFiles.getDataFromFile(out, "zv_res/a.txt"));
    EXPECT_EQ(textOf(out), "user");
    EXPECT_EQ(this->mFiles.getiStreamFromFile("zv_res/a.txt", 0)->get(), 'u');
}

TEST(FileUtil, ResolvesTheUserRootFirst) {
    const zv::test::TempDir folder;
    folder.write("here.png", std::string("x"));
    folder.write("folder/inner.png", std::string("x"));
    FileUtilPosix files;
    EXPECT_EQ(files.getFullFilePath("here.png"), "here.png");
    ASSERT_TRUE(files.init());
    EXPECT_EQ(files.getFullFilePath("here.png"), "res/here.png");
    files.setZvRoot("/opt/media");
    files.setUserRoot(folder.path());
    EXPECT_EQ(files.getFullFilePath("here.png"), folder.file("here.png"));
    EXPECT_EQ(files.getFullFilePath("missing.png"), "/opt/media/missing.png");
    EXPECT_EQ(files.getFullFilePath("folder"), "/opt/media/folder") << "a directory is not a file";
    EXPECT_EQ(files.getFullFilePath("/here.png"), "/here.png");

    EXPECT_TRUE(files.fileExist(folder.file("here.png")));
    EXPECT_FALSE(files.fileExist(folder.path()));
    EXPECT_FALSE(files.fileExist("here.png")) << "no root is tried";
    EXPECT_FALSE(files.fileExist(""));
    EXPECT_TRUE(FileUtil().fileExist(folder.path()));
    EXPECT_TRUE(files.isAbsolutePath("/") && !files.isAbsolutePath("") && !files.isAbsolutePath("c:/x"));
}

TEST(FileUtil, InstanceIsMadeOnceAndAfreshAfterDestruction) {
    FileUtil* files = FileUtil::getInstance();
    ASSERT_NE(files, nullptr);
    EXPECT_EQ(FileUtil::getInstance(), files);
    files->setZvRoot("elsewhere");
    EXPECT_EQ(FileUtil::getInstance()->getFullFilePath("a"), "elsewhere/a");
    FileUtil::destoryInstance();
    FileUtil::destoryInstance();
    EXPECT_EQ(FileUtil::getInstance()->getFullFilePath("a"), "res/a");
    FileUtil::destoryInstance();
}

TEST(FileUtil, KnowsTheDirectoryOfTheProgram) {
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    const std::string directory = FileUtilPosix().getExeDir();
    ASSERT_LT(directory.size(), program.size());
    EXPECT_EQ(program.compare(0, directory.size(), directory), 0);
    EXPECT_EQ(program.find_last_of('/'), directory.size());
}

#endif
