#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "host/GLCallLog.h"

namespace zv::host {

/// Where the wrappers of the GL functions leave what they saw. Needs GL/glew.h before it.
struct GLCallWatch {
    /// Whether a log is alive.
    static bool active();
    /// Hands a call to the log that is alive, if there still is one.
    static void add(GLCall call);
    /// What a module gets that asks the driver for an entry point by name: the wrapper of a function that is
    /// watched, or else the entry point itself.
    static void* entryPoint(const char* name, void* original);

    /// Runs the hooks of GLCallLog::setHooks() around a watched call.
    struct Scope {
        Scope();
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
    };
};

namespace detail {

template <class Value>
double asNumber(Value value) {
    if constexpr (std::is_pointer_v<Value>) {
        return static_cast<double>(reinterpret_cast<std::uintptr_t>(value));
    } else {
        return static_cast<double>(value);
    }
}

inline bool isUniform(const GLCall& call) {
    return std::string_view(call.name).substr(0, 9) == "glUniform";
}

/// How many values an element of a glUniform*v call has: 3 for glUniform3fv, 16 for glUniformMatrix4fv, 6 for
/// 2x3.
inline int uniformComponents(std::string_view name) {
    const std::size_t digit = name.find_first_of("1234");
    const int first = name[digit] - '0';
    if (name.find("Matrix") == std::string_view::npos) {
        return first;
    }
    return name[digit + 1] == 'x' ? first * (name[digit + 2] - '0') : first * first;
}

/// What lies behind a call's pointers; the overload is found by the types of the arguments.
template <class... Arguments>
void noteContents(GLCall& call, Arguments... arguments) {
    // A text that follows a GLsizei has that many characters, or ends with a zero when the number is
    // negative.
    [[maybe_unused]] GLsizei length = -1;
    [[maybe_unused]] const auto visit = [&](auto argument) {
        using Type = decltype(argument);
        if constexpr (std::is_same_v<Type, const GLchar*>) {
            const char* text = argument != nullptr ? argument : "";
            call.text = length >= 0 && argument != nullptr
                            ? std::string(text, static_cast<std::size_t>(length))
                            : std::string(text);
        }
        if constexpr (std::is_same_v<Type, GLsizei>) {
            length = argument;
        } else {
            length = -1;
        }
    };
    (visit(arguments), ...);
    if (isUniform(call)) {
        for (std::size_t i = 1; i < call.args.size(); ++i) {
            call.values.push_back(static_cast<float>(call.args[i]));
        }
    }
}

template <class Value>
void noteContents(GLCall& call, GLint, GLsizei count, const Value* values) {
    if (isUniform(call)) {
        const int total = uniformComponents(call.name) * count;
        for (int i = 0; i < total; ++i) {
            call.values.push_back(static_cast<float>(values[i]));
        }
    }
}

inline void noteContents(GLCall& call, GLint location, GLsizei count, GLboolean, const GLfloat* values) {
    noteContents(call, location, count, values);
}

inline void noteContents(GLCall& call, GLuint, GLsizei count, const GLchar* const* parts,
                         const GLint* lengths) {
    for (GLsizei i = 0; i < count; ++i) {
        if (lengths != nullptr && lengths[i] >= 0) {
            call.text.append(parts[i], static_cast<std::size_t>(lengths[i]));
        } else {
            call.text += parts[i];
        }
    }
}

}  // namespace detail

/// A GL function together with what is recorded about each call of it.
template <class Function>
struct WatchedCall;

template <class Result, class... Arguments>
struct WatchedCall<Result(GLAPIENTRY*)(Arguments...)> {
    const char* name;
    int version;
    Result(GLAPIENTRY* original)(Arguments...);

    Result operator()(Arguments... arguments) const {
        const GLCallWatch::Scope scope;
        if (GLCallWatch::active()) {
            GLCallWatch::add(describe(arguments...));
        }
        return original(arguments...);
    }

private:
    GLCall describe(Arguments... arguments) const {
        GLCall call;
        call.name = name;
        call.version = version;
        call.args = {detail::asNumber(arguments)...};
        detail::noteContents(call, arguments...);
        return call;
    }
};

}  // namespace zv::host
