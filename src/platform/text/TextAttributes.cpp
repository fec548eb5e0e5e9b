#include "platform/text/TextAttributes.h"

namespace zv {

namespace {

template <typename T>
std::optional<AttributeValue> wrap(const std::optional<T>& v) {
  if (!v) return std::nullopt;
  return AttributeValue(*v);
}

}  // namespace

bool TextAttributes::has(Attribute a) const { return value(a).has_value(); }

std::optional<AttributeValue> TextAttributes::value(Attribute a) const {
  switch (a) {
    case Attribute::kFontFamily:
      return wrap(fontFamily);
    case Attribute::kFontSize:
      return wrap(fontSize);
    case Attribute::kFontWeight:
      return wrap(fontWeight);
    case Attribute::kItalic:
      return wrap(italic);
    case Attribute::kUnderline:
      return wrap(underline);
    case Attribute::kStrikethrough:
      return wrap(strikethrough);
    case Attribute::kForegroundColor:
      if (!foregroundColor) return std::nullopt;
      return AttributeValue(foregroundColor);
    case Attribute::kLink:
      return wrap(link);
    case Attribute::kParagraphStyle:
      return wrap(paragraphStyle);
    case Attribute::kLanguage:
      return wrap(language);
  }
  return std::nullopt;
}

void TextAttributes::remove(Attribute a) {
  switch (a) {
    case Attribute::kFontFamily:
      fontFamily.reset();
      break;
    case Attribute::kFontSize:
      fontSize.reset();
      break;
    case Attribute::kFontWeight:
      fontWeight.reset();
      break;
    case Attribute::kItalic:
      italic.reset();
      break;
    case Attribute::kUnderline:
      underline.reset();
      break;
    case Attribute::kStrikethrough:
      strikethrough.reset();
      break;
    case Attribute::kForegroundColor:
      foregroundColor.reset();
      break;
    case Attribute::kLink:
      link.reset();
      break;
    case Attribute::kParagraphStyle:
      paragraphStyle.reset();
      break;
    case Attribute::kLanguage:
      language.reset();
      break;
  }
}

bool TextAttributes::operator==(const TextAttributes& o) const {
  bool sameColor = foregroundColor == o.foregroundColor ||
                   (foregroundColor && o.foregroundColor && *foregroundColor == *o.foregroundColor);
  return sameColor && fontFamily == o.fontFamily && fontSize == o.fontSize &&
         fontWeight == o.fontWeight && italic == o.italic && underline == o.underline &&
         strikethrough == o.strikethrough && link == o.link && paragraphStyle == o.paragraphStyle &&
         language == o.language;
}

}  // namespace zv
