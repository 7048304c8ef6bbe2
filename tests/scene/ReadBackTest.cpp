#include <algorithm>
#include <vector>

#include "RenderTextureTools.h"
#include "support/AllocationCounter.h"
#include "support/GLCallRecorder.h"
#include "support/LogCapture.h"

namespace zv::test {
namespace {

using ReadBackTest = EngineTest;
using Bytes = std::vector<unsigned char>;
using Block = UniqueDataPtr<unsigned char>;

Bytes bytesOf(const Block& block) {
    return Bytes(block.get(0), block.get(0) + block.size());
}

/// Shows one colour over all, except for its lower left pixel.
class Reader : public RenderTexture {
public:
    static Reader* create(Size16 size, PxFormat format, FrameBuffer* frameBuffer = nullptr) {
        return createRef<Reader>([&](Reader& t) { return t.init(size, frameBuffer, format); });
    }
    void show(unsigned char value) {
        fillRect(*this, 0, 0, 1000, 1000, {value, value, value, 255});
        fillRect(*this, 0, 0, 1, 1, {1, 2, 3, 255});
    }
    /// What a call hands out, of the whole picture or into `size` bytes of memory that was not zero.
    Bytes read() { return bytesOf(getOutData()); }
    Bytes read(std::size_t size, Size16 part, PxFormat format) {
        Block out(size);
        std::fill_n(out.get(0), size, static_cast<unsigned char>(0xAB));
        getOutData(out, part, format);
        return bytesOf(out);
    }
    Bytes read(std::size_t size) { return read(size, getSize(), getPxFormat()); }
    using RenderTexture::readBack;
};

TEST_F(ReadBackTest, HandsOutThePictureOfTheCallBeforeInTightRows) {
    Reader* reader = Reader::create({3, 2}, PXFORMAT_RGB888);
    reader->show(10);
    EXPECT_EQ(reader->read(), Bytes(18, 0)) << "nothing was read before";
    reader->show(20);
    Bytes expected{1, 2, 3, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10};
    EXPECT_EQ(reader->read(), expected);
    EXPECT_EQ(reader->read(4), (Bytes{1, 2, 3, 20}));
    EXPECT_EQ(reader->read(0), Bytes());
    reader->show(10);
    reader->read();
    expected.resize(20, 0);
    EXPECT_EQ(reader->read(20), expected) << "what lies behind the picture is zero";
    EXPECT_EQ(glInteger(GL_PACK_ALIGNMENT), 4);
    EXPECT_EQ(glInteger(GL_PIXEL_PACK_BUFFER_BINDING), 0);
}

TEST_F(ReadBackTest, LeavesOutAReadThatNeedsMoreThanTheFirstAndSaysSoOnce) {
    const LogCapture logged;
    Reader* reader = Reader::create({2, 2}, PXFORMAT_RGB888);
    reader->show(10);
    reader->read();
    reader->resetSize({4, 4});
    reader->show(20);
    EXPECT_EQ(reader->read(48), Bytes(48, 0));
    EXPECT_EQ(reader->read(48), Bytes(48, 0));
    EXPECT_EQ(reader->read(16, {2, 2}, PXFORMAT_RGBA8888), Bytes(16, 0));
    const std::string text = logged.text();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;

    reader->resetSize({2, 1});
    reader->show(30);
    EXPECT_EQ(reader->read(), (Bytes{1, 2, 3, 10, 10, 10})) << "the last read that was done";
    EXPECT_EQ(reader->read(), (Bytes{1, 2, 3, 30, 30, 30}));
}

TEST_F(ReadBackTest, AFormatThatGLDoesNotGiveIsZeroAndSpoilsNoOtherRead) {
    const LogCapture logged;
    Reader* reader = Reader::create({2, 2}, PXFORMAT_RGBA8888);
    reader->show(10);
    for (const PxFormat format : {PXFORMAT_RGB565, PXFORMAT_RGBA4444, PXFORMAT_S3TC_DXT1, PXFORMAT_NONE}) {
        EXPECT_EQ(reader->read(16, {2, 2}, format), Bytes(16, 0)) << format;
    }
    EXPECT_EQ(reader->read(16, {0, 9}, PXFORMAT_RGBA8888), Bytes(16, 0));
    reader->read();
    EXPECT_EQ(reader->read()[4], 10);

    FrameBuffer* shared = FrameBuffer::create();
    Reader* red = Reader::create({5, 1}, PXFORMAT_R8, shared);
    red->show(77);
    Reader::create({5, 1}, PXFORMAT_R8, shared)->show(66);
    red->read();
    EXPECT_EQ(red->read(), (Bytes{1, 77, 77, 77, 77})) << "its own target";
    EXPECT_EQ(glInteger(GL_FRAMEBUFFER_BINDING), 0);
}

TEST_F(ReadBackTest, PartsLieOneBehindAnotherInOneBlock) {
    Reader* reader = Reader::create({4, 4}, PXFORMAT_RGBA8888);
    Reader* elsewhere = Reader::create({4, 4}, PXFORMAT_RGBA8888);
    reader->show(90);
    elsewhere->show(33);
    const ViewPort parts[] = {{2, 2, 1, 2}, {0, 0, 2, 1}};
    Block out(16);
    reader->readBack(out, PXFORMAT_RGBA8888, parts, 2);
    reader->readBack(out, PXFORMAT_RGBA8888, parts, 2, elsewhere->getFrameBuffer());
    EXPECT_EQ(bytesOf(out), (Bytes{90, 90, 90, 255, 90, 90, 90, 255, 1, 2, 3, 255, 90, 90, 90, 255}));
    reader->readBack(out, PXFORMAT_RGBA8888, parts, 2);
    EXPECT_EQ(bytesOf(out)[0], 33);
}

TEST_F(ReadBackTest, NeverReadsIntoMemoryDirectlyAndReusesItsTwoBuffers) {
    Reader* reader = Reader::create({4, 4}, PXFORMAT_RGBA8888);
    reader->show(1);
    Block out(64);
    reader->getOutData(out);
    GLCallRecorder calls;
    const AllocationCounter counter;
    reader->getOutData(out);
    reader->getOutData(out);
    EXPECT_EQ(counter.allocations(), 0U);
    EXPECT_EQ(calls.countObjectCalls() + calls.count("glBufferData"), 0U);
    EXPECT_EQ(calls.count("glReadPixels"), 2U);
    const std::vector<long long> packed = calls.argumentsOf("glBindBuffer", 1);
    ASSERT_EQ(packed.size(), 6U);
    EXPECT_NE(packed[0], packed[1]) << "never maps the buffer of the read just started";
    EXPECT_EQ(packed, (std::vector<long long>{packed[0], packed[1], 0, packed[1], packed[0], 0}));
}

}  // namespace
}  // namespace zv::test
