#include "gl/PngReader.h"

#include <png.h>

#include <cstring>

#include "core/UniqueDataPtr.h"

namespace zv {

namespace {

constexpr png_alloc_size_t MAX_CHUNK_BYTES = 8u << 20;

}  // namespace

struct PngCallbacks {
    static void read(png_structp png, png_bytep out, png_size_t length) {
        auto* reader = static_cast<PngReader*>(png_get_io_ptr(png));
        if (length > reader->mSize - reader->mOffset)
            png_error(png, "pngReaderCallback failed");
        std::memcpy(out, reader->mBytes + reader->mOffset, length);
        reader->mOffset += length;
    }

    /// libpng's own handler would print to standard error.
    [[noreturn]] static void fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    static void ignore(png_structp, png_const_charp) {}
};

PngReader::PngReader(const unsigned char* bytes, std::size_t size) : mBytes(bytes), mSize(size) {
    mPng = png_create_read_struct("1.6.30", nullptr, PngCallbacks::fail, PngCallbacks::ignore);
    if (mPng != nullptr)
        mInfo = png_create_info_struct(mPng);
}

PngReader::~PngReader() {
    png_destroy_read_struct(&mPng, &mInfo, nullptr);
}

bool PngReader::hasSignature(const unsigned char* bytes, std::uint64_t size) {
    return size >= 8 && png_sig_cmp(bytes, 0, 8) == 0;
}

bool PngReader::readHeader(std::uint32_t maxSide) {
    if (mInfo == nullptr || setjmp(png_jmpbuf(mPng)) != 0)
        return false;
    png_set_user_limits(mPng, maxSide, maxSide);
    // A chunk says itself how long it is, and what it unpacks to is not known before: neither may take memory
    // at will. Texts, profiles and the like do not change pixels here and are passed over unread.
    png_set_chunk_malloc_max(mPng, MAX_CHUNK_BYTES);
    png_set_keep_unknown_chunks(mPng, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_read_fn(mPng, this, PngCallbacks::read);
    png_read_info(mPng, mInfo);

    const png_byte colour = png_get_color_type(mPng, mInfo);
    const png_byte depth = png_get_bit_depth(mPng, mInfo);
    if (colour == PNG_COLOR_TYPE_PALETTE)
        png_set_palette_to_rgb(mPng);
    if (colour == PNG_COLOR_TYPE_GRAY && depth < 8)
        png_set_expand_gray_1_2_4_to_8(mPng);
    if (png_get_valid(mPng, mInfo, PNG_INFO_tRNS) != 0)
        png_set_tRNS_to_alpha(mPng);
    if (depth == 16)
        png_set_strip_16(mPng);
    if (depth < 8)
        png_set_packing(mPng);
    png_set_interlace_handling(mPng);
    png_read_update_info(mPng, mInfo);
    return true;
}

std::uint32_t PngReader::width() const {
    return png_get_image_width(mPng, mInfo);
}

std::uint32_t PngReader::height() const {
    return png_get_image_height(mPng, mInfo);
}

PxFormat PngReader::format() const {
    switch (png_get_color_type(mPng, mInfo)) {
        case PNG_COLOR_TYPE_GRAY:
            return PXFORMAT_GRAY8;
        case PNG_COLOR_TYPE_GRAY_ALPHA:
            return PXFORMAT_GRAY_ALPHA88;
        case PNG_COLOR_TYPE_RGB:
            return PXFORMAT_RGB888;
        default:
            return PXFORMAT_RGBA8888;
    }
}

std::uint64_t PngReader::rowBytes() const {
    return png_get_rowbytes(mPng, mInfo);
}

bool PngReader::readRows(unsigned char* pixels) {
    UniqueDataPtr<unsigned char*> rows(height());
    if (rows.size() != height())
        return false;
    for (std::uint32_t y = 0; y < height(); ++y) {
        rows[y] = pixels + y * rowBytes();
    }
    return decodeRows(rows.get(0));
}

bool PngReader::decodeRows(unsigned char** rows) {
    if (setjmp(png_jmpbuf(mPng)) != 0)
        return false;
    png_read_image(mPng, rows);
    png_read_end(mPng, nullptr);
    return true;
}

}  // namespace zv
