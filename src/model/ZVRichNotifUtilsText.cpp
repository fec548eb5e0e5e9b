// The rich text operations of ZVRichNotifUtils: HTML fragments to styled text in the system font
// at 17 px (black, or white in the dark theme), plain text wrapped as a paragraph, the height of a
// text at a width, and HTML to plain text without its struck-through runs.
#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <vector>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Log.h"
#include "platform/text/HtmlImporter.h"
#include "platform/text/StyledText.h"
#include "platform/text/TextMeasurer.h"
#include "zentrova/Exception.h"

namespace zv {

namespace {

// The style template: every element in the system font at 17 px, the text in the theme's colour.
constexpr std::string_view kStyleBeforeColor =
    "<style> * {font-family: -apple-system; font-size: 17px;} .iosThemeDefault { color: ";
constexpr std::string_view kStyleAfterColor = ";} </style> <div class=\"iosThemeDefault\">";
constexpr std::string_view kStyleEnd = "</div>";

// An integer read the way the platform reads one from text: leading digits, 0 when there are none.
long long integerValue(std::string_view s) {
  long long v = 0;
  std::from_chars(s.data(), s.data() + s.size(), v);
  return v;
}

}  // namespace

std::shared_ptr<StyledText> ZVRichNotifUtils::getAttributedStringFromHTMLStr(
    const std::optional<std::string>& html, bool darkTheme) {
  if (!html) return nullptr;
  std::string document;
  document.reserve(kStyleBeforeColor.size() + kStyleAfterColor.size() + html->size() + 16);
  document.append(kStyleBeforeColor)
      .append(darkTheme ? "white" : "black")
      .append(kStyleAfterColor)
      .append(*html)
      .append(kStyleEnd);
  Error error;
  std::shared_ptr<StyledText> text = HtmlImporter::import(document, &error);
  if (!text) {
    log::system(fmt::format("{}", error.description()));
    return nullptr;
  }
  // Alignment, spacing and indentation come from the label, not from the HTML.
  text->removeAttribute(Attribute::kParagraphStyle, TextRange{0, text->length()});
  return text;
}

std::shared_ptr<StyledText> ZVRichNotifUtils::getAttributedStringFromText(
    const std::optional<std::string>& text, bool strong, bool darkTheme) {
  if (!text) return nullptr;
  // The text goes in unescaped: markup characters in it are read as HTML.
  std::string html =
      strong ? fmt::format("<p><strong>{}</strong></p>", *text) : fmt::format("<p>{}</p>", *text);
  return getAttributedStringFromHTMLStr(html, darkTheme);
}

double ZVRichNotifUtils::getHeightForText(const std::optional<std::string>& text, double width,
                                          const Font& font, TextMeasurer& measurer) {
  if (!text) return 0.0;
  // Line breaks are removed before measuring, so the lines run together: the row count of the body
  // view is reckoned on the text as one paragraph.
  std::string flat;
  flat.reserve(text->size());
  for (char c : *text) {
    if (c != '\n') flat += c;
  }
  return measurer.boundingSize(flat, font, width).height;
}

std::optional<std::string> ZVRichNotifUtils::getStringFromHTML(
    const std::optional<std::string>& html) {
  if (!html) return std::nullopt;
  std::shared_ptr<StyledText> text = HtmlImporter::import(*html);
  if (!text) return std::nullopt;

  std::vector<std::string> records;
  text->enumerateAttribute(
      Attribute::kStrikethrough, TextRange{0, text->length()},
      StyledText::kLongestEffectiveRangeNotRequired,
      [&](const std::optional<AttributeValue>& value, TextRange range, bool&) {
        if (value) {
          records.push_back(fmt::format("{},{}", range.location, range.length));
        }
      });
  if (!records.empty()) {
    text->beginEditing();
    int32_t removed = 0;
    long long start = 0;
    long long length = 0;
    for (const std::string& record : records) {
      size_t comma = record.find(',');
      bool twoParts =
          comma != std::string::npos && record.find(',', comma + 1) == std::string::npos;
      if (twoParts) {
        start = integerValue(std::string_view(record).substr(0, comma)) - removed;
        length = integerValue(std::string_view(record).substr(comma + 1));
      }
      removed = static_cast<int32_t>(removed + length);
      text->deleteCharacters(TextRange{static_cast<size_t>(start), static_cast<size_t>(length)});
    }
    text->endEditing();
  }
  // The characters left, as they are: the spaces on either side of a deleted run both stay.
  return text->string();
}

}  // namespace zv
