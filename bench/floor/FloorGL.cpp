#include "bench/floor/FloorGL.h"

#include <GL/glew.h>

#include <cstdio>
#include <fstream>
#include <sstream>

namespace zv::bench::floor {

namespace {

constexpr const char* kVertexHead =
    "#version 150\n#define attribute in\n#define varying out\n#define LOWP\n#define MEDIUMP\n";
constexpr const char* kFragmentHead =
    "#version 150\n#define attribute in\n#define gl_FragColor out_color\n#define texture2D texture\n"
    "#define LOWP\n#define HIGHP\nout vec4 out_color;\n";
constexpr GLuint kPosition = 0;
constexpr GLuint kCoord0 = 1;
constexpr GLuint kCoord1 = 2;

GLuint compile(GLenum type, const char* head, const std::string& source) {
    const GLuint shader = glCreateShader(type);
    const GLchar* parts[] = {head, source.c_str()};
    glShaderSource(shader, 2, parts, nullptr);
    glCompileShader(shader);
    return shader;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

unsigned int makeTexture(int width, int height, int texelBytes, bool linear, const void* pixels) {
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    const GLenum format = texelBytes == 3 ? GL_RGB : GL_RGBA;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), width, height, 0, format, GL_UNSIGNED_BYTE,
                 pixels);
    const GLint filter = linear ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return name;
}

Target makeTarget(int width, int height, int texelBytes, bool linear) {
    Target target{makeTexture(width, height, texelBytes, linear, nullptr), 0, width, height, texelBytes};
    glGenFramebuffers(1, &target.frameBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, target.frameBuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target.texture, 0);
    return target;
}

unsigned int buildProgram(const std::string& vertex, const std::string& fragment) {
    const GLuint program = glCreateProgram();
    glAttachShader(program, compile(GL_VERTEX_SHADER, kVertexHead, vertex));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, kFragmentHead, fragment));
    glBindAttribLocation(program, kPosition, "a_position");
    glBindAttribLocation(program, kCoord0, "a_texcoord0");
    glBindAttribLocation(program, kCoord1, "a_texcoord1");
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == 0) {
        char log[1024] = {};
        glGetProgramInfoLog(program, sizeof log, nullptr, log);
        std::fprintf(stderr, "a hand-written program does not link: %s\n", log);
        return 0;
    }
    for (const auto& [sampler, unit] : {std::pair{"ZV_Tex0", 0}, {"ZV_Tex1", 1}, {"ZV_Tex2", 2}}) {
        setUniform(program, sampler, unit);
    }
    return program;
}

unsigned int loadProgram(const std::string& shaderFolder, const char* vertexFile, const char* fragmentFile) {
    return buildProgram(readFile(shaderFolder + "/" + vertexFile),
                        readFile(shaderFolder + "/" + fragmentFile));
}

void setUniform(unsigned int program, const char* name, std::initializer_list<float> values) {
    glUseProgram(program);
    const GLint location = glGetUniformLocation(program, name);
    if (values.size() == 1) {
        glUniform1fv(location, 1, values.begin());
    } else if (values.size() == 2) {
        glUniform2fv(location, 1, values.begin());
    } else {
        glUniform3fv(location, 1, values.begin());
    }
}

void setUniform(unsigned int program, const char* name, int value) {
    glUseProgram(program);
    glUniform1i(glGetUniformLocation(program, name), value);
}

void setMatrix(unsigned int program, const char* name, const float* values) {
    glUseProgram(program);
    glUniformMatrix4fv(glGetUniformLocation(program, name), 1, GL_FALSE, values);
}

unsigned int makeQuad(bool flipped0, bool flipped1) {
    GLuint array = 0;
    GLuint buffer = 0;
    glGenVertexArrays(1, &array);
    glGenBuffers(1, &buffer);
    glBindVertexArray(array);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    float data[24];
    for (int i = 0; i < 4; ++i) {
        const auto x = static_cast<float>(i & 1);
        const auto y = static_cast<float>(i >> 1);
        const float vertex[6] = {2 * x - 1, 2 * y - 1, x, flipped0 ? 1 - y : y, x, flipped1 ? 1 - y : y};
        for (int k = 0; k < 6; ++k) {
            data[6 * i + k] = vertex[k];
        }
    }
    glBufferData(GL_ARRAY_BUFFER, sizeof data, data, GL_STATIC_DRAW);
    for (const GLuint index : {kPosition, kCoord0, kCoord1}) {
        glEnableVertexAttribArray(index);
        glVertexAttribPointer(index, 2, GL_FLOAT, GL_FALSE, 6 * sizeof(float),
                              reinterpret_cast<const void*>(2 * index * sizeof(float)));
    }
    glBindVertexArray(0);
    return array;
}

void draw(unsigned int program, unsigned int quad, std::initializer_list<unsigned int> textures) {
    glUseProgram(program);
    GLenum unit = GL_TEXTURE0;
    for (const unsigned int texture : textures) {
        glActiveTexture(unit++);
        glBindTexture(GL_TEXTURE_2D, texture);
    }
    glBindVertexArray(quad);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void draw(const Target& target, int y, int height, unsigned int program, unsigned int quad,
          std::initializer_list<unsigned int> textures) {
    glBindFramebuffer(GL_FRAMEBUFFER, target.frameBuffer);
    glViewport(0, y, target.width, height);
    draw(program, quad, textures);
}

}  // namespace zv::bench::floor
