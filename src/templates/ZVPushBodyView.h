// zv::ZVPushBodyView shows a notification's title, subtitle and message when the host hides the
// system's own text: it fills itself from the payload (the rich push's HTML texts, else the
// standard alert), grows in rows of 25 points (20 points of padding, a title row, a subtitle row,
// and the message's lines), and opens the application when tapped. Its labels and the two row
// height constraints come from the interface "ZVPushBodyView". Main thread only.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/ui/NSLayoutConstraint.h"
#include "platform/ui/UILabel.h"
#include "zentrova/UIView.h"

namespace zv {

class StyledText;
class ZVPushPayload;
class ZVRichPush;

class ZVPushBodyView : public UIView {
 public:
  using UIView::UIView;
  std::string className() const override { return "ZVPushBodyView"; }

  void configureViewWithPayload(const std::shared_ptr<ZVPushPayload>& payload);
  void configureViewWithDefaultPushPayload(const std::shared_ptr<ZVPushPayload>& payload);
  void configureViewWithRichPush(const std::shared_ptr<ZVRichPush>& richPush);
  void setTitleWithAttributedText(const std::shared_ptr<StyledText>& text);
  void setSubTitleWithAttributedText(const std::shared_ptr<StyledText>& text);
  void setBodyWithAttributedText(const std::shared_ptr<StyledText>& text);
  void addTapGesture();
  void viewTapped();

  // Outlets (the interface connects them) and state.
  std::weak_ptr<UILabel> titleLabel, subTitleLabel, bodyLabel;
  std::weak_ptr<NSLayoutConstraint> titleHeightConstraint, subTitleHeightConstraint;
  bool isDarkTheme = false;
  std::int64_t updatedHeight = 0;
};

}  // namespace zv
