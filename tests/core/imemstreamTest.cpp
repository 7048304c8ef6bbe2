#include "core/imemstream.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

TEST(imemstream, ReadsTheBlockAndNoMore) {
    // Not terminated, with a byte that is no character but -1.
    const char block[] = {'1', '2', '\xFF', '\0', 'e'};
    zv::imemstream stream(block, sizeof(block));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), std::string("12\xFF\0e", 5));
    EXPECT_EQ(zv::imemstream(nullptr, 0).get(), std::char_traits<char>::eof());
}

TEST(imemstream, SeeksInsideTheBlockOnly) {
    zv::imemstream stream("0123456789", 10);
    stream.seekg(0, std::ios_base::end);
    EXPECT_EQ(stream.tellg(), 10);
    stream.seekg(-8, std::ios_base::cur);
    EXPECT_EQ(stream.get(), '2');
    for (const int offset : {-4, 8}) {
        stream.seekg(offset, std::ios_base::cur);
        EXPECT_TRUE(stream.fail()) << offset;
        stream.clear();
        EXPECT_EQ(stream.tellg(), 3) << offset;
    }
}
