// JPEG through libjpeg-turbo. Its default error handler ends the process; ours jumps back to the
// call that started the work, which then gives nothing. The functions that can jump hold no object
// with a destructor.
#include <csetjmp>
#include <cstddef>
#include <cstdio>
// jpeglib.h needs size_t and FILE declared first.
#include <jpeglib.h>

#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/PixelBuffer.h"

namespace zv {

namespace {

struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
};

[[noreturn]] void onError(j_common_ptr info) {
  std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->jump, 1);
}
void onMessage(j_common_ptr, int) {}  // warnings about damaged data are not printed

struct Decompressor {
  jpeg_decompress_struct info{};
  ErrorManager errors{};
  Decompressor() {
    info.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = onError;
    errors.base.emit_message = onMessage;
  }
  ~Decompressor() { jpeg_destroy_decompress(&info); }
};

bool readJpegHeader(Decompressor& d, std::string_view bytes) {
  if (setjmp(d.errors.jump)) return false;
  jpeg_create_decompress(&d.info);
  jpeg_mem_src(&d.info, reinterpret_cast<const unsigned char*>(bytes.data()),
               static_cast<unsigned long>(bytes.size()));
  return jpeg_read_header(&d.info, TRUE) == JPEG_HEADER_OK;
}

bool readJpegPixels(Decompressor& d, std::uint32_t* out, int width) {
  if (setjmp(d.errors.jump)) return false;
  d.info.out_color_space = JCS_EXT_BGRA;  // ARGB words, opaque
  jpeg_start_decompress(&d.info);
  while (d.info.output_scanline < d.info.output_height) {
    JSAMPROW row =
        reinterpret_cast<JSAMPROW>(out + static_cast<std::size_t>(d.info.output_scanline) * width);
    if (jpeg_read_scanlines(&d.info, &row, 1) != 1) return false;
  }
  jpeg_finish_decompress(&d.info);
  return true;
}

}  // namespace

std::optional<ImageHeader> ImageDecoder::jpegHeader(std::string_view bytes) {
  Decompressor d;
  if (!readJpegHeader(d, bytes)) return std::nullopt;
  return ImageHeader{ImageFormat::kJpeg, static_cast<int>(d.info.image_width),
                     static_cast<int>(d.info.image_height)};
}

std::shared_ptr<const PixelBuffer> ImageDecoder::decodeJpeg(std::string_view bytes) {
  Decompressor d;
  if (!readJpegHeader(d, bytes)) return nullptr;
  auto pixels = PixelBuffer::make(d.info.image_width, d.info.image_height);
  if (!pixels || !readJpegPixels(d, pixels->data.data(), pixels->width)) return nullptr;
  if (d.info.output_width != d.info.image_width) return nullptr;
  return pixels;
}

}  // namespace zv
