#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "model/ZVRichNotifUtils.h"
#include "platform/text/FixedAdvanceTextMeasurer.h"
#include "platform/text/StyledText.h"
#include "support/TestSupport.h"
#include "zentrova/Exception.h"

namespace zv {
namespace {

using U = ZVRichNotifUtils;

// Each fragment's expected text was taken from a browser (the rendered text of the fragment as a
// document once its struck-through elements are removed), then set apart from it in white space
// only, where the plain text is meant to differ: deleting a struck run keeps the spaces on both of
// its sides, and line breaks (blank lines, a break at the start or the end) are the importer's,
// not folded.
TEST(ZVRichNotifUtilsTextTest, PlainTextReadsAsABrowserShowsItWithoutStruckText) {
  auto cases = boost::json::parse(
      zvtest::readFile(ZV_SOURCE_DIR "/tests/model/data/plain_text_reference.json"));
  ASSERT_GT(cases.as_array().size(), 300u);
  for (const auto& c : cases.as_array()) {
    std::string html(c.as_array()[0].as_string());
    std::string want(c.as_array()[1].as_string());
    auto got = U::getStringFromHTML(html);
    ASSERT_TRUE(got.has_value()) << html;
    EXPECT_EQ(*got, want) << "HTML: " << html;
  }
}

TEST(ZVRichNotifUtilsTextTest, StruckRunsAreDeletedWithTheRunningOffset) {
  struct Case {
    const char* html;
    const char* plain;
  } cases[] = {
      {"<s>old</s>new", "new"},
      {"<s>ab</s>cd<s>ef</s>gh", "cdgh"},  // the second run starts 2 earlier once the first is gone
      {"<s>a</s>b<s>c</s>d<s>e</s>f", "bdf"},
      // Offsets count UTF-16 units: non-BMP characters take two and are never cut in half.
      {"😀<s>😀</s>😀<s>x</s>😀", "😀😀😀"},
      {"a<s>𝒳𝒴</s>b<s>𝒵</s>c", "abc"},
      {"👨‍👩‍👧 <s>👍🏽</s> 🇫🇷", "👨‍👩‍👧  🇫🇷"},
      // Only the struck characters go: the spaces around them both stay.
      {"Now <s>$100</s> $50", "Now  $50"},
      {"<p><s>gone</s></p><p>kept</p>", "\nkept"},
      {"<b><s>all</s></b>", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(U::getStringFromHTML(c.html), c.plain) << c.html;
}

TEST(ZVRichNotifUtilsTextTest, NilAndUnreadableInputGiveNil) {
  zvtest::LogCapture log;
  EXPECT_EQ(U::getStringFromHTML(std::nullopt), std::nullopt);
  EXPECT_EQ(U::getStringFromHTML(std::string("bad \xC3\x28 utf-8")), std::nullopt);
  std::string tooDeep;
  for (int i = 0; i < 10001; ++i) tooDeep += "<b>";
  EXPECT_EQ(U::getStringFromHTML(tooDeep), std::nullopt);
  EXPECT_TRUE(log.system().empty());  // plain text fails silently
  EXPECT_EQ(U::getAttributedStringFromHTMLStr(std::nullopt, true), nullptr);
  EXPECT_EQ(U::getAttributedStringFromText(std::nullopt, true, true), nullptr);
  EXPECT_EQ(U::getStringFromHTML(std::string()), "");
}

TEST(ZVRichNotifUtilsTextTest, FailedParseOfStyledTextGoesToTheSystemLogOnly) {
  zvtest::LogCapture log;
  EXPECT_EQ(U::getAttributedStringFromHTMLStr(std::string("caf\xE9"), false), nullptr);
  ASSERT_EQ(log.system().size(), 1u);
  EXPECT_EQ(log.system()[0],
            "Error Domain=ZVHTMLImportErrorDomain Code=1 \"The HTML text could not be read "
            "because it is not valid UTF-8.\"");
  EXPECT_TRUE(log.sink().empty());
}

TEST(ZVRichNotifUtilsTextTest, StyleTemplateGivesEveryRun17pxInTheThemeColour) {
  const char* html =
      "<h1>Big</h1><small>small</small> <font size=7>huge</font> <a href=\"x\">ln</a>"
      " <b>b</b><i>i</i><s>s</s><p style=\"text-align:center\">p</p>";
  for (bool dark : {false, true}) {
    auto text = U::getAttributedStringFromHTMLStr(std::string(html), dark);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->string(), "Big\nsmall huge ln bis\np");
    const double c = dark ? 1.0 : 0.0;
    for (const auto& run : text->runs()) {
      EXPECT_EQ(run.attributes->fontSize, 17.0);
      EXPECT_EQ(run.attributes->fontFamily, "-apple-system");
      EXPECT_EQ(*run.attributes->foregroundColor, (Color{c, c, c, 1}));
      EXPECT_FALSE(run.attributes->paragraphStyle.has_value());  // alignment is the label's
    }
  }
}

TEST(ZVRichNotifUtilsTextTest, InputGoesIntoTheTemplateUnescaped) {
  // Closing the template's div early leaves the rest outside the themed element.
  auto text = U::getAttributedStringFromHTMLStr(std::string("in</div>out"), true);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text->string(), "in\nout");
  EXPECT_EQ(text->attributesAt(0).foregroundColor->red, 1.0);
  EXPECT_EQ(text->attributesAt(3).foregroundColor->red, 0.0);
  EXPECT_EQ(text->attributesAt(3).fontSize, 17.0);  // the * rule still applies
}

TEST(ZVRichNotifUtilsTextTest, ParagraphWrappersReadMarkupAsHtml) {
  struct Case {
    const char* text;
    bool strong;
    const char* plain;
    long weight;  // of the first character
  } cases[] = {
      {"Hello", true, "Hello", 700},
      {"Hello", false, "Hello", 400},
      {"a <i>b</i> &amp; c", false, "a b & c", 400},
      {"x</strong>y", true, "xy", 700},
      {"", true, "", 0},
  };
  for (const auto& c : cases) {
    auto text = U::getAttributedStringFromText(std::string(c.text), c.strong, false);
    ASSERT_NE(text, nullptr) << c.text;
    EXPECT_EQ(text->string(), c.plain);
    if (c.weight) {
      EXPECT_EQ(text->attributesAt(0).fontWeight, c.weight) << c.text;
    }
  }
  auto mixed = U::getAttributedStringFromText(std::string("x</strong>y"), true, false);
  EXPECT_EQ(mixed->attributesAt(1).fontWeight, 400);
  auto italic = U::getAttributedStringFromText(std::string("a <i>b</i>"), false, false);
  EXPECT_EQ(italic->attributesAt(2).italic, true);
}

TEST(ZVRichNotifUtilsTextTest, HeightIsMeasuredWithoutLineBreaks) {
  // 0.5 em per character, 1.2 em per line: 10 px and 24 px at 20 px; 10 characters per line.
  FixedAdvanceTextMeasurer m;
  EXPECT_EQ(U::getHeightForText(std::nullopt, 100, Font::systemFont(17), m), 0.0);
  const Font font = Font::systemFont(20);
  EXPECT_EQ(U::getHeightForText(std::string("aaaa\nbbbb\ncccc"), 100, font, m), 48.0);
  EXPECT_EQ(U::getHeightForText(std::string("aaaabbbbcccc"), 100, font, m), 48.0);
  EXPECT_EQ(U::getHeightForText(std::string("\n\n"), 100, font, m), 0.0);
  EXPECT_EQ(U::getHeightForText(std::string("one two three four five"), 100, font, m), 72.0);
}

}  // namespace
}  // namespace zv
