#include "gl/Program.h"

#include <GL/glew.h>

#include <string>
#include <vector>

#include "core/FileUtil.h"
#include "gl/AttribIndex.h"
#include "gl/ConfigGL.h"
#include "gl/ProgramCache.h"
#include "support/AllocationCounter.h"
#include "support/GLCallRecorder.h"
#include "support/GLTest.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace {

using namespace zv;
using zv::test::GLCallRecorder;
using zv::test::GLTest;
using zv::test::LogCapture;

const char* const VERTEX =
    "attribute vec4 a_position; attribute vec2 a_texcoord0; attribute vec4 a_texcoord4; varying vec2 v;\n"
    "uniform mat4 ZV_Mat_MVP; uniform vec2 u_offsets[3];\n"
    "void main() { v = a_texcoord0 + u_offsets[1] + u_offsets[2] + a_texcoord4.xy;\n"
    "  gl_Position = ZV_Mat_MVP * a_position; }";
const char* const FRAGMENT =
    "varying vec2 v; uniform sampler2D ZV_Tex0; uniform sampler2D ZV_Tex2; uniform float u_alpha;\n"
    "uniform HIGHP float u_wide; uniform int u_choice; uniform mat4 u_matrix; uniform mat3 u_small;\n"
    "uniform vec3 u_colour; uniform vec2 u_size;\n"
    "void main() { gl_FragColor = (texture2D(ZV_Tex0, v) + texture2D(ZV_Tex2, v)) * u_alpha * u_wide\n"
    "  + u_matrix * vec4(u_small * u_colour, float(u_choice) + u_size.x * u_size.y); }";

Mat4 toMat(const float* values) {
    Mat4 matrix;
    matrix.set(values);
    return matrix;
}

class ProgramTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        mVersion = ConfigGL::getInstance()->getVersionGL();
    }
    void TearDown() override {
        ConfigGL::getInstance()->setVersionGL(mVersion);
        GLTest::TearDown();
    }
    /// The texts that GL was given for both shaders.
    static std::pair<std::string, std::string> sourcesOf(const char* vertex, const char* fragment) {
        const GLCallRecorder recorder;
        Program::create(vertex, fragment);
        const auto calls = recorder.callsOf("glShaderSource");
        return calls.size() == 2 ? std::make_pair(calls[0].text, calls[1].text)
                                 : std::make_pair(std::string("not two"), std::string("sources"));
    }

private:
    unsigned short mVersion = 0;
};

TEST_F(ProgramTest, OneSourceGetsTheHeadOfTheContextsGeneration) {
    ZV_NEEDS_RECORDER();
    const std::string vertex = VERTEX, fragment = FRAGMENT;
    const std::string head120 = "#version 120\n", head150 = "#version 150\n";
    const std::string vertexPrecision = "#define LOWP \n#define MEDIUMP \n";
    const std::string fragmentPrecision = "#define LOWP \n#define HIGHP \n";
    const bool core = kind() != Kind::Legacy;

    auto sources = sourcesOf(VERTEX, FRAGMENT);
    if (core) {
        EXPECT_EQ(sources.first,
                  head150 + "#define attribute in\n#define varying out\n" + vertexPrecision + vertex);
        EXPECT_EQ(sources.second,
                  head150 +
                      "#define attribute in\n#define gl_FragColor out_color\n#define texture2D texture\n" +
                      fragmentPrecision + "out vec4 out_color;\n" + fragment);
        ConfigGL::getInstance()->setVersionGL(299);
        sources = sourcesOf(VERTEX, FRAGMENT);
    }
    EXPECT_EQ(sources.first, head120 + vertexPrecision + vertex);
    EXPECT_EQ(sources.second, head120 + fragmentPrecision + fragment);
}

TEST_F(ProgramTest, FragmentWithAnExtensionGoesToGLAlone) {
    ZV_NEEDS_RECORDER();
    const std::string word = "// #extension\n";
    const std::string fragment = "#version 120\n" + word + "void main() { gl_FragColor = vec4(1.0); }";
    const std::string vertex = word + "attribute vec4 a_position; void main() { gl_Position = a_position; }";
    const auto sources = sourcesOf(vertex.c_str(), fragment.c_str());
    EXPECT_EQ(sources.second, fragment);
    EXPECT_EQ(sources.first.find("#version"), 0u) << "vertex sources always get the head";
}

TEST_F(ProgramTest, LinkedProgramKnowsItsVariables) {
    ZV_NEEDS_RECORDER();
    GLCallRecorder recorder;
    Program* program = Program::create(VERTEX, FRAGMENT);
    ASSERT_NE(program, nullptr);
    ASSERT_NE(program->getName(), 0u);
    EXPECT_EQ(program->getProgram(), program->getName() & 0xFFFF);
    EXPECT_EQ(recorder.count("glDeleteShader"), 2u);
    EXPECT_EQ(program->getVertexShaderLog() + program->getFragmentShaderLog(), "");

    const auto bound = recorder.callsOf("glBindAttribLocation");
    const char* const names[] = {"a_position",  "a_normal",    "a_tangent",   "a_bitangent", "a_color0",
                                 "a_color1",    "a_color2",    "a_indices",   "a_weight",    "a_joint",
                                 "a_texcoord0", "a_texcoord1", "a_texcoord2", "a_texcoord3", "a_texcoord4"};
    ASSERT_EQ(bound.size(), 15u);
    for (std::size_t i = 0; i < bound.size(); ++i) {
        EXPECT_EQ(bound[i].integer(1), static_cast<long long>(i));
        EXPECT_EQ(bound[i].text, names[i]);
    }
    EXPECT_EQ(program->getAttrib("a_position")->location, AttribIndex::POSITION);
    EXPECT_EQ(program->getAttrib("a_texcoord4")->location, AttribIndex::TEXCOORD4);
    EXPECT_EQ(program->getAttrib("a_texcoord0")->type, static_cast<unsigned int>(GL_FLOAT_VEC2));
    EXPECT_EQ(program->getAttrib("a_normal"), nullptr);

    const Uniform* array = program->getUniform("u_offsets");
    ASSERT_NE(array, nullptr) << "an array goes by its bare name";
    EXPECT_EQ(array->name, "u_offsets");
    EXPECT_EQ(array->size, 3);
    EXPECT_EQ(array->type, static_cast<unsigned int>(GL_FLOAT_VEC2));
    EXPECT_EQ(array->location, glGetUniformLocation(program->getName(), "u_offsets"));
    EXPECT_EQ(program->getUniform("u_offsets[0]"), nullptr);
    EXPECT_EQ(program->getUniform("ZV_Tex0"), nullptr) << "built-ins are kept apart";

    EXPECT_TRUE(program->hasMatMVP());
    EXPECT_FALSE(program->hasMatMV());
    EXPECT_FALSE(program->hasMatP());
    EXPECT_EQ(program->getBuiltinLocation(Program::MAT_MVP),
              glGetUniformLocation(program->getName(), "ZV_Mat_MVP"));
    EXPECT_EQ(program->getBuiltinLocation(Program::SAMPLER1), -1);
    GLint unit = -1;
    glGetUniformiv(program->getName(), program->getBuiltinLocation(Program::SAMPLER2), &unit);
    EXPECT_EQ(unit, 2);
    EXPECT_EQ(recorder.count("glUniform1i"), 2u);
    GLint used = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &used);
    EXPECT_EQ(static_cast<unsigned int>(used), program->getName());

    glUseProgram(0);
    const unsigned int name = program->getName();
    drainPool();
    EXPECT_FALSE(glIsProgram(name));
}

TEST_F(ProgramTest, EachSetterCallsGLOnlyForAnotherValue) {
    ZV_NEEDS_RECORDER();
    struct Row {
        const char* call;
        const char* uniform;
        std::vector<float> first, second;
        void (*set)(Program& program, int location, const std::string& name, const float* values);
    };
    const std::vector<float> one{1}, two{2};
    const std::vector<float> matrix{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    std::vector<float> otherMatrix = matrix;
    otherMatrix.back() = 0.5f;
    const Row rows[] = {
        {"glUniform1i", "u_choice", one, two,
         [](Program& p, int l, const std::string&, const float* v) {
             p.setUniform(l, static_cast<int>(*v));
         }},
        {"glUniform1i", "u_choice", one, two,
         [](Program& p, int, const std::string& n, const float* v) {
             p.setUniform(n, static_cast<int>(*v));
         }},
        {"glUniform1f", "u_alpha", one, two,
         [](Program& p, int l, const std::string&, const float* v) { p.setUniform1f(l, *v); }},
        {"glUniform1f", "u_alpha", one, two,
         [](Program& p, int, const std::string& n, const float* v) { p.setUniform1f(n, *v); }},
        {"glUniform1f", "u_alpha", one, two,
         [](Program& p, int, const std::string& n, const float* v) {
             p.setUniformValue(n, *v);
             p.setUniformsForBuiltins();
         }},
        {"glUniformMatrix4fv", "u_matrix", matrix, otherMatrix,
         [](Program& p, int l, const std::string&, const float* v) { p.setUniform(l, toMat(v)); }},
        {"glUniformMatrix4fv", "u_matrix", matrix, otherMatrix,
         [](Program& p, int, const std::string& n, const float* v) { p.setUniform(n, toMat(v)); }},
        {"glUniformMatrix4fv", "u_matrix", matrix, otherMatrix,
         [](Program& p, int, const std::string& n, const float* v) { p.setUniformMatrix4fv(n, v, 1); }},
        {"glUniformMatrix3fv",
         "u_small",
         {1, 2, 3, 4, 5, 6, 7, 8, 9},
         {1, 2, 3, 4, 5, 6, 7, 8, 10},
         [](Program& p, int, const std::string& n, const float* v) { p.setUniformMatrix3fv(n, v, 1); }},
        {"glUniform2fv",
         "u_size",
         {1, 2},
         {1, 3},
         [](Program& p, int, const std::string& n, const float* v) { p.setUniform2fv(n, v, 1); }},
        {"glUniform2fv",
         "u_offsets",
         {1, 2, 3, 4, 5, 6},
         {1, 2, 3, 4, 5, 7},
         [](Program& p, int, const std::string& n, const float* v) { p.setUniform2fv(n, v, 3); }},
        {"glUniform3fv",
         "u_colour",
         {1, 2, 3},
         {1, 2, 4},
         [](Program& p, int, const std::string& n, const float* v) { p.setUniform3fv(n, v, 1); }},
    };
    int index = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE("row " + std::to_string(index++) + ", " + row.call);
        Program* program = Program::create(VERTEX, FRAGMENT);
        const int location = program->getUniform(row.uniform)->location;
        GLCallRecorder recorder;
        const auto set = [&](const std::vector<float>& values) {
            recorder.clear();
            row.set(*program, location, row.uniform, values.data());
            EXPECT_EQ(recorder.total(), recorder.count(row.call)) << recorder.summary();
            return recorder.total();
        };
        EXPECT_EQ(set(row.first), 1u);
        EXPECT_EQ(set(row.first), 0u);
        EXPECT_EQ(set(row.second), 1u);
        const auto sent = recorder.callsOf(row.call).at(0);
        EXPECT_EQ(sent.integer(0), location);
        EXPECT_EQ(std::vector<float>(sent.values.begin(), sent.values.end()), row.second);
        recorder.clear();
        row.set(*program, -1, "no such uniform", row.first.data());
        EXPECT_EQ(recorder.total(), 0u);
    }
}

TEST_F(ProgramTest, CachedBlockGrowsButNeverShrinks) {
    struct Probe : Program {
        using Program::updateUniformData;
    } probe;
    const std::vector<unsigned char> bytes{1, 2, 3, 4, 5, 6, 7, 8}, others{1, 2, 3, 4, 5, 6, 7, 9};
    EXPECT_FALSE(probe.updateUniformData(-1, bytes.data(), 4));
    EXPECT_TRUE(probe.updateUniformData(0, bytes.data(), 4));
    EXPECT_FALSE(probe.updateUniformData(0, bytes.data(), 4));
    EXPECT_TRUE(probe.updateUniformData(0, bytes.data(), 8)) << "more bytes than are known";
    EXPECT_FALSE(probe.updateUniformData(0, bytes.data(), 4)) << "the first four are the same";
    EXPECT_TRUE(probe.updateUniformData(0, others.data() + 4, 4));
    EXPECT_TRUE(probe.updateUniformData(0, others.data(), 8)) << "all eight are still compared";
    EXPECT_FALSE(probe.updateUniformData(0, others.data(), 8));
}

TEST_F(ProgramTest, SingleFloatIsRememberedAsWideAsAMatrix) {
    ZV_NEEDS_RECORDER();
    Program* program = Program::create(VERTEX, FRAGMENT);
    const int location = program->getUniform("u_alpha")->location;
    program->setUniform1f(location, 0.0f);
    GLCallRecorder recorder;
    program->setUniform(location, Mat4::ZERO);
    EXPECT_EQ(recorder.total(), 0u) << "the value and sixty zero bytes";
}

TEST_F(ProgramTest, QueuedValuesGoUpOnceAndTheLastOneWins) {
    ZV_NEEDS_RECORDER();
    Program* program = Program::create(VERTEX, FRAGMENT);
    program->setUniformValue("u_alpha", 1.0f);
    program->setUniformValue("u_alpha", 2.0f);
    program->setUniformValue("u_wide", 3.0f);
    program->setUniformValue("u_unknown", 4.0f);
    GLCallRecorder recorder;
    program->setUniformsForBuiltins();
    EXPECT_EQ(recorder.count("glUniform1f"), 2u);
    GLfloat value = 0;
    glGetUniformfv(program->getName(), program->getUniform("u_alpha")->location, &value);
    EXPECT_EQ(value, 2.0f);
    program->setUniform1f("u_alpha", 5.0f);
    recorder.clear();
    program->setUniformsForBuiltins();
    EXPECT_EQ(recorder.total(), 0u) << "nothing is queued any more";

    const std::string wide = "u_wide";
    const zv::test::AllocationCounter counter;
    program->setUniformValue(wide, 6.0f);
    program->setUniformsForBuiltins();
    if (zv::test::AllocationCounter::available()) {
        EXPECT_EQ(counter.allocations(), 0u) << "a value set each frame";
    }
    ASSERT_EQ(recorder.count("glUniform1f"), 1u) << "what was queued before stays as it was set since";
    EXPECT_EQ(recorder.callsOf("glUniform1f")[0].integer(0), program->getUniform(wide)->location);
}

TEST_F(ProgramTest, RelinkingForgetsWhatGLForgot) {
    ZV_NEEDS_RECORDER();
    Program* program = Program::create(VERTEX, FRAGMENT);
    program->setUniform1f("u_alpha", 0.75f);
    ASSERT_TRUE(program->link());
    program->setUniform1f("u_alpha", 0.75f);
    GLfloat value = 0;
    glGetUniformfv(program->getName(), program->getUniform("u_alpha")->location, &value);
    EXPECT_EQ(value, 0.75f);
}

TEST_F(ProgramTest, NullSourceGivesNoProgram) {
    ZV_NEEDS_RECORDER();
    GLCallRecorder recorder;
    EXPECT_EQ(Program::create(nullptr, FRAGMENT), nullptr);
    EXPECT_EQ(Program::create(VERTEX, nullptr), nullptr);
    EXPECT_EQ(recorder.count("glDeleteProgram"), recorder.count("glCreateProgram"));
    EXPECT_EQ(recorder.count("glDeleteShader"), recorder.count("glCreateShader"));
}

TEST_F(ProgramTest, FailedLinkGivesAHarmlessProgramAndOneMessage) {
    ZV_NEEDS_RECORDER();
    LogCapture log;
    Program* program = Program::create(VERTEX, "void main() { gl_FragColor = undeclared_name; }");
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->getName(), 0u);
    EXPECT_EQ(program->getProgram(), 0u);
    EXPECT_NE(log.text().find("undeclared_name"), std::string::npos) << "GL's own words: " << log.text();
    EXPECT_NE(program->getFragmentShaderLog(), "") << "a failed shader stays for inspection";
    EXPECT_EQ(program->getProgramLog(), "");
    const std::string once = log.text();
    EXPECT_EQ(program->getUniform("u_alpha"), nullptr);
    EXPECT_EQ(program->getAttrib("a_position"), nullptr);
    EXPECT_FALSE(program->hasMatMVP());
    EXPECT_EQ(program->getBuiltinLocation(Program::SAMPLER0), -1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    const float values[16] = {};
    GLCallRecorder recorder;
    program->setUniform(program->getBuiltinLocation(Program::MAT_MVP), Mat4());
    program->setUniformMatrix4fv("u_matrix", values, 1);
    program->setUniform2fv("u_size", values, 1);
    program->setUniformValue("u_alpha", 1.0f);
    program->setUniformsForBuiltins();
    EXPECT_EQ(recorder.total(), 0u);
    EXPECT_FALSE(program->link());
    program->use();
    EXPECT_EQ(log.text(), once);
}

TEST_F(ProgramTest, FilesAreReadFromTheShaderFolderAndNamedWhenMissing) {
    const zv::test::TempDir root;
    root.write("zv_res/shaders/good.vert", VERTEX);
    root.write("zv_res/shaders/good.frag", FRAGMENT);
    FileUtil::getInstance()->setZvRoot(root.path());
    LogCapture log;
    const Program* good = Program::createWithFile("good.vert", "good.frag");
    ASSERT_NE(good->getName(), 0u);
    if (GLEW_KHR_debug) {
        char label[256] = "";
        glGetObjectLabel(GL_PROGRAM, good->getName(), sizeof(label), nullptr, label);
        EXPECT_STREQ(label, "good.vert + good.frag") << "what a frame capture shows";
    }
    EXPECT_EQ(log.text(), "");
    const Program* program = Program::createWithFile("good.vert", "absent.frag");
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->getName(), 0u);
    EXPECT_NE(log.text().find("zv_res/shaders/absent.frag"), std::string::npos) << log.text();
    EXPECT_NE(log.text().find("good.vert + absent.frag"), std::string::npos) << log.text();
}

TEST_F(ProgramTest, CacheStartsWithTheDefaultProgram) {
    ProgramCache cache;
    EXPECT_TRUE(cache.init());
    Program* program = cache.get("program_Position_Texture_noMVP");
    ASSERT_NE(program, nullptr);
    EXPECT_NE(program->getName(), 0u);
    EXPECT_EQ(program->getRefCount(), 2u);
    drainPool();
    EXPECT_EQ(program->getRefCount(), 1u) << "the cache alone";
    EXPECT_NE(program->getBuiltinLocation(Program::SAMPLER0), -1);
    EXPECT_FALSE(program->hasMatMVP());
}

}  // namespace
