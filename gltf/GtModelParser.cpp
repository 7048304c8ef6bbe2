#include <algorithm>
#include <exception>
#include <string_view>

#include "core/FileUtil.h"
#include "gltf/GtJson.h"
#include "gltf/GtModel.h"
#include "gltf/GtNumbers.h"

namespace zv::gltf {

namespace {

using json::Value;

constexpr const char* EXTENSION = "WERNOX_property_animation_201903";

std::uint16_t accessorType(std::string_view name) {
    if (name == "SCALAR")
        return GtAccessor::SCALAR;
    if (name == "VEC2")
        return GtAccessor::VEC2;
    if (name == "VEC3")
        return GtAccessor::VEC3;
    return name == "VEC4" ? GtAccessor::VEC4 : GtAccessor::UNKNOWN;
}

unsigned char attributeKind(std::string_view name) {
    if (name == "TEXCOORD_0")
        return GtPrimitive::Attribute::TEXCOORD_0;
    if (name == "JOINTS_0")
        return GtPrimitive::Attribute::JOINTS_0;
    return name == "WEIGHTS_0" ? GtPrimitive::Attribute::WEIGHTS_0 : GtPrimitive::Attribute::POSITION;
}

GtAniTargetPath targetPath(std::string_view path) {
    constexpr std::string_view ending = "/byteOffset";
    const bool ends = path.size() >= ending.size() && path.substr(path.size() - ending.size()) == ending;
    return ends ? GT_PATH_BYTE_OFFSET : GT_PATH_VISIBILITY;
}

/// Whether a URI names something below the directory that it is joined to: stickers come from the internet,
/// and what they show or upload is nothing but their own files. Windows takes parts such as ".. " for "..".
bool staysBelow(std::string_view uri) {
    while (!uri.empty()) {
        const std::string_view part = uri.substr(0, uri.find_first_of("/\\"));
        if (part.substr(0, 2) == ".." && part.find_first_not_of(". ") == part.npos)
            return false;
        uri.remove_prefix(std::min(part.size() + 1, uri.size()));
    }
    return true;
}

/// Fills a model from the JSON tree. Whatever it makes room for is taken from one allowance first.
class Parser {
public:
    Parser(GtModel& model, const std::string& directory) : mModel(model), mDirectory(directory) {
        if (mDirectory.back() != '/')
            mDirectory += '/';
    }

    bool read(const std::string& file);

private:
    bool readImages(const Value* root);
    bool readSurfaces(const Value* root);
    bool readBuffers(const Value* root);
    bool readAccessors(const Value* root);
    bool readMeshes(const Value* root);
    bool readPrimitive(const Value* from, GtPrimitive& to);
    bool readScenes(const Value* root);
    bool readAnimations(const Value* root);
    bool readKeyTimes(GtAniSampler& sampler);

    /// The path of a URI member; empty when there is none below the directory.
    std::string pathOf(const Value* object) const {
        std::string uri;
        const bool usable =
            json::read(object, "uri", uri) && !uri.empty() && staysBelow(uri) && uri.find('\0') == uri.npos;
        return usable ? mDirectory + uri : std::string();
    }

    bool take(std::uint64_t count, std::uint64_t bytesEach) {
        if (count > mBytesLeft / bytesEach)
            return false;
        mBytesLeft -= count * bytesEach;
        return true;
    }

    /// Empty elements of a number; false when that is more than the model may have, or than memory.
    template <class T>
    bool makeRoom(UniqueDataPtr<T>& array, std::uint64_t count) {
        if (!take(count, sizeof(T)))
            return false;
        array.resize(static_cast<std::size_t>(count));
        return array.size() == count;
    }

    /// One element for each of the JSON array's, none when it is no array.
    /// @param readElement bool(const Value*, T&)
    template <class T, class Read>
    bool readArray(const Value* list, UniqueDataPtr<T>& array, const Read& readElement) {
        if (list != nullptr && !list->IsArray())
            list = nullptr;
        const rapidjson::SizeType count = list != nullptr ? list->Size() : 0;
        if (!makeRoom(array, count))
            return false;
        for (rapidjson::SizeType i = 0; i < count; ++i) {
            if (!readElement(&(*list)[i], array[i]))
                return false;
        }
        return true;
    }

    GtModel& mModel;
    std::string mDirectory;
    std::uint64_t mBytesLeft = GtModel::MAX_MODEL_BYTES;
};

bool Parser::read(const std::string& file) {
    FileUtil* files = FileUtil::getInstance();
    const std::string text = files != nullptr ? files->getTextFromFile(file) : std::string();
    if (text.empty() || text.size() > GtModel::MAX_TEXT_BYTES)
        return false;
    rapidjson::Document document;
    if (!json::parse(text, document))
        return false;
    json::read(&document, "scene", mModel.scene);
    return readImages(&document) && readSurfaces(&document) && readBuffers(&document) &&
           readAccessors(&document) && readMeshes(&document) && readScenes(&document) &&
           readAnimations(&document);
}

bool Parser::readImages(const Value* root) {
    return readArray(json::find(root, "images"), mModel.images, [this](const Value* from, std::string& to) {
        to = pathOf(from);
        return take(to.size(), 1);
    });
}

bool Parser::readSurfaces(const Value* root) {
    return readArray(json::find(root, "samplers"), mModel.samplers,
                     [](const Value* from, GtSampler& to) {
                         json::read(from, "minFilter", to.minFilter);
                         json::read(from, "magFilter", to.magFilter);
                         json::read(from, "wrapS", to.wrapS);
                         json::read(from, "wrapT", to.wrapT);
                         return true;
                     }) &&
           readArray(json::find(root, "textures"), mModel.textures,
                     [](const Value* from, GtTexture& to) {
                         json::read(from, "sampler", to.sampler);
                         json::read(from, "source", to.source);
                         return true;
                     }) &&
           readArray(json::find(root, "materials"), mModel.materials, [](const Value* from, GtMaterial& to) {
               const Value* base = json::find(json::find(from, "pbrMetallicRoughness"), "baseColorTexture");
               json::read(base, "index", to.pbrMetallicRoughness.baseColorTexture.index);
               json::read(base, "texCoord", to.pbrMetallicRoughness.baseColorTexture.texCoord);
               return true;
           });
}

bool Parser::readBuffers(const Value* root) {
    return readArray(json::find(root, "buffers"), mModel.buffers,
                     [this](const Value* from, UniqueDataPtr<unsigned char>& to) {
                         unsigned length = 0;
                         json::read(from, "byteLength", length);
                         const std::string path = pathOf(from);
                         return !path.empty() && take(length, 1) &&
                                FileUtil::getInstance()->getDataFromFile(to, path) && to.size() == length;
                     });
}

bool Parser::readAccessors(const Value* root) {
    return readArray(json::find(root, "bufferViews"), mModel.bufferViews,
                     [](const Value* from, GtBufferView& to) {
                         json::read(from, "buffer", to.buffer);
                         json::read(from, "byteOffset", to.byteOffset);
                         json::read(from, "byteLength", to.byteLength);
                         json::read(from, "target", to.target);
                         json::read(from, "byteStride", to.byteStride);
                         return true;
                     }) &&
           readArray(json::find(root, "accessors"), mModel.accessors, [](const Value* from, GtAccessor& to) {
               std::string type;
               json::read(from, "bufferView", to.bufferView);
               json::read(from, "byteOffset", to.byteOffset);
               json::read(from, "type", type);
               to.type = accessorType(type);
               json::read(from, "componentType", to.componentType);
               json::read(from, "count", to.count);
               return true;
           });
}

bool Parser::readMeshes(const Value* root) {
    return readArray(json::find(root, "meshes"), mModel.meshes, [this](const Value* from, GtMesh& to) {
        return readArray(
            json::find(from, "primitives"), to.primitives,
            [this](const Value* primitive, GtPrimitive& out) { return readPrimitive(primitive, out); });
    });
}

bool Parser::readPrimitive(const Value* from, GtPrimitive& to) {
    json::read(from, "indices", to.indices);
    json::read(from, "material", to.material);
    json::read(from, "mode", to.mode);
    const Value* attributes = json::find(from, "attributes");
    if (attributes == nullptr || !attributes->IsObject())
        return true;
    if (!makeRoom(to.attributes, attributes->MemberCount()))
        return false;
    std::size_t next = 0;
    for (const auto& member : attributes->GetObject()) {
        GtPrimitive::Attribute& attribute = to.attributes[next++];
        attribute.kind = attributeKind({member.name.GetString(), member.name.GetStringLength()});
        json::toNumber(&member.value, attribute.accessor);
    }
    return true;
}

bool Parser::readScenes(const Value* root) {
    return readArray(json::find(root, "scenes"), mModel.scenes,
                     [this](const Value* from, GtScene& to) {
                         return readArray(json::find(from, "nodes"), to.nodes,
                                          [](const Value* node, int& index) {
                                              index = 0;  // Elements of plain types start with any value.
                                              json::toNumber(node, index);
                                              return true;
                                          });
                     }) &&
           readArray(json::find(root, "nodes"), mModel.nodes, [this](const Value* from, GtNode& to) {
               json::read(from, "name", to.name);
               json::read(from, "mesh", to.mesh);
               return take(to.name.size(), 1);
           });
}

bool Parser::readAnimations(const Value* root) {
    return readArray(json::find(root, "animations"), mModel.extAnimations,
                     [this](const Value* from, GtExtAnimation& to) {
                         const Value* extension = json::find(json::find(from, "extensions"), EXTENSION);
                         return readArray(json::find(extension, "channels"), to.channels,
                                          [](const Value* channel, GtChannel& out) {
                                              json::read(channel, "sampler", out.sampler);
                                              const Value* target = json::find(channel, "target");
                                              json::read(target, "node", out.node);
                                              std::string path;
                                              if (json::read(target, "path", path))
                                                  out.path = targetPath(path);
                                              return true;
                                          }) &&
                                readArray(json::find(extension, "samplers"), to.samplers,
                                          [this](const Value* sampler, GtAniSampler& out) {
                                              json::read(sampler, "input", out.input);
                                              json::read(sampler, "output", out.output);
                                              return readKeyTimes(out);
                                          });
                     });
}

bool Parser::readKeyTimes(GtAniSampler& sampler) {
    const GtNumbers keys(mModel, sampler.input);
    if (!makeRoom(sampler.times, keys.size()))
        return false;
    for (std::size_t i = 0; i < keys.size(); ++i)
        sampler.times[i] = static_cast<float>(keys[i]);
    return true;
}

}  // namespace

bool GtModel::parser(const std::string& directory, const std::string& file) {
    *this = GtModel();
    if (directory.empty())
        return false;
    try {
        return Parser(*this, directory).read(file);
    } catch (const std::exception&) {
        return false;  // A text did not find memory.
    }
}

}  // namespace zv::gltf
