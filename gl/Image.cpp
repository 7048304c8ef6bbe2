#include "gl/Image.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <istream>
#include <limits>
#include <memory>
#include <system_error>

#include "core/FileUtil.h"
#include "gl/PixelRows.h"
#include "gl/PngReader.h"

namespace zv {

namespace {

constexpr std::uint32_t MAX_SIDE = std::numeric_limits<unsigned short>::max();

/// FileUtil resolves every name that it reads, and would put its root before a resolved path that is relative
/// once more.
std::string absolutePath(const std::string& path) {
    try {
        std::error_code error;
        const std::filesystem::path absolute =
            std::filesystem::absolute(std::filesystem::u8path(path), error);
        return error ? path : absolute.generic_u8string();
    } catch (const std::exception&) {
        return path;  // Not a path that the platform can express; reading it fails.
    }
}

/// The 54 bytes that open a BMP file.
struct BmpHeader {
    static constexpr int SIZE = 54;
    unsigned char bytes[SIZE] = {};

    std::uint32_t u16(int offset) const { return bytes[offset] | std::uint32_t{bytes[offset + 1]} << 8; }
    std::uint32_t u32(int offset) const { return u16(offset) | u16(offset + 2) << 16; }
    bool isPlain24Bit() const { return bytes[0] == 'B' && bytes[1] == 'M' && u32(30) == 0 && u16(28) == 24; }
    // A negative height (rows stored top first) reads as a huge one.
    std::uint32_t width() const { return u32(18); }
    std::uint32_t height() const { return u32(22); }
    std::uint32_t imageSize() const { return u32(34); }
};

/// Bytes between the stream's position and its end; 0 when it cannot tell.
std::uint64_t remainingBytes(std::istream& stream) {
    const std::streamoff position = stream.tellg();
    stream.seekg(0, std::ios_base::end);
    const std::streamoff end = stream.tellg();
    stream.seekg(position);
    return stream && end > position ? static_cast<std::uint64_t>(end - position) : 0;
}

/// Stored blue-green-red becomes red-green-blue, row by row, so that padding stays out of it.
void swapRedAndBlue(unsigned char* data, std::uint64_t bytes, std::uint64_t rowBytes, std::uint64_t height) {
    const std::uint64_t stride = hasPaddedRows(bytes, rowBytes, height) ? paddedRowBytes(rowBytes) : rowBytes;
    for (std::uint64_t y = 0; y < height; ++y) {
        unsigned char* row = data + y * stride;
        for (std::uint64_t x = 0; x + 2 < rowBytes; x += 3) {
            std::swap(row[x], row[x + 2]);
        }
    }
}

}  // namespace

Image::~Image() = default;

bool Image::initWithFile(const std::string& path) {
    // On a path shorter than four characters the start wraps round, and substr throws.
    const std::string extension = path.substr(path.size() - 4);
    const std::string fullPath = FileUtil::getInstance()->getFullFilePath(path);
    if (extension == ".bmp")
        return initWithBmp(fullPath);
    if (extension == ".png" || extension == ".jpg" || extension == ".JPG" || extension == ".PNG")
        return initWithPng(fullPath);
    mData.reset();
    return false;
}

bool Image::initWithPng(const std::string& fullPath) {
    const UniqueDataPtr<unsigned char> file =
        FileUtil::getInstance()->getDataFromFile(absolutePath(fullPath));
    if (!PngReader::hasSignature(file.get(0), file.size()))
        return false;
    PngReader reader(file.get(0), static_cast<std::size_t>(file.size()));
    if (!reader.readHeader(MAX_SIDE))
        return false;
    mSize = Size16(static_cast<unsigned short>(reader.width()), static_cast<unsigned short>(reader.height()));
    mFormat = reader.format();
    const std::uint64_t bytes = reader.rowBytes() * reader.height();
    if (bytes > MAX_IMAGE_BYTES)
        return false;
    mData.resize(static_cast<std::size_t>(bytes));
    if (mData.size() != bytes)
        return false;
    std::fill_n(mData.get(0), bytes, static_cast<unsigned char>(0));  // A damaged file leaves rows unread.
    return reader.readRows(mData.get(0));
}

bool Image::initWithBmp(const std::string& fullPath) {
    const std::unique_ptr<std::istream> file =
        FileUtil::getInstance()->getiStreamFromFile(absolutePath(fullPath), std::ios_base::binary);
    if (file == nullptr) {
        std::printf("%s could not be opened. !\n", fullPath.c_str());
        std::getchar();  // Deliberately waits for a key: who may not be kept waiting looks for the file
                         // first.
        return false;
    }
    BmpHeader header;
    file->read(reinterpret_cast<char*>(header.bytes), BmpHeader::SIZE);
    if (file->gcount() != BmpHeader::SIZE || !header.isPlain24Bit()) {
        std::printf("Not a correct BMP file\n");
        return false;
    }
    const std::uint64_t width = header.width();
    const std::uint64_t height = header.height();
    if (width == 0 || height == 0 || width > MAX_SIDE || height > MAX_SIDE)
        return false;
    // The pixels are taken from right behind the header, wherever the file says that they are. Without an
    // image size tight rows are read, so a file with padded rows and no image size comes out skewed.
    const std::uint64_t needed = width * height * 3;
    const std::uint64_t bytes = header.imageSize() != 0 ? header.imageSize() : needed;
    if (bytes < needed || bytes > MAX_IMAGE_BYTES || remainingBytes(*file) < bytes)
        return false;
    mData.resize(static_cast<std::size_t>(bytes));
    if (mData.size() != bytes)
        return false;
    file->read(reinterpret_cast<char*>(mData.get(0)), static_cast<std::streamsize>(bytes));
    if (static_cast<std::uint64_t>(file->gcount()) != bytes)
        return false;
    swapRedAndBlue(mData.get(0), bytes, width * 3, height);
    mSize = Size16(static_cast<unsigned short>(width), static_cast<unsigned short>(height));
    mFormat = PXFORMAT_RGB888;
    return true;
}

}  // namespace zv
