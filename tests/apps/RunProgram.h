#pragma once

#include <string>
#include <vector>

#include "support/NamedRow.h"
#include "support/Picture.h"
#include "support/TempDir.h"

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

/// A folder in which zvfx makes "out.png" of a picture.
class ZvfxFolder : public TempDir {
public:
    ZvfxFolder() = default;
    /// With that picture as "in.png".
    explicit ZvfxFolder(const Picture& input);

    ProgramResult run(const std::vector<std::string>& options, const std::string& input = "in.png") const;
    /// What came out; fails the test when zvfx did, or said anything.
    Picture result(const std::vector<std::string>& options, const std::string& input = "in.png") const;
};

}  // namespace zv::test
