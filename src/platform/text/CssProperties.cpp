#include "platform/text/CssProperties.h"

#include <algorithm>
#include <vector>

#include "platform/text/CssColor.h"
#include "platform/text/CssText.h"

namespace zv::css {

namespace {

enum class Global { kNone, kInherit, kInitial };

Global globalKeyword(std::string_view lower, bool inherited) {
  if (lower == "inherit") return Global::kInherit;
  if (lower == "initial") return Global::kInitial;
  if (lower == "unset" || lower == "revert" || lower == "revert-layer") {
    return inherited ? Global::kInherit : Global::kInitial;
  }
  return Global::kNone;
}

std::vector<std::string_view> words(std::string_view s) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && isSpace(s[i])) ++i;
    size_t start = i;
    int depth = 0;
    while (i < s.size() && (depth > 0 || !isSpace(s[i]))) {
      if (s[i] == '(') ++depth;
      if (s[i] == ')' && depth > 0) --depth;
      ++i;
    }
    if (i > start) out.push_back(s.substr(start, i - start));
  }
  return out;
}

std::optional<double> fontSize(std::string_view lower, double parent,
                               const PropertyContext& context) {
  static constexpr std::pair<std::string_view, double> kKeywords[] = {
      {"xx-small", 9}, {"x-small", 10}, {"small", 13},    {"medium", 16},
      {"large", 18},   {"x-large", 24}, {"xx-large", 32}, {"xxx-large", 48}};
  for (const auto& [name, px] : kKeywords) {
    if (lower == name) return px;
  }
  if (lower == "smaller") return parent / 1.2;
  if (lower == "larger") return parent * 1.2;
  auto n = parseNumber(lower);
  if (!n || n->value < 0) return std::nullopt;
  const std::string& u = n->unit;
  double v = n->value;
  if (u == "px") return v;
  if (u == "pt") return v * 4.0 / 3.0;
  if (u == "pc") return v * 16.0;
  if (u == "in") return v * 96.0;
  if (u == "cm") return v * 96.0 / 2.54;
  if (u == "mm") return v * 96.0 / 25.4;
  if (u == "q") return v * 96.0 / 101.6;
  if (u == "em") return v * parent;
  if (u == "rem") return v * context.rootFontSize;
  if (u == "ex" || u == "ch") return v * parent * 0.5;
  if (u == "%") return v * parent / 100.0;
  if (u.empty() && (v == 0 || context.quirks)) return v;
  return std::nullopt;
}

std::optional<int> fontWeight(std::string_view lower, int parent) {
  if (lower == "normal") return 400;
  if (lower == "bold") return 700;
  if (lower == "bolder") return parent < 350 ? 400 : parent < 550 ? 700 : 900;
  if (lower == "lighter")
    return parent < 100 ? parent : parent < 550 ? 100 : parent < 750 ? 400 : 700;
  auto n = parseNumber(lower);
  if (!n || !n->unit.empty() || n->value < 1 || n->value > 1000) return std::nullopt;
  return static_cast<int>(n->value);
}

std::optional<bool> fontStyle(std::string_view lower) {
  if (lower == "normal") return false;
  if (lower == "italic" || lower.substr(0, 7) == "oblique") return true;
  return std::nullopt;
}

struct Lines {
  bool underline = false;
  bool lineThrough = false;
};

// The decoration lines of text-decoration (shorthand: colours and styles are skipped) or of
// text-decoration-line (anything but a line keyword makes it unreadable).
std::optional<Lines> decorationLines(std::string_view lower, bool shorthand) {
  Lines lines;
  for (std::string_view w : words(lower)) {
    if (w == "underline") {
      lines.underline = true;
    } else if (w == "line-through") {
      lines.lineThrough = true;
    } else if (w == "none" || w == "overline" || w == "blink" || w == "spelling-error" ||
               w == "grammar-error") {
    } else if (!shorthand) {
      return std::nullopt;
    }
  }
  return lines;
}

std::optional<Display> display(std::string_view lower) {
  auto w = words(lower);
  if (w.empty()) return std::nullopt;
  std::string_view first = w[0];
  if (first == "none") return Display::kNone;
  if (first == "table-row") return Display::kTableRow;
  if (first == "table-cell") return Display::kTableCell;
  if (first.substr(0, 6) == "table-" && first != "table-caption") return Display::kTableInternal;
  if (first.substr(0, 6) == "inline" || first == "contents" || first.substr(0, 4) == "ruby") {
    return Display::kInline;
  }
  if (first == "block" || first == "flex" || first == "grid" || first == "flow-root" ||
      first == "list-item" || first == "table" || first == "table-caption" || first == "flow" ||
      first == "-webkit-box") {
    return Display::kBlock;
  }
  return std::nullopt;
}

std::optional<TextAlignment> alignment(std::string_view lower) {
  if (lower == "left" || lower == "-webkit-left") return TextAlignment::kLeft;
  if (lower == "right" || lower == "-webkit-right") return TextAlignment::kRight;
  if (lower == "center" || lower == "-webkit-center") return TextAlignment::kCenter;
  if (lower == "justify") return TextAlignment::kJustified;
  if (lower == "start" || lower == "end" || lower == "match-parent") return TextAlignment::kNatural;
  return std::nullopt;
}

std::optional<WhiteSpace> whiteSpace(std::string_view lower) {
  if (lower == "normal" || lower == "nowrap" || lower == "collapse") return WhiteSpace::kNormal;
  if (lower == "pre" || lower == "pre-wrap" || lower == "break-spaces" || lower == "preserve" ||
      lower == "preserve-spaces") {
    return WhiteSpace::kPre;
  }
  if (lower == "pre-line" || lower == "preserve-breaks") return WhiteSpace::kPreLine;
  return std::nullopt;
}

// font: [style] [variant] [weight] [stretch] size[/line-height] family. A system font keyword
// selects the system font at the size in effect.
void fontShorthand(std::string_view value, ComputedStyle& s, const ComputedStyle& parent,
                   const PropertyContext& context) {
  std::string lower = toLower(value);
  static constexpr std::string_view kSystem[] = {"caption",     "icon",          "menu",
                                                 "message-box", "small-caption", "status-bar"};
  for (std::string_view k : kSystem) {
    if (lower == k || lower.substr(0, 14) == "-apple-system-") {
      s.fontFamily = "-apple-system";
      return;
    }
  }
  bool italic = false;
  int weight = 400;
  size_t pos = 0;
  while (pos < lower.size()) {
    while (pos < lower.size() && isSpace(lower[pos])) ++pos;
    size_t end = pos;
    while (end < lower.size() && !isSpace(lower[end])) ++end;
    std::string_view token = std::string_view(lower).substr(pos, end - pos);
    if (token.empty()) return;
    if (token == "normal" || token == "small-caps" || token.find("condensed") != token.npos ||
        token.find("expanded") != token.npos) {
    } else if (auto st = fontStyle(token); st && token != "normal") {
      italic = *st;
    } else if (auto w = fontWeight(token, parent.fontWeight);
               w && (token[0] < '0' || token[0] > '9' || parseNumber(token)->unit.empty())) {
      weight = *w;
    } else {
      std::string_view sizeText = token.substr(0, token.find('/'));
      auto size = fontSize(sizeText, parent.fontSize, context);
      if (!size) return;
      // Skip a line height written apart ("16px / 1.2") before the family.
      size_t rest = end;
      while (rest < lower.size() && isSpace(lower[rest])) ++rest;
      if (token.find('/') == token.npos && rest < lower.size() && lower[rest] == '/') {
        ++rest;
        while (rest < lower.size() && isSpace(lower[rest])) ++rest;
        while (rest < lower.size() && !isSpace(lower[rest])) ++rest;
      }
      auto family = firstFontFamily(value.substr(std::min(rest, value.size())));
      if (!family) return;
      s.italic = italic;
      s.fontWeight = weight;
      s.fontSize = *size;
      s.fontFamily = *family;
      return;
    }
    pos = end;
  }
}

}  // namespace

std::optional<std::string> firstFontFamily(std::string_view list) {
  std::string_view first = trim(list.substr(0, list.find(',')));
  if (first.size() >= 2 && (first[0] == '"' || first[0] == '\'')) {
    size_t close = first.find(first[0], 1);
    first = first.substr(1, close == std::string_view::npos ? std::string_view::npos : close - 1);
  }
  std::string out;
  for (char c : first) {
    if (isSpace(c)) {
      if (!out.empty() && out.back() != ' ') out += ' ';
    } else {
      out += c;
    }
  }
  while (!out.empty() && out.back() == ' ') out.pop_back();
  if (out.empty()) return std::nullopt;
  return out;
}

std::optional<double> legacyFontSize(std::string_view value) {
  std::string_view v = trim(value);
  if (v.empty()) return std::nullopt;
  int sign = 0;
  if (v[0] == '+' || v[0] == '-') {
    sign = v[0] == '+' ? 1 : -1;
    v.remove_prefix(1);
  }
  int n = 0;
  size_t digits = 0;
  while (digits < v.size() && v[digits] >= '0' && v[digits] <= '9' && n < 100) {
    n = n * 10 + (v[digits++] - '0');
  }
  if (digits == 0) return std::nullopt;
  if (sign != 0) n = 3 + sign * n;
  n = std::clamp(n, 1, 7);
  static constexpr double kSizes[] = {10, 13, 16, 18, 24, 32, 48};
  return kSizes[n - 1];
}

void applyDeclaration(const Declaration& d, ComputedStyle& s, const ComputedStyle& parent,
                      const PropertyContext& context) {
  const std::string& p = d.property;
  std::string lower = toLower(d.value);
  const ComputedStyle initial;
  if (p == "color") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone || lower == "currentcolor") {
      s.color = g == Global::kInitial ? initial.color : parent.color;
    } else if (auto c = parseColor(lower)) {
      s.color = *c;
    }
  } else if (p == "font-family") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.fontFamily = g == Global::kInitial ? initial.fontFamily : parent.fontFamily;
    } else if (auto f = firstFontFamily(d.value)) {
      s.fontFamily = *f;
    }
  } else if (p == "font-size") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.fontSize = g == Global::kInitial ? initial.fontSize : parent.fontSize;
    } else if (auto v = fontSize(lower, parent.fontSize, context)) {
      s.fontSize = *v;
    }
  } else if (p == "font-weight") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.fontWeight = g == Global::kInitial ? initial.fontWeight : parent.fontWeight;
    } else if (auto v = fontWeight(lower, parent.fontWeight)) {
      s.fontWeight = *v;
    }
  } else if (p == "font-style") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.italic = g == Global::kInitial ? false : parent.italic;
    } else if (auto v = fontStyle(lower)) {
      s.italic = *v;
    }
  } else if (p == "font") {
    Global g = globalKeyword(lower, true);
    const ComputedStyle& from = g == Global::kInitial ? initial : parent;
    if (g != Global::kNone) {
      s.fontFamily = from.fontFamily;
      s.fontSize = from.fontSize;
      s.fontWeight = from.fontWeight;
      s.italic = from.italic;
    } else {
      fontShorthand(d.value, s, parent, context);
    }
  } else if (p == "text-decoration" || p == "text-decoration-line" ||
             p == "-webkit-text-decoration-line") {
    Global g = globalKeyword(lower, false);
    if (g != Global::kNone) {
      s.ownUnderline = g == Global::kInherit && parent.ownUnderline;
      s.ownLineThrough = g == Global::kInherit && parent.ownLineThrough;
    } else if (auto lines = decorationLines(lower, p == "text-decoration")) {
      s.ownUnderline = lines->underline;
      s.ownLineThrough = lines->lineThrough;
    }
  } else if (p == "display") {
    Global g = globalKeyword(lower, false);
    if (g != Global::kNone) {
      s.display = g == Global::kInherit ? parent.display : Display::kInline;
      s.blockifiesChildren = g == Global::kInherit && parent.blockifiesChildren;
    } else if (auto v = display(lower)) {
      s.display = *v;
      std::string_view first = std::string_view(lower).substr(0, lower.find(' '));
      s.blockifiesChildren = first.find("flex") != first.npos || first.find("grid") != first.npos ||
                             first.find("-box") != first.npos;
    }
  } else if (p == "float" || p == "position") {
    Global g = globalKeyword(lower, false);
    if (g != Global::kNone) {
      s.outOfFlow = g == Global::kInherit && parent.outOfFlow;
    } else if (p == "float" ? lower != "none" : lower == "absolute" || lower == "fixed") {
      s.outOfFlow = true;
    } else if (p == "float" ? lower == "none"
                            : lower == "static" || lower == "relative" || lower == "sticky") {
      s.outOfFlow = false;
    }
  } else if (p == "text-transform") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.textTransform = g == Global::kInitial ? TextTransform::kNone : parent.textTransform;
    } else if (lower == "none" || lower == "uppercase" || lower == "lowercase" ||
               lower == "capitalize") {
      s.textTransform = lower == "uppercase"    ? TextTransform::kUppercase
                        : lower == "lowercase"  ? TextTransform::kLowercase
                        : lower == "capitalize" ? TextTransform::kCapitalize
                                                : TextTransform::kNone;
    }
  } else if (p == "visibility") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.visible = g == Global::kInitial || parent.visible;
    } else if (lower == "visible" || lower == "hidden" || lower == "collapse") {
      s.visible = lower == "visible";
    }
  } else if (p == "white-space" || p == "white-space-collapse") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.whiteSpace = g == Global::kInitial ? WhiteSpace::kNormal : parent.whiteSpace;
    } else if (auto v = whiteSpace(lower)) {
      s.whiteSpace = *v;
    }
  } else if (p == "text-align") {
    Global g = globalKeyword(lower, true);
    if (g != Global::kNone) {
      s.alignment = g == Global::kInitial ? TextAlignment::kNatural : parent.alignment;
    } else if (auto v = alignment(lower)) {
      s.alignment = *v;
    }
  }
}

}  // namespace zv::css
