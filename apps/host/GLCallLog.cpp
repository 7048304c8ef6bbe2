#include "host/GLCallLog.h"

#include <GL/glew.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>
#include <mutex>
#include <set>

#include "host/GLCallTable.h"
#include "host/GLCallWatch.h"

namespace zv::host {

namespace {

std::atomic<GLCallLog*> sLog{nullptr};
std::mutex sMutex;
void (*sEnter)() = nullptr;
void (*sLeave)() = nullptr;

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Stands in for one of the functions that GLEW reaches through pointers.
template <auto* Slot>
struct Swap;

template <class Result, class... Arguments, Result(GLAPIENTRY** Slot)(Arguments...)>
struct Swap<Slot> {
    using Function = Result(GLAPIENTRY*)(Arguments...);
    static inline WatchedCall<Function> sCall{"", 0, nullptr};

    static Result GLAPIENTRY wrapper(Arguments... arguments) { return sCall(arguments...); }

    static void* watch(const char* name, int version, void* original) {
        sCall = {name, version, reinterpret_cast<Function>(original)};
        return reinterpret_cast<void*>(wrapper);
    }
    static void install(const char* name, int version) {
        if (*Slot != nullptr) {
            *Slot = reinterpret_cast<Function>(watch(name, version, reinterpret_cast<void*>(*Slot)));
        }
    }
    static void remove() {
        if (*Slot != nullptr) {
            *Slot = sCall.original;
        }
    }
};

struct Row {
    const char* name;
    int version;
    void* (*watch)(const char* name, int version, void* original);
    void (*install)(const char* name, int version);
    void (*remove)();
};

const Row kRows[] = {
#define ZV_ROW(version, name)                                                       \
    {"gl" #name, version, Swap<&__glew##name>::watch, Swap<&__glew##name>::install, \
     Swap<&__glew##name>::remove},
    ZV_GLEW_CALLS(ZV_ROW)
#undef ZV_ROW
};

#if defined(_WIN32)
// The library has entry points of its own, which linkGLInterpose() wraps where they come from.
constexpr bool kSharesEntryPoints = false;
#else
constexpr bool kSharesEntryPoints = true;
#endif

}  // namespace

bool GLCallWatch::active() {
    return sLog.load(std::memory_order_relaxed) != nullptr;
}

void GLCallWatch::add(GLCall call) {
    const std::lock_guard<std::mutex> lock(sMutex);
    if (GLCallLog* log = sLog.load()) {
        log->mCalls.push_back(std::move(call));
    }
}

void* GLCallWatch::entryPoint(const char* name, void* original) {
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [&](const Row& each) { return std::string_view(name) == each.name; });
    return row == std::end(kRows) || original == nullptr ? original
                                                         : row->watch(row->name, row->version, original);
}

GLCallWatch::Scope::Scope() {
    if (sEnter != nullptr) {
        sEnter();
    }
}

GLCallWatch::Scope::~Scope() {
    if (sLeave != nullptr) {
        sLeave();
    }
}

GLCallLog::GLCallLog() {
    if (kSharesEntryPoints) {
        for (const Row& row : kRows) {
            row.install(row.name, row.version);
        }
    }
    sLog = this;
}

GLCallLog::~GLCallLog() {
    const std::lock_guard<std::mutex> lock(sMutex);
    sLog = nullptr;
    if (kSharesEntryPoints) {
        for (const Row& row : kRows) {
            row.remove();
        }
    }
}

bool GLCallLog::isWatched(std::string_view name) {
    static const std::set<std::string_view> names = {
#define ZV_NAME(version, name) "gl" #name,
        ZV_GLEW_CALLS(ZV_NAME)
#undef ZV_NAME
#define ZV_NAME(result, name, parameters, arguments) #name,
            ZV_GL11_CALLS(ZV_NAME)
#undef ZV_NAME
    };
    return names.count(name) != 0;
}

void GLCallLog::setHooks(void (*enter)(), void (*leave)()) {
    sEnter = enter;
    sLeave = leave;
}

void GLCallLog::clear() {
    const std::lock_guard<std::mutex> lock(sMutex);
    mCalls.clear();
}

std::vector<GLCall> GLCallLog::callsOf(std::string_view name) const {
    std::vector<GLCall> found;
    std::copy_if(mCalls.begin(), mCalls.end(), std::back_inserter(found),
                 [&](const GLCall& call) { return name == call.name; });
    return found;
}

std::size_t GLCallLog::countPrefix(std::string_view prefix) const {
    return static_cast<std::size_t>(std::count_if(
        mCalls.begin(), mCalls.end(), [&](const GLCall& call) { return startsWith(call.name, prefix); }));
}

std::size_t GLCallLog::countObjectCalls() const {
    return countPrefix("glGen") - count("glGenerateMipmap") + countPrefix("glCreate") +
           countPrefix("glDelete");
}

std::size_t GLCallLog::countDraws() const {
    return countPrefix("glDraw") - countPrefix("glDrawBuffer") + countPrefix("glMultiDraw");
}

std::vector<std::string> GLCallLog::newerThan(int version) const {
    std::set<std::string> names;
    for (const GLCall& call : mCalls) {
        if (call.version > version) {
            names.insert(call.name);
        }
    }
    return {names.begin(), names.end()};
}

std::string GLCallLog::summary() const {
    std::map<std::string_view, int> counts;
    for (const GLCall& call : mCalls) {
        ++counts[call.name];
    }
    std::string text;
    for (const auto& [name, count] : counts) {
        text += std::to_string(count) + " " + std::string(name) + "\n";
    }
    return text;
}

}  // namespace zv::host
