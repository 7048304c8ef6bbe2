#include "core/VertexFormats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <new>
#include <string>

#include "core/TRect.h"
#include "core/Vec4.h"

using zv::Vec3f;
using zv::Vec4;

TEST(Vec4, IndexesItsComponents) {
    Vec4 v(Vec3f(1, 2, 3), 4);
    for (unsigned char i = 0; i < 4; ++i) {
        EXPECT_EQ(v[i], static_cast<float>(i + 1));
        v[i] *= 10;
    }
    EXPECT_TRUE(v.x == 10 && v.y == 20 && v.z == 30 && v.w == 40);
}

TEST(TRect, ComparesOriginAndSize) {
    const zv::ViewPort rect(-1, 2, 30, 65535);
    EXPECT_EQ(rect.origin.x, -1);
    EXPECT_EQ(rect.size.y, 65535);
    EXPECT_TRUE(rect == zv::ViewPort(-1, 2, 30, 65535));
    EXPECT_TRUE(rect != zv::ViewPort(-1, 2, 31, 65535) && rect != zv::ViewPort(-1, 3, 30, 65535));
}

template <class Record>
class VertexRecord : public testing::Test {};

using VertexRecords =
    testing::Types<zv::V2F_C4B, zv::V2F_T2F, zv::V2F_C4B_T2F, zv::V3F_T2F, zv::V3F_C4B_T2F, zv::V3F_T2F_N3F,
                   zv::Quad2, zv::T2F_Quad, zv::V2F_T2F_Quad, zv::V3F_T2F_Quad, zv::V3F_C4B_T2F_Quad>;

struct RecordNames {
    template <class Record>
    static std::string GetName(int index) {
        return std::to_string(index) + "_" + std::to_string(sizeof(Record)) + "Bytes";
    }
};
TYPED_TEST_SUITE(VertexRecord, VertexRecords, RecordNames);

TYPED_TEST(VertexRecord, StartsZeroFilled) {
    alignas(TypeParam) unsigned char memory[sizeof(TypeParam)];
    std::memset(memory, 0xA5, sizeof(memory));
    new (memory) TypeParam;
    EXPECT_EQ(std::count(std::begin(memory), std::end(memory), 0),
              static_cast<std::ptrdiff_t>(sizeof(TypeParam)));
}

TEST(VertexFormats, FieldsFollowPositionColourCoordinatesNormal) {
    EXPECT_EQ(offsetof(zv::V2F_C4B, colors), 8u);
    EXPECT_EQ(offsetof(zv::V2F_T2F, texCoords), 8u);
    EXPECT_EQ(offsetof(zv::V2F_C4B_T2F, colors), 8u);
    EXPECT_EQ(offsetof(zv::V2F_C4B_T2F, texCoords), 12u);
    EXPECT_EQ(offsetof(zv::V3F_T2F, texCoords), 12u);
    EXPECT_EQ(offsetof(zv::V3F_C4B_T2F, colors), 12u);
    EXPECT_EQ(offsetof(zv::V3F_C4B_T2F, texCoords), 16u);
    EXPECT_EQ(offsetof(zv::V3F_T2F_N3F, texCoords), 12u);
    EXPECT_EQ(offsetof(zv::V3F_T2F_N3F, normals), 20u);
}
