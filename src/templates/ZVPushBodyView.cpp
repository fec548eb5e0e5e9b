#include "templates/ZVPushBodyView.h"

#include <cmath>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/SystemVersion.h"
#include "platform/text/StyledText.h"
#include "platform/text/TextMeasurer.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UITapGestureRecognizer.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace zv {

namespace {

constexpr std::int64_t kBaseHeight = 20;
constexpr std::int64_t kRowHeight = 25;
constexpr double kMeasuringInset = 20.0;

std::optional<std::string> textOf(const Value& v) {
  if (!v.isString()) return std::nullopt;
  return std::string(v.string());
}

}  // namespace

void ZVPushBodyView::configureViewWithPayload(const std::shared_ptr<ZVPushPayload>& payload) {
  addTapGesture();
  for (const auto& label : {titleLabel.lock(), subTitleLabel.lock(), bodyLabel.lock()}) {
    if (label) label->setText("");
  }
  if (auto c = titleHeightConstraint.lock()) c->setConstant(0.0);
  if (auto c = subTitleHeightConstraint.lock()) c->setConstant(0.0);
  updatedHeight = kBaseHeight;
  setBackgroundColor(systemVersion() >= 13.0 ? UIColor::systemBackgroundColor()
                                             : UIColor::whiteColor());
  if (payload && payload->richPush) {
    configureViewWithRichPush(payload->richPush);
  } else {
    configureViewWithDefaultPushPayload(payload);
  }
  CGRect f = frame();
  f.size.height = static_cast<CGFloat>(updatedHeight);
  setFrame(f);
  layoutIfNeeded();
}

void ZVPushBodyView::configureViewWithDefaultPushPayload(
    const std::shared_ptr<ZVPushPayload>& payload) {
  if (!payload || !payload->pushPayloadDict.isObject()) return;
  Value aps = ZVRichNotifUtils::validObjectForKey("aps", payload->pushPayloadDict);
  if (aps.isNil()) return;
  Value alert = aps.isObject() ? ZVRichNotifUtils::validObjectForKey("alert", aps) : Value();
  if (alert.isObject()) {
    auto field = [&](const char* key) {
      return textOf(ZVRichNotifUtils::validObjectForKey(key, alert));
    };
    setTitleWithAttributedText(
        ZVRichNotifUtils::getAttributedStringFromText(field("title"), true, isDarkTheme));
    setSubTitleWithAttributedText(
        ZVRichNotifUtils::getAttributedStringFromText(field("subtitle"), true, isDarkTheme));
    setBodyWithAttributedText(
        ZVRichNotifUtils::getAttributedStringFromText(field("body"), false, isDarkTheme));
    return;
  }
  // "%@" of the alert: a string as itself, an absent alert as "(null)".
  setBodyWithAttributedText(
      ZVRichNotifUtils::getAttributedStringFromText(alert.description(), false, isDarkTheme));
}

void ZVPushBodyView::configureViewWithRichPush(const std::shared_ptr<ZVRichPush>& richPush) {
  if (!richPush) return;
  if (richPush->expandedMode && richPush->expandedMode->bgColor &&
      richPush->expandedMode->bgColor != Color::clear()) {
    setBackgroundColor(richPush->expandedMode->bgColor);
  }
  auto html = [&](const Value& v) {
    return v.isString() ? ZVRichNotifUtils::getAttributedStringFromHTMLStr(std::string(v.string()),
                                                                           isDarkTheme)
                        : nullptr;
  };
  setTitleWithAttributedText(html(richPush->title));
  setSubTitleWithAttributedText(html(richPush->subTitle));
  setBodyWithAttributedText(html(richPush->body));
}

void ZVPushBodyView::setTitleWithAttributedText(const std::shared_ptr<StyledText>& text) {
  if (!text) return;
  if (auto label = titleLabel.lock()) label->setAttributedText(*text);
  if (auto c = titleHeightConstraint.lock()) c->setConstant(static_cast<double>(kRowHeight));
  updatedHeight += kRowHeight;
}

void ZVPushBodyView::setSubTitleWithAttributedText(const std::shared_ptr<StyledText>& text) {
  if (!text) return;
  if (auto label = subTitleLabel.lock()) label->setAttributedText(*text);
  if (auto c = subTitleHeightConstraint.lock()) c->setConstant(static_cast<double>(kRowHeight));
  updatedHeight += kRowHeight;
}

void ZVPushBodyView::setBodyWithAttributedText(const std::shared_ptr<StyledText>& text) {
  if (!text) return;
  auto label = bodyLabel.lock();
  if (!label) return;
  label->setNumberOfLines(0);
  label->setAttributedText(*text);
  double height = 0;
  if (label->measurer()) {
    height = ZVRichNotifUtils::getHeightForText(label->text(), frame().size.width - kMeasuringInset,
                                                label->font(), *label->measurer());
  }
  auto whole = static_cast<std::int64_t>(std::floor(height));
  std::int64_t rows = whole / kRowHeight + (whole % kRowHeight != 0 ? 1 : 0);
  label->setNumberOfLines(static_cast<int>(rows));
  updatedHeight += std::max(rows * kRowHeight, kRowHeight);
}

void ZVPushBodyView::addTapGesture() {
  addGestureRecognizer(
      UITapGestureRecognizer::make([this](UITapGestureRecognizer&) { viewTapped(); }));
}

void ZVPushBodyView::viewTapped() {
  ZVPushTemplateHandler::sharedInstance().performDefaultAction();
}

}  // namespace zv
