#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

#include "core/Flag.h"
#include "core/HashString.h"

using zv::Flag;
using zv::HashString;

namespace {

/// FNV-1a with the prime 2^40 + 0x1B3 taken apart.
std::uint64_t referenceHash(const std::string& text) {
    std::uint64_t hash = 14695981039346656037u;
    for (const char c : text) {
        hash ^= static_cast<std::uint8_t>(c);
        hash = (hash << 40) + hash * 435u;
    }
    return hash;
}

/// What a caller that edits the text has, and a way to force a collision.
class EditableHashString : public HashString {
public:
    using HashString::HashString;
    void setText(const std::string& text) { mText = text; }
    void setHash(std::uint64_t hash) { mHash = hash; }
};

}  // namespace

TEST(HashString, HashesTheBytesAsUnsigned) {
    // Published test vectors of the algorithm.
    EXPECT_EQ(HashString("").hash(), 0xCBF29CE484222325u);
    EXPECT_EQ(HashString("a").hash(), 0xAF63DC4C8601EC8Cu);
    EXPECT_EQ(HashString("foobar").hash(), 0x85944171F73967E8u);
    for (const std::string& text : {std::string("\xC3\xA9\xE2\x82\xAC\xFF"), std::string("a\0b", 3)}) {
        EXPECT_EQ(HashString(text).hash(), referenceHash(text));
        EXPECT_EQ(HashString(text).str(), text);
    }
}

TEST(HashString, DefaultIsNotTheEmptyText) {
    const HashString none;
    EXPECT_EQ(none.hash(), 0u);
    EXPECT_EQ(none.str(), "");
    EXPECT_NE(none, HashString(""));
    EXPECT_NE(none, "");
    EXPECT_EQ(none, HashString());
    EXPECT_EQ(HashString(static_cast<const char*>(nullptr)), "");
}

TEST(HashString, EqualityNeedsHashAndBytes) {
    const HashString name("face");
    EXPECT_TRUE(name == "face" && name == std::string("face") && name == HashString(std::string("face")));
    EXPECT_FALSE(name != "face" || name != std::string("face") || name != HashString("face"));
    EXPECT_TRUE(name != "fac" && name != std::string("face\0", 5) && name != HashString("Face"));
    EXPECT_TRUE(name.compare(std::string("face")));

    EditableHashString other("other");
    other.setHash(name.hash());
    EXPECT_NE(name, other);
    other.setText("face");
    EXPECT_EQ(name, other);
    other.setHash(1);
    EXPECT_NE(name, other);
    other.updateHash();
    EXPECT_EQ(name, other);
}

TEST(HashString, CopyAndMoveTakeTheHashAsItIs) {
    EditableHashString forged("text");
    forged.setHash(42);
    HashString copy(forged);
    EXPECT_EQ(copy.hash(), 42u);
    HashString assigned("else");
    assigned = std::move(copy);
    EXPECT_EQ(assigned.hash(), 42u);
    EXPECT_EQ(assigned.str(), "text");
}

TEST(Flag, SetsAsksAndSwitchesMasks) {
    Flag flag;
    EXPECT_EQ(flag.value(), 0u);
    flag.setOn(0b0101u);
    flag.setOff(0b0011u);
    EXPECT_EQ(flag.value(), 0b0100u);
    EXPECT_TRUE(flag.isOn(0b0110u));
    EXPECT_TRUE(flag.getFlag(0b0110u));
    EXPECT_FALSE(flag.isOff(0b0110u));
    EXPECT_TRUE(flag.isOff(0b0011u));
    flag.setFlag(0x80000001u, true);
    EXPECT_EQ(flag.value(), 0x80000005u);
    flag.setFlag(0x80000004u, false);
    EXPECT_EQ(flag.value(), 1u);
    flag.setValue(7u);
    EXPECT_EQ(flag.value(), 7u);
}

TEST(Flag, TogglesAMaskAsAWhole) {
    const std::pair<Flag, unsigned int> rows[] = {{0b0101u, 0b0100u}, {0u, 0b0011u}, {0b0111u, 0b0100u}};
    for (const auto& [before, after] : rows) {
        Flag flag(before);
        flag.toggle(0b0011u);
        EXPECT_EQ(flag.value(), after) << "from " << before.value();
    }
}
