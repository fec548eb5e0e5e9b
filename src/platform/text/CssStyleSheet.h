// zv::css::StyleSheet holds the rules of a document's <style> elements and finds the declarations
// that apply to an element, in cascade order. @media blocks apply when their query is plain
// "all" or "screen" (or empty); queries on features, other at-rules and their blocks are skipped.
#pragma once

#include <gumbo.h>

#include <memory>
#include <string_view>
#include <vector>

#include "platform/text/CssDeclarations.h"
#include "platform/text/CssSelector.h"

namespace zv::css {

class StyleSheet {
 public:
  // Appends the rules of one style sheet's text.
  void add(std::string_view text);
  bool empty() const { return rules_.empty(); }
  // Whether a media query list ("screen", "all", "print", "not print", ...) applies on a screen.
  static bool mediaApplies(std::string_view query);

  // The declarations of every rule matching the element, normal and important apart, each in the
  // order in which they apply (lower selector rank first, then source order).
  void match(const GumboNode* element, bool quirks, std::vector<const Declaration*>& normal,
             std::vector<const Declaration*>& important) const;

 private:
  struct Rule {
    Selector selector;
    std::shared_ptr<const std::vector<Declaration>> declarations;
  };
  void parseRules(std::string_view text);

  std::vector<Rule> rules_;
};

}  // namespace zv::css
