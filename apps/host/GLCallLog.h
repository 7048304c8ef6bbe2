#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zv::host {

/// One recorded GL call.
struct GLCall {
    const char* name = "";      ///< "glBindTexture"
    int version = 0;            ///< GL version that brought the function, times 100; 0 for extensions
    std::vector<double> args;   ///< every argument as a number, pointers as addresses
    std::vector<float> values;  ///< what glUniform* was given, behind the pointer if there is one
    std::string text;  ///< the joined source of glShaderSource; names and labels that were handed over

    /// Argument `index` as an integer.
    long long integer(std::size_t index) const { return static_cast<long long>(args.at(index)); }
};

/// Records every GL call that the process makes while it is alive: GL 1.1 to 3.3, KHR_debug and the few newer
/// functions in GLCallTable.h, on every thread. One at a time. The program calls linkGLInterpose() and
/// exports its symbols, or the calls of GL 1.1 stay unseen.
class GLCallLog {
public:
    GLCallLog();
    ~GLCallLog();
    GLCallLog(const GLCallLog&) = delete;
    GLCallLog& operator=(const GLCallLog&) = delete;

    /// Whether the function is one of those that are recorded.
    static bool isWatched(std::string_view name);
    /// Functions that run on the calling thread around every watched call, or null; set before the first log.
    static void setHooks(void (*enter)(), void (*leave)());

    /// Forgets what was recorded so far.
    void clear();

    const std::vector<GLCall>& calls() const { return mCalls; }
    /// The calls of one function, in order.
    std::vector<GLCall> callsOf(std::string_view name) const;
    /// How often one function was called.
    std::size_t count(std::string_view name) const { return callsOf(name).size(); }
    /// How many calls there were in all.
    std::size_t total() const { return mCalls.size(); }
    /// Calls whose names start so: "glUniform", "glDraw", "glGen".
    std::size_t countPrefix(std::string_view prefix) const;
    /// Calls that make or destroy GL objects: glGen*, glCreate*, glDelete*.
    std::size_t countObjectCalls() const;
    /// glDraw* and glMultiDraw* calls.
    std::size_t countDraws() const;
    /// Distinct names of the calls newer than a version (times 100), extensions left aside.
    std::vector<std::string> newerThan(int version) const;
    /// One line a function, "count name".
    std::string summary() const;

private:
    std::vector<GLCall> mCalls;
    friend struct GLCallWatch;
};

}  // namespace zv::host
