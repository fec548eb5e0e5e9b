#include "platform/graphics/GifDecoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

namespace {

constexpr int kMaxCodes = 4096;  // 12-bit LZW codes

struct Reader {
  std::string_view b;
  std::size_t pos = 0;
  bool has(std::size_t count) const { return pos <= b.size() && b.size() - pos >= count; }
  unsigned u8(std::size_t at) const { return static_cast<unsigned char>(b[at]); }
  unsigned u16(std::size_t at) const { return u8(at) | (u8(at + 1) << 8); }
};

// Skips data sub-blocks up to and including their terminator; false when the data ends first.
bool skipSubBlocks(Reader& r) {
  while (r.has(1)) {
    std::size_t length = r.u8(r.pos++);
    if (length == 0) return true;
    if (!r.has(length)) return false;
    r.pos += length;
  }
  return false;
}

// The row of an interlaced image that the k-th decoded row goes to: rows 0, 8, 16, ... first,
// then 4, 12, ..., then 2, 6, ..., then the odd rows.
int interlacedRow(int k, int height) {
  int pass1 = (height + 7) / 8;
  if (k < pass1) return k * 8;
  k -= pass1;
  int pass2 = (height + 3) / 8;
  if (k < pass2) return 4 + k * 8;
  k -= pass2;
  int pass3 = (height + 1) / 4;
  if (k < pass3) return 2 + k * 4;
  k -= pass3;
  return 1 + k * 2;
}

}  // namespace

std::shared_ptr<GifDecoder> GifDecoder::open(std::shared_ptr<const std::string> bytes,
                                             std::size_t maxFrames) {
  if (!bytes) return nullptr;
  std::string_view view = *bytes;
  auto decoder = std::make_shared<GifDecoder>(std::move(bytes), view);
  if (!decoder->parse(maxFrames)) return nullptr;
  return decoder;
}

std::shared_ptr<GifDecoder> GifDecoder::openView(std::string_view bytes, std::size_t maxFrames) {
  auto decoder = std::make_shared<GifDecoder>(nullptr, bytes);
  if (!decoder->parse(maxFrames)) return nullptr;
  return decoder;
}

bool GifDecoder::parse(std::size_t maxFrames) {
  Reader r{bytes_};
  if (!r.has(13) || (r.b.compare(0, 6, "GIF87a") != 0 && r.b.compare(0, 6, "GIF89a") != 0)) {
    return false;
  }
  width_ = static_cast<int>(r.u16(6));
  height_ = static_cast<int>(r.u16(8));
  unsigned screenFlags = r.u8(10);
  r.pos = 13;
  if (screenFlags & 0x80) {
    globalColors_ = 2 << (screenFlags & 7);
    if (!r.has(3 * static_cast<std::size_t>(globalColors_))) return false;
    globalTable_ = r.pos;
    r.pos += 3 * static_cast<std::size_t>(globalColors_);
  }

  struct Control {
    Disposal disposal = Disposal::kNone;
    int transparentIndex = -1;
    int delay = 0;
  };
  std::optional<Control> pending;
  while (r.has(1) && frames_.size() < maxFrames) {
    unsigned tag = r.u8(r.pos++);
    if (tag == 0x3B) break;  // trailer
    if (tag == 0x21) {       // extension
      if (!r.has(1)) break;
      unsigned label = r.u8(r.pos++);
      if (label == 0xF9 && r.has(5) && r.u8(r.pos) >= 4) {
        unsigned flags = r.u8(r.pos + 1);
        Control control;
        unsigned disposal = (flags >> 2) & 7;
        control.disposal = disposal == 2   ? Disposal::kBackground
                           : disposal == 3 ? Disposal::kPrevious
                                           : Disposal::kNone;
        control.delay = static_cast<int>(r.u16(r.pos + 2));
        if (flags & 1) control.transparentIndex = static_cast<int>(r.u8(r.pos + 4));
        pending = control;
      }
      if (!skipSubBlocks(r)) break;
      continue;
    }
    if (tag != 0x2C) break;  // not GIF data: the rest is ignored, as browsers do
    if (!r.has(9)) break;
    Frame f;
    f.left = static_cast<int>(r.u16(r.pos));
    f.top = static_cast<int>(r.u16(r.pos + 2));
    f.width = static_cast<int>(r.u16(r.pos + 4));
    f.height = static_cast<int>(r.u16(r.pos + 6));
    unsigned flags = r.u8(r.pos + 8);
    r.pos += 9;
    f.interlaced = (flags & 0x40) != 0;
    if (flags & 0x80) {
      f.colorCount = 2 << (flags & 7);
      if (!r.has(3 * static_cast<std::size_t>(f.colorCount))) break;
      f.colorTable = r.pos;
      r.pos += 3 * static_cast<std::size_t>(f.colorCount);
    } else {
      f.colorTable = globalTable_;
      f.colorCount = globalColors_;
    }
    if (!r.has(1)) break;
    f.minCodeSize = static_cast<int>(r.u8(r.pos++));
    bool complete = false;
    while (r.has(1)) {
      std::size_t length = r.u8(r.pos++);
      if (length == 0) {
        complete = true;
        break;
      }
      if (!r.has(length)) break;
      f.blocks.emplace_back(r.pos, length);
      r.pos += length;
    }
    if (!complete) break;  // cut short: this frame and everything after it are lost
    if (pending) {
      f.disposal = pending->disposal;
      f.transparentIndex = pending->transparentIndex;
      f.delay = pending->delay;
      pending.reset();
    }
    if (f.width == 0 || f.height == 0) {
      f.width = width_;
      f.height = height_;
    }
    if (frames_.empty() && (f.width > width_ || f.height > height_)) {
      width_ = f.width;
      height_ = f.height;
      f.left = f.top = 0;
    }
    bool decodable = f.colorCount > 0 && f.minCodeSize >= 1 && f.minCodeSize <= 11 &&
                     PixelBuffer::withinBudget(static_cast<std::size_t>(f.width),
                                               static_cast<std::size_t>(f.height));
    if (decodable) frames_.push_back(std::move(f));
  }
  return PixelBuffer::withinBudget(static_cast<std::size_t>(width_),
                                   static_cast<std::size_t>(height_));
}

std::shared_ptr<const PixelBuffer> GifDecoder::composite(std::size_t index) {
  if (index >= frames_.size()) return nullptr;
  try {
    if (!canvas_ || !cursor_ || *cursor_ > index) {
      if (!reset()) return nullptr;
    }
    std::size_t next = cursor_ ? *cursor_ + 1 : 0;
    if (next <= index && canvas_.use_count() > 1) {
      canvas_ = std::make_shared<PixelBuffer>(*canvas_);  // the caller still holds the last one
    }
    for (std::size_t i = next; i <= index; ++i) {
      if (cursor_) dispose(frames_[*cursor_]);
      draw(frames_[i]);
      cursor_ = i;
    }
    return canvas_;
  } catch (const std::bad_alloc&) {
    canvas_.reset();
    cursor_.reset();
    return nullptr;
  }
}

bool GifDecoder::reset() {
  cursor_.reset();
  if (canvas_ && canvas_.use_count() == 1) {
    std::fill(canvas_->data.begin(), canvas_->data.end(), 0u);
  } else {
    canvas_ =
        PixelBuffer::make(static_cast<std::size_t>(width_), static_cast<std::size_t>(height_));
  }
  return canvas_ != nullptr;
}

void GifDecoder::dispose(const Frame& f) {
  if (f.disposal == Disposal::kNone) return;
  int x0 = std::min(f.left, width_), x1 = std::min(f.left + f.width, width_);
  int y0 = std::min(f.top, height_), y1 = std::min(f.top + f.height, height_);
  if (x0 >= x1) return;  // nothing of the frame was on the screen
  std::size_t span = static_cast<std::size_t>(x1 - x0);
  for (int y = y0; y < y1; ++y) {
    std::uint32_t* row = canvas_->row(y) + x0;
    if (f.disposal == Disposal::kBackground) {
      std::fill(row, row + span, 0u);
    } else {
      std::memcpy(row, saved_.data() + static_cast<std::size_t>(y - y0) * span, span * 4);
    }
  }
}

void GifDecoder::draw(const Frame& f) {
  std::string_view b = bytes_;
  int x0 = std::min(f.left, width_), x1 = std::min(f.left + f.width, width_);
  int y0 = std::min(f.top, height_), y1 = std::min(f.top + f.height, height_);
  if (f.disposal == Disposal::kPrevious && x0 < x1) {
    std::size_t span = static_cast<std::size_t>(x1 - x0);
    saved_.resize(span * static_cast<std::size_t>(y1 - y0));
    for (int y = y0; y < y1; ++y) {
      std::memcpy(saved_.data() + static_cast<std::size_t>(y - y0) * span, canvas_->row(y) + x0,
                  span * 4);
    }
  }
  if (x0 >= x1 || y0 >= y1) return;  // entirely off the screen

  // Opaque colours by index; 0 marks the transparent index and indexes past the table.
  std::array<std::uint32_t, 256> palette{};
  for (int i = 0; i < std::min(f.colorCount, 256); ++i) {
    auto c = [&](int k) { return static_cast<unsigned char>(b[f.colorTable + 3 * i + k]); };
    palette[i] = PixelBuffer::premultiplied(c(0), c(1), c(2), 255);
  }
  if (f.transparentIndex >= 0 && f.transparentIndex < 256) palette[f.transparentIndex] = 0;

  packed_.clear();
  for (auto [offset, length] : f.blocks)
    packed_.insert(packed_.end(), b.data() + offset, b.data() + offset + length);

  // Rows are decoded one at a time into `line` and drawn as each completes.
  indexes_.resize(static_cast<std::size_t>(f.width));
  std::uint8_t* line = indexes_.data();
  int filled = 0, rowsDone = 0;
  int visibleColumns = x1 - x0;
  // Draws the first `columns` decoded pixels of the current row.
  auto drawRow = [&](int columns) {
    int y = f.interlaced ? interlacedRow(rowsDone, f.height) : rowsDone;
    int cy = f.top + y;
    if (cy >= height_) return;
    std::uint32_t* out = canvas_->row(cy) + x0;
    for (int x = 0; x < std::min(columns, visibleColumns); ++x) {
      std::uint32_t c = palette[line[x]];
      if (c) out[x] = c;
    }
  };
  auto flushRow = [&] {
    drawRow(visibleColumns);
    ++rowsDone;
    filled = 0;
  };
  // Non-interlaced rows below the screen need not be decoded.
  int rowsNeeded = f.interlaced ? f.height : std::min(f.height, height_ - f.top);

  std::array<std::uint16_t, kMaxCodes> prefix;
  std::array<std::uint8_t, kMaxCodes> suffix, first;
  std::array<std::uint16_t, kMaxCodes> length;
  std::array<std::uint8_t, kMaxCodes> string;
  const int clear = 1 << f.minCodeSize, endOfInformation = clear + 1;
  for (int i = 0; i < clear; ++i) {
    prefix[i] = 0;
    suffix[i] = first[i] = static_cast<std::uint8_t>(i);
    length[i] = 1;
  }
  int codeSize = f.minCodeSize + 1, next = clear + 2, previous = -1;
  std::uint32_t bits = 0;
  int bitCount = 0;
  std::size_t in = 0;
  const std::size_t inEnd = packed_.size();

  // Writes the string of a code into the rows; false once every needed row is done.
  auto emit = [&](int code) {
    int n = length[code];
    for (int i = n - 1, c = code; i >= 0; --i) {
      string[i] = suffix[c];
      c = prefix[c];
    }
    for (int i = 0; i < n;) {
      int take = std::min(n - i, f.width - filled);
      std::memcpy(line + filled, string.data() + i, static_cast<std::size_t>(take));
      filled += take;
      i += take;
      if (filled == f.width) {
        flushRow();
        if (rowsDone >= rowsNeeded) return false;
      }
    }
    return true;
  };

  while (true) {
    while (bitCount < codeSize && in < inEnd) {
      bits |= static_cast<std::uint32_t>(packed_[in++]) << bitCount;
      bitCount += 8;
    }
    if (bitCount < codeSize) break;  // the data ends without its end code
    int code = static_cast<int>(bits & ((1u << codeSize) - 1));
    bits >>= codeSize;
    bitCount -= codeSize;
    if (code == clear) {
      codeSize = f.minCodeSize + 1;
      next = clear + 2;
      previous = -1;
      continue;
    }
    if (code == endOfInformation) break;
    if (previous < 0) {
      if (code > clear) break;  // the first code after a clear must be a colour
      if (!emit(code)) break;
      previous = code;
      continue;
    }
    if (code < next) {
      if (next < kMaxCodes) {
        prefix[next] = static_cast<std::uint16_t>(previous);
        suffix[next] = first[code];
        first[next] = first[previous];
        length[next] = static_cast<std::uint16_t>(length[previous] + 1);
        ++next;
      }
    } else if (code == next && next < kMaxCodes) {
      prefix[next] = static_cast<std::uint16_t>(previous);
      suffix[next] = first[previous];
      first[next] = first[previous];
      length[next] = static_cast<std::uint16_t>(length[previous] + 1);
      ++next;
    } else {
      break;  // a code that is not in the table: the rest of the frame stays undrawn
    }
    if (!emit(code)) break;
    previous = code;
    if (next == (1 << codeSize) && codeSize < 12) ++codeSize;
  }
  // A last row cut short still shows the pixels it got; the rest keeps what was under it.
  if (filled > 0 && rowsDone < rowsNeeded) drawRow(filled);
}

}  // namespace zv
