// zv::css::Selector is one complex CSS selector matched against gumbo elements: type and universal
// selectors, classes, ids, attribute tests, the pseudo-classes :root, :first-child, :last-child,
// :only-child, :empty, :link and :any-link, and the descendant, child, next-sibling and
// subsequent-sibling combinators. Other pseudo-classes (:hover, :visited, :nth-child, ...) and
// pseudo-elements never match: they describe states or boxes that a text import does not have.
#pragma once

#include <gumbo.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zv::css {

class Selector {
 public:
  // nullopt for text that is not a selector; a rule with one bad selector is dropped whole.
  static std::optional<Selector> parse(std::string_view text);

  // In quirks mode class and id names match without regard to ASCII case.
  bool matches(const GumboNode* element, bool quirks) const;
  // Ids, then classes, attributes and pseudo-classes, then types, packed for comparison.
  uint32_t rank() const { return rank_; }

 private:
  struct AttributeTest {
    std::string name;
    char op = 0;  // 0 present, '=', '~', '|', '^', '$', '*'
    std::string value;
    bool ignoreCase = false;
  };
  struct Compound {
    std::string tag;  // lower-case; empty for any element
    std::vector<std::string> ids;
    std::vector<std::string> classes;
    std::vector<AttributeTest> attributes;
    std::vector<std::string> pseudoClasses;
    bool never = false;
  };

  bool matchCompound(const Compound& c, const GumboNode* e, bool quirks) const;
  bool matchFrom(size_t index, const GumboNode* e, bool quirks) const;

  std::vector<Compound> compounds_;  // left to right
  std::vector<char> combinators_;    // between compounds_[i] and compounds_[i + 1]
  uint32_t rank_ = 0;
};

}  // namespace zv::css
