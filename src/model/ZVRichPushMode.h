// ZVRichPushMode is one template mode of a rich push: its template type (stylized basic or image
// carousel), whether the carousel advances by itself, the background colour and the cards.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zentrova/Color.h"
#include "zentrova/Value.h"

namespace zv {

class ZVPushCard;

enum class ZVRichPushTemplateType : std::uint64_t {
  StylizedBasic = 0,  // "stylizedBasic"
  ImageCarousel = 1,  // "imageCarousel"
  Invalid = 2,        // any other string, or absent
};

class ZVRichPushMode {
 public:
  static std::shared_ptr<ZVRichPushMode> initWithDictionary(const Value& dict);
  static ZVRichPushTemplateType getTemplateTypeForTemplateTypeStr(const Value& str);

  bool autoStart = false;
  ZVRichPushTemplateType templateType = ZVRichPushTemplateType::StylizedBasic;
  ColorRef bgColor;
  std::vector<std::shared_ptr<ZVPushCard>> cards;
};

}  // namespace zv
