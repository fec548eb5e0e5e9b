#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/UIImage.h"
#include "support/TestSupport.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

// The corpus and its references: tests/data/images/make.py.
fs::path data(const std::string& name) {
  return fs::path(ZV_SOURCE_DIR) / "tests/data/images" / name;
}

// A reference picture: a PAM file of straight 8-bit RGBA, read here as premultiplied ARGB words.
PixelBuffer readReference(const std::string& name) {
  std::istringstream in(zvtest::readFile(data(name)));
  PixelBuffer out;
  std::string word;
  while (in >> word && word != "ENDHDR") {
    if (word == "WIDTH") in >> out.width;
    if (word == "HEIGHT") in >> out.height;
  }
  in.get();
  for (int i = 0; i < out.width * out.height; ++i) {
    unsigned char p[4] = {};
    in.read(reinterpret_cast<char*>(p), 4);
    out.data.push_back(PixelBuffer::premultiplied(p[0], p[1], p[2], p[3]));
  }
  return out;
}

// The largest difference of any channel of any pixel in the first `rows` rows.
int largestDifference(const PixelBuffer& a, const PixelBuffer& b, int rows) {
  int worst = 0;
  for (int y = 0; y < std::min(rows, a.height); ++y) {
    for (int x = 0; x < a.width; ++x) {
      for (int shift : {0, 8, 16, 24}) {
        int d = int((a.row(y)[x] >> shift) & 0xFF) - int((b.row(y)[x] >> shift) & 0xFF);
        worst = std::max(worst, std::abs(d));
      }
    }
  }
  return worst;
}

// Every flavour decodes to its reference: the upright picture in sRGB.
TEST(ImageDecoderTest, EachFlavourMatchesItsReference) {
  struct Case {
    const char* file;
    const char* reference;
    int tolerance;
    int rows = 1 << 20;  // rows compared (a cut file shows only its top)
  } cases[] = {
      {"orient1.jpg", "ref_colours.pam", 6},     {"orient2.jpg", "ref_colours.pam", 6},
      {"orient3.jpg", "ref_colours.pam", 6},     {"orient4.jpg", "ref_colours.pam", 6},
      {"orient5.jpg", "ref_colours.pam", 6},     {"orient6.jpg", "ref_colours.pam", 6},
      {"orient7.jpg", "ref_colours.pam", 6},     {"orient8.jpg", "ref_colours.pam", 6},
      {"orient6.png", "ref_colours.pam", 0},     {"ycck.jpg", "ref_colours.pam", 8},
      {"cmyk.jpg", "ref_colours.pam", 8},        {"cmyk-adobe.jpg", "ref_colours.pam", 8},
      {"grey.jpg", "ref_greys.pam", 4},          {"arithmetic.jpg", "ref_colours.pam", 6},
      {"restart.jpg", "ref_colours.pam", 6},     {"progressive.jpg", "ref_colours.pam", 6},
      {"truncated.jpg", "ref_tall.pam", 6, 16},  {"p3.jpg", "ref_colours.pam", 8},
      {"adobergb.jpg", "ref_colours.pam", 8},    {"p3.png", "ref_colours.pam", 3},
      {"adobergb.png", "ref_colours.pam", 3},    {"palette.png", "ref_palette.pam", 1},
      {"greyalpha.png", "ref_greyalpha.pam", 1}, {"grey.png", "ref_greys.pam", 0},
      {"deep.png", "ref_greys.pam", 0},          {"interlaced.png", "ref_colours.pam", 0},
      {"linear.png", "ref_greys.pam", 2},
  };
  for (const auto& c : cases) {
    auto image = UIImage::imageWithContentsOfFile(data(c.file));
    ASSERT_TRUE(image) << c.file;
    PixelBuffer expected = readReference(c.reference);
    EXPECT_EQ(image->size().width, expected.width) << c.file;
    EXPECT_EQ(image->size().height, expected.height) << c.file;
    auto pixels = image->cgImage()->pixels();
    ASSERT_TRUE(pixels) << c.file;
    ASSERT_EQ(pixels->width, expected.width) << c.file;
    ASSERT_EQ(pixels->height, expected.height) << c.file;
    EXPECT_LE(largestDifference(*pixels, expected, c.rows), c.tolerance) << c.file;
  }
}

// Pixels are decoded at the size drawn (at least it, within what the image has) and shrunk by
// averaging: each quadrant keeps its colour.
TEST(ImageDecoderTest, DecodesAtTheSizeAskedFor) {
  PixelBuffer expected = readReference("ref_colours.pam");
  struct Case {
    const char* file;
    DecodeSize asked;
    DecodeSize decoded;
  } cases[] = {
      {"orient1.jpg", {8, 4}, {8, 4}},    // by libjpeg's DCT scaling alone
      {"orient6.jpg", {12, 3}, {12, 6}},  // scaled to 1/2 then averaged, upright
      {"deep.png", {16, 16}, {32, 16}},   // enough for both sides: the whole
      {"p3.png", {4, 2}, {4, 2}},        {"orient8.jpg", {0, 0}, {32, 16}},
  };
  for (const auto& c : cases) {
    auto bytes = std::make_shared<const std::string>(zvtest::readFile(data(c.file)));
    auto pixels = ImageDecoder::decode(bytes, c.asked);
    ASSERT_TRUE(pixels) << c.file;
    EXPECT_EQ(pixels->width, c.decoded.width) << c.file;
    EXPECT_EQ(pixels->height, c.decoded.height) << c.file;
    if (std::string(c.file) == "deep.png") continue;  // greys
    for (auto [fx, fy] : {std::pair{0.25, 0.25}, {0.75, 0.25}, {0.25, 0.75}, {0.75, 0.75}}) {
      std::uint32_t got = pixels->row(int(fy * pixels->height))[int(fx * pixels->width)];
      std::uint32_t want = expected.row(int(fy * expected.height))[int(fx * expected.width)];
      for (int shift : {0, 8, 16})
        EXPECT_NEAR(int((got >> shift) & 0xFF), int((want >> shift) & 0xFF), 8) << c.file;
    }
  }
}

// An image keeps the pixels of the size it was drawn at and decodes again only to be drawn larger.
TEST(ImageDecoderTest, KeepsThePixelsOfTheLargestSizeDrawn) {
  auto image = UIImage::imageWithContentsOfFile(data("orient6.jpg"));
  ASSERT_TRUE(image);
  struct Step {
    int width, height;
    int decodedWidth;
    bool again;  // decoded again rather than kept
  } steps[] = {{8, 4, 8, true},   {4, 2, 8, false},  {8, 4, 8, false},  {12, 6, 12, true},
               {0, 0, 12, false}, {13, 6, 15, true}, {64, 32, 32, true}};
  std::shared_ptr<const PixelBuffer> last;
  for (const auto& s : steps) {
    auto pixels =
        s.width ? image->cgImage()->pixels(s.width, s.height) : image->cgImage()->pixels();
    ASSERT_TRUE(pixels);
    EXPECT_EQ(pixels->width, s.decodedWidth) << s.width;
    EXPECT_EQ(pixels != last, s.again) << s.width;
    last = pixels;
  }
}

}  // namespace
}  // namespace zv
