#pragma once

namespace zv {

/// Attribute locations that every program and every vertex layout keep to.
struct AttribIndex {
    enum Enum {
        POSITION = 0,  ///< "a_position"
        NORMAL,        ///< "a_normal"
        TANGENT,       ///< "a_tangent"
        BITANGENT,     ///< "a_bitangent"
        COLOR0,        ///< "a_color0"
        COLOR1,        ///< "a_color1"
        COLOR2,        ///< "a_color2"
        INDICES,       ///< "a_indices"
        WEIGHT,        ///< "a_weight"
        JOINT,         ///< "a_joint"
        TEXCOORD0,     ///< "a_texcoord0", the coordinates of texture unit 0
        TEXCOORD1,     ///< "a_texcoord1"
        TEXCOORD2,     ///< "a_texcoord2"
        TEXCOORD3,     ///< "a_texcoord3"
        TEXCOORD4,     ///< "a_texcoord4"
        COUNT          ///< how many there are, no location
    };
};

}  // namespace zv
