// zv::UILabel shows a styled text (runs of font, colour, ...) or a plain one in its font and text
// colour. Its font and text colour are those of the first character of styled text. Its intrinsic
// size comes from the TextMeasurer it was made with (none without one): a one-line label is as
// wide as its text; a label of several lines (0: as many as needed) wraps at its preferred maximum
// width, else at its current width, and is as tall as its lines. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "platform/text/Font.h"
#include "platform/text/StyledText.h"
#include "platform/text/TextMeasurer.h"
#include "zentrova/UIView.h"

namespace zv {

class UILabel : public UIView {
 public:
  explicit UILabel(std::shared_ptr<TextMeasurer> measurer = nullptr, CGRect frame = {});
  static std::shared_ptr<UILabel> make(std::shared_ptr<TextMeasurer> measurer, CGRect frame = {}) {
    return std::make_shared<UILabel>(std::move(measurer), frame);
  }
  std::string className() const override { return "UILabel"; }

  const StyledText& attributedText() const { return text_; }
  void setAttributedText(StyledText text);
  // The plain characters; setting plain text styles it with the label's font and colour.
  std::string text() const { return text_.string(); }
  void setText(const std::string& text);

  Font font() const { return font_; }
  void setFont(Font font);
  ColorRef textColor() const { return textColor_; }
  void setTextColor(ColorRef color);
  int numberOfLines() const { return numberOfLines_; }
  void setNumberOfLines(int lines) { numberOfLines_ = lines < 0 ? 0 : lines; }
  CGFloat preferredMaxLayoutWidth() const { return preferredMaxLayoutWidth_; }
  void setPreferredMaxLayoutWidth(CGFloat width) { preferredMaxLayoutWidth_ = width; }
  const std::shared_ptr<TextMeasurer>& measurer() const { return measurer_; }

  CGSize intrinsicContentSize() const override;
  // The size the text takes when wrapped at `width` (lines capped by numberOfLines).
  CGSize sizeThatFits(CGSize size) const;
  bool hasWidthDependentIntrinsicSize() const override { return numberOfLines_ != 1; }

 private:
  std::shared_ptr<TextMeasurer> measurer_;
  StyledText text_;
  Font font_ = Font::systemFont(17);
  ColorRef textColor_;
  int numberOfLines_ = 1;
  CGFloat preferredMaxLayoutWidth_ = 0;
};

}  // namespace zv
