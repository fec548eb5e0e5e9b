#include "platform/text/FixedAdvanceTextMeasurer.h"

#include <algorithm>
#include <vector>

namespace zv {

FixedAdvanceTextMeasurer::FixedAdvanceTextMeasurer(double advanceEm, double lineHeightEm)
    : advanceEm_(advanceEm), lineHeightEm_(lineHeightEm) {}

TextSize FixedAdvanceTextMeasurer::boundingSize(std::string_view text, const Font& font,
                                                double width) {
  if (text.empty()) return {};
  const double advance = advanceEm_ * font.size();
  const size_t perLine =
      std::max<size_t>(1, advance > 0 ? static_cast<size_t>(width / advance) : 1);
  size_t lines = 0;
  size_t widest = 0;
  // Code points per paragraph, then greedy wrapping of its words.
  size_t start = 0;
  while (start <= text.size()) {
    size_t nl = text.find('\n', start);
    std::string_view para = text.substr(start, nl == std::string_view::npos ? nl : nl - start);
    std::vector<size_t> words;  // lengths in code points
    size_t current = 0;
    for (unsigned char c : para) {
      if ((c & 0xC0) == 0x80) continue;
      if (c == ' ') {
        words.push_back(current);
        current = 0;
      } else {
        ++current;
      }
    }
    words.push_back(current);
    size_t line = 0;  // characters on the current line
    bool lineEmpty = true;
    size_t paraLines = 1;
    for (size_t w : words) {
      size_t needed = lineEmpty ? w : line + 1 + w;
      if (needed > perLine && !lineEmpty) {
        widest = std::max(widest, line);
        ++paraLines;
        needed = w;
      }
      while (needed > perLine) {  // a word longer than the line breaks between characters
        widest = perLine;
        ++paraLines;
        needed -= perLine;
      }
      line = needed;
      lineEmpty = false;
    }
    widest = std::max(widest, line);
    lines += paraLines;
    if (nl == std::string_view::npos) break;
    start = nl + 1;
  }
  return TextSize{static_cast<double>(widest) * advance,
                  static_cast<double>(lines) * lineHeightEm_ * font.size()};
}

}  // namespace zv
