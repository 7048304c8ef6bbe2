#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

#include "core/UniqueDataPtr.h"
#include "core/ZVExport.h"
#include "gltf/GtTypes.h"

namespace zv::gltf {

/// One glTF 2.0 model as plain arrays, read from a .gltf file and its external buffer files: the subset that
/// stickers need. It makes no GL objects. Of animations it knows those of the extension
/// "WERNOX_property_animation_201903" alone.
///
/// Files are not trusted. The records hold what the file claims; nothing here reads outside a buffer for it,
/// and the operations answer null, 0 or false where a claim does not hold.
class ZV_API GtModel {
public:
    /// Bytes that the buffers and key times of one model may have together.
    static constexpr std::uint64_t MAX_MODEL_BYTES = 256ull * 1024 * 1024;
    /// Bytes of the largest .gltf file that is parsed: in memory its values take several times as much.
    static constexpr std::uint64_t MAX_TEXT_BYTES = 16ull * 1024 * 1024;

    GtModel();
    GtModel(const GtModel&) = delete;
    GtModel& operator=(const GtModel&) = delete;
    GtModel(GtModel&&) noexcept;
    GtModel& operator=(GtModel&&) noexcept;
    ~GtModel();

    /// Replaces what the model holds by that of a file. Nothing is logged.
    ///
    /// False when the file has no text or too much of it or is not a JSON object, when a buffer file cannot
    /// be read or has another size than "byteLength", and when the model is larger than MAX_MODEL_BYTES or
    /// than memory. The arrays read so far stay then; the model is of no use. Everything else is lenient: a
    /// member that is missing, of another type or out of its field's range keeps its default.
    ///
    /// URIs are joined to the directory as they are, so neither data URIs nor percent escapes are decoded.
    /// One that climbs out of the directory with ".." counts as a file that cannot be read (a buffer) or
    /// stays empty (an image).
    /// @param directory where URIs start; not empty
    /// @param file the path of the .gltf file
    bool parser(const std::string& directory, const std::string& file);

    /// The address of an element of an accessor; null where it lies outside its buffer or an index does not
    /// exist. Only getReadableBytes() tells how far the data goes from there.
    ///
    /// When the view has no stride every element has the first one's address: who walks tightly packed data
    /// advances by the component's size (getGLEnumTypeSize()).
    unsigned char* getBufferByAccessorIndex(int accessor, std::size_t element) const;

    /// Bytes from the address above to the end of the buffer view, as far as the buffer holds that; 0 where
    /// the address is null or past the view.
    std::size_t getReadableBytes(int accessor, std::size_t element) const;

    /// Adds what one animation says at a time to the entries of the nodes that it animates, making those that
    /// are missing. True when any channel applied.
    ///
    /// - Key times are seconds. The key in force is the last one at or before the time; before the first key
    ///   the first value holds. Values step, they are never interpolated.
    /// - The animation repeats: its span goes from 0 to the latest key of its channels, so that key closes
    ///   the last step and its own value is not seen. Without a key after 0 nothing repeats.
    /// - A channel to "/byteOffset" sets the entry's offset, any other its visibility (0 hides). Neither
    ///   touches the other field. Where two channels set one field of a node, the later one holds.
    /// - Values are read like key times: tightly packed, and 0 for signed 8 and 16 bit types. With fewer
    ///   values than keys the last value holds on. A channel without keys, values, sampler or node is left
    ///   out, as is one whose offset is negative or has more than 32 bits.
    /// - A time that is not finite counts as 0. Key times are taken to rise; among others some key is chosen.
    ///
    /// Allocates only for entries that it makes: who calls this every frame resets the entries to GtAniNode()
    /// instead of erasing them, which means the same.
    /// @param animation index into extAnimations
    bool getExtAniChannal(float time, int animation, std::unordered_map<int, GtAniNode>& out) const;

    UniqueDataPtr<std::string> images;  ///< paths; empty for an image that names no file in the directory
    UniqueDataPtr<GtSampler> samplers;
    UniqueDataPtr<GtTexture> textures;
    UniqueDataPtr<GtMaterial> materials;
    UniqueDataPtr<UniqueDataPtr<unsigned char>> buffers;
    UniqueDataPtr<GtBufferView> bufferViews;
    UniqueDataPtr<GtAccessor> accessors;
    UniqueDataPtr<GtMesh> meshes;
    UniqueDataPtr<GtExtAnimation> extAnimations;  ///< one for each animation, empty without the extension
    UniqueDataPtr<GtScene> scenes;
    UniqueDataPtr<GtNode> nodes;
    int scene = 0;  ///< index of the default scene
};

}  // namespace zv::gltf
