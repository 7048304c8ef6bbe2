#include "gl/Program.h"

#include <string>
#include <vector>

#include "core/FileUtil.h"
#include "gl/AttribIndex.h"
#include "gl/ConfigGL.h"
#include "gl/GLChecks.h"
#include "support/AllocationCounter.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace zv::test {

namespace {

const char* const VERTEX =
    "attribute vec4 a_position; attribute vec2 a_texcoord0; attribute vec4 a_texcoord4; varying vec2 v;\n"
    "uniform mat4 ZV_Mat_MVP; uniform vec2 u_offsets[3];\n"
    "void main() { v = a_texcoord0 + u_offsets[1] + u_offsets[2] + a_texcoord4.xy;\n"
    "  gl_Position = ZV_Mat_MVP * a_position; }";
const char* const FRAGMENT =
    "varying vec2 v; uniform sampler2D ZV_Tex0; uniform sampler2D ZV_Tex2; uniform float u_alpha;\n"
    "uniform HIGHP float u_wide; uniform int u_choice; uniform mat4 u_matrix; uniform mat3 u_small;\n"
    "uniform vec3 u_colour;\n"
    "void main() { gl_FragColor = (texture2D(ZV_Tex0, v) + texture2D(ZV_Tex2, v)) * u_alpha * u_wide\n"
    "  + u_matrix * vec4(u_small * u_colour, float(u_choice)); }";

Mat4 toMat(const float* values) {
    Mat4 matrix;
    matrix.set(values);
    return matrix;
}

using Sources = std::vector<std::string>;

/// The texts that GL was given for both shaders.
Sources sourcesOf(const std::string& vertex, const std::string& fragment) {
    const GLCallRecorder recorder;
    Program::create(vertex.c_str(), fragment.c_str());
    Sources sources;
    for (const GLCall& call : recorder.callsOf("glShaderSource"))
        sources.push_back(call.text);
    return sources;
}

using ProgramTest = GLTest;

TEST_F(ProgramTest, SourcesGetTheHeadOfTheContextsGeneration) {
    const std::string precision = "#define LOWP \n#define MEDIUMP \n";
    const std::string fragmentPrecision = "#define LOWP \n#define HIGHP \n";
    if (kind() != Kind::Legacy) {
        EXPECT_EQ(sourcesOf(VERTEX, FRAGMENT),
                  (Sources{"#version 150\n#define attribute in\n#define varying out\n" + precision + VERTEX,
                           "#version 150\n#define attribute in\n#define gl_FragColor out_color\n"
                           "#define texture2D texture\n" +
                               fragmentPrecision + "out vec4 out_color;\n" + FRAGMENT}));
    }
    const unsigned short version = ConfigGL::getInstance()->getVersionGL();
    ConfigGL::getInstance()->setVersionGL(299);
    const std::string head = "#version 120\n";
    EXPECT_EQ(sourcesOf(VERTEX, FRAGMENT),
              (Sources{head + precision + VERTEX, head + fragmentPrecision + FRAGMENT}));
    // A fragment with an extension goes to GL alone; vertex sources always get the head.
    const std::string vertex = std::string("// #extension\n") + VERTEX;
    const std::string fragment = head + "// #extension\nvoid main() { gl_FragColor = vec4(1.0); }";
    EXPECT_EQ(sourcesOf(vertex, fragment), (Sources{head + precision + vertex, fragment}));
    ConfigGL::getInstance()->setVersionGL(version);
}

TEST_F(ProgramTest, LinkedProgramKnowsItsVariables) {
    const GLCallRecorder recorder;
    Program* program = Program::create(VERTEX, FRAGMENT);
    const unsigned int name = program->getName();
    ASSERT_NE(name, 0u);
    EXPECT_EQ(program->getProgram(), name & 0xFFFF);
    EXPECT_EQ(recorder.count("glDeleteShader"), 2u);
    EXPECT_EQ(program->getVertexShaderLog() + program->getFragmentShaderLog(), "");

    std::string names;
    for (const GLCall& call : recorder.callsOf("glBindAttribLocation"))
        names += std::to_string(call.integer(1)) + call.text + " ";
    EXPECT_EQ(names,
              "0a_position 1a_normal 2a_tangent 3a_bitangent 4a_color0 5a_color1 6a_color2 7a_indices "
              "8a_weight 9a_joint 10a_texcoord0 11a_texcoord1 12a_texcoord2 13a_texcoord3 14a_texcoord4 ");
    EXPECT_EQ(program->getAttrib("a_texcoord4")->location, AttribIndex::TEXCOORD4);
    EXPECT_EQ(program->getAttrib("a_normal"), nullptr);

    const Uniform* array = program->getUniform("u_offsets");
    ASSERT_NE(array, nullptr) << "an array goes by its bare name";
    EXPECT_TRUE(array->name == "u_offsets" && array->size == 3 && array->type == GL_FLOAT_VEC2);
    EXPECT_EQ(array->location, glGetUniformLocation(name, "u_offsets"));
    EXPECT_EQ(program->getUniform("u_offsets[0]"), nullptr);
    EXPECT_EQ(program->getUniform("ZV_Tex0"), nullptr) << "built-ins are kept apart";
    EXPECT_TRUE(program->hasMatMVP() && !program->hasMatMV() && !program->hasMatP());
    EXPECT_EQ(program->getBuiltinLocation(Program::MAT_MVP), glGetUniformLocation(name, "ZV_Mat_MVP"));
    EXPECT_EQ(program->getBuiltinLocation(Program::SAMPLER1), -1);
    GLint unit = -1;
    glGetUniformiv(name, program->getBuiltinLocation(Program::SAMPLER2), &unit);
    EXPECT_EQ(unit, 2);
    EXPECT_EQ(recorder.count("glUniform1i"), 2u);
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), name);

    drainPool();
    EXPECT_FALSE(glIsProgram(name)) << "goes with its owner although it is in use";
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);
}

TEST_F(ProgramTest, EachSetterCallsGLOnlyForAnotherValue) {
    struct Row {
        const char* call;
        const char* uniform;
        std::size_t values;
        void (*set)(Program& program, int location, const std::string& name, const float* values);
    };
    const Row rows[] = {
        {"1i", "u_choice", 1, [](auto& p, int l, auto&, auto* v) { p.setUniform(l, int(*v)); }},
        {"1i", "u_choice", 1, [](auto& p, int, auto& n, auto* v) { p.setUniform(n, int(*v)); }},
        {"1f", "u_alpha", 1, [](auto& p, int l, auto&, auto* v) { p.setUniform1f(l, *v); }},
        {"1f", "u_alpha", 1, [](auto& p, int, auto& n, auto* v) { p.setUniform1f(n, *v); }},
        {"Matrix4fv", "u_matrix", 16, [](auto& p, int l, auto&, auto* v) { p.setUniform(l, toMat(v)); }},
        {"Matrix4fv", "u_matrix", 16, [](auto& p, int, auto& n, auto* v) { p.setUniform(n, toMat(v)); }},
        {"Matrix4fv", "u_matrix", 16, [](auto& p, int, auto& n, auto* v) { p.setUniformMatrix4fv(n, v, 1); }},
        {"Matrix3fv", "u_small", 9, [](auto& p, int, auto& n, auto* v) { p.setUniformMatrix3fv(n, v, 1); }},
        {"2fv", "u_offsets", 6, [](auto& p, int, auto& n, auto* v) { p.setUniform2fv(n, v, 3); }},
        {"3fv", "u_colour", 3, [](auto& p, int, auto& n, auto* v) { p.setUniform3fv(n, v, 1); }},
    };
    Program* program = Program::create(VERTEX, FRAGMENT);
    float value = 0;
    for (const Row& row : rows) {
        const std::string call = std::string("glUniform") + row.call;
        SCOPED_TRACE("row " + std::to_string(&row - rows) + ", " + call);
        const int location = program->getUniform(row.uniform)->location;
        std::vector<float> values(row.values, ++value);
        GLCallRecorder recorder;
        for (const std::size_t calls : {1u, 0u, 1u}) {
            recorder.clear();
            row.set(*program, location, row.uniform, values.data());
            EXPECT_EQ(recorder.total(), calls) << recorder.summary();
            values.back() = calls == 0 ? ++value : value;
        }
        const GLCall sent = recorder.callsOf(call).at(0);
        EXPECT_EQ(sent.integer(0), location);
        EXPECT_EQ(std::vector<float>(sent.values.begin(), sent.values.end()), values);
        recorder.clear();
        row.set(*program, -1, "no such uniform", values.data());
        EXPECT_EQ(recorder.total(), 0u);
    }
}

TEST_F(ProgramTest, CachedBlockGrowsButNeverShrinks) {
    struct Probe : Program {
        using Program::updateUniformData;
    } probe;
    const char* bytes = "12345678";
    EXPECT_FALSE(probe.updateUniformData(-1, bytes, 4));
    EXPECT_TRUE(probe.updateUniformData(0, bytes, 4));
    EXPECT_TRUE(probe.updateUniformData(0, bytes, 8)) << "more bytes than are known";
    EXPECT_FALSE(probe.updateUniformData(0, bytes, 4)) << "the first four are the same";
    EXPECT_TRUE(probe.updateUniformData(0, "abcd", 4));
    EXPECT_TRUE(probe.updateUniformData(0, bytes, 4));
    EXPECT_FALSE(probe.updateUniformData(0, bytes, 8)) << "the other four are still known";

    Program* program = Program::create(VERTEX, FRAGMENT);
    const int location = program->getUniform("u_alpha")->location;
    program->setUniform1f(location, 0.0f);
    const GLCallRecorder recorder;
    program->setUniform(location, Mat4::ZERO);
    EXPECT_EQ(recorder.total(), 0u) << "a single float is remembered with sixty zero bytes";
}

TEST_F(ProgramTest, QueuedValuesGoUpOnceAndTheLastOneWins) {
    Program* program = Program::create(VERTEX, FRAGMENT);
    program->setUniformValue("u_alpha", 1.0f);
    program->setUniformValue("u_alpha", 2.0f);
    program->setUniformValue("u_wide", 3.0f);
    program->setUniformValue("u_unknown", 4.0f);
    GLCallRecorder recorder;
    program->setUniformsForBuiltins();
    EXPECT_EQ(recorder.count("glUniform1f"), 2u);
    EXPECT_EQ(valueInGL(*program, "u_alpha"), 2.0f);
    program->setUniform1f("u_alpha", 5.0f);
    const std::string wide = "u_wide";
    recorder.clear();
    const AllocationCounter counter;
    program->setUniformValue(wide, 6.0f);
    program->setUniformsForBuiltins();
    EXPECT_EQ(counter.allocations(), 0u) << "a value set each frame";
    EXPECT_EQ(recorder.count("glUniform1f"), 1u) << "what was queued before stays as it was set since";
    EXPECT_EQ(valueInGL(*program, "u_alpha"), 5.0f);

    ASSERT_TRUE(program->link());
    program->setUniform1f("u_alpha", 5.0f);
    EXPECT_EQ(valueInGL(*program, "u_alpha"), 5.0f) << "relinking forgets what GL forgot";
}

TEST_F(ProgramTest, NullSourceGivesNoProgram) {
    const GLCallRecorder recorder;
    EXPECT_EQ(Program::create(nullptr, FRAGMENT), nullptr);
    EXPECT_EQ(Program::create(VERTEX, nullptr), nullptr);
    EXPECT_EQ(recorder.count("glDeleteProgram"), recorder.count("glCreateProgram"));
    EXPECT_EQ(recorder.count("glDeleteShader"), recorder.count("glCreateShader"));
}

TEST_F(ProgramTest, FailedLinkGivesAHarmlessProgramAndOneMessage) {
    const LogCapture log;
    Program* program = Program::create(VERTEX, "void main() { gl_FragColor = undeclared_name; }");
    ASSERT_NE(program, nullptr);
    EXPECT_TRUE(program->getName() == 0u && program->getProgram() == 0u);
    const std::string once = log.text();
    EXPECT_NE(once.find("undeclared_name"), std::string::npos) << "GL's own words: " << once;
    EXPECT_NE(program->getFragmentShaderLog(), "") << "a failed shader stays for inspection";
    EXPECT_EQ(program->getProgramLog(), "");
    EXPECT_TRUE(program->getUniform("u_alpha") == nullptr && program->getAttrib("a_position") == nullptr);
    EXPECT_TRUE(!program->hasMatMVP() && program->getBuiltinLocation(Program::SAMPLER0) == -1);
    const GLCallRecorder recorder;
    program->setUniform(program->getBuiltinLocation(Program::MAT_MVP), Mat4());
    program->setUniformMatrix4fv("u_matrix", Mat4().m, 1);
    program->setUniformValue("u_alpha", 1.0f);
    program->setUniformsForBuiltins();
    EXPECT_EQ(recorder.total(), 0u);
    EXPECT_FALSE(program->link());
    program->use();
    EXPECT_EQ(log.text(), once);
}

TEST_F(ProgramTest, FilesAreReadFromTheShaderFolderAndNamedWhenMissing) {
    const TempDir root;
    root.write("zv_res/shaders/good.vert", VERTEX);
    root.write("zv_res/shaders/good.frag", FRAGMENT);
    FileUtil::getInstance()->setZvRoot(root.path());
    const LogCapture log;
    const Program* good = Program::createWithFile("good.vert", "good.frag");
    ASSERT_NE(good->getName(), 0u);
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(Program::createWithFile("good.vert", "absent.frag")->getName(), 0u);
    for (const char* words : {"zv_res/shaders/absent.frag", "good.vert + absent.frag"})
        EXPECT_NE(log.text().find(words), std::string::npos) << log.text();
}

}  // namespace

}  // namespace zv::test
