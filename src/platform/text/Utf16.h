// Conversions between UTF-8 (how the system keeps its strings) and UTF-16 (the code units that
// styled text counts in, as the platform's string ranges do). Input is assumed to be valid UTF-8;
// an unpaired surrogate on the way back becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace zv {

void appendUtf8AsUtf16(std::u16string& out, std::string_view utf8);
std::u16string utf8ToUtf16(std::string_view utf8);
std::string utf16ToUtf8(std::u16string_view utf16);

}  // namespace zv
