#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <string>
#include <utility>

#include "core/Flag.h"
#include "core/HashString.h"
#include "core/Vec4.h"
#include "core/VertexFormats.h"

using zv::HashString;

namespace {

/// What a caller that edits the text has, and a way to force a collision.
struct EditableHashString : HashString {
    using HashString::HashString;
    using HashString::mHash;
    using HashString::mText;
};

}  // namespace

TEST(HashString, HashesTheBytesAsUnsigned) {
    // Test vectors of the algorithm, FNV-1a of 64 bits.
    EXPECT_EQ(HashString("").hash(), 0xCBF29CE484222325u);
    EXPECT_EQ(HashString("foobar").hash(), 0x85944171F73967E8u);
    const std::string bytes("\xFF\0\0\1", 4);
    EXPECT_EQ(HashString(bytes).hash(), 0x6961196491CC682Du);
    EXPECT_EQ(HashString(bytes).str(), bytes);
    EXPECT_EQ(HashString(static_cast<const char*>(nullptr)), "");
    EXPECT_EQ(HashString().hash(), 0u);
    EXPECT_NE(HashString(), "") << "the default is not the empty text";
}

TEST(HashString, EqualityNeedsHashAndBytes) {
    const HashString name("face");
    EXPECT_TRUE(name == "face" && name == std::string("face") && name == HashString(std::string("face")));
    EXPECT_TRUE(name != "fac" && name != std::string("face\0", 5) && name != HashString("Face"));

    EditableHashString other("other");
    other.mHash = name.hash();
    EXPECT_NE(name, other);
    other.mText = "face";
    EXPECT_EQ(name, other);
    other.mHash = 42;
    EXPECT_NE(name, other);
    HashString moved("else");
    moved = HashString(other);
    EXPECT_EQ(moved.hash(), 42u) << "copies and moves take the hash as it is";
    EXPECT_EQ(moved.str(), "face");
    other.updateHash();
    EXPECT_EQ(name, other);
}

TEST(Flag, SetsAsksAndSwitchesMasks) {
    zv::Flag flag;
    flag.setOn(0b0101u);
    flag.setOff(0b0011u);
    EXPECT_EQ(flag.value(), 0b0100u);
    EXPECT_TRUE(flag.isOn(0b0110u) && flag.isOff(0b0011u) && !flag.isOff(0b0110u)) << "any bit of the mask";
    flag.setFlag(0x80000001u, true);
    flag.setFlag(4u, false);
    EXPECT_EQ(flag.value(), 0x80000001u);
    // A mask toggles as a whole.
    for (const auto& [before, after] : {std::pair(0b0101u, 0b0100u), {0u, 0b0011u}, {0b0111u, 0b0100u}}) {
        flag.setValue(before);
        flag.toggle(0b0011u);
        EXPECT_EQ(flag.value(), after) << "from " << before;
    }
}

TEST(ValueTypes, StartZeroFilledAndReachEveryComponent) {
    alignas(zv::V3F_C4B_T2F) unsigned char memory[sizeof(zv::V3F_C4B_T2F)];
    std::fill(std::begin(memory), std::end(memory), 0xA5);
    new (memory) zv::V3F_C4B_T2F;
    EXPECT_EQ(std::count(std::begin(memory), std::end(memory), 0), 24);
    zv::Vec4 v(zv::Vec3f(1, 2, 3), 4);
    for (unsigned char i = 0; i < 4; ++i)
        v[i] *= static_cast<float>(i);
    EXPECT_TRUE(v.x == 0 && v.y == 2 && v.z == 6 && v.w == 12);
}

// The order of the fields; the sizes stand beside the records.
static_assert(offsetof(zv::V2F_C4B, colors) == 8 && offsetof(zv::V2F_T2F, texCoords) == 8);
static_assert(offsetof(zv::V2F_C4B_T2F, colors) == 8 && offsetof(zv::V3F_T2F, texCoords) == 12);
static_assert(offsetof(zv::V3F_C4B_T2F, colors) == 12 && offsetof(zv::V3F_T2F_N3F, texCoords) == 12);
