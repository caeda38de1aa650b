#include "PngWriter.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>

#include "OutputFile.h"

namespace render {

namespace {

// libpng reports failures by a long jump back to the setjmp here, so this function holds no
// object with a destructor: the rows and the file belong to the caller.
constexpr size_t kMessageSize = 256;

bool encodeRows(std::FILE* file, int width, int height, png_bytepp rows, char* message) {
  png_structp png = png_create_write_struct(
      PNG_LIBPNG_VER_STRING, message,
      [](png_structp p, png_const_charp text) {
        char* into = static_cast<char*>(png_get_error_ptr(p));
        std::snprintf(into, kMessageSize, "%s", text);
        png_longjmp(p, 1);
      },
      nullptr);
  if (!png) return false;
  png_infop info = png_create_info_struct(png);
  if (!info || setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return false;
  }
  png_init_io(png, file);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
               PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  // The window's rows are RGBA; the filler flag drops the fourth byte of each pixel.
  png_set_filler(png, 0, PNG_FILLER_AFTER);
  png_write_image(png, rows);
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

}  // namespace

bool writePng(const std::string& path, const ostrel::Image& image, std::string& error) {
  if (image.width <= 0 || image.height <= 0 ||
      image.rgba.size() != static_cast<size_t>(image.width) * image.height * 4) {
    error = cannotWrite(path, "the picture is empty");
    return false;
  }
  OutputFile out(path);
  std::FILE* file = std::fopen(out.tempPath().c_str(), "wb");
  if (!file) {
    error = cannotWrite(path, std::strerror(errno));
    return false;
  }
  std::vector<png_bytep> rows(static_cast<size_t>(image.height));
  for (int y = 0; y < image.height; ++y) {
    rows[static_cast<size_t>(y)] =
        const_cast<png_bytep>(image.rgba.data() + static_cast<size_t>(y) * image.width * 4);
  }
  char message[kMessageSize] = "the PNG encoder failed";
  const bool encoded = encodeRows(file, image.width, image.height, rows.data(), message);
  const bool flushed = std::fflush(file) == 0;
  const int flushError = errno;
  const bool closed = std::fclose(file) == 0;
  if (!encoded) {
    error = cannotWrite(path, message);
    return false;
  }
  if (!flushed || !closed) {
    error = cannotWrite(path, std::strerror(flushError));
    return false;
  }
  return out.commit(error);
}

}  // namespace render
