#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <vector>

#include "gltf/GtModel.h"
#include "support/AllocationCounter.h"

using namespace zv;
using namespace zv::gltf;

namespace {

constexpr std::int64_t NONE = GtAniNode::NO_OFFSET;
constexpr float ENDLESS = std::numeric_limits<float>::infinity();
constexpr int U8 = 5121;
constexpr int I8 = 5120;
constexpr int U32 = 5125;
constexpr int I32 = 5124;
constexpr int F32 = 5126;

struct Channel {
    GtAniTargetPath path;
    std::vector<float> keys;
    int type;
    std::vector<double> values;
    int node = 0;
    unsigned stride = 0;
};

/// What node 0's entry says at a time.
struct Moment {
    float time;
    int visible;
    std::int64_t offset;
    bool applied = true;
};

struct Case {
    const char* name;
    std::vector<Channel> channels;
    std::vector<Moment> moments;
};

std::ostream& operator<<(std::ostream& stream, const Case& row) {
    return stream << row.name;
}

template <class T>
void append(std::vector<unsigned char>& bytes, double value) {
    const T number = static_cast<T>(value);
    bytes.resize(bytes.size() + sizeof(T));
    std::memcpy(&bytes[bytes.size() - sizeof(T)], &number, sizeof(T));
}

const std::map<int, void (*)(std::vector<unsigned char>&, double)> APPENDERS = {
    {F32, append<float>},        {I32, append<std::int32_t>}, {U32, append<std::uint32_t>},
    {U8, append<unsigned char>}, {I8, append<unsigned char>},
};

/// One animation; each channel has its sampler, view, accessor and buffer, which ends with the last value.
void fill(GtModel& model, const std::vector<Channel>& channels) {
    const std::size_t count = channels.size();
    model.nodes.resize(2);
    model.extAnimations.resize(1);
    model.extAnimations[0].channels.resize(count);
    model.extAnimations[0].samplers.resize(count);
    model.buffers.resize(count);
    model.bufferViews.resize(count);
    model.accessors.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Channel& channel = channels[i];
        const int index = static_cast<int>(i);
        model.extAnimations[0].channels[i] = {index, channel.node, channel.path};
        GtAniSampler& sampler = model.extAnimations[0].samplers[i];
        sampler.output = index;
        sampler.times.resize(channel.keys.size());
        std::copy(channel.keys.begin(), channel.keys.end(), sampler.times.get(0));
        std::vector<unsigned char> bytes;
        for (const double value : channel.values)
            APPENDERS.at(channel.type)(bytes, value);
        model.buffers[i].resize(bytes.size());
        std::copy(bytes.begin(), bytes.end(), model.buffers[i].get(0));
        model.bufferViews[i] = {index, 0, channel.stride, static_cast<unsigned>(bytes.size()), 0};
        model.accessors[i] = {index, 0, 1000, channel.type, GtAccessor::SCALAR};
    }
}

constexpr GtAniTargetPath OFFSET = GT_PATH_BYTE_OFFSET;
constexpr GtAniTargetPath VISIBLE = GT_PATH_VISIBILITY;

const Case CASES[] = {
    {"steps, holds the first value, repeats",
     {{OFFSET, {0.5F, 1.0F, 2.0F}, U32, {6, 12, 4294967295.0}}},
     {{-3, 1, 6},
      {0, 1, 6},
      {0.75F, 1, 6},
      {1, 1, 12},
      {1.99F, 1, 12},
      {2, 1, 6},
      {3, 1, 12},
      {2001.5F, 1, 12}}},
    {"visibility alone leaves the offset",
     {{VISIBLE, {0, 1, 2}, U8, {1, 0, 1}}},
     {{0, 1, NONE}, {1.5F, 0, NONE}}},
    {"both on one node, with the longer one's span",
     {{VISIBLE, {0, 1}, F32, {0.25, 0}},
      {OFFSET, {0, 2, 4}, I32, {10, 20, 30}},
      {VISIBLE, {0, 3}, U8, {1, 1}, 1}},
     {{0.5F, 1, 10}, {1, 0, 10}, {3, 0, 20}, {4.5F, 1, 10}}},
    {"the later channel of one path holds",
     {{OFFSET, {0}, U8, {1}}, {OFFSET, {0}, U8, {2}}, {OFFSET, {0}, U8, {3}, 1}},
     {{0, 1, 2}}},
    {"one key never repeats", {{OFFSET, {0}, U8, {9}}}, {{0, 1, 9}, {1e30F, 1, 9}}},
    {"equal keys: the last", {{OFFSET, {0, 0, 0}, U8, {1, 2, 3}}}, {{0, 1, 3}, {7, 1, 3}}},
    {"keys before zero", {{OFFSET, {-2, -1}, U8, {1, 2}}}, {{-1.5F, 1, 1}, {0, 1, 2}, {5, 1, 2}}},
    {"fewer values than keys", {{OFFSET, {0, 1, 2, 3}, U8, {1, 2}}}, {{1, 1, 2}, {2.5F, 1, 2}, {3, 1, 1}}},
    {"values packed in a view with a stride", {{OFFSET, {0, 1, 2}, U8, {1, 2, 3}, 0, 2}}, {{1, 1, 2}}},
    {"signed bytes are zero", {{VISIBLE, {0}, I8, {1}}, {OFFSET, {0}, I8, {1}}}, {{0, 0, 0}}},
    {"an offset that is none",
     {{OFFSET, {0, 1, 2, 3, 4, 5}, F32, {-1, 4294967296.0, NAN, ENDLESS, 7.9, 0}}},
     {{0, 1, NONE, false}, {1, 1, NONE, false}, {2, 1, NONE, false}, {3, 1, NONE, false}, {4, 1, 7}}},
    {"nothing to play",
     {{OFFSET, {}, U8, {1}}, {OFFSET, {0}, U8, {}}, {OFFSET, {0}, U8, {1}, -1}, {VISIBLE, {0}, U8, {0}, 2}},
     {{0, 1, NONE, false}}},
    {"a time that is no number is zero",
     {{OFFSET, {-1, 0, 1}, U8, {1, 2, 3}}},
     {{NAN, 1, 2}, {ENDLESS, 1, 2}, {-ENDLESS, 1, 2}}},
    {"keys that are no numbers", {{OFFSET, {NAN, ENDLESS}, U8, {1, 1}}}, {{0, 1, 1}, {9, 1, 1}}},
};

class GtAnimationRule : public testing::TestWithParam<Case> {};

}  // namespace

TEST_P(GtAnimationRule, Holds) {
    GtModel model;
    fill(model, GetParam().channels);
    for (const Moment& moment : GetParam().moments) {
        std::unordered_map<int, GtAniNode> entries;
        EXPECT_EQ(model.getExtAniChannal(moment.time, 0, entries), moment.applied) << moment.time;
        EXPECT_EQ(entries.count(0), moment.applied ? 1U : 0U) << moment.time;
        EXPECT_EQ(entries[0].visible, moment.visible) << moment.time;
        EXPECT_EQ(entries[0].byteOffset, moment.offset) << moment.time;
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, GtAnimationRule, testing::ValuesIn(CASES));

TEST(GtAnimation, AllocatesNothingForEntriesThatAreThere) {
    GtModel model;
    fill(model, CASES[2].channels);
    std::unordered_map<int, GtAniNode> entries;
    EXPECT_FALSE(model.getExtAniChannal(0, 1, entries));
    EXPECT_TRUE(model.getExtAniChannal(0, 0, entries));
    const test::AllocationCounter counter;
    for (int frame = 0; frame < 10; ++frame)
        model.getExtAniChannal(static_cast<float>(frame), 0, entries);
    EXPECT_EQ(counter.allocations(), 0U);
}
