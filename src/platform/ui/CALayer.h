// zv::CALayer is the drawable surface behind a view: its frame in the superlayer, a corner radius,
// whether it clips its content (and sublayers) to its rounded bounds, and its sublayers, drawn in
// order above the view's own content. Layers that draw something of their own (a clip's picture)
// derive from it. Layers live on the main thread only.
#pragma once

#include <memory>
#include <vector>

#include "zentrova/Geometry.h"

namespace zv {

class CGImage;

// How a layer's own picture fills its bounds: stretched, fitted inside (letterboxed), or filling
// them (cropped).
enum class CALayerContentsGravity { kResize, kResizeAspect, kResizeAspectFill };

class CALayer : public std::enable_shared_from_this<CALayer> {
 public:
  CALayer() = default;
  virtual ~CALayer() = default;
  CALayer(const CALayer&) = delete;
  CALayer& operator=(const CALayer&) = delete;

  static std::shared_ptr<CALayer> layer() { return std::make_shared<CALayer>(); }

  CGRect frame() const { return frame_; }
  void setFrame(CGRect frame) { frame_ = frame; }
  CGRect bounds() const { return CGRect{{0, 0}, frame_.size}; }

  CGFloat cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(CGFloat radius) { cornerRadius_ = radius; }

  bool masksToBounds() const { return masksToBounds_; }
  void setMasksToBounds(bool masks) { masksToBounds_ = masks; }

  // The picture a layer that draws something of its own shows now (a clip's frame at its player's
  // time), drawn under its sublayers; nullptr for none.
  virtual std::shared_ptr<CGImage> contents() const { return nullptr; }
  virtual CALayerContentsGravity contentsGravity() const { return CALayerContentsGravity::kResize; }

  const std::vector<std::shared_ptr<CALayer>>& sublayers() const { return sublayers_; }
  std::shared_ptr<CALayer> superlayer() const { return superlayer_.lock(); }
  // Adds the layer on top of the others; a layer that had another superlayer leaves it first.
  void addSublayer(const std::shared_ptr<CALayer>& layer);
  void removeFromSuperlayer();

 private:
  CGRect frame_;
  CGFloat cornerRadius_ = 0;
  bool masksToBounds_ = false;
  std::vector<std::shared_ptr<CALayer>> sublayers_;
  std::weak_ptr<CALayer> superlayer_;
};

}  // namespace zv
