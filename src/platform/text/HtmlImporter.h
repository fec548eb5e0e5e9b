// zv::HtmlImporter turns an HTML text into styled text, as the platform's HTML import does: the
// text is parsed as a whole HTML5 document (gumbo) and its rendered text is laid out the way a
// browser's text extraction sees it (HtmlTextBuilder), with every run carrying the font, colour,
// decorations, link and paragraph alignment that the cascade gives its element (StyleResolver).
// Text that a browser does not show is not imported: head, script, style, template, hidden and
// display:none elements, closed details, images' alt text. Struck-through runs (s, strike, del, or
// any line-through decoration from CSS, inherited by the descendants) carry the strikethrough
// attribute. Links keep their text's colour (see StyleResolver).
#pragma once

#include <memory>
#include <string_view>

#include "platform/text/StyledText.h"
#include "zentrova/Error.h"

namespace zv {

class HtmlImporter {
 public:
  static constexpr const char* kErrorDomain = "ZVHTMLImportErrorDomain";
  static constexpr long kInvalidEncoding = 1;
  static constexpr long kTooDeep = 2;
  // How deeply elements may nest. Browsers stop nesting at 512; gumbo has no limit and its cost
  // grows with the square of the depth, so deeper input is refused instead of parsed for minutes.
  static constexpr int kMaximumDepth = 10000;

  // The styled text of a UTF-8 HTML document; nullptr, and *error when given, when the text is not
  // valid UTF-8 or nests elements deeper than kMaximumDepth. Any other text parses: HTML has no
  // syntax errors that stop a browser.
  static std::shared_ptr<StyledText> import(std::string_view html, Error* error = nullptr);
};

}  // namespace zv
