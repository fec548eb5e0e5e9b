// PNG through libpng's row-by-row reader, whose errors jump back here (png_jmpbuf); the functions
// that can jump hold no object with a destructor. Every colour type comes out as straight BGRA
// (palettes and their tRNS alpha expanded, greys widened to RGB, 16-bit samples scaled to 8 with
// rounding: libpng's simplified reader would take them for linear light and brighten them), then
// converted to sRGB (an iCCP profile; else gAMA and cHRM unless an sRGB chunk is there),
// premultiplied and shrunk to the target as the rows arrive. An interlaced PNG is read whole
// first, its passes filling the same rows. An EXIF orientation in an eXIf chunk is applied.
#include <png.h>

#include <csetjmp>
#include <cstring>
#include <vector>

#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/ColorTransform.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/ImageOrientation.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/Resampler.h"

namespace zv {

namespace {

struct Source {
  std::string_view bytes;
  std::size_t at = 0;
};

void readBytes(png_structp png, png_bytep out, png_size_t length) {
  auto* source = static_cast<Source*>(png_get_io_ptr(png));
  if (length > source->bytes.size() - source->at) png_error(png, "cut short");
  std::memcpy(out, source->bytes.data() + source->at, length);
  source->at += length;
}
[[noreturn]] void onError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void onWarning(png_structp, png_const_charp) {}

struct Reader {
  png_structp png = nullptr;
  png_infop info = nullptr;
  Source source;
  explicit Reader(std::string_view bytes) : source{bytes} {
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning);
    if (png) info = png_create_info_struct(png);
  }
  ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
};

int orientationOf(Reader& r) {
  png_bytep exif = nullptr;
  png_uint_32 size = 0;
  if (!png_get_eXIf_1(r.png, r.info, &size, &exif) || !exif) return 1;
  return ImageOrientation::fromExif(exif, size);
}

bool readPngHeader(Reader& r) {
  if (!r.png || !r.info) return false;
  if (setjmp(png_jmpbuf(r.png))) return false;
  png_set_read_fn(r.png, &r.source, readBytes);
  // Ancillary chunks (an iCCP profile, text) may not make libpng hold more than this.
  png_set_chunk_malloc_max(r.png, ColorTransform::kMaxProfileBytes);
  png_set_user_limits(r.png, ImageDecoder::kMaxSide, ImageDecoder::kMaxSide);
  png_read_info(r.png, r.info);
  return true;
}

// The transform to sRGB that the colour chunks ask for, if any.
std::shared_ptr<const ColorTransform> colorOf(Reader& r) {
  if (setjmp(png_jmpbuf(r.png))) return nullptr;
  png_charp name = nullptr;
  png_bytep profile = nullptr;
  png_uint_32 length = 0;
  int compression = 0;
  if (png_get_iCCP(r.png, r.info, &name, &compression, &profile, &length) && profile) {
    return ColorTransform::fromIcc(std::string_view(reinterpret_cast<const char*>(profile), length),
                                   ColorTransform::Layout::kBgra);
  }
  int intent = 0;
  if (png_get_sRGB(r.png, r.info, &intent)) return nullptr;
  double gamma = 1 / 2.2;
  bool hasGamma = png_get_gAMA(r.png, r.info, &gamma) != 0;
  double c[8];
  bool hasChromaticities =
      png_get_cHRM(r.png, r.info, &c[0], &c[1], &c[2], &c[3], &c[4], &c[5], &c[6], &c[7]) != 0;
  if (!hasGamma && !hasChromaticities) return nullptr;
  return ColorTransform::fromGamma(gamma, hasChromaticities ? c : nullptr);
}

// Sets the transforms to straight BGRA bytes; the number of interlace passes.
bool startPng(Reader& r, int& passes) {
  if (setjmp(png_jmpbuf(r.png))) return false;
  png_set_expand(r.png);  // palette to RGB, tRNS to alpha, low-bit greys to 8 bits
  png_set_scale_16(r.png);
  png_set_gray_to_rgb(r.png);
  png_set_filler(r.png, 0xFF, PNG_FILLER_AFTER);
  png_set_bgr(r.png);
  passes = png_set_interlace_handling(r.png);
  png_read_update_info(r.png, r.info);
  return png_get_rowbytes(r.png, r.info) == png_get_image_width(r.png, r.info) * 4;
}

struct Rows {
  Resampler* resampler;
  std::uint32_t* row;  // one row, when not interlaced
  PixelBuffer* whole;  // the whole image, when interlaced
  const ColorTransform* transform;
};

void finishRow(const Rows& out, std::uint32_t* row, int width) {
  if (out.transform) out.transform->apply(row, row, width);
  for (int x = 0; x < width; ++x) {
    std::uint32_t p = row[x];
    unsigned a = p >> 24;
    if (a != 255)
      row[x] = PixelBuffer::premultiplied((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF, a);
  }
  out.resampler->addRow(row);
}

// Reads the rows into the resampler; false on damage (the rows read so far are there).
bool readPngRows(Reader& r, const Rows& out, int passes) {
  if (setjmp(png_jmpbuf(r.png))) return false;
  const int width = static_cast<int>(png_get_image_width(r.png, r.info));
  const int height = static_cast<int>(png_get_image_height(r.png, r.info));
  if (out.whole) {
    for (int pass = 0; pass < passes; ++pass) {
      for (int y = 0; y < height; ++y)
        png_read_row(r.png, reinterpret_cast<png_bytep>(out.whole->row(y)), nullptr);
    }
    for (int y = 0; y < height; ++y) finishRow(out, out.whole->row(y), width);
    return true;
  }
  for (int y = 0; y < height; ++y) {
    png_read_row(r.png, reinterpret_cast<png_bytep>(out.row), nullptr);
    finishRow(out, out.row, width);
  }
  return true;
}

}  // namespace

std::optional<ImageHeader> ImageDecoder::pngHeader(std::string_view bytes) {
  Reader r(bytes);
  if (!readPngHeader(r)) return std::nullopt;
  ImageHeader header{ImageFormat::kPng, static_cast<int>(png_get_image_width(r.png, r.info)),
                     static_cast<int>(png_get_image_height(r.png, r.info)), orientationOf(r)};
  if (ImageOrientation::swapsAxes(header.orientation)) std::swap(header.width, header.height);
  return header;
}

std::shared_ptr<const PixelBuffer> ImageDecoder::decodePng(std::string_view bytes,
                                                           DecodeSize size) {
  Reader r(bytes);
  if (!readPngHeader(r)) return nullptr;
  const int orientation = orientationOf(r);
  const bool swaps = ImageOrientation::swapsAxes(orientation);
  const int width = static_cast<int>(png_get_image_width(r.png, r.info));
  const int height = static_cast<int>(png_get_image_height(r.png, r.info));
  DecodeSize upright = decodedSize(swaps ? height : width, swaps ? width : height, size);
  DecodeSize stored = swaps ? DecodeSize{upright.height, upright.width} : upright;

  auto transform = colorOf(r);
  int passes = 1;
  if (!startPng(r, passes)) return nullptr;
  // Interlaced: the passes fill the whole image, which must itself be within the budget.
  std::shared_ptr<PixelBuffer> whole;
  if (passes > 1 && !(whole = PixelBuffer::make(width, height))) return nullptr;
  auto pixels = PixelBuffer::make(stored.width, stored.height);
  if (!pixels) return nullptr;
  std::vector<std::uint32_t> row;
  try {
    if (!whole) row.resize(width);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  Resampler resampler(width, height, *pixels);
  Rows out{&resampler, row.data(), whole.get(), transform.get()};
  if (!readPngRows(r, out, passes)) {
    if (resampler.rowsAdded() == 0) return nullptr;
    resampler.finishPartial();
  }
  return ImageOrientation::apply(std::move(pixels), orientation);
}

}  // namespace zv
