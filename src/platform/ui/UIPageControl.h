// zv::UIPageControl shows one dot per page and marks the current one; it hides itself for a single
// page when asked to. The background style is kept for drawing. Main thread only.
#pragma once

#include "zentrova/UIView.h"

namespace zv {

enum class UIPageControlBackgroundStyle { kAutomatic = 0, kProminent = 1, kMinimal = 2 };

class UIPageControl : public UIView {
 public:
  using UIView::UIView;
  static std::shared_ptr<UIPageControl> make(CGRect frame = {}) {
    return std::make_shared<UIPageControl>(frame);
  }
  std::string className() const override { return "UIPageControl"; }

  long numberOfPages() const { return pages_; }
  void setNumberOfPages(long pages);
  // Clamped to the pages there are.
  long currentPage() const { return current_; }
  void setCurrentPage(long page);
  bool hidesForSinglePage() const { return hidesForSinglePage_; }
  void setHidesForSinglePage(bool hides) { hidesForSinglePage_ = hides; }
  // Whether the dots show: not hidden, and more than one page unless single pages show too.
  bool showsDots() const;
  UIPageControlBackgroundStyle backgroundStyle() const { return style_; }
  void setBackgroundStyle(UIPageControlBackgroundStyle style) { style_ = style; }
  ColorRef pageIndicatorTintColor() const { return tint_; }
  void setPageIndicatorTintColor(ColorRef color) { tint_ = std::move(color); }
  ColorRef currentPageIndicatorTintColor() const { return currentTint_; }
  void setCurrentPageIndicatorTintColor(ColorRef color) { currentTint_ = std::move(color); }

 private:
  long pages_ = 0;
  long current_ = 0;
  bool hidesForSinglePage_ = false;
  UIPageControlBackgroundStyle style_ = UIPageControlBackgroundStyle::kAutomatic;
  ColorRef tint_;
  ColorRef currentTint_;
};

}  // namespace zv
