#include "core/UniqueDataPtr.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <utility>

#include "core/Mat4.h"

using namespace zv;

namespace {

/// Counts the living elements, so that a leaked or twice freed array shows.
struct Element {
    inline static int sAlive = 0;
    int value = 7;
    Element() { ++sAlive; }
    ~Element() { --sAlive; }
};

}  // namespace

static_assert(!std::is_copy_constructible_v<UniqueDataPtr<int>> &&
              !std::is_copy_assignable_v<UniqueDataPtr<int>>);

TEST(UniqueDataPtr, OwnsWhatItMadeAndWhatItTook) {
    {
        UniqueDataPtr<Element> buffer(3);
        buffer[0].value = 1;
        buffer.resize(5);
        EXPECT_TRUE(buffer.size() == 5u && Element::sAlive == 5);
        EXPECT_EQ(buffer[0].value, 7) << "fresh elements";
        EXPECT_EQ(buffer.getLast(), buffer.get(4));
        Element* elements = new Element[4];
        buffer.reset(elements, 4);
        buffer.reset(elements, 1);
        EXPECT_TRUE(buffer.size() == 1u && buffer.get(0) == elements);
        EXPECT_EQ(Element::sAlive, 4) << "the same array with a smaller count: nothing is freed";
        buffer.reset();
        EXPECT_TRUE(buffer.size() == 0u && Element::sAlive == 0);
        buffer.resize(3);
    }
    EXPECT_EQ(Element::sAlive, 0);
}

TEST(UniqueDataPtr, MovesLeaveTheSourceEmptyAndBaseAssignmentCarriesTheCountOnly) {
    UniqueDataPtr<Element> source(10), other(2);
    Element* elements = source.get(0);
    UniqueDataPtr<Element> taken(std::move(source));
    EXPECT_TRUE(source.get(0) == nullptr && source.size() == 0u);  // NOLINT(bugprone-use-after-move)
    UniqueDataPtr<Element>& self = taken;
    taken = std::move(self);
    EXPECT_TRUE(taken.get(0) == elements && taken.size() == 10u);
    static_cast<DataPtr<Element>&>(taken) = static_cast<DataPtr<Element>&>(other);
    EXPECT_TRUE(taken.get(0) == elements && taken.size() == 2u);
    taken = std::move(other);
    EXPECT_TRUE(taken.size() == 2u && Element::sAlive == 2);
}

TEST(UniqueDataPtr, ASizeWithoutMemoryLeavesItEmpty) {
    // Read at run time: constants of this size are refused by the compiler.
    volatile std::size_t most = std::numeric_limits<std::size_t>::max();
    UniqueDataPtr<Mat4> buffer(3);
    for (const std::size_t size : {most / 2, most / sizeof(Mat4)}) {
        buffer.resize(size);
        EXPECT_TRUE(buffer.size() == 0u && buffer.get(0) == nullptr) << size;
    }
#if !defined(__SANITIZE_ADDRESS__)
    // Not an overflow, yet more than there is; the sanitizer would end the program here.
    EXPECT_EQ(UniqueDataPtr<unsigned char>(most / 4).size(), 0u);
#endif
}
