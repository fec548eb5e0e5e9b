// CSS text-transform as text extraction sees it: uppercase, lowercase and capitalize change the
// characters themselves. Case mapping covers ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic
// (with "ß" upper-casing to "SS"); other characters keep their case.
#pragma once

#include <string>
#include <string_view>

namespace zv {

enum class TextTransform { kNone, kUppercase, kLowercase, kCapitalize };

// The transformed UTF-8 text. For capitalize, afterLetter says whether the text continues a word
// begun before it (the previous text ended in a letter or digit).
std::string applyTextTransform(std::string_view utf8, TextTransform transform,
                               bool afterLetter = false);

}  // namespace zv
