#include "platform/text/PangoTextLayout.h"

#include <pango/pangocairo.h>

#include <algorithm>

#include "platform/foundation/UniqueHandle.h"

namespace zv {

namespace {

// The language every text is laid out in unless its script says otherwise: fixed, so that the
// sample languages Pango derives for each script do not follow the process's locale.
constexpr char kDefaultLanguage[] = "en";

bool isKana(gunichar c) {
  return (c >= 0x3040 && c <= 0x30FF) || (c >= 0x31F0 && c <= 0x31FF) ||
         (c >= 0xFF66 && c <= 0xFF9F);
}
bool isHangul(gunichar c) {
  return (c >= 0x1100 && c <= 0x11FF) || (c >= 0x3130 && c <= 0x318F) ||
         (c >= 0xAC00 && c <= 0xD7AF);
}
bool isHan(gunichar c) {
  return (c >= 0x3400 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0x20000 && c <= 0x3FFFF);
}

}  // namespace

std::string PangoTextLayout::languageOf(std::string_view text) {
  bool han = false;
  const char* p = text.data();
  const char* end = p + text.size();
  while (p < end) {
    gunichar c = g_utf8_get_char_validated(p, end - p);
    if (c == static_cast<gunichar>(-1) || c == static_cast<gunichar>(-2)) {
      ++p;
      continue;
    }
    if (isKana(c)) return "ja";
    if (isHangul(c)) return "ko";
    han = han || isHan(c);
    p = g_utf8_next_char(p);
  }
  return han ? "zh-cn" : "";
}

PangoFontDescription* PangoTextLayout::describe(const Font& font) {
  PangoFontDescription* d = pango_font_description_new();
  pango_font_description_set_family(d, "Inter");
  pango_font_description_set_absolute_size(d, std::max(font.size(), 0.0) * PANGO_SCALE);
  pango_font_description_set_weight(d,
                                    static_cast<PangoWeight>(std::clamp(font.weight(), 100, 1000)));
  pango_font_description_set_style(d, font.italic() ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  return d;
}

void PangoTextLayout::prepare(PangoLayout* layout, std::string_view text, const Font& font,
                              double width, TextAlignment alignment, std::string_view language) {
  std::string valid;
  if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr)) {
    valid.assign(text);
  } else {
    gchar* made = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
    valid = made;
    g_free(made);
  }
  std::string lang = language.empty() ? languageOf(valid) : std::string(language);
  PangoContext* context = pango_layout_get_context(layout);
  pango_context_set_language(
      context, pango_language_from_string(lang.empty() ? kDefaultLanguage : lang.c_str()));
  pango_context_set_base_dir(context, PANGO_DIRECTION_LTR);
  pango_layout_context_changed(layout);

  UniqueHandle<PangoFontDescription, pango_font_description_free> d(describe(font));
  pango_layout_set_font_description(layout, d.get());
  pango_layout_set_auto_dir(layout, TRUE);
  pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  pango_layout_set_width(layout, width > 0 ? static_cast<int>(width * PANGO_SCALE) : -1);
  pango_layout_set_text(layout, valid.data(), static_cast<int>(valid.size()));

  // With auto-direction, Pango aligns "left" to the start of each paragraph (right in a
  // right-to-left one): that is natural alignment. An explicit side is swapped back for a text
  // whose first paragraph runs right to left, so that it stays where the sender put it.
  PangoAlignment side = alignment == TextAlignment::kCenter ? PANGO_ALIGN_CENTER : PANGO_ALIGN_LEFT;
  if (alignment == TextAlignment::kLeft || alignment == TextAlignment::kRight) {
    PangoLayoutLine* first = pango_layout_get_line_readonly(layout, 0);
    const bool rtl = first && first->resolved_dir == PANGO_DIRECTION_RTL;
    side = (alignment == TextAlignment::kRight) != rtl ? PANGO_ALIGN_RIGHT : PANGO_ALIGN_LEFT;
  }
  pango_layout_set_alignment(layout, side);
  pango_layout_set_justify(layout, alignment == TextAlignment::kJustified);
}

}  // namespace zv
