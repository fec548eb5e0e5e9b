#include "platform/text/CssColor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/text/CssText.h"

namespace zv::css {

namespace {

struct NamedColor {
  std::string_view name;
  uint32_t rgb;
};

// The named colours of CSS, sorted by name.
constexpr NamedColor kNamedColors[] = {
    {"aliceblue", 0xf0f8ff},
    {"antiquewhite", 0xfaebd7},
    {"aqua", 0x00ffff},
    {"aquamarine", 0x7fffd4},
    {"azure", 0xf0ffff},
    {"beige", 0xf5f5dc},
    {"bisque", 0xffe4c4},
    {"black", 0x000000},
    {"blanchedalmond", 0xffebcd},
    {"blue", 0x0000ff},
    {"blueviolet", 0x8a2be2},
    {"brown", 0xa52a2a},
    {"burlywood", 0xdeb887},
    {"cadetblue", 0x5f9ea0},
    {"chartreuse", 0x7fff00},
    {"chocolate", 0xd2691e},
    {"coral", 0xff7f50},
    {"cornflowerblue", 0x6495ed},
    {"cornsilk", 0xfff8dc},
    {"crimson", 0xdc143c},
    {"cyan", 0x00ffff},
    {"darkblue", 0x00008b},
    {"darkcyan", 0x008b8b},
    {"darkgoldenrod", 0xb8860b},
    {"darkgray", 0xa9a9a9},
    {"darkgreen", 0x006400},
    {"darkgrey", 0xa9a9a9},
    {"darkkhaki", 0xbdb76b},
    {"darkmagenta", 0x8b008b},
    {"darkolivegreen", 0x556b2f},
    {"darkorange", 0xff8c00},
    {"darkorchid", 0x9932cc},
    {"darkred", 0x8b0000},
    {"darksalmon", 0xe9967a},
    {"darkseagreen", 0x8fbc8f},
    {"darkslateblue", 0x483d8b},
    {"darkslategray", 0x2f4f4f},
    {"darkslategrey", 0x2f4f4f},
    {"darkturquoise", 0x00ced1},
    {"darkviolet", 0x9400d3},
    {"deeppink", 0xff1493},
    {"deepskyblue", 0x00bfff},
    {"dimgray", 0x696969},
    {"dimgrey", 0x696969},
    {"dodgerblue", 0x1e90ff},
    {"firebrick", 0xb22222},
    {"floralwhite", 0xfffaf0},
    {"forestgreen", 0x228b22},
    {"fuchsia", 0xff00ff},
    {"gainsboro", 0xdcdcdc},
    {"ghostwhite", 0xf8f8ff},
    {"gold", 0xffd700},
    {"goldenrod", 0xdaa520},
    {"gray", 0x808080},
    {"green", 0x008000},
    {"greenyellow", 0xadff2f},
    {"grey", 0x808080},
    {"honeydew", 0xf0fff0},
    {"hotpink", 0xff69b4},
    {"indianred", 0xcd5c5c},
    {"indigo", 0x4b0082},
    {"ivory", 0xfffff0},
    {"khaki", 0xf0e68c},
    {"lavender", 0xe6e6fa},
    {"lavenderblush", 0xfff0f5},
    {"lawngreen", 0x7cfc00},
    {"lemonchiffon", 0xfffacd},
    {"lightblue", 0xadd8e6},
    {"lightcoral", 0xf08080},
    {"lightcyan", 0xe0ffff},
    {"lightgoldenrodyellow", 0xfafad2},
    {"lightgray", 0xd3d3d3},
    {"lightgreen", 0x90ee90},
    {"lightgrey", 0xd3d3d3},
    {"lightpink", 0xffb6c1},
    {"lightsalmon", 0xffa07a},
    {"lightseagreen", 0x20b2aa},
    {"lightskyblue", 0x87cefa},
    {"lightslategray", 0x778899},
    {"lightslategrey", 0x778899},
    {"lightsteelblue", 0xb0c4de},
    {"lightyellow", 0xffffe0},
    {"lime", 0x00ff00},
    {"limegreen", 0x32cd32},
    {"linen", 0xfaf0e6},
    {"magenta", 0xff00ff},
    {"maroon", 0x800000},
    {"mediumaquamarine", 0x66cdaa},
    {"mediumblue", 0x0000cd},
    {"mediumorchid", 0xba55d3},
    {"mediumpurple", 0x9370db},
    {"mediumseagreen", 0x3cb371},
    {"mediumslateblue", 0x7b68ee},
    {"mediumspringgreen", 0x00fa9a},
    {"mediumturquoise", 0x48d1cc},
    {"mediumvioletred", 0xc71585},
    {"midnightblue", 0x191970},
    {"mintcream", 0xf5fffa},
    {"mistyrose", 0xffe4e1},
    {"moccasin", 0xffe4b5},
    {"navajowhite", 0xffdead},
    {"navy", 0x000080},
    {"oldlace", 0xfdf5e6},
    {"olive", 0x808000},
    {"olivedrab", 0x6b8e23},
    {"orange", 0xffa500},
    {"orangered", 0xff4500},
    {"orchid", 0xda70d6},
    {"palegoldenrod", 0xeee8aa},
    {"palegreen", 0x98fb98},
    {"paleturquoise", 0xafeeee},
    {"palevioletred", 0xdb7093},
    {"papayawhip", 0xffefd5},
    {"peachpuff", 0xffdab9},
    {"peru", 0xcd853f},
    {"pink", 0xffc0cb},
    {"plum", 0xdda0dd},
    {"powderblue", 0xb0e0e6},
    {"purple", 0x800080},
    {"rebeccapurple", 0x663399},
    {"red", 0xff0000},
    {"rosybrown", 0xbc8f8f},
    {"royalblue", 0x4169e1},
    {"saddlebrown", 0x8b4513},
    {"salmon", 0xfa8072},
    {"sandybrown", 0xf4a460},
    {"seagreen", 0x2e8b57},
    {"seashell", 0xfff5ee},
    {"sienna", 0xa0522d},
    {"silver", 0xc0c0c0},
    {"skyblue", 0x87ceeb},
    {"slateblue", 0x6a5acd},
    {"slategray", 0x708090},
    {"slategrey", 0x708090},
    {"snow", 0xfffafa},
    {"springgreen", 0x00ff7f},
    {"steelblue", 0x4682b4},
    {"tan", 0xd2b48c},
    {"teal", 0x008080},
    {"thistle", 0xd8bfd8},
    {"tomato", 0xff6347},
    {"turquoise", 0x40e0d0},
    {"violet", 0xee82ee},
    {"wheat", 0xf5deb3},
    {"white", 0xffffff},
    {"whitesmoke", 0xf5f5f5},
    {"yellow", 0xffff00},
    {"yellowgreen", 0x9acd32},
};

Color fromRgb(uint32_t rgb, double alpha = 1.0) {
  return Color{((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0,
               alpha};
}

std::optional<Color> named(std::string_view lower) {
  auto it = std::lower_bound(std::begin(kNamedColors), std::end(kNamedColors), lower,
                             [](const NamedColor& c, std::string_view n) { return c.name < n; });
  if (it == std::end(kNamedColors) || it->name != lower) return std::nullopt;
  return fromRgb(it->rgb);
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::optional<Color> hash(std::string_view hex) {
  for (char c : hex) {
    if (hexDigit(c) < 0) return std::nullopt;
  }
  auto one = [&](size_t i) { return hexDigit(hex[i]) * 17 / 255.0; };
  auto two = [&](size_t i) { return (hexDigit(hex[i]) * 16 + hexDigit(hex[i + 1])) / 255.0; };
  switch (hex.size()) {
    case 3:
      return Color{one(0), one(1), one(2), 1.0};
    case 4:
      return Color{one(0), one(1), one(2), one(3)};
    case 6:
      return Color{two(0), two(2), two(4), 1.0};
    case 8:
      return Color{two(0), two(2), two(4), two(6)};
    default:
      return std::nullopt;
  }
}

// The arguments of a colour function, split at commas, slashes and white space.
std::vector<std::string_view> functionArguments(std::string_view inner) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < inner.size()) {
    while (i < inner.size() && (isSpace(inner[i]) || inner[i] == ',' || inner[i] == '/')) ++i;
    size_t start = i;
    while (i < inner.size() && !isSpace(inner[i]) && inner[i] != ',' && inner[i] != '/') ++i;
    if (i > start) out.push_back(inner.substr(start, i - start));
  }
  return out;
}

// A channel of rgb(): a number from 0 to 255 or a percentage, clamped.
std::optional<double> rgbChannel(std::string_view s) {
  auto n = parseNumber(s);
  if (!n) return std::nullopt;
  double v = n->unit == "%" ? n->value / 100.0 : n->unit.empty() ? n->value / 255.0 : -1;
  if (v == -1) return std::nullopt;
  return std::clamp(v, 0.0, 1.0);
}

std::optional<double> alphaChannel(std::string_view s) {
  auto n = parseNumber(s);
  if (!n || !(n->unit.empty() || n->unit == "%")) return std::nullopt;
  return std::clamp(n->unit == "%" ? n->value / 100.0 : n->value, 0.0, 1.0);
}

double hueToRgb(double m1, double m2, double h) {
  if (h < 0) h += 1;
  if (h > 1) h -= 1;
  if (h * 6 < 1) return m1 + (m2 - m1) * h * 6;
  if (h * 2 < 1) return m2;
  if (h * 3 < 2) return m1 + (m2 - m1) * (2.0 / 3 - h) * 6;
  return m1;
}

std::optional<Color> function(std::string_view name, std::string_view inner) {
  auto args = functionArguments(inner);
  if (args.size() != 3 && args.size() != 4) return std::nullopt;
  double alpha = 1.0;
  if (args.size() == 4) {
    auto a = alphaChannel(args[3]);
    if (!a) return std::nullopt;
    alpha = *a;
  }
  if (name == "rgb" || name == "rgba") {
    auto r = rgbChannel(args[0]), g = rgbChannel(args[1]), b = rgbChannel(args[2]);
    if (!r || !g || !b) return std::nullopt;
    return Color{*r, *g, *b, alpha};
  }
  auto h = parseNumber(args[0]), s = parseNumber(args[1]), l = parseNumber(args[2]);
  if (!h || !s || !l || s->unit != "%" || l->unit != "%") return std::nullopt;
  double hue = std::fmod(std::fmod(h->value / 360.0, 1.0) + 1.0, 1.0);
  double sat = std::clamp(s->value / 100.0, 0.0, 1.0);
  double light = std::clamp(l->value / 100.0, 0.0, 1.0);
  double m2 = light <= 0.5 ? light * (sat + 1) : light + sat - light * sat;
  double m1 = light * 2 - m2;
  return Color{hueToRgb(m1, m2, hue + 1.0 / 3), hueToRgb(m1, m2, hue),
               hueToRgb(m1, m2, hue - 1.0 / 3), alpha};
}

}  // namespace

std::optional<Color> parseColor(std::string_view text) {
  std::string lower = toLower(trim(text));
  std::string_view s = lower;
  if (s.empty()) return std::nullopt;
  if (s[0] == '#') return hash(s.substr(1));
  if (s == "transparent") return Color{0, 0, 0, 0};
  size_t paren = s.find('(');
  if (paren != std::string_view::npos) {
    if (s.back() != ')') return std::nullopt;
    std::string_view name = trim(s.substr(0, paren));
    if (name != "rgb" && name != "rgba" && name != "hsl" && name != "hsla") return std::nullopt;
    return function(name, s.substr(paren + 1, s.size() - paren - 2));
  }
  return named(s);
}

std::optional<Color> parseLegacyColor(std::string_view text) {
  std::string_view t = trim(text);
  if (t.empty()) return std::nullopt;
  std::string lower = toLower(t);
  if (lower == "transparent") return std::nullopt;
  if (auto c = named(lower)) return c;
  if (t.size() == 4 && t[0] == '#') {
    if (auto c = hash(t.substr(1))) return c;
  }
  // Browsers' repair of broken values: characters outside the basic plane count as "00", anything
  // that is not a hexadecimal digit as "0", then three equal components keep their last eight and
  // then their first two digits after dropping shared leading zeros.
  std::string digits;
  for (size_t i = 0; i < t.size(); ++i) {
    unsigned char c = static_cast<unsigned char>(t[i]);
    if (c >= 0xF0) {
      digits += "00";
      i += 3;
    } else if (c >= 0x80) {
      digits += '0';
      i += c >= 0xE0 ? 2 : 1;
    } else {
      digits += static_cast<char>(c);
    }
  }
  if (digits.size() > 128) digits.resize(128);
  if (!digits.empty() && digits[0] == '#') digits.erase(0, 1);
  for (char& c : digits) {
    if (hexDigit(c) < 0) c = '0';
  }
  while (digits.empty() || digits.size() % 3 != 0) digits += '0';
  size_t len = digits.size() / 3;
  std::string parts[3] = {digits.substr(0, len), digits.substr(len, len), digits.substr(2 * len)};
  if (len > 8) {
    for (auto& p : parts) p.erase(0, len - 8);
    len = 8;
  }
  while (len > 2 && parts[0][0] == '0' && parts[1][0] == '0' && parts[2][0] == '0') {
    for (auto& p : parts) p.erase(0, 1);
    --len;
  }
  if (len > 2) {
    for (auto& p : parts) p.resize(2);
  }
  auto value = [](const std::string& p) {
    int v = 0;
    for (char c : p) v = v * 16 + hexDigit(c);
    return v / 255.0;
  };
  return Color{value(parts[0]), value(parts[1]), value(parts[2]), 1.0};
}

}  // namespace zv::css
