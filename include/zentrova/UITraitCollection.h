// zv::UITraitCollection is the environment a view resolves its look in: here, the user-interface
// style (light or dark). A view takes its own traits when set, else its superview's; a root
// without traits is unspecified, which resolves as light.
#pragma once

#include <optional>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

enum class UIUserInterfaceStyle { kUnspecified = 0, kLight = 1, kDark = 2 };

struct UITraitCollection {
  UIUserInterfaceStyle userInterfaceStyle = UIUserInterfaceStyle::kUnspecified;

  static UITraitCollection withStyle(UIUserInterfaceStyle style) { return {style}; }
  bool isDark() const { return userInterfaceStyle == UIUserInterfaceStyle::kDark; }
  bool operator==(const UITraitCollection&) const = default;
};

}  // namespace zv

ZENTROVA_API_END
