#include "bench/floor/Prices.h"

#include <GL/glew.h>

#include <cstring>
#include <memory>

#include "bench/Frame.h"
#include "bench/floor/FloorGL.h"

namespace zv::bench::floor {

namespace {

constexpr const char* kVertex =
    "attribute vec4 a_position;\nattribute vec2 a_texcoord0;\nvarying vec2 v_texcoord;\n"
    "void main() { gl_Position = a_position; v_texcoord = a_texcoord0; }\n";
constexpr const char* kFragmentStart =
    "uniform sampler2D ZV_Tex0;\nuniform vec2 u_step;\nvarying vec2 v_texcoord;\nvoid main() { ";

unsigned int fragmentProgram(const std::string& body) {
    return buildProgram(kVertex, kFragmentStart + body + " }\n");
}

/// What a read through two pack buffers keeps.
struct TwoBuffers {
    GLuint names[2] = {};
    int next = 0;
    std::vector<unsigned char> bytes;

    explicit TwoBuffers(std::size_t size) : bytes(size) {
        glGenBuffers(2, names);
        for (const GLuint name : names) {
            glBindBuffer(GL_PIXEL_PACK_BUFFER, name);
            glBufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(size), nullptr, GL_STREAM_READ);
        }
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }
    void read(const Target& target) {
        glBindFramebuffer(GL_FRAMEBUFFER, target.frameBuffer);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, names[next]);
        glReadPixels(0, 0, target.width, target.height, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        next = 1 - next;
        glBindBuffer(GL_PIXEL_PACK_BUFFER, names[next]);
        const void* mapped =
            glMapBufferRange(GL_PIXEL_PACK_BUFFER, 0, static_cast<GLsizeiptr>(bytes.size()), GL_MAP_READ_BIT);
        if (mapped != nullptr) {
            std::memcpy(bytes.data(), mapped, bytes.size());
            glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
        }
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }
};

std::function<void()> pass(const Target& target, unsigned int program, unsigned int quad,
                           unsigned int texture) {
    return [=] { draw(target, 0, target.height, program, quad, {texture}); };
}

}  // namespace

void Price::frame() const {
    order();
    if (waits) {
        glFinish();
    }
}

std::vector<Price> makePrices(const Frame& frame) {
    const int w = frame.width;
    const int h = frame.height;
    const auto pixels = static_cast<double>(frame.pixels());
    const unsigned int linear = makeTexture(w, h, 3, true, frame.rgb.data());
    const unsigned int nearest = makeTexture(w, h, 3, false, frame.rgb.data());
    const Target target = makeTarget(w, h, 3, true);
    const Target rgba = makeTarget(w, h, 4, true);
    const unsigned int quad = makeQuad(true, true);
    const unsigned int copy = fragmentProgram("gl_FragColor = texture2D(ZV_Tex0, v_texcoord);");
    const unsigned int twice = fragmentProgram(
        "gl_FragColor = 0.5 * (texture2D(ZV_Tex0, v_texcoord) + texture2D(ZV_Tex0, v_texcoord + u_step));");
    const unsigned int constant = fragmentProgram("gl_FragColor = vec4(0.5, 0.4, 0.3, 1.0);");
    setUniform(twice, "u_step", {1.0F / static_cast<float>(w), 0.0F});
    draw(rgba, 0, h, copy, quad, {linear});

    const auto buffers = std::make_shared<TwoBuffers>(4 * frame.pixels());
    const auto bytes = std::make_shared<std::vector<unsigned char>>(4 * frame.pixels());
    return {
        {"copy, linear", pass(target, copy, quad, linear), 8 * pixels},
        {"copy, nearest", pass(target, copy, quad, nearest), 8 * pixels},
        {"constant colour", pass(target, constant, quad, linear), 4 * pixels},
        {"two linear fetches", pass(target, twice, quad, linear), 8 * pixels},
        {"two nearest fetches", pass(target, twice, quad, nearest), 8 * pixels},
        {"glReadPixels of RGBA",
         [=] {
             glBindFramebuffer(GL_FRAMEBUFFER, rgba.frameBuffer);
             glReadPixels(0, 0, rgba.width, rgba.height, GL_RGBA, GL_UNSIGNED_BYTE, bytes->data());
         },
         4 * pixels, false},
        {"read of RGBA through two buffers, with copy", [=] { buffers->read(rgba); }, 4 * pixels, false},
        {"upload of RGBA",
         [=, &frame] {
             glActiveTexture(GL_TEXTURE0);
             glBindTexture(GL_TEXTURE_2D, rgba.texture);
             glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, frame.width, frame.height, GL_RGBA, GL_UNSIGNED_BYTE,
                             frame.rgba.data());
         },
         4 * pixels},
    };
}

}  // namespace zv::bench::floor
