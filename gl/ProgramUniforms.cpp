// The uniform setters of Program: each asks the value cache first.
#include <GL/glew.h>

#include <cstring>

#include "gl/Program.h"

namespace zv {

namespace {

/// A single float is remembered in a block as wide as a matrix, the rest zero.
using WideFloat = std::array<float, 16>;
static_assert(sizeof(WideFloat) == 64, "the cached block of a single float");

}  // namespace

Uniform* Program::getUniform(const std::string& name) {
    const auto found = mUniforms.find(name);
    return found != mUniforms.end() ? &found->second : nullptr;
}

std::int32_t Program::getUniformLocation(const std::string& name) {
    const Uniform* uniform = getUniform(name);
    return uniform != nullptr ? uniform->location : -1;
}

Attribute* Program::getAttrib(const std::string& name) {
    const auto found = mAttributes.find(name);
    return found != mAttributes.end() ? &found->second : nullptr;
}

bool Program::updateUniformData(int location, const void* data, unsigned int bytes) {
    if (location < 0) {
        return false;
    }
    const auto* first = static_cast<const unsigned char*>(data);
    const auto found = mUniformDatas.find(location);
    if (found == mUniformDatas.end()) {
        mUniformDatas.emplace(location, std::vector<unsigned char>(first, first + bytes));
        return true;
    }
    std::vector<unsigned char>& last = found->second;
    if (last.size() < bytes) {
        last.assign(first, first + bytes);
        return true;
    }
    if (bytes == 0 || std::memcmp(last.data(), first, bytes) == 0) {
        return false;
    }
    std::memcpy(last.data(), first, bytes);
    return true;
}

void Program::setUniform(int location, int value) {
    if (updateUniformData(location, &value, sizeof(value))) {
        glUniform1i(location, value);
    }
}

void Program::setUniform(const std::string& name, int value) {
    if (const Uniform* uniform = getUniform(name)) {
        setUniform(uniform->location, value);
    }
}

void Program::setUniform(int location, const Mat4& value) {
    if (updateUniformData(location, value.m, sizeof(value.m))) {
        glUniformMatrix4fv(location, 1, GL_FALSE, value.m);
    }
}

void Program::setUniform(const std::string& name, const Mat4& value) {
    if (const Uniform* uniform = getUniform(name)) {
        setUniform(uniform->location, value);
    }
}

void Program::setUniformMatrix4fv(int location, const float* values, unsigned int count) {
    if (updateUniformData(location, values, 64 * count)) {
        glUniformMatrix4fv(location, static_cast<GLsizei>(count), GL_FALSE, values);
    }
}

void Program::setUniformMatrix4fv(const std::string& name, const float* values, unsigned int count) {
    if (const Uniform* uniform = getUniform(name)) {
        setUniformMatrix4fv(uniform->location, values, count);
    }
}

void Program::setUniformMatrix3fv(const std::string& name, const float* values, unsigned int count) {
    const Uniform* uniform = getUniform(name);
    if (uniform != nullptr && updateUniformData(uniform->location, values, 36 * count)) {
        glUniformMatrix3fv(uniform->location, static_cast<GLsizei>(count), GL_FALSE, values);
    }
}

void Program::setUniform1f(int location, float value) {
    const WideFloat block{value};
    if (updateUniformData(location, block.data(), sizeof(block))) {
        glUniform1f(location, value);
    }
}

void Program::setUniform1f(const std::string& name, float value) {
    if (const Uniform* uniform = getUniform(name)) {
        setUniform1f(uniform->location, value);
    }
}

void Program::setUniform2fv(int location, const float* values, int count) {
    if (count > 0 && updateUniformData(location, values, 8 * static_cast<unsigned int>(count))) {
        glUniform2fv(location, count, values);
    }
}

void Program::setUniform2fv(const std::string& name, const float* values, int count) {
    setUniform2fv(getUniformLocation(name), values, count);
}

void Program::setUniform3fv(const std::string& name, const float* values, int count) {
    const Uniform* uniform = count > 0 ? getUniform(name) : nullptr;
    if (uniform != nullptr &&
        updateUniformData(uniform->location, values, 12 * static_cast<unsigned int>(count))) {
        glUniform3fv(uniform->location, count, values);
    }
}

void Program::setUniformValue(const std::string& name, float value) {
    mPendingValues[name] = PendingValue{value, true};
    mHasPending = true;
}

void Program::setUniformsForBuiltins() {
    if (!mHasPending) {
        return;
    }
    for (auto& entry : mPendingValues) {
        if (entry.second.queued) {
            setUniform1f(entry.first, entry.second.value);
            entry.second.queued = false;
        }
    }
    mHasPending = false;
}

}  // namespace zv
