// A text measurer with predictable results for layout tests: every character (code point) advances
// by a fixed fraction of the font size and every line is a fixed multiple of the font size tall.
// Lines wrap greedily at spaces; a word wider than the line breaks between characters. "\n" starts
// a new line.
#pragma once

#include "platform/text/TextMeasurer.h"

namespace zv {

class FixedAdvanceTextMeasurer : public TextMeasurer {
 public:
  // Defaults: each character 0.5 em wide, each line 1.2 em tall.
  explicit FixedAdvanceTextMeasurer(double advanceEm = 0.5, double lineHeightEm = 1.2);
  TextSize boundingSize(std::string_view text, const Font& font, double width) override;

 private:
  double advanceEm_;
  double lineHeightEm_;
};

}  // namespace zv
