#pragma once

#include "core/TVec.h"

/// The plain records that are uploaded to GL buffers as they are, with their size as the stride. All start
/// zero-filled.
namespace zv {

struct Color4B {
    unsigned char r = 0;
    unsigned char g = 0;
    unsigned char b = 0;
    unsigned char a = 0;
};

struct Color4F {
    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
    float a = 0.0f;
};

struct V2F_C4B {
    TVec<2, float> vertices;
    Color4B colors;
};

struct V2F_T2F {
    TVec<2, float> vertices;
    TVec<2, float> texCoords;
};

struct V2F_C4B_T2F {
    TVec<2, float> vertices;
    Color4B colors;
    TVec<2, float> texCoords;
};

struct V3F_T2F {
    TVec<3, float> vertices;
    TVec<2, float> texCoords;
};

struct V3F_C4B_T2F {
    TVec<3, float> vertices;
    Color4B colors;
    TVec<2, float> texCoords;
};

struct V3F_T2F_N3F {
    TVec<3, float> vertices;
    TVec<2, float> texCoords;
    TVec<3, float> normals;
};

struct Quad2 {
    TVec<2, float> corners[4];
};

struct T2F_Quad {
    TVec<2, float> texCoords[4];
};

struct V2F_T2F_Quad {
    V2F_T2F vertices[4];
};

struct V3F_T2F_Quad {
    V3F_T2F vertices[4];
};

struct V3F_C4B_T2F_Quad {
    V3F_C4B_T2F vertices[4];
};

static_assert(sizeof(Color4B) == 4 && sizeof(Color4F) == 16, "colours are tightly packed");
static_assert(sizeof(V2F_C4B) == 12, "a vertex record's size is its stride");
static_assert(sizeof(V2F_T2F) == 16, "a vertex record's size is its stride");
static_assert(sizeof(V2F_C4B_T2F) == 20, "a vertex record's size is its stride");
static_assert(sizeof(V3F_T2F) == 20, "a vertex record's size is its stride");
static_assert(sizeof(V3F_C4B_T2F) == 24, "a vertex record's size is its stride");
static_assert(sizeof(V3F_T2F_N3F) == 32, "a vertex record's size is its stride");
static_assert(sizeof(Quad2) == 32 && sizeof(T2F_Quad) == 32, "quads are tightly packed");
static_assert(sizeof(V2F_T2F_Quad) == 64, "quads are tightly packed");
static_assert(sizeof(V3F_T2F_Quad) == 80, "quads are tightly packed");
static_assert(sizeof(V3F_C4B_T2F_Quad) == 96, "quads are tightly packed");

}  // namespace zv
