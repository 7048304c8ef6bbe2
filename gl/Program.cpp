#include "gl/Program.h"

#include <GL/glew.h>

#include <cstring>

#include "core/FileUtil.h"
#include "core/RefCreate.h"
#include "core/ZVLog.h"
#include "gl/AttribIndex.h"
#include "gl/ConfigGL.h"
#include "gl/DebugLabel.h"
#include "gl/DeletedNames.h"

namespace zv {

const char* const Program::UNIFORM_NAME_MAT_P = "ZV_Mat_P";
const char* const Program::UNIFORM_NAME_MAT_MV = "ZV_Mat_MV";
const char* const Program::UNIFORM_NAME_MAT_MVP = "ZV_Mat_MVP";
const char* const Program::UNIFORM_NAME_SAMPLER0 = "ZV_Tex0";
const char* const Program::UNIFORM_NAME_SAMPLER1 = "ZV_Tex1";
const char* const Program::UNIFORM_NAME_SAMPLER2 = "ZV_Tex2";
const char* const Program::UNIFORM_NAME_SAMPLER3 = "ZV_Tex3";
const char* const Program::PROGRAM_POSITION_TEXTURE_NO_MVP = "program_Position_Texture_noMVP";
const char* const Program::PROGRAM_POSITION_POINT_NO_MVP = "program_Position_point_noMVP";
const char* const Program::PROGRAM_POSITION_LINE_NO_MVP = "program_Position_line_noMVP";

namespace {

constexpr unsigned int NO_PROGRAM = 0xFFFFFFFFu;

/// GL versions, times 100, from which sources are written for the core profile.
constexpr unsigned short GL_CORE_SOURCES = 300;

/// By location.
constexpr const char* ATTRIBUTE_NAMES[AttribIndex::COUNT] = {
    "a_position",  "a_normal",    "a_tangent",   "a_bitangent", "a_color0",
    "a_color1",    "a_color2",    "a_indices",   "a_weight",    "a_joint",
    "a_texcoord0", "a_texcoord1", "a_texcoord2", "a_texcoord3", "a_texcoord4"};

/// What stands before every source but the fragment sources that go to GL alone.
struct SourceHead {
    std::string version;
    std::string precision;
};

SourceHead makeHead(GLenum type) {
    const bool core = ConfigGL::getInstance()->getVersionGL() >= GL_CORE_SOURCES;
    SourceHead head;
    head.version = "#version " + std::to_string(ConfigGL::getInstance()->getVersionShader()) + "\n";
    if (type == GL_VERTEX_SHADER) {
        head.precision = "#define LOWP \n#define MEDIUMP \n";
        if (core) {
            head.version += "#define attribute in\n#define varying out\n";
        }
    } else if (type == GL_FRAGMENT_SHADER) {
        head.precision = "#define LOWP \n#define HIGHP \n";
        if (core) {
            // `varying` is left alone on purpose: GLSL 1.50 still reads it as an input of this stage. A
            // fragment file must not use it as a name of its own.
            head.version +=
                "#define attribute in\n#define gl_FragColor out_color\n#define texture2D texture\n";
            head.precision += "out vec4 out_color;\n";
        }
    }
    return head;
}

std::string readShaderLog(GLuint shader) {
    GLint length = 0;
    if (shader != 0) {
        glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    }
    if (length < 1) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    GLsizei written = 0;
    glGetShaderInfoLog(shader, length, &written, text.data());
    text.resize(static_cast<std::size_t>(written));
    return text;
}

std::string readShaderFile(const std::string& file) {
    FileUtil* files = FileUtil::getInstance();
    const std::string path = "zv_res/shaders/" + file;
    std::string text = files != nullptr ? files->getTextFromFile(path) : std::string();
    if (text.empty()) {
        zvLog("shader file missing or empty: %s",
              files != nullptr ? files->getFullFilePath(path).c_str() : path.c_str());
    }
    return text;
}

}  // namespace

Program* Program::create(const char* vertexSource, const char* fragmentSource) {
    return createRef<Program>([&](Program& p) { return p.init(vertexSource, fragmentSource); });
}

Program* Program::createWithFile(const std::string& vertexFile, const std::string& fragmentFile) {
    const std::string vertexSource = readShaderFile(vertexFile);
    const std::string fragmentSource = readShaderFile(fragmentFile);
    return createRef<Program>([&](Program& p) {
        p.mLabel = vertexFile + " + " + fragmentFile;
        return p.init(vertexSource.c_str(), fragmentSource.c_str());
    });
}

Program::~Program() {
    clear();
}

bool Program::init(const char* vertexSource, const char* fragmentSource) {
    clear();
    mProgram = glCreateProgram();
    if (!compileShader(&mVertexShader, GL_VERTEX_SHADER, vertexSource) ||
        !compileShader(&mFragmentShader, GL_FRAGMENT_SHADER, fragmentSource)) {
        return false;
    }
    glAttachShader(mProgram, mVertexShader);
    glAttachShader(mProgram, mFragmentShader);
    if (link()) {
        setDebugLabel(GL_PROGRAM, mProgram, mLabel);
    }
    updateUniforms();
    return true;
}

bool Program::compileShader(unsigned int* shader, unsigned int type, const char* source) {
    if (source == nullptr) {
        return false;
    }
    const SourceHead head = makeHead(type);
    *shader = glCreateShader(type);
    if (type == GL_FRAGMENT_SHADER && std::strstr(source, "#extension") != nullptr) {
        // GLSL wants this directive before any declaration, and the head declares the output: such a file
        // brings its own #version line and definitions.
        glShaderSource(*shader, 1, &source, nullptr);
    } else {
        const GLchar* parts[] = {head.version.c_str(), head.precision.c_str(), source};
        glShaderSource(*shader, 3, parts, nullptr);
    }
    glCompileShader(*shader);
    return true;
}

void Program::bindBuildInAttribs() {
    for (GLuint location = 0; location < AttribIndex::COUNT; ++location) {
        glBindAttribLocation(mProgram, location, ATTRIBUTE_NAMES[location]);
    }
}

bool Program::link() {
    if (mProgram == 0 || mProgram == NO_PROGRAM) {
        return false;
    }
    bindBuildInAttribs();
    glGetError();  // some drivers complain about names that the program does not use
    clearUniformDatas();
    mAttributes.clear();
    mUniforms.clear();
    GLint linked = GL_FALSE;
    glLinkProgram(mProgram);
    glGetProgramiv(mProgram, GL_LINK_STATUS, &linked);
    if (linked != GL_TRUE) {
        logFailure();
        glDeleteProgram(mProgram);
        mProgram = 0;
        mBuiltins.fill(-1);
        mFlags.setValue(0);
        return false;
    }
    parseAttributes();
    parseUniforms();
    clearShader();
    return true;
}

void Program::logFailure() {
    zvLog("%s does not link.\nprogram: %s\nvertex shader: %s\nfragment shader: %s", mLabel.c_str(),
          getProgramLog().c_str(), getVertexShaderLog().c_str(), getFragmentShaderLog().c_str());
}

void Program::use() {
    glUseProgram(mProgram);
}

void Program::parseAttributes() {
    GLint count = 0;
    GLint longest = 0;
    glGetProgramiv(mProgram, GL_ACTIVE_ATTRIBUTES, &count);
    if (count < 1) {
        return;
    }
    glGetProgramiv(mProgram, GL_ACTIVE_ATTRIBUTE_MAX_LENGTH, &longest);
    std::vector<GLchar> name(static_cast<std::size_t>(longest) + 1);
    for (GLuint index = 0; index < static_cast<GLuint>(count); ++index) {
        Attribute attribute{};
        glGetActiveAttrib(mProgram, index, longest, nullptr, &attribute.size, &attribute.type, name.data());
        attribute.name = name.data();
        attribute.location = glGetAttribLocation(mProgram, name.data());
        mAttributes[attribute.name] = attribute;
    }
}

void Program::parseUniforms() {
    GLint count = 0;
    GLint longest = 0;
    glGetProgramiv(mProgram, GL_ACTIVE_UNIFORMS, &count);
    glGetProgramiv(mProgram, GL_ACTIVE_UNIFORM_MAX_LENGTH, &longest);
    if (count == 0 && longest == 0) {
        return;
    }
    std::vector<GLchar> name(static_cast<std::size_t>(longest) + 1);
    for (GLuint index = 0; index < static_cast<GLuint>(count); ++index) {
        Uniform uniform{};
        glGetActiveUniform(mProgram, index, longest, nullptr, &uniform.size, &uniform.type, name.data());
        if (std::strncmp(name.data(), "ZV_", 3) == 0) {
            continue;
        }
        if (longest > 3) {
            if (char* bracket = std::strrchr(name.data(), '[')) {
                *bracket = '\0';
            }
        }
        uniform.name = name.data();
        uniform.location = glGetUniformLocation(mProgram, name.data());
        mUniforms[uniform.name] = uniform;
    }
}

void Program::updateUniforms() {
    const char* const names[] = {UNIFORM_NAME_MAT_P,    UNIFORM_NAME_MAT_MV,   UNIFORM_NAME_MAT_MVP,
                                 UNIFORM_NAME_SAMPLER0, UNIFORM_NAME_SAMPLER1, UNIFORM_NAME_SAMPLER2,
                                 UNIFORM_NAME_SAMPLER3};
    for (std::size_t i = 0; i < mBuiltins.size(); ++i) {
        mBuiltins[i] = mProgram != 0 ? glGetUniformLocation(mProgram, names[i]) : -1;
    }
    mFlags.setFlag(HAS_MAT_P, mBuiltins[MAT_P] != -1);
    mFlags.setFlag(HAS_MAT_MV, mBuiltins[MAT_MV] != -1);
    mFlags.setFlag(HAS_MAT_MVP, mBuiltins[MAT_MVP] != -1);
    use();
    for (std::size_t unit = 0; unit < 4; ++unit) {
        setUniform(mBuiltins[SAMPLER0 + unit], static_cast<int>(unit));
    }
}

std::string Program::getVertexShaderLog() {
    return readShaderLog(mVertexShader);
}

std::string Program::getFragmentShaderLog() {
    return readShaderLog(mFragmentShader);
}

std::string Program::getProgramLog() {
    GLint length = 0;
    if (mProgram != 0 && mProgram != NO_PROGRAM) {
        glGetProgramiv(mProgram, GL_INFO_LOG_LENGTH, &length);
    }
    if (length < 1) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    GLsizei written = 0;
    glGetProgramInfoLog(mProgram, length, &written, text.data());
    text.resize(static_cast<std::size_t>(written));
    return text;
}

void Program::clear() {
    clearShader();
    if (mProgram != 0 && mProgram != NO_PROGRAM) {
        // A deleted program lives on, with its shaders, for as long as it is the one in use.
        GLint used = 0;
        glGetIntegerv(GL_CURRENT_PROGRAM, &used);
        if (static_cast<unsigned int>(used) == mProgram) {
            glUseProgram(0);
        }
        glDeleteProgram(mProgram);
        DeletedNames::add();
    }
    mProgram = NO_PROGRAM;
    mAttributes.clear();
    mUniforms.clear();
    mBuiltins.fill(-1);
    mFlags.setValue(0);
    clearUniformDatas();
}

void Program::clearShader() {
    for (unsigned int* shader : {&mVertexShader, &mFragmentShader}) {
        if (*shader != 0) {
            glDeleteShader(*shader);
            *shader = 0;
        }
    }
}

void Program::clearUniformDatas() {
    mUniformDatas.clear();
}

}  // namespace zv
