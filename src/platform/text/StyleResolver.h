// zv::StyleResolver computes the style of each element of a parsed HTML document as a browser's
// cascade does, limited to what text import needs: the browser's own defaults for each element
// (b bold, i italic, s struck, headings, pre, lists, tables, hidden elements, ...), presentational
// attributes (font color, size and face; align; hidden; lang, inherited), the document's style
// sheets and the style attribute, with selector rank (ids, classes, types), source order and
// !important. Properties read: color, font, font-family, font-size (px, pt, pc, in, cm, mm, em,
// rem, ex, ch, %, keywords), font-weight, font-style, text-decoration, text-decoration-line,
// text-transform, display, float, position, visibility, white-space, white-space-collapse and
// text-align; inherit, initial and unset work for each.
#pragma once

#include <gumbo.h>

#include <string_view>

#include "platform/text/ComputedStyle.h"
#include "platform/text/CssDeclarations.h"
#include "platform/text/CssStyleSheet.h"

namespace zv {

class StyleResolver {
 public:
  StyleResolver(const css::StyleSheet& sheet, bool quirks) : sheet_(sheet), quirks_(quirks) {}

  // The style of element, given its parent's (the initial style for the root).
  ComputedStyle resolve(const GumboNode* element, const ComputedStyle& parent);

 private:
  void applyDefaults(const GumboNode* element, ComputedStyle& s, const ComputedStyle& parent) const;
  void applyHints(const GumboNode* element, ComputedStyle& s) const;

  const css::StyleSheet& sheet_;
  bool quirks_;
  double rootFontSize_ = 16.0;
  std::vector<const css::Declaration*> normal_;
  std::vector<const css::Declaration*> important_;
};

}  // namespace zv
