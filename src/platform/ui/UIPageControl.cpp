#include "platform/ui/UIPageControl.h"

#include <algorithm>

namespace zv {

void UIPageControl::setNumberOfPages(long pages) {
  pages_ = std::max(0L, pages);
  setCurrentPage(current_);
}

void UIPageControl::setCurrentPage(long page) {
  current_ = std::clamp(page, 0L, std::max(0L, pages_ - 1));
}

bool UIPageControl::showsDots() const {
  if (isHidden() || pages_ == 0) return false;
  return !(hidesForSinglePage_ && pages_ == 1);
}

}  // namespace zv
