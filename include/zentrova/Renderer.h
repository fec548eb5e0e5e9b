/// @file
/// zv::Renderer draws a view tree with Cairo and Pango, at a scale (2 by default: two pixels per
/// point): background colours resolved for each view's style, alpha, corner radii and clipping to
/// bounds, labels with their styled runs (fonts, colours, underline, strike-through, wrapping,
/// line count, truncation with an ellipsis on the last line), image views by content mode (the
/// animation frame due at the run loop's time), page-control dots, and layers that draw a picture
/// of their own (a clip's frame) by their gravity. Hidden views and views of alpha 0 draw nothing.
/// Text is drawn in Inter and its Noto fallbacks (every script, colour emoji) through a private
/// font configuration, laid out as the text measurer lays it out. Main thread only.
#pragma once

#include <filesystem>
#include <memory>

#include "zentrova/Export.h"
#include "zentrova/Geometry.h"

ZENTROVA_API_BEGIN

typedef struct _cairo cairo_t;
typedef struct _PangoFontMap PangoFontMap;

namespace zv {

class UIView;
class UILabel;
class UIImageView;
class UIPageControl;
class CALayer;
struct PixelBuffer;
class CGImage;

/// Draws a view tree into pixels or a PNG file.
///
/// @par Ownership
/// The renderer owns its font map; it only reads the tree it draws, which the caller keeps.
///
/// @par Threads
/// Main thread only, like the views it draws; one renderer may draw any number of trees.
///
/// @par Errors
/// Never raises: a tree too large to draw gives null (draw) or false (writePng), and a view
/// with a frame that is not finite is skipped with its subviews.
class Renderer {
 public:
  /// A renderer drawing `scale` pixels per point (a scale that is not a positive finite number
  /// becomes 2).
  explicit Renderer(double scale = 2);
  /// Releases the font map.
  ~Renderer();
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  /// Pixels per point.
  double scale() const { return scale_; }
  /// The tree drawn into premultiplied ARGB pixels of the root's size times the scale (at least 1 x
  /// 1); nullptr when that is over the pixel budget.
  std::shared_ptr<PixelBuffer> draw(const UIView& root) const;
  /// The same, written to a PNG file; false when it cannot be drawn or written.
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

/// Where an image of the given size goes in bounds for a content mode (UIViewContentMode's value).
CGRect placeImage(double width, double height, const CGRect& bounds, int contentMode);

}  // namespace zv

ZENTROVA_API_END
