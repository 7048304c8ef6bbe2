#pragma once

#include <initializer_list>
#include <string>

/// The few lines of GL that the hand-written programs share. Nothing of the engine is used here: what these
/// programs take is what the GL takes. Core profile, on the thread where the context is current; names live
/// as long as the context.
namespace zv::bench::floor {

/// A picture that can be drawn into.
struct Target {
    unsigned int texture = 0;
    unsigned int frameBuffer = 0;
    int width = 0;
    int height = 0;
    int texelBytes = 0;  ///< 3 or 4
};

/// Bytes 3 or 4, RGB or RGBA; `pixels` may be null.
unsigned int makeTexture(int width, int height, int texelBytes, bool linear, const void* pixels);
Target makeTarget(int width, int height, int texelBytes, bool linear);

/// A program of two sources in the dialect of the shader files; 0 and a line on standard error when it fails.
unsigned int buildProgram(const std::string& vertex, const std::string& fragment);
/// Of two of the engine's own shader files.
unsigned int loadProgram(const std::string& shaderFolder, const char* vertexFile, const char* fragmentFile);

/// Sets a float, or as many as are given, of a program.
void setUniform(unsigned int program, const char* name, std::initializer_list<float> values);
void setUniform(unsigned int program, const char* name, int value);
/// 16 floats, column by column.
void setMatrix(unsigned int program, const char* name, const float* values);

/// A quad over the whole view port as a vertex array. Coordinates of slot 0 and 1; `flipped` ones show a
/// picture whose top row is first in memory upright.
unsigned int makeQuad(bool flipped0, bool flipped1);

/// Draws a quad with textures on units 0, 1, ... into what is bound.
void draw(unsigned int program, unsigned int quad, std::initializer_list<unsigned int> textures);
/// The same into a region of a target.
void draw(const Target& target, int y, int height, unsigned int program, unsigned int quad,
          std::initializer_list<unsigned int> textures);

}  // namespace zv::bench::floor
