#include <cstdio>
#include <numeric>
#include <vector>

#include "RenderTextureTools.h"
#include "core/ZVLog.h"
#include "gl/FrameBuffer.h"
#include "support/AllocationCounter.h"
#include "support/EngineTest.h"
#include "support/GLCallRecorder.h"
#include "support/TempDir.h"

namespace zv::test {
namespace {

using Bytes = std::vector<unsigned char>;

/// Shows one colour over all, except for its lower left pixel.
class Reader : public RenderTexture {
public:
    static Reader* create(Size16 size, PxFormat format, FrameBuffer* frameBuffer = nullptr) {
        return createRef<Reader>([&](Reader& t) { return t.init(size, frameBuffer, format); });
    }
    void show(unsigned char value) {
        const TargetPass pass(*getFrameBuffer(), *getRenderTarget());
        fillRect(0, 0, 1000, 1000, {value, value, value, 255});
        fillRect(0, 0, 1, 1, {1, 2, 3, 255});
    }
    using RenderTexture::readBack;
};

class ReadBackTest : public EngineTest {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        mLogFile = std::fopen(mDir.file("log").c_str(), "w");
        setLogStream(mLogFile);
    }
    void TearDown() override {
        setLogStream(nullptr);
        std::fclose(mLogFile);
        EngineTest::TearDown();
    }
    std::size_t logLines() {
        std::fflush(mLogFile);
        const std::string text = readFile(mDir.file("log"));
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

private:
    TempDir mDir;
    std::FILE* mLogFile = nullptr;
};

UniqueDataPtr<unsigned char> dirty(std::size_t size) {
    UniqueDataPtr<unsigned char> out(size);
    std::fill_n(out.get(0), size, static_cast<unsigned char>(0xAB));
    return out;
}

Bytes bytesOf(const UniqueDataPtr<unsigned char>& data) {
    return data.size() != 0 ? Bytes(data.get(0), data.get(0) + data.size()) : Bytes();
}

Bytes expectedRgb(int pixels, unsigned char value) {
    Bytes expected(static_cast<std::size_t>(pixels) * 3, value);
    std::iota(expected.begin(), expected.begin() + 3, static_cast<unsigned char>(1));
    return expected;
}

TEST_F(ReadBackTest, HandsOutThePictureOfTheCallBeforeInTightRows) {
    Reader* reader = Reader::create({3, 2}, PXFORMAT_RGB888);
    reader->show(10);
    EXPECT_EQ(bytesOf(reader->getOutData()), Bytes(18, 0)) << "nothing was read before";
    reader->show(20);
    EXPECT_EQ(bytesOf(reader->getOutData()), expectedRgb(6, 10));
    reader->show(30);
    auto out = dirty(20);
    reader->getOutData(out);
    Bytes expected = expectedRgb(6, 20);
    expected.resize(20, 0);
    EXPECT_EQ(bytesOf(out), expected) << "what lies behind the picture is zero";
    auto small = dirty(4);
    reader->getOutData(small);
    EXPECT_EQ(bytesOf(small), (Bytes{1, 2, 3, 30}));
    UniqueDataPtr<unsigned char> none;
    reader->getOutData(none);
    EXPECT_EQ(none.size(), 0U);

    GLint alignment = 0;
    GLint packBuffer = -1;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &packBuffer);
    EXPECT_EQ(alignment, 4);
    EXPECT_EQ(packBuffer, 0);
}

TEST_F(ReadBackTest, ReadsItsOwnTargetOnASharedFrameBuffer) {
    FrameBuffer* shared = FrameBuffer::create();
    Reader* reader = Reader::create({2, 1}, PXFORMAT_RGB888, shared);
    Reader* other = Reader::create({2, 1}, PXFORMAT_RGB888, shared);
    reader->show(50);
    other->show(60);
    reader->getOutData();
    EXPECT_EQ(bytesOf(reader->getOutData()), (Bytes{1, 2, 3, 50, 50, 50}));
    GLint bound = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(bound, 0);
}

TEST_F(ReadBackTest, LeavesOutAReadThatNeedsMoreThanTheFirstAndSaysSoOnce) {
    Reader* reader = Reader::create({2, 2}, PXFORMAT_RGB888);
    reader->show(10);
    reader->getOutData();
    reader->resetSize({4, 4});
    reader->show(20);
    for (int i = 0; i < 3; ++i) {
        auto out = dirty(48);
        reader->getOutData(out);
        EXPECT_EQ(bytesOf(out), Bytes(48, 0));
    }
    auto rgba = dirty(16);
    reader->getOutData(rgba, {2, 2}, PXFORMAT_RGBA8888);
    EXPECT_EQ(bytesOf(rgba), Bytes(16, 0));
    EXPECT_EQ(logLines(), 1U);

    reader->resetSize({2, 1});
    reader->show(30);
    EXPECT_EQ(bytesOf(reader->getOutData()), (Bytes{1, 2, 3, 10, 10, 10})) << "the last read that was done";
    EXPECT_EQ(bytesOf(reader->getOutData()), (Bytes{1, 2, 3, 30, 30, 30}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(ReadBackTest, AFormatThatGLDoesNotGiveInTheTablesBytesIsZeroAndDoesNotSpoilLaterReads) {
    Reader* reader = Reader::create({2, 2}, PXFORMAT_RGBA8888);
    reader->show(10);
    for (const PxFormat format : {PXFORMAT_RGB565, PXFORMAT_RGBA4444, PXFORMAT_S3TC_DXT1, PXFORMAT_NONE}) {
        auto out = dirty(16);
        reader->getOutData(out, {2, 2}, format);
        EXPECT_EQ(bytesOf(out), Bytes(16, 0)) << format;
    }
    auto out = dirty(16);
    reader->getOutData(out, {0, 9}, PXFORMAT_RGBA8888);
    EXPECT_EQ(bytesOf(out), Bytes(16, 0));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    reader->getOutData();
    EXPECT_EQ(bytesOf(reader->getOutData())[4], 10);

    Reader* red = Reader::create({5, 1}, PXFORMAT_R8);
    red->show(77);
    red->getOutData();
    EXPECT_EQ(bytesOf(red->getOutData()), (Bytes{1, 77, 77, 77, 77}));
}

TEST_F(ReadBackTest, PartsLieOneBehindAnotherInOneBlock) {
    Reader* reader = Reader::create({4, 4}, PXFORMAT_RGBA8888);
    reader->show(90);
    const ViewPort parts[] = {{2, 2, 1, 2}, {0, 0, 2, 1}};
    auto out = dirty(16);
    reader->readBack(out, PXFORMAT_RGBA8888, parts, 2);
    reader->readBack(out, PXFORMAT_RGBA8888, parts, 2);
    EXPECT_EQ(bytesOf(out), (Bytes{90, 90, 90, 255, 90, 90, 90, 255, 1, 2, 3, 255, 90, 90, 90, 255}));

    Reader* elsewhere = Reader::create({4, 4}, PXFORMAT_RGBA8888);
    elsewhere->show(33);
    reader->readBack(out, PXFORMAT_RGBA8888, parts, 2, elsewhere->getFrameBuffer());
    reader->readBack(out, PXFORMAT_RGBA8888, parts, 2);
    EXPECT_EQ(bytesOf(out)[0], 33);
}

TEST_F(ReadBackTest, NeverReadsIntoMemoryDirectlyAndReusesItsTwoBuffers) {
    ZV_NEEDS_RECORDER();
    ZV_NEEDS_ALLOCATION_COUNTER();
    Reader* reader = Reader::create({4, 4}, PXFORMAT_RGBA8888);
    reader->show(1);
    auto out = dirty(64);
    reader->getOutData(out);
    reader->getOutData(out);
    GLCallRecorder calls;
    std::size_t allocations = 0;
    {
        const AllocationCounter counter;
        reader->getOutData(out);
        reader->getOutData(out);
        allocations = counter.allocations();
    }
    EXPECT_EQ(allocations, 0U);
    EXPECT_EQ(calls.countObjectCalls(), 0U);
    EXPECT_EQ(calls.count("glBufferData"), 0U);
    ASSERT_EQ(calls.count("glReadPixels"), 2U);
    std::vector<long long> packed;
    for (const GLCall& call : calls.callsOf("glBindBuffer")) {
        packed.push_back(call.integer(1));
    }
    ASSERT_EQ(packed.size(), 6U);
    EXPECT_NE(packed[0], packed[1]) << "never maps the buffer of the read just started";
    EXPECT_EQ(packed[0], packed[4]);
    EXPECT_EQ(packed[1], packed[3]);
    EXPECT_EQ(packed[2], 0);
}

}  // namespace
}  // namespace zv::test
