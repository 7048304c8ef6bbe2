#include "apps/RunProgram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#if defined(_WIN32)
#include "core/FileUtilWindows.h"
#else
#include <sys/wait.h>
#endif

namespace zv::test {

namespace {

#if defined(_WIN32)
std::string quote(const std::string& text) {
    return "\"" + text + "\"";
}
/// @return the exit status
int runShell(const std::string& command) {
    return _wsystem(StringUtf8ToWideChar(quote(command)).c_str());
}
/// Text as the program wrote it; the C library has made two characters of each line end.
std::string readText(const std::string& path) {
    std::string text = readFile(path);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}
#else
std::string quote(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}
int runShell(const std::string& command) {
    const int result = std::system(command.c_str());
    return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
}
std::string readText(const std::string& path) {
    return readFile(path);
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
    ProgramResult result;
    result.status = runShell(command);
    result.output = standardOutput.empty() ? readFile(out) : std::string();
    result.error = readText(folder.file("err"));
    return result;
}

ZvfxFolder::ZvfxFolder(const Picture& input) {
    EXPECT_TRUE(input.save(file("in.png")));
}

ProgramResult ZvfxFolder::run(const std::vector<std::string>& options, const std::string& input) const {
    std::vector<std::string> arguments = {file(input), "-o", file("out.png")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runZvfx(arguments);
}

Picture ZvfxFolder::result(const std::vector<std::string>& options, const std::string& input) const {
    const ProgramResult ended = run(options, input);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output + ended.error, "");
    return ended.status == 0 ? Picture::load(file("out.png")) : Picture();
}

}  // namespace zv::test
