#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/PngWriter.h"
#include "platform/graphics/UIImage.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/RunLoop.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UIImageView.h"
#include "platform/ui/UILabel.h"
#include "platform/ui/UIPageControl.h"
#include "support/GoldenImage.h"
#include "support/TestSupport.h"
#include "zentrova/Renderer.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kWhite = 0xFFFFFFFF, kRed = 0xFFFF0000, kBlue = 0xFF0000FF,
                        kGreen = 0xFF00FF00;

ColorRef rgb(double r, double g, double b, double a = 1) { return Color::make(r, g, b, a); }

// An image of w x h pixels, its left half `left` and its right half `right`.
std::shared_ptr<UIImage> halves(int w, int h, std::uint32_t left, std::uint32_t right) {
  auto pixels = PixelBuffer::make(w, h);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) pixels->row(y)[x] = x < w / 2 ? left : right;
  }
  return UIImage::imageWithCGImage(CGImage::withPixels(pixels));
}

std::uint32_t at(const PixelBuffer& p, int x, int y) { return p.row(y)[x]; }

// A 20 x 20 white root at scale 2 with one child; the child's setup varies.
std::shared_ptr<UIView> root() {
  auto view = UIView::make({{0, 0}, {20, 20}});
  view->setBackgroundColor(UIColor::whiteColor());
  return view;
}

TEST(RendererTest, BackgroundsAlphaCornersAndClipping) {
  struct Case {
    const char* what;
    std::function<void(UIView& root)> build;
    std::vector<std::tuple<int, int, std::uint32_t>> pixels;  // at scale 2
  } cases[] = {
      {"a red square",
       [](UIView& r) {
         auto v = UIView::make({{5, 5}, {10, 10}});
         v->setBackgroundColor(rgb(1, 0, 0));
         r.addSubview(v);
       },
       {{14, 14, kRed}, {8, 8, kWhite}, {29, 29, kRed}, {30, 30, kWhite}}},
      {"hidden",
       [](UIView& r) {
         auto v = UIView::make({{5, 5}, {10, 10}});
         v->setBackgroundColor(rgb(1, 0, 0));
         v->setHidden(true);
         r.addSubview(v);
       },
       {{14, 14, kWhite}}},
      {"half transparent",
       [](UIView& r) {
         auto v = UIView::make({{5, 5}, {10, 10}});
         v->setBackgroundColor(rgb(1, 0, 0));
         v->setAlpha(0.5);
         r.addSubview(v);
       },
       {{14, 14, 0xFFFF7F7F}}},
      {"rounded corners",
       [](UIView& r) {
         auto v = UIView::make({{5, 5}, {10, 10}});
         v->setBackgroundColor(rgb(1, 0, 0));
         v->layer()->setCornerRadius(3);
         r.addSubview(v);
       },
       {{10, 10, kWhite}, {20, 20, kRed}, {20, 12, kRed}, {29, 29, kWhite}}},
      {"a child clipped to its parent",
       [](UIView& r) {
         auto parent = UIView::make({{5, 5}, {10, 10}});
         parent->setClipsToBounds(true);
         auto child = UIView::make({{-5, -5}, {20, 20}});
         child->setBackgroundColor(rgb(0, 0, 1));
         parent->addSubview(child);
         r.addSubview(parent);
       },
       {{8, 8, kWhite}, {12, 12, kBlue}, {31, 31, kWhite}}},
      {"a child not clipped",
       [](UIView& r) {
         auto parent = UIView::make({{5, 5}, {10, 10}});
         auto child = UIView::make({{-5, -5}, {20, 20}});
         child->setBackgroundColor(rgb(0, 0, 1));
         parent->addSubview(child);
         r.addSubview(parent);
       },
       {{8, 8, kBlue}, {31, 31, kBlue}}},
  };
  Renderer renderer;
  for (const auto& c : cases) {
    auto r = root();
    c.build(*r);
    auto pixels = renderer.draw(*r);
    ASSERT_TRUE(pixels);
    EXPECT_EQ(pixels->width, 40);
    for (auto [x, y, expected] : c.pixels) {
      EXPECT_EQ(at(*pixels, x, y), expected) << c.what << " at " << x << "," << y;
    }
  }
}

// A 10 x 5 image (red | blue) in a 20 x 20 view, by content mode.
TEST(RendererTest, ImagesByContentMode) {
  struct Case {
    UIViewContentMode mode;
    std::vector<std::tuple<int, int, std::uint32_t>> pixels;  // points
  } cases[] = {
      {UIViewContentMode::kScaleToFill, {{2, 2, kRed}, {18, 18, kBlue}}},
      {UIViewContentMode::kScaleAspectFit, {{2, 2, kWhite}, {2, 10, kRed}, {18, 10, kBlue}}},
      {UIViewContentMode::kScaleAspectFill, {{2, 2, kRed}, {18, 2, kBlue}}},
      {UIViewContentMode::kCenter,
       {{2, 10, kWhite}, {6, 10, kRed}, {13, 10, kBlue}, {16, 10, kWhite}}},
  };
  Renderer renderer(1);
  for (const auto& c : cases) {
    auto r = root();
    auto view = UIImageView::make({{0, 0}, {20, 20}});
    view->setImage(halves(10, 5, kRed, kBlue));
    view->setContentMode(c.mode);
    r->addSubview(view);
    auto pixels = renderer.draw(*r);
    for (auto [x, y, expected] : c.pixels) {
      EXPECT_EQ(at(*pixels, x, y), expected) << int(c.mode) << " at " << x << "," << y;
    }
  }
}

TEST(RendererTest, AnimationsShowTheFrameDueAndLayersTheirPicture) {
  auto loop = std::make_shared<ManualRunLoop>();
  auto previous = RunLoop::setCurrent(loop);
  auto r = root();
  auto view = UIImageView::make({{0, 0}, {10, 20}});
  view->setAnimationImages(
      {halves(2, 2, kRed, kRed), halves(2, 2, kGreen, kGreen), halves(2, 2, kBlue, kBlue)});
  view->setAnimationDuration(0.3);
  view->startAnimating();
  r->addSubview(view);
  // A layer with a picture of its own (as a clip's layer has), fitted into its bounds.
  struct PictureLayer : CALayer {
    std::shared_ptr<CGImage> contents() const override {
      return halves(2, 1, kRed, kBlue)->cgImage();
    }
    CALayerContentsGravity contentsGravity() const override {
      return CALayerContentsGravity::kResizeAspect;
    }
  };
  auto holder = UIView::make({{10, 0}, {10, 20}});
  auto layer = std::make_shared<PictureLayer>();
  layer->setFrame({{0, 0}, {10, 20}});
  holder->layer()->addSublayer(layer);
  r->addSubview(holder);

  Renderer renderer(1);
  for (auto [time, expected] : std::vector<std::pair<double, std::uint32_t>>{
           {0, kRed}, {0.15, kGreen}, {0.25, kBlue}, {0.35, kRed}}) {
    loop->advance(time - loop->now());
    auto pixels = renderer.draw(*r);
    EXPECT_EQ(at(*pixels, 5, 10), expected) << "at " << time;
    EXPECT_EQ(at(*pixels, 12, 2), kWhite) << "letterboxed";
    EXPECT_EQ(at(*pixels, 12, 10), kRed);
    EXPECT_EQ(at(*pixels, 17, 10), kBlue);
  }
  RunLoop::setCurrent(previous);
}

TEST(RendererTest, PageControlDots) {
  auto r = UIView::make({{0, 0}, {100, 20}});
  r->setBackgroundColor(UIColor::blackColor());
  auto dots = UIPageControl::make({{0, 0}, {100, 20}});
  dots->setNumberOfPages(3);
  dots->setCurrentPage(1);
  r->addSubview(dots);
  auto pixels = Renderer(1).draw(*r);
  auto brightness = [&](int x) { return at(*pixels, x, 10) & 0xFF; };
  EXPECT_EQ(brightness(50), 0xFFu) << "the current page's dot, in the middle";
  EXPECT_GT(brightness(34), 0x30u);
  EXPECT_LT(brightness(34), 0xB0u) << "the other dots are dimmer";
  EXPECT_GT(brightness(66), 0x30u);
  EXPECT_EQ(brightness(42), 0u) << "between the dots";
}

// Labels drawn in Inter, compared with their goldens.
TEST(RendererTest, LabelsMatchTheirGoldens) {
  auto measurer = std::make_shared<PangoTextMeasurer>();
  auto styled = [](const char* text, TextAttributes a) { return StyledText(text, std::move(a)); };
  TextAttributes bold, italicRed, underline, struck;
  bold.fontWeight = 700;
  bold.fontSize = 17;
  italicRed.italic = true;
  italicRed.fontSize = 17;
  italicRed.foregroundColor = rgb(0.8, 0, 0);
  underline.underline = 1;
  underline.fontSize = 17;
  struck.strikethrough = 1;
  struck.fontSize = 17;
  StyledText mixed = styled("Bold ", bold);
  mixed.append(std::string_view("italic red "), std::make_shared<const TextAttributes>(italicRed));
  mixed.append(std::string_view("underlined "), std::make_shared<const TextAttributes>(underline));
  mixed.append(std::string_view("and struck, wrapping onto the next line."),
               std::make_shared<const TextAttributes>(struck));
  struct Case {
    const char* name;
    StyledText text;
    int lines;
  } cases[] = {
      {"label_styled_runs", mixed, 0},
      {"label_truncated",
       styled("A long message that cannot fit in two lines of this narrow label "
              "so its last line ends in an ellipsis",
              bold),
       2},
  };
  for (const auto& c : cases) {
    auto r = UIView::make({{0, 0}, {220, 90}});
    r->setBackgroundColor(UIColor::whiteColor());
    auto label = UILabel::make(measurer, {{10, 5}, {200, 80}});
    label->setNumberOfLines(c.lines);
    label->setAttributedText(c.text);
    r->addSubview(label);
    zvtest::expectMatchesGolden(*Renderer(2).draw(*r), c.name);
  }
}

}  // namespace
}  // namespace zv
