// zv::HtmlTextBuilder lays out the text of an HTML document into styled text the way a browser
// lines it up, without widths: white space collapses as CSS "white-space: normal" says (a run of
// spaces, tabs and line breaks is one space; none at the start or end of a line) unless the text
// keeps it (pre, pre-line); blocks start and end lines, with a single line break between two lines
// of text and none before the first or after the last; <br> always breaks the line; cells of a
// table row are separated by a tab.
//
// Collapsed spaces and block line breaks are written lazily, when the next text arrives, so they
// take the attributes of where they came from: a space the attributes of the text it was typed in,
// a line break those of the block that ended (or of the context of the block that started).
#pragma once

#include <string_view>

#include "platform/text/ComputedStyle.h"
#include "platform/text/StyledText.h"

namespace zv {

class HtmlTextBuilder {
 public:
  using AttributesRef = StyledText::AttributesRef;

  explicit HtmlTextBuilder(StyledText& out) : out_(out) {}

  // The content of a text node (UTF-8).
  void text(std::string_view utf8, WhiteSpace whiteSpace, const AttributesRef& attributes);
  // <br>: a line break even on an empty line.
  void lineBreak(const AttributesRef& attributes);
  // The start or the end of a block-level box.
  void blockBoundary(const AttributesRef& attributes);
  // The start of a table cell: its leading spaces go.
  void cellStart();
  // The end of a table cell that is not the last of its row.
  void cellSeparator(const AttributesRef& attributes);
  // Replaced content without text (an image): it keeps the spaces on both sides apart.
  void atom();

 private:
  void content(std::u16string_view chars, const AttributesRef& attributes);
  void flushBreak();

  StyledText& out_;
  std::u16string scratch_;
  bool lineHasContent_ = false;  // something was written since the last line break
  bool spaceAllowed_ = false;    // a collapsible space here would not start a line
  bool breakPending_ = false;
  AttributesRef breakAttributes_;
  bool spacePending_ = false;
  AttributesRef spaceAttributes_;
};

}  // namespace zv
