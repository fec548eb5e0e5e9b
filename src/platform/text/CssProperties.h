// Applying one CSS declaration to an element's computed style: the properties that text import
// reads, with their keywords, units and inherit / initial / unset. Values that cannot be read are
// ignored, as browsers ignore them. Also the font sizes of the font element's size attribute.
#pragma once

#include <optional>
#include <string_view>

#include "platform/text/ComputedStyle.h"
#include "platform/text/CssDeclarations.h"

namespace zv::css {

struct PropertyContext {
  double rootFontSize = 16.0;  // what rem refers to
  bool quirks = false;         // quirks mode reads unitless font sizes as pixels
};

void applyDeclaration(const Declaration& d, ComputedStyle& s, const ComputedStyle& parent,
                      const PropertyContext& context);

// The size in px of <font size="...">: "1" to "7", or relative "+1", "-2"; nullopt when unreadable.
std::optional<double> legacyFontSize(std::string_view value);

// The first family of a font-family list, unquoted ("'Helvetica Neue', Arial" gives
// "Helvetica Neue"); nullopt when there is none.
std::optional<std::string> firstFontFamily(std::string_view list);

}  // namespace zv::css
