#pragma once

#include <cstddef>
#include <istream>
#include <streambuf>

namespace zv {

/// The read-only, seekable stream buffer of imemstream.
class MemoryStreamBuffer : public std::streambuf {
public:
    MemoryStreamBuffer(const void* data, std::size_t size) {
        // The base class keeps char*, but a buffer without a put area is never written.
        char* begin = const_cast<char*>(static_cast<const char*>(data));
        setg(begin, begin, begin + size);
    }

protected:
    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode which) override {
        const off_type end = egptr() - eback();
        const off_type base = from == std::ios_base::beg   ? 0
                              : from == std::ios_base::cur ? gptr() - eback()
                                                           : end;
        if ((which & std::ios_base::in) == 0 || offset < -base || offset > end - base)
            return pos_type(off_type(-1));
        setg(eback(), eback() + (base + offset), egptr());
        return pos_type(base + offset);
    }
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override {
        return seekoff(off_type(position), std::ios_base::beg, which);
    }
};

/// A standard input stream over a memory block, which it does not own and which must outlive it.
class imemstream : public std::istream {
public:
    imemstream(const void* data, std::size_t size) : std::istream(nullptr), mBuffer(data, size) {
        rdbuf(&mBuffer);
    }

private:
    MemoryStreamBuffer mBuffer;
};

}  // namespace zv
