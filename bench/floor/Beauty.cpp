#include "bench/floor/Beauty.h"

#include <GL/glew.h>

#include <cstring>

#include "bench/Frame.h"

namespace zv::bench::floor {

namespace {

constexpr const char* kPlaceFile = "ZvShaderTexturePosition.vert";
constexpr const char* kTwoFile = "ZvShader2TexturePosition.vert";
constexpr float kBlurStep = 1.0F / 240;
/// BT.601, video range, as columns: weights of red, green and blue, and what is added.
constexpr float kRgbToYuv[16] = {0.256788F, -0.148223F, 0.439216F,  0, 0.504129F, -0.290993F, -0.367788F, 0,
                                 0.097906F, 0.439216F,  -0.071427F, 0, 0.062745F, 0.501961F,  0.501961F,  1};
constexpr float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

}  // namespace

Beauty::Beauty(const std::string& resources, const Frame& frame)
    : mWidth(frame.width),
      mHeight(frame.height),
      mInput(makeTexture(frame.width, frame.height, 3, true, frame.rgb.data())),
      mQuad(makeQuad(false, false)),
      mInputQuad(makeQuad(true, true)),
      mSecondQuad(makeQuad(false, true)) {
    const std::string shaders = resources + "/zv_res/shaders";
    for (Target* half : {&mHalf[0], &mHalf[1], &mMean}) {
        *half = makeTarget(mWidth / 2, mHeight / 2, 3, true);
    }
    for (Target& full : mFull) {
        full = makeTarget(mWidth, mHeight, 3, false);  // read pixel for pixel
    }
    mPacked = makeTarget(mWidth / 4, mHeight * 3 / 2, 4, false);
    makeSmoothing(shaders);
    makeColours(shaders, resources + "/zv_res/lookups");
    makePacking(shaders);
    for (const Pass& pass : mPasses) {
        mGood = mGood && pass.program != 0;
    }
    mBytes.resize(frame.pixels() * 3 / 2);
    glGenBuffers(2, mBuffers);
    for (const GLuint buffer : mBuffers) {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
        glBufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(mBytes.size()), nullptr, GL_DYNAMIC_READ);
    }
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

void Beauty::add(const char* name, const Target& target, unsigned int program, Fetches fetches,
                 unsigned int quad, std::initializer_list<unsigned int> textures) {
    Pass pass{
        name, &target, 0, target.height, program, quad, {}, fetches, 4.0 * target.width * target.height};
    std::size_t slot = 0;
    for (const unsigned int texture : textures) {
        pass.textures[slot++] = texture;
        GLint width = 0;
        GLint height = 0;
        glBindTexture(GL_TEXTURE_2D, texture);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
        pass.bytes += 4.0 * width * height;  // three channels are kept in four bytes
    }
    mPasses.push_back(pass);
}

void Beauty::makeSmoothing(const std::string& shaders) {
    const float across = kBlurStep * static_cast<float>(mWidth) / static_cast<float>(mHeight);
    const unsigned int down = loadProgram(shaders, kPlaceFile, "ZvMeanBlurFilter.frag");
    setUniform(down, "texelWidthOffset", {0.0F});
    setUniform(down, "texelHeightOffset", {across});
    const unsigned int along = loadProgram(shaders, kPlaceFile, "ZvMeanBlurFilter.frag");
    setUniform(along, "texelWidthOffset", {kBlurStep});
    setUniform(along, "texelHeightOffset", {0.0F});
    const unsigned int measure = loadProgram(shaders, kTwoFile, "ZvBeautyMeanFilter.frag");
    const unsigned int blend = loadProgram(shaders, kTwoFile, "ZvBeautyBlendImageFilter.frag");
    setUniform(blend, "blurAlpha", {0.6F});
    setUniform(blend, "u_sharpen", {1.0F});
    setUniform(blend, "widthOffset", {1.0F / static_cast<float>(mWidth)});
    setUniform(blend, "heightOffset", {1.0F / static_cast<float>(mHeight)});

    add("blur, vertical", mHalf[0], down, {4, 0}, mInputQuad, {mInput});
    add("blur, horizontal", mMean, along, {4, 0}, mQuad, {mHalf[0].texture});
    add("skin and deviation", mHalf[0], measure, {2, 0}, mSecondQuad, {mMean.texture, mInput});
    add("blur, vertical", mHalf[1], down, {4, 0}, mQuad, {mHalf[0].texture});
    add("blur, horizontal", mHalf[0], along, {4, 0}, mQuad, {mHalf[1].texture});
    add("smoothing", mFull[0], blend, {6, 0}, mSecondQuad, {mHalf[0].texture, mInput, mMean.texture});
}

unsigned int Beauty::loadTable(const std::string& path) {
    const Pixels table = Pixels::load(path);
    mGood = mGood && table.width == 512 && table.height == 512;
    return makeTexture(table.width, table.height, table.channels, false, table.bytes.data());
}

void Beauty::makeColours(const std::string& shaders, const std::string& lookups) {
    const unsigned int hsv = loadProgram(shaders, kPlaceFile, "ZvShaderHSV.frag");
    setUniform(hsv, "u_hsv_adjust", {1.0F, 1.1F, 1.0F});
    const unsigned int white = loadProgram(shaders, kPlaceFile, "ZvBeautyColorTableFilter.frag");
    setUniform(white, "uniAlpha", {0.3F});
    const unsigned int table = loadProgram(shaders, kPlaceFile, "ZvColorTable512Filter.frag");
    setUniform(table, "intensity", {0.6F});
    setUniform(table, "image_direction", 0);

    add("HSV", mFull[1], hsv, {0, 1}, mQuad, {mFull[0].texture});
    add("whitening", mFull[0], white, {0, 9}, mQuad,
        {mFull[1].texture, loadTable(lookups + "/kel_white.png")});
    add("colour table", mFull[1], table, {0, 9}, mQuad,
        {mFull[0].texture, loadTable(lookups + "/natural-512.png")});
}

void Beauty::makePacking(const std::string& shaders) {
    const unsigned int luma = loadProgram(shaders, "ZvRGB2YUV420_Y.vert", "ZvRGB2YUV420_Y.frag");
    const unsigned int chroma = loadProgram(shaders, "ZvRGB2YUV420_UV.vert", "ZvRGB2YUV420_UV.frag");
    for (const unsigned int program : {luma, chroma}) {
        setMatrix(program, "u_rgbToYuv", kRgbToYuv);
        setMatrix(program, "u_ImageMatrix", kIdentity);
        setUniform(program, "u_PixelWidth", {1.0F / static_cast<float>(mWidth)});
        setUniform(program, "u_PixelHeight", {1.0F / static_cast<float>(mHeight)});
    }
    const int chromaRows = mHeight / 2;
    for (const bool isLuma : {true, false}) {
        add(isLuma ? "luma of I420" : "chroma of I420", mPacked, isLuma ? luma : chroma,
            isLuma ? Fetches{0, 4} : Fetches{0, 16}, mQuad, {mFull[1].texture});
        Pass& pass = mPasses.back();
        pass.y = isLuma ? chromaRows : 0;
        pass.height = isLuma ? mHeight : chromaRows;
        pass.bytes -= 4.0 * mPacked.width * (mPacked.height - pass.height);
    }
}

void Beauty::drawPass(std::size_t index) const {
    const Pass& pass = mPasses[index];
    draw(*pass.target, pass.y, pass.height, pass.program, pass.quad,
         {pass.textures[0], pass.textures[1], pass.textures[2]});
}

void Beauty::drawFrame(bool finish) {
    for (std::size_t i = 0; i < mPasses.size(); ++i) {
        drawPass(i);
    }
    if (finish) {
        glFinish();
    }
    read();
}

void Beauty::read() {
    glBindFramebuffer(GL_FRAMEBUFFER, mPacked.frameBuffer);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, mBuffers[mNext]);
    const int chromaRows = mHeight / 2;
    const std::size_t lumaBytes = static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight);
    glReadPixels(0, chromaRows, mPacked.width, mHeight, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glReadPixels(0, 0, mPacked.width, chromaRows, GL_RGBA, GL_UNSIGNED_BYTE,
                 reinterpret_cast<void*>(lumaBytes));
    mNext = 1 - mNext;
    glBindBuffer(GL_PIXEL_PACK_BUFFER, mBuffers[mNext]);
    const auto size = static_cast<GLsizeiptr>(mBytes.size());
    if (const void* mapped = glMapBufferRange(GL_PIXEL_PACK_BUFFER, 0, size, GL_MAP_READ_BIT)) {
        std::memcpy(mBytes.data(), mapped, mBytes.size());
        glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
    }
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

}  // namespace zv::bench::floor
