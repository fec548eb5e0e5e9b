// zv::Renderer draws a view tree with Cairo and Pango, at a scale (2 by default: two pixels per
// point): background colours resolved for each view's style, alpha, corner radii and clipping to
// bounds, labels with their styled runs (fonts, colours, underline, strike-through, wrapping,
// line count, truncation with an ellipsis on the last line), image views by content mode (the
// animation frame due at the run loop's time), page-control dots, and layers that draw a picture
// of their own (a clip's frame) by their gravity. Hidden views and views of alpha 0 draw nothing.
// Text is drawn in Inter and its Noto fallbacks through a private font configuration, laid out
// as the measurer lays it out (PangoTextLayout.h). Main thread only.
#pragma once

#include <filesystem>
#include <memory>

#include "zentrova/Export.h"
#include "zentrova/Geometry.h"
#include "platform/graphics/PixelBuffer.h"

ZENTROVA_API_BEGIN

typedef struct _cairo cairo_t;
typedef struct _PangoFontMap PangoFontMap;

namespace zv {

class UIView;
class UILabel;
class UIImageView;
class UIPageControl;
class CALayer;
class CGImage;

class Renderer {
 public:
  explicit Renderer(double scale = 2);
  ~Renderer();
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  double scale() const { return scale_; }
  // The tree drawn into pixels of the root's size times the scale (at least 1 x 1); nullptr when
  // that is over the pixel budget.
  std::shared_ptr<PixelBuffer> draw(const UIView& root) const;
  // The same, written to a PNG file; false when it cannot be drawn or written.
  bool writePng(const UIView& root, const std::filesystem::path& file) const;

 private:
  void drawView(cairo_t* cr, const UIView& view) const;
  void drawLayer(cairo_t* cr, const CALayer& layer, bool own) const;
  void drawLabel(cairo_t* cr, const UILabel& label) const;
  void drawImageView(cairo_t* cr, const UIImageView& view) const;
  void drawPageControl(cairo_t* cr, const UIPageControl& control) const;

  double scale_;
  PangoFontMap* fontMap_;
};

// Where an image of the given size goes in bounds for a content mode (UIViewContentMode's value).
CGRect placeImage(double width, double height, const CGRect& bounds, int contentMode);

}  // namespace zv

ZENTROVA_API_END
