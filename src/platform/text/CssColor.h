// Colours as HTML and CSS write them: the CSS colour syntax of style sheets and style attributes
// (the named colours, "transparent", "#rgb", "#rgba", "#rrggbb", "#rrggbbaa", "rgb()", "rgba()",
// "hsl()", "hsla()") and the legacy syntax of the font element's color attribute, which also
// accepts hexadecimal digits without "#" and repairs broken values as browsers do.
#pragma once

#include <optional>
#include <string_view>

#include "zentrova/Color.h"

namespace zv::css {

// nullopt when the text is not a colour ("currentcolor" included: the caller resolves it).
std::optional<Color> parseColor(std::string_view text);
// The font element's color attribute; nullopt for empty text and "transparent".
std::optional<Color> parseLegacyColor(std::string_view text);

}  // namespace zv::css
