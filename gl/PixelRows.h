#pragma once

#include <cstdint>

/// How the rows of uncompressed pictures lie in memory.
namespace zv {

/// Bytes of a row that is padded to a multiple of four.
constexpr std::uint64_t paddedRowBytes(std::uint64_t rowBytes) {
    return (rowBytes + 3) / 4 * 4;
}

/// True when a buffer of `bytes` holds rows padded to a multiple of four, as BMP files carry them; else its
/// rows are tight. Fewer than `height` bytes may follow the last row, which some writers add.
constexpr bool hasPaddedRows(std::uint64_t bytes, std::uint64_t rowBytes, std::uint64_t height) {
    return rowBytes % 4 != 0 && height > 0 && bytes / height == paddedRowBytes(rowBytes);
}

}  // namespace zv
