#include "platform/graphics/ImageOrientation.h"

#include <libexif/exif-data.h>

#include <cstring>
#include <vector>

#include "platform/foundation/UniqueHandle.h"

namespace zv {

int ImageOrientation::fromExif(const unsigned char* data, std::size_t size) {
  static constexpr unsigned char kPrefix[] = {'E', 'x', 'i', 'f', 0, 0};
  // A JPEG segment holds at most 64 KB; a bigger block is not a camera's and is not read.
  if (!data || size < 8 || size > 65536) return 1;
  std::vector<unsigned char> block;
  if (std::memcmp(data, kPrefix, sizeof kPrefix) != 0) {
    block.assign(kPrefix, kPrefix + sizeof kPrefix);
    block.insert(block.end(), data, data + size);
    data = block.data();
    size = block.size();
  }
  UniqueHandle<ExifData, exif_data_unref> exif(exif_data_new());
  if (!exif) return 1;
  // Read the tags as they are: no tags added, none dropped, maker notes left alone.
  exif_data_unset_option(exif.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  exif_data_unset_option(exif.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
  exif_data_set_option(exif.get(), EXIF_DATA_OPTION_DONT_CHANGE_MAKER_NOTE);
  exif_data_load_data(exif.get(), data, static_cast<unsigned int>(size));
  ExifEntry* entry = exif_content_get_entry(exif->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
  if (!entry || entry->format != EXIF_FORMAT_SHORT || entry->components < 1 || !entry->data ||
      entry->size < 2) {
    return 1;
  }
  int value = exif_get_short(entry->data, exif_data_get_byte_order(exif.get()));
  return value >= 1 && value <= 8 ? value : 1;
}

std::shared_ptr<PixelBuffer> ImageOrientation::apply(std::shared_ptr<PixelBuffer> pixels,
                                                     int orientation) {
  if (!pixels || orientation <= 1 || orientation > 8) return pixels;
  const int w = pixels->width, h = pixels->height;
  auto out = swapsAxes(orientation) ? PixelBuffer::make(h, w) : PixelBuffer::make(w, h);
  if (!out) return nullptr;
  // For each upright pixel (x, y), the stored pixel it shows.
  for (int y = 0; y < out->height; ++y) {
    std::uint32_t* row = out->row(y);
    for (int x = 0; x < out->width; ++x) {
      int sx = x, sy = y;
      switch (orientation) {
        case 2:
          sx = w - 1 - x;
          break;  // mirrored
        case 3:
          sx = w - 1 - x, sy = h - 1 - y;
          break;  // turned half round
        case 4:
          sy = h - 1 - y;
          break;  // mirrored top to bottom
        case 5:
          sx = y, sy = x;
          break;  // transposed
        case 6:
          sx = y, sy = h - 1 - x;
          break;  // to turn a quarter clockwise
        case 7:
          sx = w - 1 - y, sy = h - 1 - x;
          break;  // transversed
        case 8:
          sx = w - 1 - y, sy = x;
          break;  // to turn a quarter anticlockwise
      }
      row[x] = pixels->row(sy)[sx];
    }
  }
  return out;
}

}  // namespace zv
