#include "platform/ui/UILabel.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/ui/UIColor.h"

namespace zv {

namespace {
// The width a line of text never reaches: wide enough for any label, small enough for measurers
// that divide by it.
constexpr double kUnbounded = 1e7;
}  // namespace

UILabel::UILabel(std::shared_ptr<TextMeasurer> measurer, CGRect frame)
    : UIView(frame), measurer_(std::move(measurer)), textColor_(UIColor::blackColor()) {}

void UILabel::setAttributedText(StyledText text) {
  text_ = std::move(text);
  if (text_.length() == 0) return;
  if (auto font = text_.fontAt(0)) font_ = *font;
  if (const auto& color = text_.attributesAt(0).foregroundColor) textColor_ = color;
}

void UILabel::setText(const std::string& text) {
  TextAttributes attributes;
  attributes.fontFamily = font_.family();
  attributes.fontSize = font_.size();
  attributes.fontWeight = font_.weight();
  attributes.italic = font_.italic();
  attributes.foregroundColor = textColor_;
  text_ = StyledText(text, attributes);
}

void UILabel::setFont(Font font) {
  font_ = std::move(font);
  if (text_.length() > 0) setText(text_.string());
}

void UILabel::setTextColor(ColorRef color) {
  textColor_ = std::move(color);
  if (text_.length() > 0) setText(text_.string());
}

CGSize UILabel::sizeThatFits(CGSize size) const {
  if (!measurer_ || text_.length() == 0) return {0, 0};
  double width = size.width > 0 ? size.width : kUnbounded;
  std::string plain = text_.string();
  TextSize measured =
      measurer_->boundingSize(plain, font_, numberOfLines_ == 1 ? kUnbounded : width);
  double height = measured.height;
  if (numberOfLines_ > 0) {
    double line = measurer_->boundingSize("X", font_, kUnbounded).height;
    height = std::min(height, line * numberOfLines_);
  }
  return {std::ceil(std::min(measured.width, width)), std::ceil(height)};
}

CGSize UILabel::intrinsicContentSize() const {
  if (!measurer_) return {kNoIntrinsicMetric, kNoIntrinsicMetric};
  if (numberOfLines_ == 1) return sizeThatFits({0, 0});
  CGFloat wrap = preferredMaxLayoutWidth_ > 0 ? preferredMaxLayoutWidth_ : frame().size.width;
  CGSize size = sizeThatFits({wrap, 0});
  // Wrapped at the width it is given, it asks for no width of its own.
  if (wrap > 0) size.width = kNoIntrinsicMetric;
  return size;
}

}  // namespace zv
