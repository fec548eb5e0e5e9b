#include "zentrova/Renderer.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/CGImage.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/PngWriter.h"
#include "platform/graphics/UIImage.h"
#include "platform/text/PangoFontConfiguration.h"
#include "platform/text/PangoTextLayout.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/UICollectionView.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UIImageView.h"
#include "platform/ui/UILabel.h"
#include "platform/ui/UIPageControl.h"
#include "zentrova/UIView.h"

namespace zv {

namespace {

void roundedRectangle(cairo_t* cr, const CGRect& r, double radius) {
  radius = std::min({radius, r.size.width / 2, r.size.height / 2});
  if (radius <= 0) {
    cairo_rectangle(cr, r.origin.x, r.origin.y, r.size.width, r.size.height);
    return;
  }
  double x = r.origin.x, y = r.origin.y, w = r.size.width, h = r.size.height;
  cairo_new_sub_path(cr);
  cairo_arc(cr, x + w - radius, y + radius, radius, -M_PI / 2, 0);
  cairo_arc(cr, x + w - radius, y + h - radius, radius, 0, M_PI / 2);
  cairo_arc(cr, x + radius, y + h - radius, radius, M_PI / 2, M_PI);
  cairo_arc(cr, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
  cairo_close_path(cr);
}

void setColor(cairo_t* cr, const Color& c) {
  cairo_set_source_rgba(cr, c.red, c.green, c.blue, c.alpha);
}

// Paints an image's pixels into rect (points), scaled to fill it. The image is decoded at the
// pixel size rect covers on the surface (its points times the scale), not at its own.
void paintImage(cairo_t* cr, const CGImage& image, const CGRect& rect) {
  if (rect.size.width <= 0 || rect.size.height <= 0) return;
  double dx = rect.size.width, dy = 0, ex = 0, ey = rect.size.height;
  cairo_user_to_device_distance(cr, &dx, &dy);
  cairo_user_to_device_distance(cr, &ex, &ey);
  auto wanted = [](double x, double y) {
    return static_cast<int>(std::clamp(std::ceil(std::hypot(x, y)), 1.0, 1e6));
  };
  auto pixels = image.pixels(wanted(dx, dy), wanted(ex, ey));
  if (!pixels) return;
  auto* data = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels->data.data()));
  UniqueHandle<cairo_surface_t, cairo_surface_destroy> surface(cairo_image_surface_create_for_data(
      data, CAIRO_FORMAT_ARGB32, pixels->width, pixels->height, pixels->width * 4));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return;
  cairo_save(cr);
  cairo_rectangle(cr, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
  cairo_clip(cr);
  cairo_translate(cr, rect.origin.x, rect.origin.y);
  cairo_scale(cr, rect.size.width / pixels->width, rect.size.height / pixels->height);
  cairo_set_source_surface(cr, surface.get(), 0, 0);
  cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
  cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
  cairo_paint(cr);
  cairo_restore(cr);
}

// Where each UTF-16 unit starts in the UTF-8 that utf16ToUtf8 writes (one more entry for the end):
// a surrogate pair is 4 bytes, counted at its first unit; a lone surrogate becomes U+FFFD (3
// bytes).
std::vector<std::size_t> utf8Offsets(const std::u16string& units) {
  std::vector<std::size_t> offsets(units.size() + 1, 0);
  for (std::size_t i = 0; i < units.size(); ++i) {
    char16_t c = units[i];
    std::size_t bytes = c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
        units[i + 1] < 0xE000) {
      offsets[i + 1] = offsets[i] + 4;
      offsets[i + 2] = offsets[i + 1];
      ++i;
      continue;
    }
    offsets[i + 1] = offsets[i] + bytes;
  }
  return offsets;
}

guint16 channel(double v) {
  return static_cast<guint16>(std::lround(std::clamp(v, 0.0, 1.0) * 65535));
}

}  // namespace

CGRect placeImage(double width, double height, const CGRect& bounds, int contentMode) {
  const double bw = bounds.size.width, bh = bounds.size.height;
  auto centred = [&](double w, double h) {
    return CGRect{{bounds.origin.x + (bw - w) / 2, bounds.origin.y + (bh - h) / 2}, {w, h}};
  };
  if (width <= 0 || height <= 0) return bounds;
  switch (static_cast<UIViewContentMode>(contentMode)) {
    case UIViewContentMode::kScaleAspectFit: {
      double s = std::min(bw / width, bh / height);
      return centred(width * s, height * s);
    }
    case UIViewContentMode::kScaleAspectFill: {
      double s = std::max(bw / width, bh / height);
      return centred(width * s, height * s);
    }
    case UIViewContentMode::kCenter:
      return centred(width, height);
    case UIViewContentMode::kScaleToFill:
    case UIViewContentMode::kRedraw:
      return bounds;
    default:
      break;
  }
  // The edge and corner modes keep the natural size against their edge.
  auto mode = static_cast<UIViewContentMode>(contentMode);
  CGRect r = centred(width, height);
  if (mode == UIViewContentMode::kTop || mode == UIViewContentMode::kTopLeft ||
      mode == UIViewContentMode::kTopRight) {
    r.origin.y = bounds.origin.y;
  }
  if (mode == UIViewContentMode::kBottom || mode == UIViewContentMode::kBottomLeft ||
      mode == UIViewContentMode::kBottomRight) {
    r.origin.y = bounds.origin.y + bh - height;
  }
  if (mode == UIViewContentMode::kLeft || mode == UIViewContentMode::kTopLeft ||
      mode == UIViewContentMode::kBottomLeft) {
    r.origin.x = bounds.origin.x;
  }
  if (mode == UIViewContentMode::kRight || mode == UIViewContentMode::kTopRight ||
      mode == UIViewContentMode::kBottomRight) {
    r.origin.x = bounds.origin.x + bw - width;
  }
  return r;
}

Renderer::Renderer(double scale)
    : scale_(scale > 0 && std::isfinite(scale) ? scale : 2),
      fontMap_(PangoFontConfiguration::newFontMap()) {}

Renderer::~Renderer() { g_object_unref(fontMap_); }

std::shared_ptr<PixelBuffer> Renderer::draw(const UIView& root) const {
  CGRect frame = root.frame();
  auto width = static_cast<std::size_t>(std::max(1.0, std::ceil(frame.size.width * scale_)));
  auto height = static_cast<std::size_t>(std::max(1.0, std::ceil(frame.size.height * scale_)));
  auto pixels = PixelBuffer::make(width, height);
  if (!pixels) return nullptr;
  UniqueHandle<cairo_surface_t, cairo_surface_destroy> surface(cairo_image_surface_create_for_data(
      reinterpret_cast<unsigned char*>(pixels->data.data()), CAIRO_FORMAT_ARGB32, pixels->width,
      pixels->height, pixels->width * 4));
  UniqueHandle<cairo_t, cairo_destroy> cr(cairo_create(surface.get()));
  cairo_scale(cr.get(), scale_, scale_);
  cairo_translate(cr.get(), -frame.origin.x, -frame.origin.y);
  drawView(cr.get(), root);
  cairo_surface_flush(surface.get());
  return pixels;
}

bool Renderer::writePng(const UIView& root, const std::filesystem::path& file) const {
  auto pixels = draw(root);
  return pixels && PngWriter::write(*pixels, file);
}

void Renderer::drawView(cairo_t* cr, const UIView& view) const {
  if (view.isHidden() || view.alpha() <= 0) return;
  const CGRect frame = view.frame();
  if (!std::isfinite(frame.origin.x) || !std::isfinite(frame.origin.y) ||
      !std::isfinite(frame.size.width) || !std::isfinite(frame.size.height)) {
    return;
  }
  const CGRect bounds = view.bounds();
  const CALayer& layer = *view.layer();
  cairo_save(cr);
  cairo_translate(cr, frame.origin.x, frame.origin.y);
  bool group = view.alpha() < 1;
  if (group) cairo_push_group(cr);

  if (view.backgroundColor()) {
    ColorRef color = UIColor::resolve(view.backgroundColor(), view.traitCollection());
    if (color && color->alpha > 0) {
      setColor(cr, *color);
      roundedRectangle(cr, bounds, layer.cornerRadius());
      cairo_fill(cr);
    }
  }
  // A scroll view always clips its content; other views when asked.
  if (layer.masksToBounds() || dynamic_cast<const UICollectionView*>(&view)) {
    roundedRectangle(cr, bounds, layer.cornerRadius());
    cairo_clip(cr);
  }
  if (auto* label = dynamic_cast<const UILabel*>(&view)) drawLabel(cr, *label);
  if (auto* image = dynamic_cast<const UIImageView*>(&view)) drawImageView(cr, *image);
  if (auto* dots = dynamic_cast<const UIPageControl*>(&view)) drawPageControl(cr, *dots);
  drawLayer(cr, layer, true);
  for (const auto& subview : view.subviews()) drawView(cr, *subview);

  if (group) {
    cairo_pop_group_to_source(cr);
    cairo_paint_with_alpha(cr, view.alpha());
  }
  cairo_restore(cr);
}

// A view's own layer draws at the view's origin; a sublayer at its frame in its superlayer.
void Renderer::drawLayer(cairo_t* cr, const CALayer& layer, bool own) const {
  cairo_save(cr);
  CGRect bounds = layer.bounds();
  if (!own) {
    cairo_translate(cr, layer.frame().origin.x, layer.frame().origin.y);
    if (layer.masksToBounds()) {
      roundedRectangle(cr, bounds, layer.cornerRadius());
      cairo_clip(cr);
    }
  }
  if (auto picture = layer.contents()) {
    int mode = 0;
    switch (layer.contentsGravity()) {
      case CALayerContentsGravity::kResize:
        mode = static_cast<int>(UIViewContentMode::kScaleToFill);
        break;
      case CALayerContentsGravity::kResizeAspect:
        mode = static_cast<int>(UIViewContentMode::kScaleAspectFit);
        break;
      case CALayerContentsGravity::kResizeAspectFill:
        mode = static_cast<int>(UIViewContentMode::kScaleAspectFill);
        break;
    }
    cairo_save(cr);
    cairo_rectangle(cr, 0, 0, bounds.size.width, bounds.size.height);
    cairo_clip(cr);
    paintImage(cr, *picture, placeImage(picture->width(), picture->height(), bounds, mode));
    cairo_restore(cr);
  }
  for (const auto& sublayer : layer.sublayers()) drawLayer(cr, *sublayer, false);
  cairo_restore(cr);
}

void Renderer::drawImageView(cairo_t* cr, const UIImageView& view) const {
  std::shared_ptr<UIImage> image = view.image();
  if (view.isAnimating() && !view.animationImages().empty()) {
    image = view.animationImages()[view.animationFrameIndex() % view.animationImages().size()];
  }
  if (!image || !image->cgImage()) return;
  CGSize size = image->size();
  paintImage(
      cr, *image->cgImage(),
      placeImage(size.width, size.height, view.bounds(), static_cast<int>(view.contentMode())));
}

void Renderer::drawPageControl(cairo_t* cr, const UIPageControl& control) const {
  if (!control.showsDots()) return;
  // Dots of 7 points, 16 points apart, centred; the current one opaque, the others dimmed.
  constexpr double kDot = 7, kPitch = 16;
  const long pages = control.numberOfPages();
  const CGRect b = control.bounds();
  double start = b.size.width / 2 - (pages - 1) * kPitch / 2;
  auto traits = control.traitCollection();
  for (long i = 0; i < pages; ++i) {
    bool current = i == control.currentPage();
    ColorRef tint =
        current ? control.currentPageIndicatorTintColor() : control.pageIndicatorTintColor();
    Color color = tint ? *UIColor::resolve(tint, traits) : Color{1, 1, 1, current ? 1.0 : 0.3};
    setColor(cr, color);
    cairo_arc(cr, start + i * kPitch, b.size.height / 2, kDot / 2, 0, 2 * M_PI);
    cairo_fill(cr);
  }
}

void Renderer::drawLabel(cairo_t* cr, const UILabel& label) const {
  const StyledText& text = label.attributedText();
  const std::string plain = text.string();
  if (plain.empty()) return;
  UniqueHandle<PangoContext, g_object_unref> context(pango_font_map_create_context(fontMap_));
  PangoFontConfiguration::configure(context.get());
  UniqueHandle<PangoLayout, g_object_unref> layout(pango_layout_new(context.get()));
  TextAlignment alignment = TextAlignment::kNatural;
  for (const auto& run : text.runs()) {
    if (run.attributes && run.attributes->paragraphStyle) {
      alignment = run.attributes->paragraphStyle->alignment;
      break;
    }
  }
  // Laid out as the measurer lays it out; the runs' own fonts, colours and lines go on top.
  const CGRect bounds = label.bounds();
  PangoTextLayout::prepare(layout.get(), plain, label.font(), bounds.size.width, alignment);
  pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
  // At most numberOfLines lines (a negative height counts lines), else as many as fit.
  int lines = label.numberOfLines();
  pango_layout_set_height(layout.get(),
                          lines > 0 ? -lines : static_cast<int>(bounds.size.height * PANGO_SCALE));

  auto traits = label.traitCollection();
  ColorRef fallback = label.textColor() ? label.textColor() : UIColor::blackColor();
  UniqueHandle<PangoAttrList, pango_attr_list_unref> attributes(pango_attr_list_new());
  // Runs count UTF-16 units; Pango counts UTF-8 bytes.
  const std::vector<std::size_t> offsets = utf8Offsets(text.characters());
  std::size_t unit = 0;
  for (const auto& run : text.runs()) {
    const std::size_t end = std::min(unit + run.length, offsets.size() - 1);
    auto add = [&](PangoAttribute* a) {
      a->start_index = static_cast<guint>(offsets[std::min(unit, end)]);
      a->end_index = static_cast<guint>(offsets[end]);
      pango_attr_list_insert(attributes.get(), a);
    };
    Font font = text.fontAt(unit).value_or(label.font());
    UniqueHandle<PangoFontDescription, pango_font_description_free> description(
        PangoTextLayout::describe(font));
    add(pango_attr_font_desc_new(description.get()));
    const TextAttributes* a = run.attributes.get();
    ColorRef color = a && a->foregroundColor ? a->foregroundColor : fallback;
    color = UIColor::resolve(color, traits);
    add(pango_attr_foreground_new(channel(color->red), channel(color->green),
                                  channel(color->blue)));
    add(pango_attr_foreground_alpha_new(channel(color->alpha)));
    if (a && a->underline) add(pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    if (a && a->strikethrough) add(pango_attr_strikethrough_new(TRUE));
    // A language the sender gave picks the CJK face of its run (Japanese, Korean, Traditional
    // Chinese); the measurer does without it, as the CJK faces share their line heights.
    if (a && a->language && !a->language->empty()) {
      add(pango_attr_language_new(pango_language_from_string(a->language->c_str())));
    }
    unit += run.length;
  }
  pango_layout_set_attributes(layout.get(), attributes.get());

  // A label centres its text vertically in its bounds, also a line taller than its row (a script
  // whose face has tall ascents and descents): half of the extra room is cut above, half below.
  PangoRectangle logical;
  pango_layout_get_extents(layout.get(), nullptr, &logical);
  double height = static_cast<double>(logical.height) / PANGO_SCALE;
  cairo_save(cr);
  cairo_rectangle(cr, 0, 0, bounds.size.width, bounds.size.height);
  cairo_clip(cr);
  cairo_move_to(cr, 0, (bounds.size.height - height) / 2);
  pango_cairo_show_layout(cr, layout.get());
  cairo_restore(cr);
}

}  // namespace zv
