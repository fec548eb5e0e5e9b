// Any text (bytes read as HTML: scripts, emoji sequences, combining marks, bidi controls, numeric
// references to lone surrogates) through the content side's text path: styled by the HTML
// importer, measured by the Pango measurer as the body view measures it, and drawn in a label as
// tall as measured. The width comes from the first byte.
#include <cmath>

#include "FuzzInput.h"
#include "model/ZVRichNotifUtils.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/text/StyledText.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UILabel.h"
#include "zentrova/Renderer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static auto measurer = std::make_shared<zv::PangoTextMeasurer>();
  static zv::Renderer renderer(1);
  if (size == 0) return 0;
  const double width = 20 + data[0] * 2;
  std::string html = zvfuzz::text(data + 1, size - 1);
  auto styled = zv::ZVRichNotifUtils::getAttributedStringFromHTMLStr(html, false);
  if (!styled) return 0;
  const zv::Font font = zv::Font::systemFont(14);
  const double height =
      zv::ZVRichNotifUtils::getHeightForText(styled->string(), width, font, *measurer);
  ZV_FUZZ_CHECK(std::isfinite(height) && height >= 0);

  // Drawn at most 2,000 points tall: the label cuts the rest with an ellipsis.
  const double shown = std::min(height, 2000.0);
  auto root = zv::UIView::make({{0, 0}, {width, std::ceil(shown) + 1}});
  root->setBackgroundColor(zv::UIColor::whiteColor());
  auto label = zv::UILabel::make(measurer, {{0, 0}, {width, shown}});
  label->setFont(font);
  label->setNumberOfLines(0);
  label->setAttributedText(*styled);
  root->addSubview(label);
  ZV_FUZZ_CHECK(renderer.draw(*root) != nullptr);
  return 0;
}
