#include "support/GLCallRecorder.h"

namespace zv::test {

namespace {

int sAlive = 0;

}  // namespace

GLCallRecorder::GLCallRecorder() {
    EXPECT_EQ(++sAlive, 1) << "one recorder at a time";
}

GLCallRecorder::~GLCallRecorder() {
    --sAlive;
}

std::vector<GLCall> GLCallRecorder::callsOf(std::string_view name) const {
    EXPECT_TRUE(isWatched(name)) << name << " is not in GLCallTable.h";
    return GLCallLog::callsOf(name);
}

}  // namespace zv::test
