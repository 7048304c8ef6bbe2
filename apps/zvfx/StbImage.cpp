// The body of the picture decoder, for the three kinds of picture that zvfx takes.
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#include <stb_image.h>
