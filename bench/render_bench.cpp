// Drawing a 375 x 600 view tree (a title, a wrapped message and two photos) at scale 2, against
// filling the same 750 x 1200 pixels with one colour through Cairo: what the tree costs above the
// bare surface.
#include <benchmark/benchmark.h>
#include <cairo.h>

#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/UIImage.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UIImageView.h"
#include "platform/ui/UILabel.h"
#include "zentrova/Renderer.h"

namespace {

std::shared_ptr<zv::UIImage> photo(int w, int h) {
  auto pixels = zv::PixelBuffer::make(w, h);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      pixels->row(y)[x] = zv::PixelBuffer::premultiplied(x * 255 / w, y * 255 / h, 128, 255);
    }
  }
  return zv::UIImage::imageWithCGImage(zv::CGImage::withPixels(pixels));
}

std::shared_ptr<zv::UIView> tree() {
  auto measurer = std::make_shared<zv::PangoTextMeasurer>();
  auto root = zv::UIView::make({{0, 0}, {375, 600}});
  root->setBackgroundColor(zv::UIColor::whiteColor());
  auto first = zv::UIImageView::make({{0, 0}, {375, 250}});
  first->setImage(photo(1080, 720));
  first->setContentMode(zv::UIViewContentMode::kScaleAspectFill);
  first->setClipsToBounds(true);
  auto second = zv::UIImageView::make({{0, 250}, {375, 250}});
  second->setImage(photo(1080, 720));
  second->setContentMode(zv::UIViewContentMode::kScaleAspectFit);
  auto title = zv::UILabel::make(measurer, {{10, 505}, {355, 25}});
  title->setFont(zv::Font::systemFont(15, 600));
  title->setText("Spring sale: everything must go");
  auto body = zv::UILabel::make(measurer, {{10, 530}, {355, 65}});
  body->setNumberOfLines(0);
  body->setFont(zv::Font::systemFont(14));
  body->setText(
      "Up to half off on the whole collection this weekend only. Tap to see the new "
      "arrivals and pick your favourites before they are gone.");
  for (const auto& v : std::vector<std::shared_ptr<zv::UIView>>{first, second, title, body}) {
    root->addSubview(v);
  }
  return root;
}

void BM_FillSurface(benchmark::State& state) {
  for (auto _ : state) {
    auto pixels = zv::PixelBuffer::make(750, 1200);
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels->data.data()),
                                            CAIRO_FORMAT_ARGB32, 750, 1200, 750 * 4);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
    benchmark::DoNotOptimize(pixels->data[0]);
  }
}

void BM_DrawTree(benchmark::State& state) {
  auto root = tree();
  zv::Renderer renderer(2);
  for (auto _ : state) {
    auto pixels = renderer.draw(*root);
    benchmark::DoNotOptimize(pixels->data[0]);
  }
}

BENCHMARK(BM_FillSurface)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DrawTree)->Unit(benchmark::kMillisecond);

}  // namespace
