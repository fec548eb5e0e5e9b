#include "platform/text/HtmlTextBuilder.h"

#include "platform/text/Utf16.h"

namespace zv {

namespace {

// The white space that collapses: spaces, tabs and line breaks (a form feed is a character).
bool isCollapsible(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

void HtmlTextBuilder::flushBreak() {
  if (breakPending_) {
    out_.append(std::u16string_view(u"\n"), breakAttributes_);
    breakPending_ = false;
    lineHasContent_ = false;
  }
}

void HtmlTextBuilder::content(std::u16string_view chars, const AttributesRef& attributes) {
  if (breakPending_) {
    flushBreak();
    spacePending_ = false;
  } else if (spacePending_) {
    out_.append(std::u16string_view(u" "), spaceAttributes_);
  }
  spacePending_ = false;
  out_.append(chars, attributes);
  lineHasContent_ = true;
  spaceAllowed_ = true;
}

void HtmlTextBuilder::text(std::string_view s, WhiteSpace whiteSpace,
                           const AttributesRef& attributes) {
  size_t i = 0;
  while (i < s.size()) {
    char c = s[i];
    if (c == '\n' && whiteSpace != WhiteSpace::kNormal) {
      lineBreak(attributes);
      ++i;
      continue;
    }
    if (whiteSpace != WhiteSpace::kPre && isCollapsible(c)) {
      if (spaceAllowed_ && !breakPending_ && !spacePending_) {
        spacePending_ = true;
        spaceAttributes_ = attributes;
      }
      ++i;
      continue;
    }
    // A run of characters that are written as they are.
    size_t end = i;
    while (end < s.size() && s[end] != '\n' &&
           (whiteSpace == WhiteSpace::kPre || !isCollapsible(s[end]))) {
      ++end;
    }
    scratch_.clear();
    appendUtf8AsUtf16(scratch_, s.substr(i, end - i));
    content(scratch_, attributes);
    i = end;
  }
}

void HtmlTextBuilder::lineBreak(const AttributesRef& attributes) {
  flushBreak();
  out_.append(std::u16string_view(u"\n"), attributes);
  lineHasContent_ = false;
  spaceAllowed_ = false;
  spacePending_ = false;
}

void HtmlTextBuilder::blockBoundary(const AttributesRef& attributes) {
  spacePending_ = false;
  spaceAllowed_ = false;
  if (lineHasContent_ && !breakPending_) {
    breakPending_ = true;
    breakAttributes_ = attributes;
  }
}

void HtmlTextBuilder::cellStart() {
  spacePending_ = false;
  spaceAllowed_ = false;
}

void HtmlTextBuilder::cellSeparator(const AttributesRef& attributes) {
  spacePending_ = false;
  content(u"\t", attributes);
  spaceAllowed_ = false;
}

void HtmlTextBuilder::atom() {
  if (breakPending_) {
    flushBreak();
  } else if (spacePending_) {
    out_.append(std::u16string_view(u" "), spaceAttributes_);
  }
  spacePending_ = false;
  lineHasContent_ = true;
  spaceAllowed_ = true;
}

}  // namespace zv
