#include "support/GifBytes.h"

namespace zvtest {

namespace {

void put16(std::string& out, int v) {
  out += static_cast<char>(v & 0xFF);
  out += static_cast<char>((v >> 8) & 0xFF);
}

// LZW data for width*height pixels of one index, 3-bit codes (minimum code size 2), a clear code
// before every pixel so that the code size never grows.
std::string lzwOfOneColor(int index, int pixels) {
  std::string data;
  unsigned bits = 0;
  int count = 0;
  auto code = [&](unsigned c) {
    bits |= c << count;
    count += 3;
    while (count >= 8) {
      data += static_cast<char>(bits & 0xFF);
      bits >>= 8;
      count -= 8;
    }
  };
  for (int i = 0; i < pixels; ++i) {
    code(4);
    code(static_cast<unsigned>(index));
  }
  code(5);
  if (count > 0) data += static_cast<char>(bits & 0xFF);
  return data;
}

}  // namespace

std::string gifBytes(const std::vector<GifFrame>& frames, int screenWidth, int screenHeight) {
  std::string out = "GIF89a";
  put16(out, screenWidth);
  put16(out, screenHeight);
  out += '\xF1';  // global table of 4 colours
  out += '\0';
  out += '\0';
  out += std::string("\0\0\0\xFF\0\0\0\xFF\0\0\0\xFF", 12);
  for (const auto& f : frames) {
    if (f.delay) {
      out += "\x21\xF9\x04";
      out += '\0';
      put16(out, *f.delay);
      out += '\0';
      out += '\0';
    }
    out += '\x2C';
    put16(out, 0);
    put16(out, 0);
    put16(out, f.width);
    put16(out, f.height);
    out += '\0';
    out += '\x02';
    std::string data = lzwOfOneColor(f.colorIndex, f.width * f.height);
    for (size_t at = 0; at < data.size(); at += 255) {
      std::string block = data.substr(at, 255);
      out += static_cast<char>(block.size());
      out += block;
    }
    out += '\0';
  }
  out += ';';
  return out;
}

}  // namespace zvtest
