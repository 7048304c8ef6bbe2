#include "effects/Yuv420RenderTexture.h"

#include <algorithm>

#include "core/Mat4.h"
#include "core/RefCreate.h"
#include "effects/ProgramLoan.h"
#include "gl/FrameBuffer.h"
#include "gl/Program.h"
#include "gl/RenderState.h"
#include "gl/RenderTargetTexture.h"
#include "gl/Texture2D.h"
#include "scene/TargetPass.h"

namespace zv {

namespace {

constexpr PxFormat kPackedFormat = PXFORMAT_RGBA8888;
constexpr std::size_t kTexelBytes = 4;

/// A GL frame buffer of somebody else. Never attached to: what it draws into is its owner's business.
class WrappedFrameBuffer : public FrameBuffer {
public:
    static FrameBuffer* create(int name) {
        return createRef<WrappedFrameBuffer>([name](WrappedFrameBuffer& frameBuffer) {
            frameBuffer.setFboBindingDirty(false);
            return frameBuffer.init(name, false);
        });
    }
};

Program* createPassProgram(const char* vertexFile, const char* fragmentFile) {
    Program* program = Program::createWithFile(vertexFile, fragmentFile);
    if (program != nullptr) {
        program->use();
        program->setUniform("u_ImageMatrix", Mat4::IDENTITY);
    }
    return program;
}

/// The two regions of a packed frame, in the order of its bytes.
struct Regions {
    explicit Regions(const TVec<2, unsigned short>& outSize) {
        // A picture of one row has a row of chroma too: the height is rounded up to hold it.
        const int chromaRows = std::max(outSize.y / 3, std::min<int>(outSize.y, 1));
        const int lumaRows = outSize.y * 2 / 3;
        parts[0].origin.y = static_cast<short>(chromaRows);
        parts[0].size = {outSize.x, static_cast<unsigned short>(lumaRows)};
        parts[1].size = {outSize.x, static_cast<unsigned short>(chromaRows)};
    }
    ViewPort parts[2];
};

}  // namespace

Yuv420RenderTexture* Yuv420RenderTexture::create(const TVec<2, unsigned short>& size,
                                                 FrameBuffer* frameBuffer, int frameBufferId) {
    return createRef<Yuv420RenderTexture>(
        [&](Yuv420RenderTexture& node) { return node.init(size, frameBuffer, frameBufferId); });
}

Yuv420RenderTexture::Yuv420RenderTexture() = default;

Yuv420RenderTexture::~Yuv420RenderTexture() = default;

bool Yuv420RenderTexture::init(const TVec<2, unsigned short>& size, FrameBuffer* frameBuffer,
                               int frameBufferId) {
    RenderTexture* inner = RenderTexture::create(size, frameBuffer, PXFORMAT_RGB888);
    if (inner == nullptr || !RenderTexture::init(size, frameBuffer, PXFORMAT_RGB888)) {
        return false;
    }
    if (frameBufferId >= 0) {
        mExternalFrameBuffer.set(WrappedFrameBuffer::create(frameBufferId));
    }
    addRenderTexture(inner);
    setup();
    mYProgram.set(createPassProgram("ZvRGB2YUV420_Y.vert", "ZvRGB2YUV420_Y.frag"));
    mUvProgram.set(createPassProgram("ZvRGB2YUV420_UV.vert", "ZvRGB2YUV420_UV.frag"));
    sendPixelSize();
    setColorConversion(COLOR_CONVERSION_601_VIDEO);
    return true;
}

void Yuv420RenderTexture::sendPixelSize() {
    const TVec<2, unsigned short> size = getSize();
    for (Program* program : {mYProgram.get(), mUvProgram.get()}) {
        if (program != nullptr && size.x > 0 && size.y > 0) {
            program->use();
            program->setUniform1f("u_PixelWidth", 1.0F / static_cast<float>(size.x));
            program->setUniform1f("u_PixelHeight", 1.0F / static_cast<float>(size.y));
        }
    }
}

void Yuv420RenderTexture::setColorConversion(ColorConversion conversion) {
    sendRgbToYuv(mYProgram.get(), conversion);
    sendRgbToYuv(mUvProgram.get(), conversion);
}

TVec<2, unsigned short> Yuv420RenderTexture::getOutSize() const {
    const TVec<2, unsigned short> size = getSize();
    return {static_cast<unsigned short>((size.x + 3) >> 2),
            static_cast<unsigned short>((3 * size.y + 1) >> 1)};
}

RenderTarget* Yuv420RenderTexture::getRenderTarget() {
    const TVec<2, unsigned short> outSize = getOutSize();
    // Asked of the sprite first: the base would make a target of the picture's size.
    if (Sprite::getTexture(0) == nullptr || RenderTexture::getRenderTarget()->getSize() != outSize) {
        RenderTarget* target = RenderTargetTexture::create(outSize, kPackedFormat);
        if (target == nullptr) {
            return nullptr;
        }
        setRenderTarget(target);
    }
    return RenderTexture::getRenderTarget();
}

Texture2D* Yuv420RenderTexture::getTexture(unsigned char index) {
    getRenderTarget();
    return Sprite::getTexture(index);
}

void Yuv420RenderTexture::resetSize(const TVec<2, unsigned short>& size) {
    MutilRenderTexture::resetSize(size);
    sendPixelSize();
}

void Yuv420RenderTexture::onDrawSelf(const Mat4& matrix) {
    if (mExternalFrameBuffer.get() == nullptr) {
        MutilRenderTexture::onDrawSelf(matrix);
    }
}

void Yuv420RenderTexture::renderToTexture() {
    if (getRenderTextures().empty()) {
        return;
    }
    RenderTexture& inner = *getRenderTextures().front();
    inner.renderToTexture();
    if (FrameBuffer* external = mExternalFrameBuffer.get()) {
        RenderState* state = RenderState::getCurrent();
        state->pushFrameBuffer(external);
        drawPasses(inner);
        state->popFrameBuffer();
    } else if (RenderTarget* target = getRenderTarget()) {
        const TargetPass pass(*getFrameBuffer(), *target);
        drawPasses(inner);
    }
}

void Yuv420RenderTexture::drawPasses(RenderTexture& inner) {
    RenderState* state = RenderState::getCurrent();
    const Regions regions(getOutSize());
    ProgramLoan loan(inner, mYProgram.get());
    state->pushViewPort(regions.parts[0], false);
    inner.onDraw(Mat4::IDENTITY);
    loan.change(mUvProgram.get());
    state->pushViewPort(regions.parts[1], false);
    inner.onDraw(Mat4::IDENTITY);
    state->popViewPort(2);
}

UniqueDataPtr<unsigned char> Yuv420RenderTexture::getOutData() {
    if (mExternalFrameBuffer.get() == nullptr && getRenderTarget() == nullptr) {
        return {};
    }
    const TVec<2, unsigned short> outSize = getOutSize();
    UniqueDataPtr<unsigned char> out(std::size_t{outSize.x} * outSize.y * kTexelBytes);
    getOutData(out);
    return out;
}

void Yuv420RenderTexture::getOutData(UniqueDataPtr<unsigned char>& out) {
    const Regions regions(getOutSize());
    readBack(out, kPackedFormat, regions.parts, 2, mExternalFrameBuffer.get());
}

}  // namespace zv
