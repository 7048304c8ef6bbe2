#include "gltf/GtModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstring>
#include <iterator>
#include <sstream>

#include "gltf/WalkModel.h"
#include "support/TempDir.h"

using namespace zv;
using namespace zv::gltf;

namespace {

/// Lines of make-models.py's dump.
class Dump {
public:
    template <class... Fields>
    void line(const char* name, const Fields&... fields) {
        mText << name;
        ((mText << ' ' << fields), ...);
        mText << '\n';
    }
    static std::string hex(const unsigned char* bytes, std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += "0123456789abcdef"[bytes[i] >> 4];
            text += "0123456789abcdef"[bytes[i] & 15];
        }
        return text;
    }
    static std::string hex(float value) {
        unsigned char bytes[4];
        std::memcpy(bytes, &value, 4);
        const unsigned char bigEndian[] = {bytes[3], bytes[2], bytes[1], bytes[0]};
        return hex(bigEndian, 4);
    }
    std::string text() const { return mText.str(); }

private:
    std::ostringstream mText;
};

template <class T, class Write>
void each(const UniqueDataPtr<T>& array, const Write& write) {
    for (std::size_t i = 0; i < array.size(); ++i)
        write(array[i]);
}

void dumpAccessors(const GtModel& model, Dump& dump) {
    for (std::size_t i = 0; i < model.accessors.size(); ++i) {
        const GtAccessor& a = model.accessors[i];
        dump.line("accessor", a.bufferView, a.byteOffset, a.count, a.componentType, a.type);
        for (const std::size_t element : {0U, 3U, 7U}) {
            const int index = static_cast<int>(i);
            const unsigned char* address = model.getBufferByAccessorIndex(index, element);
            const auto view = static_cast<std::size_t>(a.bufferView);
            const auto offset =
                address
                    ? address - model.buffers[static_cast<std::size_t>(model.bufferViews[view].buffer)].get(0)
                    : -1;
            dump.line("at", offset, model.getReadableBytes(index, element));
        }
    }
}

std::string dumpOf(const GtModel& model, const std::string& directory) {
    Dump dump;
    dump.line("scene", model.scene);
    each(model.images, [&](const std::string& i) {
        EXPECT_EQ(i.substr(0, directory.size() + 1), directory + "/");
        dump.line("image", i.substr(directory.size() + 1));
    });
    each(model.samplers,
         [&](const GtSampler& s) { dump.line("sampler", s.minFilter, s.magFilter, s.wrapS, s.wrapT); });
    each(model.textures, [&](const GtTexture& t) { dump.line("texture", t.sampler, t.source); });
    each(model.materials, [&](const GtMaterial& m) {
        const auto& texture = m.pbrMetallicRoughness.baseColorTexture;
        dump.line("material", texture.index, texture.texCoord);
    });
    each(model.buffers,
         [&](const UniqueDataPtr<unsigned char>& b) { dump.line("buffer", Dump::hex(b.get(0), b.size())); });
    each(model.bufferViews, [&](const GtBufferView& v) {
        dump.line("view", v.buffer, v.byteOffset, v.byteStride, v.byteLength, v.target);
    });
    dumpAccessors(model, dump);
    each(model.meshes, [&](const GtMesh& m) {
        dump.line("mesh");
        each(m.primitives, [&](const GtPrimitive& p) {
            dump.line("primitive", p.indices, p.material, p.mode);
            each(p.attributes,
                 [&](const GtPrimitive::Attribute& a) { dump.line("attribute", int{a.kind}, a.accessor); });
        });
    });
    each(model.extAnimations, [&](const GtExtAnimation& animation) {
        dump.line("animation");
        each(animation.channels,
             [&](const GtChannel& c) { dump.line("channel", c.sampler, c.node, int{c.path}); });
        each(animation.samplers, [&](const GtAniSampler& s) {
            std::string keys;
            each(s.times, [&](float key) { keys += ' ' + Dump::hex(key); });
            dump.line("keys", s.input, std::to_string(s.output) + keys);
        });
    });
    each(model.scenes, [&](const GtScene& s) {
        std::string nodes;
        each(s.nodes, [&](int node) { nodes += ' ' + std::to_string(node); });
        dump.line(("nodes" + nodes).c_str());
    });
    each(model.nodes, [&](const GtNode& n) { dump.line("node", n.mesh, n.name); });
    return dump.text();
}

}  // namespace

TEST(GtModel, HoldsWhatAnotherReaderReads) {
    std::setlocale(LC_ALL, "de_DE.UTF-8");  // Where the machine has it: numbers with a decimal comma.
    GtModel model;                          // One for all: nothing of the model before may stay.
    for (int i = 0; i < 14; ++i) {
        const std::string folder = ZV_TEST_MODELS_DIR "/model" + std::to_string(i);
        ASSERT_TRUE(model.parser(folder, folder + "/model.gltf")) << folder;
        EXPECT_EQ(dumpOf(model, folder), test::readFile(folder + "/dump.txt")) << folder;
    }
    std::setlocale(LC_ALL, "C");
}

namespace {

struct BadCase {
    const char* name;
    bool loads;
    std::string json;
};

std::ostream& operator<<(std::ostream& stream, const BadCase& bad) {
    return stream << bad.name;
}

/// A model of the 16 bytes in "b", with one view, one accessor and one animation of it.
std::string modelWith(const char* view, const char* accessor) {
    return std::string(R"({"buffers":[{"uri":"b","byteLength":16}],"bufferViews":[{)") + view +
           R"(}],"accessors":[{"type":"SCALAR",)" + accessor +
           R"(}],"nodes":[{}],"animations":[{"extensions":{"WERNOX_property_animation_201903":{
           "channels":[{"sampler":0,"target":{"node":0,"path":"/byteOffset"}}],
           "samplers":[{"input":0,"output":0}]}}}]})";
}

std::string buffer(const char* members) {
    return std::string(R"({"buffers":[{)") + members + "}]}";
}

std::string repeated(const char* text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

const BadCase BAD_CASES[] = {
    {"empty", false, ""},
    {"no JSON", false, "{\"scene\":}"},
    {"text behind it", false, "{} {}"},
    {"no object", false, "[1]"},
    {"a number larger than all", false, R"({"scene":1e999})"},
    {"deep arrays", false, repeated("[", 3000000)},
    {"deep and whole", true, "{\"x\":" + repeated("[", 3000000) + repeated("]", 3000000) + "}"},
    {"more text than is parsed", false, "{}" + std::string(GtModel::MAX_TEXT_BYTES, ' ')},
    {"more records than allowed", false, "{\"nodes\":[0" + repeated(",0", 7000000) + "]}"},
    {"arrays that are none", true,
     R"({"scene":"1","images":{},"buffers":7,"nodes":"x","meshes":[[],{"primitives":[3,{"attributes":[1]}]}],
        "scenes":[{"nodes":{}},{"nodes":["a",1.5,-1e9,4294967296]}],"animations":[0,{"extensions":[]}]})"},
    {"a buffer that is missing", false, buffer(R"("uri":"c","byteLength":16)")},
    {"a buffer without a name", false, buffer(R"("byteLength":0)")},
    {"a buffer one byte shorter", false, buffer(R"("uri":"b","byteLength":17)")},
    {"a buffer one byte longer", false, buffer(R"("uri":"b","byteLength":15)")},
    {"a buffer of negative length", false, buffer(R"("uri":"b","byteLength":-16)")},
    {"a buffer outside", false, buffer(R"("uri":"../secret","byteLength":6)")},
    {"a buffer outside, hidden", false, buffer(R"("uri":"sub\\..\\..\\secret","byteLength":6)")},
    {"a buffer's name with a null", false, buffer(R"("uri":"b\u0000","byteLength":16)")},
    {"a view past its buffer", true,
     modelWith(R"("byteOffset":8,"byteLength":4000000000)", R"("count":2000000000,"componentType":5126)")},
    {"a view at the end of its buffer", true,
     modelWith(R"("byteOffset":16,"byteLength":4)", R"("count":1,"componentType":5121)")},
    {"a view behind its buffer", true,
     modelWith(R"("byteOffset":4294967295,"byteLength":4294967295)",
               R"("byteOffset":4294967295,"count":4,"componentType":5126)")},
    {"a stride that wraps around", true,
     modelWith(R"("byteLength":16,"byteStride":4294967295)", R"("count":2147483647,"componentType":5121)")},
    {"a view of no buffer", true, modelWith(R"("buffer":1,"byteLength":8)", R"("count":2)")},
    {"negative indices", true, modelWith(R"("buffer":-1,"byteLength":8)", R"("bufferView":-1,"count":-2)")},
    {"a type of no size", true,
     modelWith(R"("byteLength":16)", R"("count":2147483647,"componentType":5130)")},
    {"text for numbers", true, modelWith(R"("byteLength":"16")", R"("count":"4","componentType":[5126])")},
};

class GtModelBad : public testing::TestWithParam<BadCase> {};

}  // namespace

TEST_P(GtModelBad, IsRefusedOrLoadedAsFarAsItIsSound) {
    test::TempDir parent;
    parent.write("secret", "secret");
    parent.write("in/b", "0123456789abcdef");
    const std::string file = parent.write("in/model.gltf", GetParam().json);
    GtModel model;
    EXPECT_EQ(model.parser(parent.file("in"), file), GetParam().loads);
    test::walkModel(model);
    each(model.extAnimations, [](const GtExtAnimation& animation) {
        each(animation.samplers, [](const GtAniSampler& sampler) { EXPECT_LE(sampler.times.size(), 16U); });
    });
}

INSTANTIATE_TEST_SUITE_P(Files, GtModelBad, testing::ValuesIn(BAD_CASES));

TEST(GtModel, KeepsDefaultsWhereAFileClaimsWhatCannotBe) {
    test::TempDir folder;
    folder.write("b", "0123456789abcdef");
    const std::string file = folder.write("m",
                                          "\xEF\xBB\xBF"
                                          R"({
        "images":[{"uri":"../a.png"},{"uri":"x\\..\\..\\a.png"},{"uri":"..a.png"},{}],
        "buffers":[{"uri":"b","byteLength":16.0}], "bufferViews":[{"byteLength":16,"byteStride":4}],
        "accessors":[{"count":3.0},{"count":3.5}], "scenes":[{"nodes":["1",2147483648,2]}]})");
    GtModel model;
    EXPECT_FALSE(model.parser("", file));
    ASSERT_TRUE(model.parser(folder.path() + "/", file));
    const std::string images[] = {"", "", folder.file("..a.png"), ""};
    EXPECT_TRUE(std::equal(std::begin(images), std::end(images), model.images.get(0)));
    EXPECT_EQ(model.accessors[0].count, 3);
    EXPECT_EQ(model.accessors[1].count, 0);
    const int nodes[] = {0, 0, 2};
    EXPECT_TRUE(std::equal(std::begin(nodes), std::end(nodes), model.scenes[0].nodes.get(0)));
    EXPECT_NE(model.getBufferByAccessorIndex(0, 3), nullptr);
    EXPECT_EQ(model.getBufferByAccessorIndex(0, 4), nullptr);
    EXPECT_EQ(model.getBufferByAccessorIndex(0, std::size_t{1} << 62), nullptr);  // 0 when it wraps around
}
