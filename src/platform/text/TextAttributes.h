// The attributes that one run of styled text carries: font family, size in pixels, weight and
// italic, underline and strikethrough styles, the foreground colour, a link, a paragraph style and
// the language the sender gave the text (an HTML lang, such as "ja" or "zh-TW").
// Every attribute may be absent. Attribute names the attributes for the operations that work on
// one of them (remove it over a range, walk its runs); AttributeValue is one attribute's value.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "zentrova/Color.h"

namespace zv {

enum class Attribute {
  kFontFamily,
  kFontSize,
  kFontWeight,
  kItalic,
  kUnderline,
  kStrikethrough,
  kForegroundColor,
  kLink,
  kParagraphStyle,
  kLanguage,
};

enum class TextAlignment { kNatural, kLeft, kCenter, kRight, kJustified };

// How a paragraph is laid out. The HTML importer fills it from the block's text-align; the rich
// text operations drop it so that the label decides.
struct ParagraphStyle {
  TextAlignment alignment = TextAlignment::kNatural;
  bool operator==(const ParagraphStyle&) const = default;
};

// Underline and strikethrough styles: 1 is the single line (the only one the importer writes).
constexpr long kUnderlineStyleSingle = 1;

using AttributeValue = std::variant<std::string, double, long, bool, ColorRef, ParagraphStyle>;

struct TextAttributes {
  std::optional<std::string> fontFamily;
  std::optional<double> fontSize;
  std::optional<long> fontWeight;
  std::optional<bool> italic;
  std::optional<long> underline;
  std::optional<long> strikethrough;
  ColorRef foregroundColor;  // null when absent
  std::optional<std::string> link;
  std::optional<ParagraphStyle> paragraphStyle;
  std::optional<std::string> language;

  bool has(Attribute a) const;
  // The value of one attribute, or nullopt when absent.
  std::optional<AttributeValue> value(Attribute a) const;
  void remove(Attribute a);
  // Colours compare by their components.
  bool operator==(const TextAttributes& other) const;
};

}  // namespace zv
