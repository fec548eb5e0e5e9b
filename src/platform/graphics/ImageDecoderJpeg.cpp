// JPEG through libjpeg-turbo. Its default error handler ends the process; ours jumps back to the
// call that started the work, which then keeps the rows decoded so far (a damaged photo shows its
// top) or gives nothing. The functions that can jump hold no object with a destructor.
//
// Colour: greyscale and YCbCr come out as RGB from libjpeg; CMYK and YCCK come out as CMYK
// (inverted when an Adobe marker says so, as Photoshop writes them) and are converted through
// their ICC profile, or by the plain complement of ink without one; an RGB image's profile
// converts it to sRGB. Arithmetic coding, progressive scans and restart markers are libjpeg's.
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>
// jpeglib.h needs size_t and FILE declared first.
#include <jerror.h>
#include <jpeglib.h>

#include "platform/graphics/ColorTransform.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/ImageOrientation.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/Resampler.h"

namespace zv {

namespace {

struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
  bool endOfData = false;  // the data ran out or a marker cut it: libjpeg fills the rest with grey
};

[[noreturn]] void onError(j_common_ptr info) {
  std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->jump, 1);
}
// Warnings about damaged data are not printed; the end of the data is noted.
void onMessage(j_common_ptr info, int level) {
  if (level < 0 && (info->err->msg_code == JWRN_JPEG_EOF || info->err->msg_code == JWRN_HIT_MARKER))
    reinterpret_cast<ErrorManager*>(info->err)->endOfData = true;
}

// A progressive JPEG may hold any number of scans, each a pass over the whole image: more than a
// photo's encoder writes (ten or so) are refused, so a small hostile file cannot cost minutes.
constexpr int kMaxScans = 100;
void onProgress(j_common_ptr info) {
  auto* d = reinterpret_cast<j_decompress_ptr>(info);
  if (d->is_decompressor && d->input_scan_number > kMaxScans) onError(info);
}

struct Decompressor {
  jpeg_decompress_struct info{};
  ErrorManager errors{};
  jpeg_progress_mgr progress{};
  JOCTET* icc = nullptr;  // malloc'ed by libjpeg
  unsigned int iccSize = 0;
  Decompressor() {
    info.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = onError;
    errors.base.emit_message = onMessage;
    progress.progress_monitor = onProgress;
  }
  ~Decompressor() {
    jpeg_destroy_decompress(&info);
    std::free(icc);
  }
};

int orientationOf(const jpeg_decompress_struct& info) {
  for (jpeg_saved_marker_ptr m = info.marker_list; m; m = m->next) {
    if (m->marker == JPEG_APP0 + 1 && m->data_length >= 6 && std::memcmp(m->data, "Exif\0", 6) == 0)
      return ImageOrientation::fromExif(m->data, m->data_length);
  }
  return 1;
}

bool readJpegHeader(Decompressor& d, std::string_view bytes) {
  if (setjmp(d.errors.jump)) return false;
  jpeg_create_decompress(&d.info);  // clears all but the error manager
  d.info.progress = &d.progress;
  // Bounds what a hostile file can make libjpeg hold (no backing store: over it is an error).
  d.info.mem->max_memory_to_use = ImageDecoder::kMaxJpegWorkBytes;
  jpeg_mem_src(&d.info, reinterpret_cast<const unsigned char*>(bytes.data()),
               static_cast<unsigned long>(bytes.size()));
  jpeg_save_markers(&d.info, JPEG_APP0 + 1, 0xFFFF);  // EXIF
  jpeg_save_markers(&d.info, JPEG_APP0 + 2, 0xFFFF);  // ICC profile chunks
  return jpeg_read_header(&d.info, TRUE) == JPEG_HEADER_OK;
}

bool readIcc(Decompressor& d) {
  if (setjmp(d.errors.jump)) return false;
  return jpeg_read_icc_profile(&d.info, &d.icc, &d.iccSize);
}

struct Output {
  Resampler* resampler;
  std::uint8_t* cmyk;  // a CMYK row, or nullptr when libjpeg writes ARGB words
  std::uint32_t* row;  // the ARGB row given to the resampler
  const ColorTransform* transform;
  bool inverted;
};

// Starts decoding at 1/8 to 8/8 of the size, the smallest not under the target.
bool startJpeg(Decompressor& d, DecodeSize stored, bool cmyk) {
  if (setjmp(d.errors.jump)) return false;
  unsigned n = 1;
  while (n < 8 && ((d.info.image_width * n + 7) / 8 < static_cast<unsigned>(stored.width) ||
                   (d.info.image_height * n + 7) / 8 < static_cast<unsigned>(stored.height))) {
    ++n;
  }
  d.info.scale_num = n;
  d.info.scale_denom = 8;
  d.info.out_color_space = cmyk ? JCS_CMYK : JCS_EXT_BGRA;  // BGRA: ARGB words, opaque
  d.info.dct_method = JDCT_ISLOW;
  return jpeg_start_decompress(&d.info);
}

// Decodes rows into the output until the end or damage; the number of rows read.
int readJpegRows(Decompressor& d, const Output& out) {
  if (setjmp(d.errors.jump)) return -1;
  while (d.info.output_scanline < d.info.output_height) {
    JSAMPROW row = out.cmyk ? out.cmyk : reinterpret_cast<JSAMPROW>(out.row);
    if (jpeg_read_scanlines(&d.info, &row, 1) != 1) return -1;
    int width = static_cast<int>(d.info.output_width);
    if (out.cmyk && out.transform) {
      out.transform->apply(out.cmyk, out.row, width);
    } else if (out.cmyk) {
      ColorTransform::cmykToArgb(out.cmyk, out.row, width, out.inverted);
    } else if (out.transform) {
      out.transform->apply(out.row, out.row, width);
    }
    out.resampler->addRow(out.row);
    // A file cut short shows what it holds: one scan's rows stop where its data does (the rows
    // past it would be grey, and a small file claiming a huge size would cost their decoding);
    // a progressive file's scans have all been read by now and give the whole picture, blurred.
    if (d.errors.endOfData && !jpeg_has_multiple_scans(&d.info)) return -1;
  }
  jpeg_finish_decompress(&d.info);
  return static_cast<int>(d.info.output_height);
}

}  // namespace

std::optional<ImageHeader> ImageDecoder::jpegHeader(std::string_view bytes) {
  Decompressor d;
  if (!readJpegHeader(d, bytes)) return std::nullopt;
  ImageHeader header{ImageFormat::kJpeg, static_cast<int>(d.info.image_width),
                     static_cast<int>(d.info.image_height), orientationOf(d.info)};
  if (ImageOrientation::swapsAxes(header.orientation)) std::swap(header.width, header.height);
  return header;
}

std::shared_ptr<const PixelBuffer> ImageDecoder::decodeJpeg(std::string_view bytes,
                                                            DecodeSize size) {
  Decompressor d;
  if (!readJpegHeader(d, bytes)) return nullptr;
  const int orientation = orientationOf(d.info);
  const bool swaps = ImageOrientation::swapsAxes(orientation);
  const int width = static_cast<int>(d.info.image_width);
  const int height = static_cast<int>(d.info.image_height);
  // The target in stored axes.
  DecodeSize upright = decodedSize(swaps ? height : width, swaps ? width : height, size);
  DecodeSize stored = swaps ? DecodeSize{upright.height, upright.width} : upright;

  const bool cmyk = d.info.jpeg_color_space == JCS_CMYK || d.info.jpeg_color_space == JCS_YCCK;
  const bool inverted = cmyk && d.info.saw_Adobe_marker;
  std::shared_ptr<const ColorTransform> transform;
  if (readIcc(d) && d.icc && d.info.jpeg_color_space != JCS_GRAYSCALE) {
    using Layout = ColorTransform::Layout;
    transform =
        ColorTransform::fromIcc(std::string_view(reinterpret_cast<const char*>(d.icc), d.iccSize),
                                !cmyk      ? Layout::kBgra
                                : inverted ? Layout::kCmykInverted
                                           : Layout::kCmyk);
  }

  if (!startJpeg(d, stored, cmyk)) return nullptr;
  const int scaledWidth = static_cast<int>(d.info.output_width);
  const int scaledHeight = static_cast<int>(d.info.output_height);
  stored.width = std::min(stored.width, scaledWidth);
  stored.height = std::min(stored.height, scaledHeight);
  auto pixels = PixelBuffer::make(stored.width, stored.height);
  if (!pixels) return nullptr;
  std::vector<std::uint32_t> row;
  std::vector<std::uint8_t> cmykRow;
  try {
    row.resize(scaledWidth);
    if (cmyk) cmykRow.resize(static_cast<std::size_t>(scaledWidth) * 4);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  Resampler resampler(scaledWidth, scaledHeight, *pixels);
  Output out{&resampler, cmyk ? cmykRow.data() : nullptr, row.data(), transform.get(), inverted};
  if (readJpegRows(d, out) < 0) {
    if (resampler.rowsAdded() == 0) return nullptr;
    resampler.finishPartial();
  }
  return ImageOrientation::apply(std::move(pixels), orientation);
}

}  // namespace zv
