/// @file
/// zv::UIView is a rectangle of the view tree: its frame in the superview, bounds, subviews drawn
/// in order, background colour, hidden and alpha, the layer behind it, tap recognisers, and the
/// layout constraints added to it. layoutIfNeeded() solves every active constraint of the tree it
/// belongs to and sets the frames. Views are held by std::shared_ptr: a
/// superview owns its subviews, a subview knows its superview weakly. Main thread only.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "zentrova/Color.h"
#include "zentrova/Export.h"
#include "zentrova/Geometry.h"
#include "zentrova/UITraitCollection.h"

ZENTROVA_API_BEGIN

namespace zv {

class CALayer;
class LayoutEngine;
class NSLayoutConstraint;

/// How strongly a constraint or a content size holds: 1000 is required.
using UILayoutPriority = float;
/// The usual priorities: required (1000), default high (750), default low (250), and the
/// fitting-size level (50).
///@{
inline constexpr UILayoutPriority UILayoutPriorityRequired = 1000;
inline constexpr UILayoutPriority UILayoutPriorityDefaultHigh = 750;
inline constexpr UILayoutPriority UILayoutPriorityDefaultLow = 250;
inline constexpr UILayoutPriority UILayoutPriorityFittingSizeLevel = 50;
///@}

class UITapGestureRecognizer;

/// A rectangle of the view tree.
///
/// @par Ownership
/// Views are made with make() (or std::make_shared): adding subviews and constraints needs the
/// view to be held by a shared_ptr. A superview owns its subviews and a view its constraints and
/// recognisers; a subview knows its superview weakly. References returned by the getters are valid
/// until the view changes that property.
///
/// @par Threads
/// Main thread only, the whole tree.
///
/// @par Errors
/// Nothing here raises. Requests that make no sense are ignored: adding a view to
/// itself or to one of its descendants, adding null, removing what was never added.
class UIView : public std::enable_shared_from_this<UIView> {
 public:
  /// How views are held.
  using Ref = std::shared_ptr<UIView>;
  /// The size a view has no intrinsic value for.
  static constexpr CGFloat kNoIntrinsicMetric = -1;

  UIView();
  /// A view of this frame (the default constructor: an empty frame).
  explicit UIView(CGRect frame);
  virtual ~UIView();
  UIView(const UIView&) = delete;
  UIView& operator=(const UIView&) = delete;

  /// A new view of this frame, held by a shared_ptr.
  static Ref make(CGRect frame = {}) { return std::make_shared<UIView>(frame); }
  /// The class name the tree dump prints.
  virtual std::string className() const { return "UIView"; }
  /// The name the view is known by in the tree dump: the binding it was laid out under, else its
  /// outlet's name ("" for none).
  ///@{
  const std::string& name() const { return name_; }
  void setName(std::string name) { name_ = std::move(name); }
  ///@}

  /// The rectangle the view takes in its superview's coordinates.
  ///@{
  CGRect frame() const { return frame_; }
  void setFrame(CGRect frame);
  ///@}
  /// The view's own rectangle: its frame's size at (0, 0).
  CGRect bounds() const { return CGRect{{0, 0}, frame_.size}; }
  /// The centre of the frame, in the superview's coordinates.
  CGPoint center() const;

  /// The superview, or null for a root.
  std::shared_ptr<UIView> superview() const { return superview_.lock(); }
  /// The subviews, back to front (drawn in this order).
  const std::vector<Ref>& subviews() const { return subviews_; }
  /// Adds view on top of the subviews, first removing it from its old superview.
  void addSubview(const Ref& view);
  /// Inserts view at index among the subviews (the end when past it).
  void insertSubview(const Ref& view, size_t index);
  /// Moves a subview to the top; nothing when it is not one.
  void bringSubviewToFront(const Ref& view);
  /// Detaches the view from its superview (which releases it).
  void removeFromSuperview();
  /// Whether view is this view or one of its ancestors.
  bool isDescendantOfView(const UIView* view) const;
  /// The topmost ancestor (the view itself when it has no superview).
  UIView* rootView();

  /// The colour behind the content; null draws none.
  ///@{
  const ColorRef& backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(ColorRef color) { backgroundColor_ = std::move(color); }
  ///@}
  /// A hidden view and its subviews are neither drawn nor hit.
  ///@{
  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden) { hidden_ = hidden; }
  ///@}
  /// Opacity from 0 to 1, applied to the view and its subviews; 0 draws nothing, and below 0.01
  /// taps pass through.
  ///@{
  CGFloat alpha() const { return alpha_; }
  void setAlpha(CGFloat alpha) { alpha_ = alpha; }
  ///@}
  /// Whether taps reach the view and its subviews.
  ///@{
  bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
  void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }
  ///@}
  /// Whether subviews are clipped to the view's bounds (and its corner radius).
  ///@{
  bool clipsToBounds() const;
  void setClipsToBounds(bool clips);
  ///@}
  /// The layer behind the view (never null; an internal type).
  const std::shared_ptr<CALayer>& layer() const { return layer_; }
  /// Replaces the layer (a view whose layer draws a clip); the new one takes the view's bounds.
  void setLayer(std::shared_ptr<CALayer> layer);

  /// The style the view resolves its colours in: its own when set, else its superview's.
  ///@{
  UITraitCollection traitCollection() const;
  void setTraitCollection(std::optional<UITraitCollection> traits) { traits_ = traits; }
  ///@}

  /// The tap recognisers: add, remove, and those added, in order (internal type).
  ///@{
  void addGestureRecognizer(const std::shared_ptr<UITapGestureRecognizer>& recognizer);
  void removeGestureRecognizer(const std::shared_ptr<UITapGestureRecognizer>& recognizer);
  const std::vector<std::shared_ptr<UITapGestureRecognizer>>& gestureRecognizers() const {
    return recognizers_;
  }
  ///@}
  /// The deepest visible, interactive view under `point` (in this view's coordinates), or null.
  virtual Ref hitTest(CGPoint point);
  /// A point in this view's coordinates, in view's coordinates (a root's when null).
  CGPoint convertPointToView(CGPoint point, const UIView* view) const;
  /// A tap at `point` (own coordinates) that no recogniser took on the way up; true when the view
  /// acts on it (a collection view selects the cell under it).
  virtual bool handleTap(CGPoint) { return false; }

  /// Whether the view keeps the frame it was given (true) or constraints place it (false).
  ///@{
  bool translatesAutoresizingMaskIntoConstraints() const { return translatesMask_; }
  void setTranslatesAutoresizingMaskIntoConstraints(bool translates);
  ///@}
  /// The constraints added to this view and still active.
  const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints() const {
    return constraints_;
  }
  /// Activates a constraint and keeps it here (moved from the view that held it).
  void addConstraint(const std::shared_ptr<NSLayoutConstraint>& constraint);
  /// Activates each constraint and keeps it here, recording its visual format.
  void addConstraints(const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints);
  /// Deactivates and releases a constraint added here; nothing when it was not.
  void removeConstraint(const std::shared_ptr<NSLayoutConstraint>& constraint);
  /// Deactivates and releases each constraint added here.
  void removeConstraints(const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints);
  /// The visual formats of the constraint sets added to this view, in the order added.
  const std::vector<std::string>& constraintFormats() const { return formats_; }

  /// The size the content wants (kNoIntrinsicMetric where it has none).
  virtual CGSize intrinsicContentSize() const { return {kNoIntrinsicMetric, kNoIntrinsicMetric}; }
  /// The intrinsic size changed: the next layout reads it again.
  void invalidateIntrinsicContentSize() { setNeedsLayout(); }
  /// True when the intrinsic size depends on the width layout gives (wrapping text): the layout
  /// then takes a second pass once the widths are known.
  virtual bool hasWidthDependentIntrinsicSize() const { return false; }
  /// How strongly the view resists growing beyond its intrinsic size, per axis (vertical or
  /// horizontal); default low.
  ///@{
  UILayoutPriority contentHuggingPriority(bool vertical) const { return hugging_[vertical]; }
  void setContentHuggingPriority(UILayoutPriority p, bool vertical) { hugging_[vertical] = p; }
  ///@}
  /// How strongly the view resists shrinking below its intrinsic size, per axis; default high.
  ///@{
  UILayoutPriority contentCompressionResistancePriority(bool vertical) const {
    return compression_[vertical];
  }
  void setContentCompressionResistancePriority(UILayoutPriority p, bool vertical) {
    compression_[vertical] = p;
  }
  ///@}

  /// Marks the view for layout. Layout is explicit here: call layoutIfNeeded().
  void setNeedsLayout();
  /// Solves the constraints of the whole tree this view belongs to and sets the frames, then lets
  /// every view lay out its subviews (layoutSubviews, top down).
  void layoutIfNeeded();
  /// Called after the frames were set; subclasses place what constraints do not.
  virtual void layoutSubviews() {}

  /// The engine of the tree rooted here (created on first layout).
  LayoutEngine* layoutEngine() const { return engine_.get(); }

 protected:
  /// Called when the frame's size changed.
  virtual void boundsDidChange() {}

 private:
  friend class LayoutEngine;
  friend class NSLayoutConstraint;
  void layoutSubviewsRecursively();

  CGRect frame_;
  std::weak_ptr<UIView> superview_;
  std::vector<Ref> subviews_;
  std::string name_;
  ColorRef backgroundColor_;
  bool hidden_ = false;
  CGFloat alpha_ = 1;
  bool userInteractionEnabled_ = true;
  std::shared_ptr<CALayer> layer_;
  std::optional<UITraitCollection> traits_;
  std::vector<std::shared_ptr<UITapGestureRecognizer>> recognizers_;
  bool translatesMask_ = true;
  std::vector<std::shared_ptr<NSLayoutConstraint>> constraints_;
  std::vector<std::string> formats_;
  UILayoutPriority hugging_[2] = {UILayoutPriorityDefaultLow, UILayoutPriorityDefaultLow};
  UILayoutPriority compression_[2] = {UILayoutPriorityDefaultHigh, UILayoutPriorityDefaultHigh};
  std::unique_ptr<LayoutEngine> engine_;
};

}  // namespace zv

ZENTROVA_API_END
