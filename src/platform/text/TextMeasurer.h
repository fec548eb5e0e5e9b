// zv::TextMeasurer is the port through which the system measures text: the bounding size of a text
// drawn in one font, wrapped at a width (words wrap; a word longer than the line breaks between
// characters), with as many lines as it needs. Measuring may be called from any thread; a
// measurer serialises its own work.
//
// The real measurer is Pango with a pinned font (PangoTextMeasurer.h, in the content library);
// FixedAdvanceTextMeasurer.h is the predictable one for layout tests. What measures is handed its
// measurer when it is made; the platform object keeps the process's one for the edges.
#pragma once

#include <string_view>

#include "platform/text/Font.h"

namespace zv {

struct TextSize {
  double width = 0;
  double height = 0;
};

class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;
  // The size of the laid-out text (UTF-8) at the given width. Heights are not rounded. An empty
  // text measures 0 x 0.
  virtual TextSize boundingSize(std::string_view text, const Font& font, double width) = 0;
};

}  // namespace zv
