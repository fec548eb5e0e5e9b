#include "platform/text/HtmlDocument.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace zv {

// A bump allocator: gumbo never reallocates (it allocates, copies and frees), so freeing can be a
// no-op and everything goes at once. Blocks grow geometrically; big requests get their own block.
struct HtmlDocument::Arena {
  static constexpr size_t kAlign = alignof(std::max_align_t);
  std::vector<void*> blocks;
  char* next = nullptr;
  size_t left = 0;
  size_t blockSize = 16 * 1024;

  ~Arena() {
    for (void* b : blocks) std::free(b);
  }

  void* allocate(size_t size) {
    size = (size + kAlign - 1) & ~(kAlign - 1);
    if (size > left) {
      if (size > blockSize / 4) {
        void* big = std::malloc(size);
        if (!big) std::abort();  // gumbo cannot handle a failed allocation
        blocks.push_back(big);
        return big;
      }
      next = static_cast<char*>(std::malloc(blockSize));
      if (!next) std::abort();
      blocks.push_back(next);
      left = blockSize;
      if (blockSize < 1024 * 1024) blockSize *= 2;
    }
    void* p = next;
    next += size;
    left -= size;
    return p;
  }

  static void* allocateFn(void* self, size_t size) {
    return static_cast<Arena*>(self)->allocate(size);
  }
  static void freeFn(void*, void*) {}
};

namespace {

bool startsNoscript(std::string_view s, size_t i) {
  static constexpr std::string_view kName = "noscript";
  if (s.size() - i < kName.size()) return false;
  for (size_t k = 0; k < kName.size(); ++k) {
    char c = s[i + k];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != kName[k]) return false;
  }
  return true;
}

}  // namespace

HtmlDocument::HtmlDocument(std::string_view html) : arena_(std::make_unique<Arena>()) {
  for (size_t i = html.find('<'); i != std::string_view::npos; i = html.find('<', i + 1)) {
    size_t name = i + 1 + (i + 1 < html.size() && html[i + 1] == '/');
    if (!startsNoscript(html, name)) continue;
    if (source_.empty()) source_.assign(html);
    source_.replace(name, 8, "template");
  }
  if (!source_.empty()) html = source_;
  GumboOptions options = kGumboDefaultOptions;
  options.allocator = &Arena::allocateFn;
  options.deallocator = &Arena::freeFn;
  options.userdata = arena_.get();
  options.max_errors = 0;  // parse errors are repaired, not reported: no need to keep them
  output_ = gumbo_parse_with_options(&options, html.data(), html.size());
}

// The arena owns every node: gumbo_destroy_output (recursive) is not needed.
HtmlDocument::~HtmlDocument() = default;

bool HtmlDocument::quirks() const {
  return output_->document->v.document.doc_type_quirks_mode != GUMBO_DOCTYPE_NO_QUIRKS;
}

bool HtmlDocument::isElement(const GumboNode* node) {
  return node && (node->type == GUMBO_NODE_ELEMENT || node->type == GUMBO_NODE_TEMPLATE);
}

std::string_view HtmlDocument::tagName(const GumboNode* element) {
  const GumboElement& e = element->v.element;
  if (e.tag != GUMBO_TAG_UNKNOWN) return gumbo_normalized_tagname(e.tag);
  // Unknown elements: the name from the original text ("<my-tag ...>"); gumbo lower-cases tag
  // names of HTML elements when it tokenises, but keeps the source text, so fold here.
  GumboStringPiece piece = e.original_tag;
  gumbo_tag_from_original_text(&piece);
  static thread_local std::string lowered;
  lowered.assign(piece.data, piece.length);
  for (char& c : lowered) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lowered;
}

const char* HtmlDocument::attribute(const GumboNode* element, const char* name) {
  const GumboAttribute* a = gumbo_get_attribute(&element->v.element.attributes, name);
  return a ? a->value : nullptr;
}

const GumboNode* HtmlDocument::parentElement(const GumboNode* element) {
  const GumboNode* p = element->parent;
  return isElement(p) ? p : nullptr;
}

const GumboVector& HtmlDocument::children(const GumboNode* node) {
  return node->type == GUMBO_NODE_DOCUMENT ? node->v.document.children : node->v.element.children;
}

const GumboNode* HtmlDocument::previousElementSibling(const GumboNode* element) {
  if (!element->parent) return nullptr;
  const GumboVector& siblings = children(element->parent);
  for (size_t i = element->index_within_parent; i-- > 0;) {
    auto* s = static_cast<const GumboNode*>(siblings.data[i]);
    if (isElement(s)) return s;
  }
  return nullptr;
}

const GumboNode* HtmlDocument::nextElementSibling(const GumboNode* element) {
  if (!element->parent) return nullptr;
  const GumboVector& siblings = children(element->parent);
  for (size_t i = element->index_within_parent + 1; i < siblings.length; ++i) {
    auto* s = static_cast<const GumboNode*>(siblings.data[i]);
    if (isElement(s)) return s;
  }
  return nullptr;
}

}  // namespace zv
