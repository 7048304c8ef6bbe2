#include "apps/RunProgram.h"

#include <algorithm>
#include <cstdlib>

#include "support/TempDir.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace zv::test {

namespace {

#if defined(_WIN32)
std::string quote(const std::string& text) {
    return "\"" + text + "\"";
}
int exitStatus(int result) {
    return result;
}
#else
std::string quote(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}
int exitStatus(int result) {
    return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
}
#endif

}  // namespace

bool ProgramResult::saysOneLine() const {
    return error.rfind("zvfx: ", 0) == 0 && std::count(error.begin(), error.end(), '\n') == 1 &&
           error.back() == '\n';
}

ProgramResult runZvfx(const std::vector<std::string>& arguments, const std::string& standardOutput,
                      const std::string& before) {
    const TempDir folder;
    const std::string out = standardOutput.empty() ? folder.file("out") : standardOutput;
    std::string command = before + quote(ZVFX_PROGRAM);
    for (const std::string& argument : arguments) {
        command += " " + quote(argument);
    }
    command += " >" + quote(out) + " 2>" + quote(folder.file("err"));
#if defined(_WIN32)
    command = quote(command);
#endif
    ProgramResult result;
    result.status = exitStatus(std::system(command.c_str()));
    result.output = standardOutput.empty() ? readFile(out) : std::string();
    result.error = readFile(folder.file("err"));
    return result;
}

}  // namespace zv::test
