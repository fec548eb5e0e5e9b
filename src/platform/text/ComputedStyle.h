// The style of one element as the HTML importer needs it: what its text looks like (font, colour,
// decorations, link, alignment), how its text treats white space, whether it is shown, and how it
// lays out (block, inline, table row or cell), which decides where lines break.
#pragma once

#include <string>

#include "platform/text/TextAttributes.h"
#include "platform/text/TextTransform.h"
#include "zentrova/Color.h"

namespace zv {

enum class Display {
  kNone,          // not rendered: no text, no line breaks
  kInline,        // inline, inline-block, contents, ...
  kBlock,         // block, list-item, table, flex, grid, table-caption, ...: lines around it
  kTableRow,      // its own line
  kTableCell,     // a tab between cells of a row
  kTableInternal  // row and column groups: nothing of their own
};

enum class WhiteSpace {
  kNormal,   // runs of white space collapse to one space; none at the start or end of a line
  kPre,      // every space, tab and line break kept
  kPreLine,  // spaces collapse, line breaks kept
};

struct ComputedStyle {
  // Inherited.
  std::string fontFamily = "Times";  // a browser's default font: text that no rule styles
  double fontSize = 16.0;            // px
  int fontWeight = 400;
  bool italic = false;
  Color color{0, 0, 0, 1};
  bool visible = true;
  WhiteSpace whiteSpace = WhiteSpace::kNormal;
  TextAlignment alignment = TextAlignment::kNatural;
  TextTransform textTransform = TextTransform::kNone;
  std::string link;      // the href of the enclosing link, "" for none
  std::string language;  // the lang of the nearest element that has one, "" for none
  // Decorations in effect: this element's own and those of its ancestors, which reach into the
  // descendants and cannot be taken back by them.
  bool underline = false;
  bool strikethrough = false;

  // Not inherited.
  Display display = Display::kInline;
  bool ownUnderline = false;  // this element's text-decoration-line
  bool ownLineThrough = false;
  bool blockifiesChildren = false;  // flex and grid containers: their children are blocks
  bool outOfFlow = false;           // floated or absolutely positioned: a block of its own
};

}  // namespace zv
