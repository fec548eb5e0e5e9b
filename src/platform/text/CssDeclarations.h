// A CSS declaration block ("color: red; font-weight: bold !important") read into its declarations,
// as a style attribute or a style-sheet rule gives it. Comments are dropped; semicolons inside
// quotes or parentheses do not end a declaration; a declaration without a colon or a value is
// skipped, as browsers skip what they cannot read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zv::css {

struct Declaration {
  std::string property;  // lower-case
  std::string value;     // trimmed, without "!important"
  bool important = false;
};

std::vector<Declaration> parseDeclarations(std::string_view block);
// The text without /* comments */.
std::string stripComments(std::string_view text);

}  // namespace zv::css
