#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zv::test {

/// A new empty folder that is removed, with all that is in it, at the end of its scope.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// The folder's absolute path, with '/' as separator and without one at the end.
    const std::string& path() const { return mPath; }
    /// The absolute path of a name inside; nothing is made.
    std::string file(const std::string& name) const { return mPath + "/" + name; }
    /// Writes a file inside (folders on the way are made) and answers its path.
    std::string write(const std::string& name, std::string_view bytes) const;
    std::string write(const std::string& name, const std::vector<unsigned char>& bytes) const;
    /// The names of the entries directly inside, sorted.
    std::vector<std::string> entries() const;

private:
    std::string mPath;
};

/// A whole file's bytes; fails the test and answers an empty text when it cannot be read.
std::string readFile(const std::string& path);

}  // namespace zv::test
