#include "gl/HostState.h"

#include <GL/glew.h>

#include <map>
#include <string>
#include <vector>

#include "gl/ConfigGL.h"
#include "gl/RenderState.h"
#include "scene/RenderTextureChain.h"
#include "support/GLCallRecorder.h"
#include "support/MediaTest.h"
#include "support/PictureCompare.h"

namespace zv::test {

namespace {

constexpr GLuint kUnits = 4;

bool hasVertexArrays() {
    return ConfigGL::getInstance()->getVersionGL() >= 300;
}
bool hasSamplers() {
    return ConfigGL::getInstance()->getVersionGL() >= 330;
}

struct Named {
    const char* name;
    GLenum value;
};

/// Everything that a host may find changed, by name.
using Snapshot = std::map<std::string, std::vector<GLint>>;

void addIntegers(Snapshot& state, const std::vector<Named>& names, std::size_t count = 1) {
    for (const Named& named : names) {
        std::vector<GLint> values(count);
        glGetIntegerv(named.value, values.data());
        state[named.name] = values;
    }
}

void addUnits(Snapshot& state) {
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    state["active"] = {active};
    for (GLuint unit = 0; unit < kUnits; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        Snapshot one;
        addIntegers(one, {{"2d", GL_TEXTURE_BINDING_2D}, {"rectangle", GL_TEXTURE_BINDING_RECTANGLE}});
        if (hasSamplers()) {
            addIntegers(one, {{"sampler", GL_SAMPLER_BINDING}});
        }
        for (const auto& entry : one) {
            state[entry.first + std::to_string(unit)] = entry.second;
        }
    }
    glActiveTexture(static_cast<GLenum>(active));
}

void addAttributes(Snapshot& state) {
    for (GLuint index = 0; index < 15; ++index) {
        std::vector<GLint> values;
        for (GLenum what : {GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_SIZE,
                            GL_VERTEX_ATTRIB_ARRAY_STRIDE, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING}) {
            GLint value = 0;
            glGetVertexAttribiv(index, what, &value);
            values.push_back(value);
        }
        state["attribute" + std::to_string(index)] = values;
    }
}

Snapshot snapshot(bool isCore) {
    Snapshot state;
    addIntegers(state, {{"program", GL_CURRENT_PROGRAM},
                        {"array", GL_ARRAY_BUFFER_BINDING},
                        {"element", GL_ELEMENT_ARRAY_BUFFER_BINDING},
                        {"pack", GL_PIXEL_PACK_BUFFER_BINDING},
                        {"unpack", GL_PIXEL_UNPACK_BUFFER_BINDING},
                        {"draw", GL_FRAMEBUFFER_BINDING},
                        {"read", GL_READ_FRAMEBUFFER_BINDING},
                        {"blend", GL_BLEND},
                        {"blend source", GL_BLEND_SRC_RGB},
                        {"blend destination", GL_BLEND_DST_RGB},
                        {"blend source alpha", GL_BLEND_SRC_ALPHA},
                        {"blend destination alpha", GL_BLEND_DST_ALPHA},
                        {"equation", GL_BLEND_EQUATION_RGB},
                        {"equation alpha", GL_BLEND_EQUATION_ALPHA},
                        {"scissor", GL_SCISSOR_TEST},
                        {"depth", GL_DEPTH_TEST},
                        {"stencil", GL_STENCIL_TEST},
                        {"cull", GL_CULL_FACE},
                        {"unpack alignment", GL_UNPACK_ALIGNMENT},
                        {"unpack row", GL_UNPACK_ROW_LENGTH},
                        {"unpack rows", GL_UNPACK_SKIP_ROWS},
                        {"unpack pixels", GL_UNPACK_SKIP_PIXELS},
                        {"unpack swap", GL_UNPACK_SWAP_BYTES},
                        {"pack alignment", GL_PACK_ALIGNMENT},
                        {"pack row", GL_PACK_ROW_LENGTH},
                        {"pack rows", GL_PACK_SKIP_ROWS},
                        {"pack pixels", GL_PACK_SKIP_PIXELS},
                        {"pack swap", GL_PACK_SWAP_BYTES}});
    addIntegers(state, {{"view port", GL_VIEWPORT}, {"mask", GL_COLOR_WRITEMASK}}, 4);
    addUnits(state);
    if (!isCore) {
        addIntegers(state, {{"alpha", GL_ALPHA_TEST}});
    }
    if (hasVertexArrays()) {
        addIntegers(state, {{"vertex array", GL_VERTEX_ARRAY_BINDING}});
    }
    if (!isCore || state["vertex array"][0] != 0) {
        addAttributes(state);
    }
    if (hasVertexArrays() && !isCore) {
        glBindVertexArray(0);
        addIntegers(state, {{"element of the default vertex array", GL_ELEMENT_ARRAY_BUFFER_BINDING}});
        glBindVertexArray(static_cast<GLuint>(state["vertex array"][0]));
    }
    return state;
}

GLuint makeHostProgram(bool isCore) {
    const char* vertex = isCore ? "#version 150\nin vec4 v;\nvoid main() { gl_Position = v; }\n"
                                : "#version 120\nattribute vec4 v;\nvoid main() { gl_Position = v; }\n";
    const char* fragment = isCore ? "#version 150\nout vec4 c;\nvoid main() { c = vec4(1.0); }\n"
                                  : "#version 120\nvoid main() { gl_FragColor = vec4(1.0); }\n";
    const GLuint program = glCreateProgram();
    const GLenum kinds[] = {GL_VERTEX_SHADER, GL_FRAGMENT_SHADER};
    const char* sources[] = {vertex, fragment};
    for (std::size_t i = 0; i < 2; ++i) {
        const GLuint shader = glCreateShader(kinds[i]);
        glShaderSource(shader, 1, &sources[i], nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    return program;
}

/// A host that draws with everything, and leaves all of it set and bound.
class PoisonousHost {
public:
    PoisonousHost(GLuint screen, bool isCore, unsigned variant)
        : mScreen(screen), mIsCore(isCore), mVariant(variant) {
        glGenBuffers(5, mBuffers);
        glGenTextures(5, mTextures);
        glGenFramebuffers(1, &mReader);
        mProgram = makeHostProgram(isCore);
        bindObjects();
        setTests();
        setBlending();
        setPixelStore();
        glViewport(3, 2, 1, 1);
        glUseProgram(mProgram);
    }

    ~PoisonousHost() {
        for (GLenum test : {GL_SCISSOR_TEST, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_CULL_FACE, GL_BLEND}) {
            glDisable(test);
        }
        if (!mIsCore) {
            glDisable(GL_ALPHA_TEST);
            glAlphaFunc(GL_ALWAYS, 0.0F);
        }
        glCullFace(GL_BACK);
        glBlendEquation(GL_FUNC_ADD);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glActiveTexture(GL_TEXTURE0);
        glBindFramebuffer(GL_FRAMEBUFFER, mScreen);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        for (GLenum store :
             {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SWAP_BYTES,
              GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS, GL_PACK_SWAP_BYTES}) {
            glPixelStorei(store, 0);
        }
        for (GLuint index = 0; index < 15 && !hasVertexArrays(); ++index) {
            glDisableVertexAttribArray(index);
        }
        if (hasVertexArrays()) {
            glDeleteVertexArrays(1, &mVertexArray);
        }
        if (hasSamplers()) {
            glDeleteSamplers(1, &mSampler);
        }
        glDeleteFramebuffers(1, &mReader);
        glDeleteBuffers(5, mBuffers);
        glDeleteTextures(5, mTextures);
        glUseProgram(0);
        glDeleteProgram(mProgram);
    }

private:
    void bindObjects() {
        for (GLuint unit = 0; unit < kUnits; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            glBindTexture(GL_TEXTURE_2D, mTextures[unit]);
        }
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_RECTANGLE, mTextures[4]);
        glActiveTexture(GL_TEXTURE0 + 2 + mVariant);
        // Allocated: an upload of ours that read from it would not fail, but show zeros.
        for (std::size_t i = 0; i < 5; ++i) {
            glBindBuffer(GL_ARRAY_BUFFER, mBuffers[i]);
            glBufferData(GL_ARRAY_BUFFER, 1 << 16, nullptr, GL_STATIC_DRAW);
        }
        if (hasVertexArrays()) {
            if (!mIsCore) {
                glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mBuffers[4]);
            }
            glGenVertexArrays(1, &mVertexArray);
            glBindVertexArray(mVertexArray);
        }
        glBindBuffer(GL_ARRAY_BUFFER, mBuffers[0]);
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 24, nullptr);
        glEnableVertexAttribArray(3);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mBuffers[1]);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, mBuffers[2]);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, mBuffers[3]);
        glBindFramebuffer(GL_FRAMEBUFFER, mScreen);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, mReader);
        if (hasSamplers()) {
            // Needs mipmap levels that our textures do not have: whatever it samples turns black.
            glGenSamplers(1, &mSampler);
            glSamplerParameteri(mSampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
            for (GLuint unit = 0; unit < kUnits; ++unit) {
                glBindSampler(unit, mSampler);
            }
        }
    }

    void setTests() {
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, 1, 1);
        glEnable(GL_DEPTH_TEST);
        glEnable(GL_STENCIL_TEST);
        glEnable(GL_CULL_FACE);
        glCullFace(GL_FRONT_AND_BACK);
        if (!mIsCore) {
            glEnable(GL_ALPHA_TEST);
            glAlphaFunc(GL_NEVER, 0.0F);
        }
        glColorMask(GL_FALSE, GL_TRUE, mVariant != 0 ? GL_TRUE : GL_FALSE, GL_FALSE);
    }

    void setBlending() {
        if (mVariant == 0) {
            glEnable(GL_BLEND);
        }
        glBlendFuncSeparate(mVariant == 0 ? GL_ZERO : GL_DST_COLOR, GL_ONE, GL_DST_ALPHA, GL_SRC_ALPHA);
        glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MIN);
    }

    void setPixelStore() {
        glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 5);
        glPixelStorei(GL_UNPACK_SKIP_ROWS, 1);
        glPixelStorei(GL_UNPACK_SKIP_PIXELS, 2);
        glPixelStorei(GL_UNPACK_SWAP_BYTES, 1);
        glPixelStorei(GL_PACK_ALIGNMENT, 2);
        glPixelStorei(GL_PACK_ROW_LENGTH, 7);
        glPixelStorei(GL_PACK_SKIP_ROWS, 3);
        glPixelStorei(GL_PACK_SKIP_PIXELS, 1);
        glPixelStorei(GL_PACK_SWAP_BYTES, 1);
    }

    GLuint mScreen;
    bool mIsCore;
    unsigned mVariant;
    GLuint mBuffers[5] = {};
    GLuint mTextures[5] = {};
    GLuint mReader = 0;
    GLuint mProgram = 0;
    GLuint mVertexArray = 0;
    GLuint mSampler = 0;
};

/// Uploads and reads back in the middle of a frame.
struct BusySprite : Sprite {
    std::vector<unsigned char> pixels;
    int uploads = 0;
    void onUpdateSelf(float) override {
        ++uploads;
        for (unsigned char& byte : pixels) {
            byte = static_cast<unsigned char>(byte + 3);
        }
        getTexture(0)->updateWithData(pixels.data(), pixels.size());
    }
    void onDrawSelf(const Mat4& matrix) override {
        Sprite::onDrawSelf(matrix);
        glBindTexture(GL_TEXTURE_RECTANGLE, 0);
        Pixel pixel{};
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
        read.push_back(pixel);
    }
    std::vector<Pixel> read;
};

}  // namespace

class HostStateTest : public MediaTest {
protected:
    bool isCore() const { return kind() == Kind::Core; }

    /// A pipeline with a blended sticker that changes each frame, shown on the screen, too.
    void setUpPipeline() {
        media->init(makeSprite(Picture::noise(kWidth, kHeight)), kSize, makeTexture(Picture(kWidth, kHeight)),
                    true);
        RenderTextureChain* chain = RenderTextureChain::create(kSize, media->getFrameBuffer());
        chain->add(RenderTexture::create(kSize, media->getFrameBuffer(), PXFORMAT_RGBA8888), true, false);
        media->setRenderChain(chain);
        sticker = new BusySprite;
        sticker->autorelease();
        const Picture dots = Picture::noise(3, 3, 5, false);
        sticker->pixels = dots.rgba;
        ASSERT_TRUE(sticker->init(makeTexture(dots), false));
        sticker->setBlendFunc(BlendFunc::ALPHA_NON_PREMULTIPLIED);
        for (unsigned char slot = 1; slot < kUnits; ++slot) {
            sticker->setTexture(makeTexture(dots), slot, nullptr);
        }
        media->addSticker(sticker);
        media->setAutoUpdate(true);
    }

    BusySprite* sticker = nullptr;

    /// The pictures of the first frames, the output's and the screen's in turn.
    template <class BeforeFrame, class AfterFrame>
    std::vector<Picture> play(BeforeFrame&& before, AfterFrame&& after) {
        std::vector<Picture> pictures;
        for (unsigned i = 0; i < 3; ++i) {
            before(i);
            media->render();
            after(i);
            pictures.push_back(output());
            pictures.push_back(shown());
        }
        return pictures;
    }
};

TEST_F(HostStateTest, PoisonedStateNeitherSpoilsThePictureNorIsSpoilt) {
    setUpPipeline();
    const auto nothing = [](unsigned) {};
    const std::vector<Picture> expected = play(nothing, nothing);
    const std::vector<Pixel> expectedPixels = sticker->read;
    TearDown();
    SetUp();

    setUpPipeline();
    media->setKeepHostState(true);
    std::unique_ptr<PoisonousHost> host;
    Snapshot before;
    const auto poison = [&](unsigned frameNumber) {
        host = std::make_unique<PoisonousHost>(screen, isCore(), frameNumber % 2);
        before = snapshot(isCore());
    };
    const auto check = [&](unsigned frameNumber) {
        const Snapshot after = snapshot(isCore());
        for (const auto& entry : before) {
            EXPECT_EQ(after.at(entry.first), entry.second) << entry.first << ", frame " << frameNumber;
        }
        host.reset();
    };
    const std::vector<Picture> actual = play(poison, check);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        expectSame(actual[i], expected[i], "poisoned-" + std::to_string(i));
    }
    EXPECT_EQ(sticker->read, expectedPixels);
}

TEST_F(HostStateTest, ShieldGivesPlainStateAndRestoreTakesBackWhateverWasDoneToIt) {
    for (unsigned variant : {0U, 1U}) {
        const Snapshot plain = snapshot(isCore());
        const PoisonousHost host(screen, isCore(), variant);
        const Snapshot before = snapshot(isCore());
        HostState state;
        state.shield();
        const Snapshot shielded = snapshot(isCore());
        for (const char* name : {"active",         "pack",           "unpack",        "blend",
                                 "equation",       "equation alpha", "scissor",       "depth",
                                 "stencil",        "cull",           "mask",          "unpack alignment",
                                 "unpack row",     "unpack rows",    "unpack pixels", "unpack swap",
                                 "pack alignment", "pack row",       "pack rows",     "pack pixels"}) {
            EXPECT_EQ(shielded.at(name), plain.at(name)) << name;
        }
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        glViewport(7, 7, 7, 7);
        glActiveTexture(GL_TEXTURE0 + 1);
        glBindTexture(GL_TEXTURE_2D, 0);
        glUseProgram(0);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        state.restore();
        EXPECT_EQ(snapshot(isCore()), before) << variant;
    }
}

TEST_F(HostStateTest, PlainStateComesBackFromEveryRenderOperation) {
    setUpPipeline();
    media->setKeepHostState(true);
    frame();
    const Snapshot before = snapshot(isCore());
    media->render();
    media->renderToLast();
    media->renderToScreen();
    EXPECT_EQ(snapshot(isCore()), before);
    EXPECT_EQ(media->getRenderState()->getCurBlend(), BlendFunc::DISABLE)
        << "what was remembered is forgotten";

    // Switched off while a frame is under way, it still ends what it began.
    struct Switch : Node {
        void onUpdateSelf(float) override { ZVMediaEngine::getCurrent()->setKeepHostState(false); }
    };
    auto* node = new Switch;
    node->autorelease();
    media->addSticker(node);
    media->render();
    EXPECT_EQ(snapshot(isCore()), before);
    EXPECT_FALSE(media->isKeepHostState());
}

TEST_F(HostStateTest, CostsNothingWhenOffAndFewCallsWhenOn) {
    ZV_NEEDS_RECORDER();
    setUpPipeline();
    media->setKeepHostState(true);
    frame();
    media->setKeepHostState(false);
    frame();
    GLCallRecorder recorder;
    media->render();
    const std::size_t off = recorder.total();
    EXPECT_EQ(recorder.count("glGetIntegerv"), 1U) << "only the host's frame buffer is asked for";

    media->setKeepHostState(true);
    media->render();
    recorder.clear();
    media->render();
    // Setting the blend function anew each frame belongs to the cost, and where there are both vertex arrays
    // and the old fixed state, two more questions.
    EXPECT_LE(recorder.total() - off, kind() == Kind::Compatibility ? 62U : 60U) << recorder.summary();
    {
        const PoisonousHost host(screen, isCore(), 0);
        recorder.clear();
        media->render();
        EXPECT_LE(recorder.total() - off, 112U) << "with every item away from its default";
    }
}

}  // namespace zv::test
