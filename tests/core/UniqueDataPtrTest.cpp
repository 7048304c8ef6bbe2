#include "core/UniqueDataPtr.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "core/Mat4.h"

using zv::DataPtr;
using zv::UniqueDataPtr;

namespace {

/// Counts the living elements, so that a leaked or twice freed array shows.
struct Element {
    static int sAlive;
    int value = 7;
    Element() { ++sAlive; }
    ~Element() { --sAlive; }
};

int Element::sAlive = 0;

}  // namespace

static_assert(!std::is_copy_constructible_v<UniqueDataPtr<int>> &&
              !std::is_copy_assignable_v<UniqueDataPtr<int>>);

TEST(UniqueDataPtr, ResizeGivesFreshElements) {
    {
        UniqueDataPtr<Element> buffer(3);
        EXPECT_EQ(buffer.size(), 3u);
        EXPECT_EQ(Element::sAlive, 3);
        buffer[0].value = 1;
        buffer[2].value = 3;
        EXPECT_EQ(buffer.getLast(), buffer.get(2));
        buffer.resize(5);
        EXPECT_EQ(buffer.size(), 5u);
        EXPECT_EQ(Element::sAlive, 5);
        EXPECT_EQ(buffer[0].value, 7);
        buffer.resize(2);
        EXPECT_EQ(Element::sAlive, 2);
        EXPECT_EQ(buffer.getLast(), buffer.get(1));
    }
    EXPECT_EQ(Element::sAlive, 0);
}

TEST(UniqueDataPtr, ResetTakesOwnership) {
    const std::unique_ptr<DataPtr<Element>> buffer = std::make_unique<UniqueDataPtr<Element>>(2);
    Element* elements = new Element[4];
    buffer->reset(elements, 4);
    EXPECT_EQ(buffer->size(), 4u);
    EXPECT_EQ(buffer->get(0), elements);
    EXPECT_EQ(Element::sAlive, 4);
    // The same array again with a smaller count: nothing is freed.
    buffer->reset(elements, 1);
    EXPECT_EQ(buffer->size(), 1u);
    EXPECT_EQ(Element::sAlive, 4);
    buffer->reset();
    EXPECT_EQ(buffer->size(), 0u);
    EXPECT_EQ(buffer->get(0), nullptr);
    EXPECT_EQ(Element::sAlive, 0);
    buffer->resize(3);
}

TEST(UniqueDataPtr, MovesLeaveTheSourceEmpty) {
    UniqueDataPtr<UniqueDataPtr<unsigned char>> blocks(2);
    blocks[1] = UniqueDataPtr<unsigned char>(10);
    unsigned char* bytes = blocks[1].get(0);
    UniqueDataPtr<unsigned char> taken(std::move(blocks[1]));
    EXPECT_EQ(taken.get(0), bytes);
    EXPECT_EQ(taken.size(), 10u);
    EXPECT_EQ(blocks[1].size(), 0u);
    EXPECT_EQ(blocks[1].get(0), nullptr);

    UniqueDataPtr<unsigned char>& self = taken;
    taken = std::move(self);
    EXPECT_EQ(taken.get(0), bytes);
    EXPECT_EQ(taken.size(), 10u);
    taken = UniqueDataPtr<unsigned char>();
    EXPECT_EQ(taken.size(), 0u);
}

TEST(UniqueDataPtr, BaseAssignmentCarriesTheCountOnly) {
    UniqueDataPtr<int> from(2);
    UniqueDataPtr<int> to(5);
    int* elements = to.get(0);
    static_cast<DataPtr<int>&>(to) = static_cast<DataPtr<int>&>(from);
    EXPECT_EQ(to.size(), 2u);
    EXPECT_EQ(to.get(0), elements);
}

TEST(UniqueDataPtr, ASizeWithoutMemoryLeavesItEmpty) {
    // Read at run time: constants of this size are refused by the compiler.
    volatile std::size_t most = std::numeric_limits<std::size_t>::max();
    UniqueDataPtr<zv::Mat4> buffer(3);
    buffer.resize(most / 2);
    EXPECT_EQ(buffer.size(), 0u);
    EXPECT_EQ(buffer.get(0), nullptr);
    EXPECT_EQ(UniqueDataPtr<std::string>(most / sizeof(std::string)).size(), 0u);
#if !defined(__SANITIZE_ADDRESS__)
    // Not an overflow, yet more than there is; the sanitizer would end the program here.
    EXPECT_EQ(UniqueDataPtr<unsigned char>(most / 4).size(), 0u);
#endif
}
