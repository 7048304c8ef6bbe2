#include "gl/PictureFiles.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <utility>

namespace zv::test {

namespace {

void append(png_structp png, png_bytep data, png_size_t size) {
    auto* out = static_cast<Bytes*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + size);
}

void writePng(png_structp png, png_infop info, const PngContent& content, png_bytepp rows) {
    if (setjmp(png_jmpbuf(png)) != 0)
        return;
    png_set_compression_level(png, 1);
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_IHDR(png, info, content.width, content.height, content.depth, content.colourType,
                 content.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_color palette[256] = {};
    const std::size_t colours = content.palette.size() / 3;
    for (std::size_t i = 0; i < colours; ++i)
        palette[i] = {content.palette[i * 3], content.palette[i * 3 + 1], content.palette[i * 3 + 2]};
    if (colours > 0)
        png_set_PLTE(png, info, palette, static_cast<int>(colours));
    png_color_16 grey = {};
    grey.gray = static_cast<png_uint_16>(content.transparentGrey);
    if (!content.transparency.empty() || content.transparentGrey >= 0)
        png_set_tRNS(png, info, content.transparency.data(), static_cast<int>(content.transparency.size()),
                     content.transparentGrey >= 0 ? &grey : nullptr);
    png_set_rows(png, info, rows);
    png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
}

}  // namespace

Bytes pngFile(const PngContent& content) {
    Bytes file;
    Bytes rowBytes = content.rows;
    std::vector<png_bytep> rows(content.height);
    for (std::size_t y = 0; y < rows.size(); ++y)
        rows[y] = rowBytes.data() + y * (rowBytes.size() / rows.size());
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &file, append, nullptr);
    writePng(png, info, content, rows.data());
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes bmpFile(const BmpContent& content) {
    Bytes file(54 + content.pixels.size());
    // Offset and value, four bytes each; where two overlap the later one stands.
    const std::pair<std::size_t, std::int64_t> fields[] = {{0, 0x4D42},
                                                           {2, file.size()},
                                                           {10, 54},
                                                           {14, 40},
                                                           {18, content.width},
                                                           {22, content.height},
                                                           {26, 1},
                                                           {28, content.bitsPerPixel},
                                                           {30, content.compression},
                                                           {34, content.imageSize}};
    for (const auto& [offset, value] : fields)
        for (std::size_t i = 0; i < 4; ++i)
            file[offset + i] = static_cast<unsigned char>(value >> (8 * i));
    std::copy(content.pixels.begin(), content.pixels.end(), file.begin() + 54);
    return file;
}

bool decodes(const std::string& path) {
    Image image;
    ::testing::internal::CaptureStdout();  // what is no BMP is told there
    const bool answer = image.initWithFile(path);
    ::testing::internal::GetCapturedStdout();
    EXPECT_TRUE(!answer || keepsItsPromise(image));
    return answer;
}

}  // namespace zv::test
