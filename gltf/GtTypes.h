#pragma once

#include <cstdint>
#include <string>

#include "core/UniqueDataPtr.h"

/// The records of a glTF model, as the file has them: indices are not checked against the arrays that they
/// select from, and a member that the file leaves out keeps the default given here.
namespace zv::gltf {

/// How a texture is sampled: GL enum values as in the file, 0 where it gives none.
struct GtSampler {
    int minFilter = 0;
    int magFilter = 0;
    int wrapS = 0;
    int wrapT = 0;
};

struct GtTexture {
    int sampler = 0;
    int source = 0;  ///< index into the images
};

struct GtpbrMetallicRoughness {
    struct {
        int index = 0;  ///< into the textures; a material without a texture shows the first one
        int texCoord = 0;
    } baseColorTexture;
};

struct GtMaterial {
    GtpbrMetallicRoughness pbrMetallicRoughness;
};

/// A range of bytes of one buffer.
struct GtBufferView {
    int buffer = 0;
    unsigned byteOffset = 0;
    unsigned byteStride = 0;  ///< bytes from one element to the next; 0 when they are tightly packed
    unsigned byteLength = 0;
    int target = 0;  ///< GL buffer target, 0 when the file gives none
};

/// An array of numbers in a buffer view.
struct GtAccessor {
    /// The type codes.
    static constexpr std::uint16_t UNKNOWN = 0;  ///< also the matrix types
    static constexpr std::uint16_t SCALAR = 6;
    static constexpr std::uint16_t VEC2 = 11;
    static constexpr std::uint16_t VEC3 = 12;
    static constexpr std::uint16_t VEC4 = 13;

    int bufferView = 0;
    unsigned byteOffset = 0;  ///< from the start of the view
    int count = 0;            ///< as the file claims it, negative values included
    int componentType = 0;    ///< GL type enum
    std::uint16_t type = UNKNOWN;
};

struct GtPrimitive {
    struct Attribute {
        /// The kind codes. An attribute of any other name (a normal, a colour) has the code of a position, so
        /// the position is the first attribute of kind 0.
        static constexpr unsigned char POSITION = 0;
        static constexpr unsigned char WEIGHTS_0 = 8;
        static constexpr unsigned char JOINTS_0 = 9;
        static constexpr unsigned char TEXCOORD_0 = 10;

        unsigned char kind = POSITION;
        int accessor = 0;
    };

    UniqueDataPtr<Attribute> attributes;  ///< in the file's order
    int indices = 0;                      ///< accessor index
    int material = 0;
    int mode = 0;  ///< GL primitive mode; points when the file gives none
};

struct GtMesh {
    UniqueDataPtr<GtPrimitive> primitives;
};

/// What a channel changes.
enum GtAniTargetPath : std::uint8_t {
    GT_PATH_BYTE_OFFSET = 0,  ///< the path ends in "/byteOffset": where the node's indices start
    GT_PATH_VISIBILITY = 1,   ///< any other path: whether the node is drawn
};

struct GtChannel {
    int sampler = 0;
    int node = 0;
    GtAniTargetPath path = GT_PATH_BYTE_OFFSET;
};

struct GtAniSampler {
    int input = 0;               ///< accessor index of the key times, in seconds
    int output = 0;              ///< accessor index of the key values
    UniqueDataPtr<float> times;  ///< the key times, no more of them than the input's view holds
};

/// One property animation.
struct GtExtAnimation {
    UniqueDataPtr<GtChannel> channels;
    UniqueDataPtr<GtAniSampler> samplers;
};

struct GtScene {
    UniqueDataPtr<int> nodes;
};

struct GtNode {
    std::string name;
    int mesh = -1;  ///< -1 for a node that draws nothing
};

/// What animations say about a node for one moment. A fresh entry says nothing: the node is drawn from where
/// its index accessor starts.
struct GtAniNode {
    static constexpr std::int64_t NO_OFFSET = -1;

    int visible = 1;                      ///< 0 hides the node
    std::int64_t byteOffset = NO_OFFSET;  ///< where its indices start in their buffer view, never checked
                                          ///< against its length; NO_OFFSET leaves that to the accessor
};

}  // namespace zv::gltf
