#pragma once

#include <gtest/gtest.h>

#include "host/GLCallLog.h"

namespace zv::test {

using host::GLCall;

/// Records every GL call of the library and of the test while it is alive; what it can answer is told at
/// host::GLCallLog. One at a time.
class GLCallRecorder : public host::GLCallLog {
public:
    GLCallRecorder() { EXPECT_EQ(++sAlive, 1) << "one recorder at a time"; }
    ~GLCallRecorder() { --sAlive; }

    /// As in the base, but a name that is not watched fails the test instead of giving nothing.
    std::vector<GLCall> callsOf(std::string_view name) const;
    std::size_t count(std::string_view name) const { return callsOf(name).size(); }
    /// One argument of each call of a function.
    std::vector<long long> argumentsOf(std::string_view name, std::size_t index) const;
    /// What all calls of a glUniform* function were given, one behind the other; then all is forgotten.
    std::vector<float> takeValuesOf(std::string_view name);

private:
    inline static int sAlive = 0;
};

}  // namespace zv::test
