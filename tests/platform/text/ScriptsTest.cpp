#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/text/PangoFontConfiguration.h"
#include "platform/text/PangoTextLayout.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UILabel.h"
#include "zentrova/Renderer.h"

namespace zv {
namespace {

constexpr double kWidth = 200;  // points
constexpr double kScale = 2;

// A layout of text built as the measurer and the renderer build theirs.
struct Layout {
  UniqueHandle<PangoFontMap, releaseGObject> map{PangoFontConfiguration::newFontMap()};
  UniqueHandle<PangoContext, releaseGObject> context{pango_font_map_create_context(map.get())};
  UniqueHandle<PangoLayout, releaseGObject> layout;
  Layout(const std::string& text, const Font& font, double width) {
    PangoFontConfiguration::configure(context.get());
    layout.reset(pango_layout_new(context.get()));
    PangoTextLayout::prepare(layout.get(), text, font, width);
  }
  // The family of the face that draws the character at byte index.
  std::string familyAt(int index) {
    UniqueHandle<PangoLayoutIter, pango_layout_iter_free> iter(pango_layout_get_iter(layout.get()));
    do {
      PangoLayoutRun* run = pango_layout_iter_get_run_readonly(iter.get());
      if (run && index >= run->item->offset && index < run->item->offset + run->item->length) {
        UniqueHandle<PangoFontDescription, pango_font_description_free> d(
            pango_font_describe(run->item->analysis.font));
        return pango_font_description_get_family(d.get());
      }
    } while (pango_layout_iter_next_run(iter.get()));
    return "";
  }
  double x(int index) {
    PangoRectangle r;
    pango_layout_index_to_pos(layout.get(), index, &r);
    return std::min(r.x, r.x + r.width) / double(PANGO_SCALE);
  }
};

// The first and last rows (pixels) that hold ink, -1 when none; whether some ink is coloured.
struct Ink {
  int top = -1, bottom = -1;
  bool coloured = false;
};
Ink inkOf(const PixelBuffer& p) {
  Ink ink;
  for (int y = 0; y < p.height; ++y) {
    for (int x = 0; x < p.width; ++x) {
      std::uint32_t c = p.row(y)[x];
      int r = (c >> 16) & 0xFF, g = (c >> 8) & 0xFF, b = c & 0xFF;
      if ((r > 0xF0 && g > 0xF0 && b > 0xF0) || (c >> 24) < 0x10) continue;
      if (ink.top < 0) ink.top = y;
      ink.bottom = y;
      ink.coloured = ink.coloured || std::max({r, g, b}) - std::min({r, g, b}) > 60;
    }
  }
  return ink;
}

// The ink of text in a label of the given height, drawn black on white.
Ink drawn(const std::shared_ptr<PangoTextMeasurer>& m, const std::string& text, const Font& font,
          double height) {
  auto root = UIView::make({{0, 0}, {kWidth, std::ceil(height) + 1}});
  root->setBackgroundColor(UIColor::whiteColor());
  auto label = UILabel::make(m, {{0, 0}, {kWidth, height}});
  label->setFont(font);
  label->setNumberOfLines(0);
  label->setText(text);
  root->addSubview(label);
  return inkOf(*Renderer(kScale).draw(*root));
}

std::string repeat(const std::string& s, int n) {
  std::string out;
  for (int i = 0; i < n; ++i) out += s;
  return out;
}

TEST(ScriptsTest, EveryScriptMeasuresAndDrawsAsThePhoneShowsIt) {
  struct Case {
    const char* name;
    std::string text;
    const char* face;    // the family of the first character Inter lacks, "" when Inter has all
    const char* rtl;     // a right-to-left stretch that must come out in visual order
    bool wraps = false;  // repeated, the text wraps onto several lines within the width
    bool emoji = false;  // drawn in colour, as wide as one emoji
  } cases[] = {
      {"Latin", "Flash sale: 50% off everything", "", nullptr, true},
      {"Cyrillic", "Распродажа: скидки до 50%", "", nullptr, true},
      {"Greek", "Προσφορά: έκπτωση 50%", "", nullptr, true},
      {"Vietnamese", "Giảm giá đặc biệt hôm nay", "", nullptr, true},
      {"Japanese", "本日限定セール開催中です", "Noto Sans CJK JP", nullptr, true},
      {"Chinese", "今天全场商品八折优惠", "Noto Sans CJK SC", nullptr, true},
      {"Korean", "오늘만 특별 할인 행사", "Noto Sans CJK KR", nullptr, true},
      {"Arabic", "تخفيضات كبيرة اليوم فقط", "Noto Sans Arabic", "تخفيضات", true},
      {"Hebrew", "מבצע גדול היום בלבד", "Noto Sans Hebrew", "מבצע", true},
      {"Thai", "ลดราคาพิเศษวันนี้เท่านั้น", "Noto Looped Thai", nullptr, true},
      {"Devanagari", "आज विशेष छूट उपलब्ध है", "Noto Sans Devanagari", nullptr, true},
      {"LatinArabic", "Sale تخفيض 50% today", "Noto Sans Arabic", "تخفيض"},
      {"Fire", "🔥", "Noto Color Emoji", nullptr, false, true},
      {"ZwjSequence", "👩‍💻", "Noto Color Emoji", nullptr, false, true},
      {"SkinTone", "👍🏽", "Noto Color Emoji", nullptr, false, true},
      {"Flag", "🇯🇵", "Noto Color Emoji", nullptr, false, true},
      {"Keycap", "1️⃣", "Noto Color Emoji", nullptr, false, true},
  };
  auto m = std::make_shared<PangoTextMeasurer>();
  const Font font = Font::systemFont(15);
  const double emojiWidth = m->boundingSize("👩", font, 0).width;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Layout one(c.text, font, kWidth);
    EXPECT_EQ(pango_layout_get_unknown_glyphs_count(one.layout.get()), 0);
    if (*c.face) {
      std::size_t first = 0;
      while (first < c.text.size() && static_cast<unsigned char>(c.text[first]) < 0x80) ++first;
      if (c.emoji) first = 0;
      EXPECT_EQ(one.familyAt(static_cast<int>(first)), c.face);
    }
    if (c.rtl) {
      // The stretch's first character stands right of its last.
      std::string stretch = c.rtl;
      int start = static_cast<int>(c.text.find(stretch));
      int last = start + static_cast<int>(stretch.size()) - 2;  // these scripts use 2-byte UTF-8
      EXPECT_GT(one.x(start), one.x(last));
    }
    if (c.emoji) {
      EXPECT_NEAR(m->boundingSize(c.text, font, 0).width, emojiWidth, 0.5);
    }

    const std::string text = c.wraps ? repeat(c.text + " ", 6) : c.text;
    Layout wrapped(text, font, kWidth);
    PangoRectangle logical;
    pango_layout_get_extents(wrapped.layout.get(), nullptr, &logical);
    EXPECT_LE(logical.width / double(PANGO_SCALE), kWidth);
    if (c.wraps) {
      EXPECT_GE(pango_layout_get_line_count(wrapped.layout.get()), 3);
    }

    // A label as tall as measured draws all of it: its ink is that of a taller label, moved by
    // half the difference (a label centres its text), and lies inside the measured height.
    const double measured = m->boundingSize(text, font, kWidth).height;
    EXPECT_NEAR(measured, logical.height / double(PANGO_SCALE), 1e-6);
    const Ink exact = drawn(m, text, font, measured);
    const Ink tall = drawn(m, text, font, measured + 40);
    ASSERT_GE(exact.top, 0);
    EXPECT_NEAR(tall.top - exact.top, 20 * kScale, 1);
    EXPECT_NEAR(tall.bottom - exact.bottom, 20 * kScale, 1);
    EXPECT_LE(exact.bottom, measured * kScale + 1);
    EXPECT_EQ(exact.coloured, c.emoji);
  }
}

TEST(ScriptsTest, LanguagePicksTheCjkFaceAndRightToLeftAlignsRight) {
  struct Case {
    const char* text;
    const char* language;
  } cases[] = {
      {"東京の天気", "ja"}, {"서울 날씨", "ko"}, {"北京天气", "zh-cn"},
      {"Weather", ""},      {"مرحبا", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(PangoTextLayout::languageOf(c.text), c.language);

  // The sender's lang draws 直 in its country's form; without one, a lone ideograph is Chinese.
  auto m = std::make_shared<PangoTextMeasurer>();
  auto draw = [&](const char* html) {
    auto root = UIView::make({{0, 0}, {40, 30}});
    auto label = UILabel::make(m, {{0, 0}, {40, 30}});
    label->setAttributedText(*ZVRichNotifUtils::getAttributedStringFromHTMLStr(html, false));
    root->addSubview(label);
    return Renderer(kScale).draw(*root)->data;
  };
  const auto japanese = draw("<span lang=\"ja\">直</span>");
  const auto chinese = draw("<span lang=\"zh-CN\">直</span>");
  EXPECT_NE(japanese, chinese);
  EXPECT_NE(draw("<p lang=\"zh-TW\"><b>骨</b></p>"), draw("<p><b>骨</b></p>"));
  EXPECT_EQ(draw("直"), chinese);

  // A right-to-left paragraph starts at the right; an explicit left keeps it left.
  for (auto [alignment, right] :
       {std::pair{TextAlignment::kNatural, true}, std::pair{TextAlignment::kLeft, false},
        std::pair{TextAlignment::kRight, true}}) {
    Layout l("", Font::systemFont(15), kWidth);
    PangoTextLayout::prepare(l.layout.get(), "מבצע", Font::systemFont(15), kWidth, alignment);
    PangoRectangle logical;
    pango_layout_get_extents(l.layout.get(), nullptr, &logical);
    EXPECT_EQ(logical.x > kWidth / 2 * PANGO_SCALE, right);
  }
}

}  // namespace
}  // namespace zv
