#include "support/GLCallRecorder.h"

namespace zv::test {

std::vector<GLCall> GLCallRecorder::callsOf(std::string_view name) const {
    EXPECT_TRUE(isWatched(name)) << name << " is not in GLCallTable.h";
    return GLCallLog::callsOf(name);
}

std::vector<long long> GLCallRecorder::argumentsOf(std::string_view name, std::size_t index) const {
    std::vector<long long> arguments;
    for (const GLCall& call : callsOf(name))
        arguments.push_back(call.integer(index));
    return arguments;
}

std::vector<float> GLCallRecorder::takeValuesOf(std::string_view name) {
    std::vector<float> values;
    for (const GLCall& call : callsOf(name))
        values.insert(values.end(), call.values.begin(), call.values.end());
    clear();
    return values;
}

}  // namespace zv::test
