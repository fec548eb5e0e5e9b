#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "platform/text/FixedAdvanceTextMeasurer.h"
#include "platform/text/PangoTextMeasurer.h"

namespace zv {
namespace {

TEST(PangoTextMeasurerTest, MeasuresInInterWithUnroundedLineHeights) {
  auto m = std::make_shared<PangoTextMeasurer>();
  for (const Font& f : {Font::systemFont(17), Font("Georgia", 17, 700), Font("x", 12, 400, true)}) {
    EXPECT_EQ(m->resolvedFamily(f), "Inter") << f.description();
  }
  const Font font = Font::systemFont(17);
  EXPECT_EQ(m->boundingSize("", font, 355).height, 0.0);
  const double line = m->boundingSize("Hello", font, 355).height;
  EXPECT_GT(line, 17.0);
  EXPECT_LT(line, 25.0);
  EXPECT_NE(line, std::floor(line));  // not rounded to whole pixels

  std::string text;
  for (int i = 0; i < 12; ++i) text += "Grab the deal before it ends tonight! ";
  const double wide = m->boundingSize(text, font, 355).height;
  const double narrow = m->boundingSize(text, font, 200).height;
  EXPECT_GT(wide, 3 * line);
  EXPECT_GT(narrow, wide);
  EXPECT_DOUBLE_EQ(std::fmod(wide, line), 0.0);                   // whole lines of equal height
  EXPECT_DOUBLE_EQ(m->boundingSize(text, font, 0).height, line);  // no width: one line
  EXPECT_NEAR(m->boundingSize("Hello", Font::systemFont(34), 355).height, 2 * line, 0.01);
  EXPECT_GT(m->boundingSize("Supercalifragilisticexpialidocious", font, 60).height, 3 * line);
  EXPECT_GT(m->boundingSize("a\xFF b", font, 355).height, 0.0);  // broken UTF-8 still measures

  // One measurer serves every thread.
  std::vector<double> heights(4);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < heights.size(); ++i) {
    threads.emplace_back([&, i] { heights[i] = m->boundingSize(text, font, 200).height; });
  }
  for (auto& t : threads) t.join();
  for (double h : heights) EXPECT_EQ(h, narrow);
}

TEST(FixedAdvanceTextMeasurerTest, WrapsWordsGreedily) {
  struct Case {
    const char* text;
    double width;
    double lines;
  } cases[] = {
      {"", 100, 0},
      {"abc", 100, 1},
      {"aaaa bbbb cc", 100, 2},
      {"aaaa bbbb", 100, 1},
      {"aaaaaaaaaaaaaaaaaaaaa", 100, 3},
      {"a\nb\n\nc", 100, 4},
      {"é😀", 10, 2},
  };
  FixedAdvanceTextMeasurer m;  // 10 px per character and 24 px per line at 20 px
  for (const auto& c : cases) {
    EXPECT_EQ(m.boundingSize(c.text, Font::systemFont(20), c.width).height, 24 * c.lines) << c.text;
  }
}

}  // namespace
}  // namespace zv
