#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvfx {

/// Bytes one after another.
class ByteReader {
public:
    enum : std::ptrdiff_t { kFailed = -1, kStopped = -2 };

    virtual ~ByteReader() = default;
    ByteReader() = default;
    ByteReader(const ByteReader&) = delete;
    ByteReader& operator=(const ByteReader&) = delete;

    /// Reads at least one byte and `most` at most.
    /// @return how many; 0 at the end, kFailed, or kStopped when the run was asked to stop meanwhile
    virtual std::ptrdiff_t read(unsigned char* to, std::size_t most) = 0;
};

class ByteWriter {
public:
    virtual ~ByteWriter() = default;
    ByteWriter() = default;
    ByteWriter(const ByteWriter&) = delete;
    ByteWriter& operator=(const ByteWriter&) = delete;

    /// @return false when not all of it could be written
    virtual bool write(const void* bytes, std::size_t count) = 0;
    /// Hands on what waits in memory; a file gets its name.
    virtual bool finish() = 0;
};

/// A file, a pipe of that name, or with "-" standard input. Waiting for a pipe ends when the run is asked to
/// stop.
class FileReader : public ByteReader {
public:
    ~FileReader() override;

    /// @return what went wrong, or nothing
    std::string open(const std::string& path);
    /// 0 for what has no size, such as a pipe.
    std::uint64_t size() const { return mSize; }
    std::ptrdiff_t read(unsigned char* to, std::size_t most) override;

private:
    int mFile = -1;
    std::uint64_t mSize = 0;
};

}  // namespace zvfx
