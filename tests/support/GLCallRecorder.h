#pragma once

#include <gtest/gtest.h>

#include "host/GLCallLog.h"

namespace zv::test {

using host::GLCall;

/// Records every GL call of the library and of the test while it is alive; what it can answer is told at
/// host::GLCallLog. One at a time.
class GLCallRecorder : public host::GLCallLog {
public:
    GLCallRecorder();
    ~GLCallRecorder();

    /// As in the base, but a name that is not watched fails the test instead of giving nothing.
    std::vector<GLCall> callsOf(std::string_view name) const;
    std::size_t count(std::string_view name) const { return callsOf(name).size(); }
};

}  // namespace zv::test
