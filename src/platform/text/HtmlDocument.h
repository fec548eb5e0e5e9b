// zv::HtmlDocument is one HTML text parsed by gumbo as a whole HTML5 document (implied html, head
// and body, entities, unclosed and stray tags repaired as browsers repair them). Its nodes live in
// an arena that is freed at once with the document: this is faster than gumbo's own allocation and
// keeps the recursive tree destruction away from deeply nested input.
//
// The element helpers read what style matching and text extraction need from a node.
#pragma once

#include <gumbo.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

class HtmlDocument {
 public:
  // The text must stay alive as long as the document: gumbo's nodes point into it.
  //
  // Browsers run with scripting on, so the content of <noscript> is raw text that never shows;
  // gumbo parses it as markup with scripting off, which in a head moves the content into the
  // body. The document therefore reads <noscript> as <template> (same length, same positions):
  // its content stays out of the tree around it and is not shown.
  explicit HtmlDocument(std::string_view html);
  ~HtmlDocument();
  HtmlDocument(const HtmlDocument&) = delete;
  HtmlDocument& operator=(const HtmlDocument&) = delete;

  const GumboNode* document() const { return output_->document; }
  const GumboNode* root() const { return output_->root; }
  // True when the document has no doctype or an old one: class and id selectors then ignore case.
  bool quirks() const;

  // ---- Element helpers ----
  static bool isElement(const GumboNode* node);
  // The lower-case tag name, for unknown elements too.
  static std::string_view tagName(const GumboNode* element);
  // The attribute's value, or nullptr when absent.
  static const char* attribute(const GumboNode* element, const char* name);
  static const GumboNode* parentElement(const GumboNode* element);
  static const GumboNode* previousElementSibling(const GumboNode* element);
  static const GumboNode* nextElementSibling(const GumboNode* element);
  static const GumboVector& children(const GumboNode* node);

 private:
  struct Arena;
  std::unique_ptr<Arena> arena_;
  std::string source_;  // the text as parsed, when it had to be changed first
  GumboOutput* output_ = nullptr;
};

}  // namespace zv
