#include <gtest/gtest.h>

#include "platform/text/StyledText.h"
#include "zentrova/Exception.h"

namespace zv {
namespace {

StyledText::AttributesRef attrs(std::optional<long> strike, std::optional<long> weight = {}) {
  auto a = std::make_shared<TextAttributes>();
  a->strikethrough = strike;
  a->fontWeight = weight;
  a->paragraphStyle = ParagraphStyle{};
  return a;
}

// "aa" plain, "bb" struck bold, "cc" struck, "dd" plain: four runs.
StyledText sample() {
  StyledText t;
  t.append(std::string_view("aa"), attrs({}));
  t.append(std::string_view("bb"), attrs(1, 700));
  t.append(std::string_view("cc"), attrs(1));
  t.append(std::string_view("dd"), attrs({}));
  return t;
}

std::vector<std::pair<bool, TextRange>> walk(const StyledText& t, Attribute a, TextRange r,
                                             unsigned options) {
  std::vector<std::pair<bool, TextRange>> out;
  t.enumerateAttribute(a, r, options,
                       [&](const std::optional<AttributeValue>& v, TextRange range, bool&) {
                         out.push_back({v.has_value(), range});
                       });
  return out;
}

TEST(StyledTextTest, WalkReportsRunsInOrderMergingOnlyWhenAskedTo) {
  StyledText t = sample();
  using W = std::vector<std::pair<bool, TextRange>>;
  EXPECT_EQ(
      walk(t, Attribute::kStrikethrough, {0, 8}, StyledText::kLongestEffectiveRangeNotRequired),
      (W{{false, {0, 2}}, {true, {2, 2}}, {true, {4, 2}}, {false, {6, 2}}}));
  EXPECT_EQ(walk(t, Attribute::kStrikethrough, {0, 8}, 0),
            (W{{false, {0, 2}}, {true, {2, 4}}, {false, {6, 2}}}));
  EXPECT_EQ(walk(t, Attribute::kStrikethrough, {3, 2}, 0), (W{{true, {3, 2}}}));
  // Equal neighbours are one run: appending the same attributes again extends it.
  t.append(std::string_view("ee"), attrs({}));
  EXPECT_EQ(t.runs().size(), 4u);
}

TEST(StyledTextTest, RemovingAnAttributeSplitsAndMergesRuns) {
  StyledText t = sample();
  t.removeAttribute(Attribute::kStrikethrough, {3, 2});
  EXPECT_FALSE(t.attributesAt(3).strikethrough.has_value());
  EXPECT_EQ(t.attributesAt(3).fontWeight, 700);
  EXPECT_TRUE(t.attributesAt(2).strikethrough.has_value());
  EXPECT_TRUE(t.attributesAt(5).strikethrough.has_value());
  t.removeAttribute(Attribute::kParagraphStyle, {0, t.length()});
  t.removeAttribute(Attribute::kStrikethrough, {0, t.length()});
  t.removeAttribute(Attribute::kFontWeight, {0, t.length()});
  ASSERT_EQ(t.runs().size(), 1u);  // nothing tells the runs apart any more
  EXPECT_EQ(t.runs()[0].length, 8u);
}

TEST(StyledTextTest, DeletionsInAndOutOfABatchAgree) {
  struct Case {
    std::vector<TextRange> deletions;  // each in the positions left by the ones before
    const char* left;
    size_t runs;
  } cases[] = {
      {{{2, 4}}, "aadd", 1},
      {{{0, 1}, {1, 2}, {3, 1}}, "accd", 3},      // forward, as the struck-run walk deletes
      {{{6, 2}, {0, 2}}, "bbcc", 2},              // backward: not gathered
      {{{1, 2}, {1, 2}, {0, 1}, {0, 3}}, "", 0},  // down to nothing
      {{{2, 0}, {7, 1}}, "aabbccd", 4},
  };
  for (const auto& c : cases) {
    for (bool batch : {false, true}) {
      StyledText t = sample();
      if (batch) t.beginEditing();
      for (const auto& r : c.deletions) t.deleteCharacters(r);
      EXPECT_EQ(t.string(), c.left);
      if (batch) t.endEditing();
      EXPECT_EQ(t.string(), c.left);
      EXPECT_EQ(t.runs().size(), c.runs) << c.left << (batch ? " in a batch" : "");
      size_t total = 0;
      for (const auto& run : t.runs()) total += run.length;
      EXPECT_EQ(total, t.length());
    }
  }
}

TEST(StyledTextTest, ReadsInsideABatchSeeTheDeletions) {
  StyledText t = sample();
  t.beginEditing();
  t.deleteCharacters({0, 3});
  EXPECT_EQ(t.length(), 5u);
  EXPECT_EQ(t.attributesAt(0).fontWeight, 700);  // the last "b"
  TextRange r;
  t.attributesAt(2, &r);
  EXPECT_EQ(r, (TextRange{1, 2}));
  t.deleteCharacters({1, 2});
  EXPECT_EQ(t.string(), "bdd");
  t.endEditing();
}

TEST(StyledTextTest, PositionsAreUtf16UnitsAndBadRangesRaise) {
  StyledText t("a😀é", TextAttributes{});
  EXPECT_EQ(t.length(), 4u);
  EXPECT_EQ(t.characters()[1], 0xD83D);
  t.deleteCharacters({1, 2});
  EXPECT_EQ(t.string(), "aé");
  for (TextRange bad : {TextRange{3, 0}, TextRange{1, 2}, TextRange{size_t(-1), 2}}) {
    EXPECT_THROW(t.deleteCharacters(bad), Exception);
    EXPECT_THROW(t.removeAttribute(Attribute::kLink, bad), Exception);
  }
  EXPECT_THROW(t.attributesAt(2), Exception);
  EXPECT_EQ(StyledText().fontAt(0), std::nullopt);
  EXPECT_EQ(t.fontAt(0), Font::systemFont(17));
}

}  // namespace
}  // namespace zv
