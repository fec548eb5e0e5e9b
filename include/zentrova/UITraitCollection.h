/// @file
/// zv::UITraitCollection is the environment a view resolves its look in: here, the user-interface
/// style (light or dark). A view takes its own traits when set, else its superview's; a root
/// without traits is unspecified, which resolves as light.
#pragma once

#include <optional>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

/// Light or dark appearance.
enum class UIUserInterfaceStyle {
  kUnspecified = 0,  ///< Not set: inherited, and light at the root.
  kLight = 1,        ///< The light appearance.
  kDark = 2          ///< The dark appearance.
};

/// The environment a view resolves its colours in. A plain value.
struct UITraitCollection {
  /// The appearance; unspecified by default.
  UIUserInterfaceStyle userInterfaceStyle = UIUserInterfaceStyle::kUnspecified;

  /// A trait collection of this style.
  static UITraitCollection withStyle(UIUserInterfaceStyle style) { return {style}; }
  /// Whether the style is dark (unspecified is not).
  bool isDark() const { return userInterfaceStyle == UIUserInterfaceStyle::kDark; }
  /// Same style.
  bool operator==(const UITraitCollection&) const = default;
};

}  // namespace zv

ZENTROVA_API_END
