#pragma once

#include <string>
#include <vector>

namespace zv::host {

/// A program's command line in UTF-8. Windows hands main() the letters of its code page only, so it is asked
/// for the wide command line instead.
class Arguments {
public:
    /// Takes what main() was given.
    Arguments(int argc, char** argv);

    int count() const { return static_cast<int>(mValues.size()); }
    /// As argv: program name first. Valid as long as this object.
    const char* const* values() const { return mValues.data(); }

private:
    std::vector<std::string> mTexts;
    std::vector<const char*> mValues;
};

}  // namespace zv::host
