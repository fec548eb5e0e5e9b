// zv::PangoTextLayout builds the Pango layout of a text, the one function that both the measurer
// and the renderer lay text out with, so that a label is drawn exactly as tall as it was measured
// for every script.
//
// - Fonts: the Font's size, weight and italic over the private configuration's families (Inter,
//   then the Noto fallback chain, PangoFontConfiguration.h). A line is as tall as the tallest face
//   used in it: a CJK or Arabic run makes its line taller than a Latin one.
// - Language: the text's own script decides it, never the process's locale or environment, so the
//   same text picks the same faces everywhere: kana make a text Japanese, Hangul Korean; other Han
//   ideographs are Chinese ("zh-cn", Simplified), as is the CJK face of a text with no language. A
//   language given by the sender (an HTML lang) is used instead when the caller passes one.
// - Direction: each paragraph's base direction is that of its first strong character (Pango's
//   auto-direction); the Unicode bidirectional algorithm orders the runs inside a line.
// - Alignment: natural alignment is the start of the paragraph, as the phone's labels align: left
//   for a paragraph whose first strong character is left-to-right (or that has none), right for one
//   whose first strong character is Arabic, Hebrew or another right-to-left script. An explicit
//   left or right stays on that side whatever the direction.
// - Breaking: Pango's, by each script's rules (between ideographs, at Thai, Lao and Khmer word
//   boundaries through libthai and the dictionary breakers, never inside a grapheme cluster or an
//   emoji sequence); a word longer than the line breaks between characters.
#pragma once

#include <string>
#include <string_view>

#include "platform/text/Font.h"
#include "platform/text/TextAttributes.h"

typedef struct _PangoLayout PangoLayout;
typedef struct _PangoFontDescription PangoFontDescription;

namespace zv {

class PangoTextLayout {
 public:
  // Gives layout the text (UTF-8; broken bytes become U+FFFD), its font, the wrap width (0 or less:
  // no wrapping), the language, direction and alignment rules above. language overrides the one
  // the text implies when not empty.
  static void prepare(PangoLayout* layout, std::string_view text, const Font& font, double width,
                      TextAlignment alignment = TextAlignment::kNatural,
                      std::string_view language = {});
  // A new description of font over the private families (pango_font_description_free it).
  static PangoFontDescription* describe(const Font& font);
  // The language the text's script implies: "ja", "ko", "zh-cn", or "" for a text without CJK.
  static std::string languageOf(std::string_view text);
};

}  // namespace zv
