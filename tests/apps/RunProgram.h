#pragma once

#include <string>
#include <vector>

namespace zv::test {

/// What a program left behind.
struct ProgramResult {
    int status = -1;
    std::string output;  ///< standard output, byte for byte
    std::string error;   ///< standard error

    /// Standard error is one line that begins with the program's name.
    bool saysOneLine() const;
};

/// Runs zvfx with these arguments and waits for it. Its standard streams are files, no terminal.
/// @param standardOutput a file that takes standard output, for example a device; empty: a file of its own
/// @param before commands for the shell that starts the program, for example a limit; none on Windows
ProgramResult runZvfx(const std::vector<std::string>& arguments, const std::string& standardOutput = {},
                      const std::string& before = {});

}  // namespace zv::test
