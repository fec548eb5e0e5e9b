#include "platform/text/HtmlImporter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cwctype>
#include <vector>

#include "platform/text/CssText.h"
#include "platform/text/HtmlDocument.h"
#include "platform/text/HtmlTextBuilder.h"
#include "platform/text/StyleResolver.h"
#include "zentrova/Url.h"

namespace zv {

namespace {

using AttributesRef = StyledText::AttributesRef;

// Whether the text may hold a <style> element; most notification texts do not, and then the
// document needs no first pass for style sheets.
bool mayHoldStyleElement(std::string_view html) {
  for (size_t i = html.find('<'); i != std::string_view::npos; i = html.find('<', i + 1)) {
    if (css::equalsIgnoreCase(html.substr(i + 1, 5), "style")) return true;
  }
  return false;
}

// An upper estimate of how deeply the text nests elements: start tags count up and end tags down,
// except for the void elements and self-closing tags, which hold no content.
int nestingEstimate(std::string_view html) {
  static constexpr std::string_view kVoid[] = {"br",    "img",   "hr",     "input", "meta",
                                               "link",  "wbr",   "area",   "base",  "col",
                                               "embed", "param", "source", "track", "keygen"};
  int depth = 0;
  int deepest = 0;
  for (size_t i = html.find('<'); i != std::string_view::npos; i = html.find('<', i + 1)) {
    bool end = i + 1 < html.size() && html[i + 1] == '/';
    size_t name = i + 1 + end;
    size_t stop = name;
    while (stop < html.size() && std::isalnum(static_cast<unsigned char>(html[stop]))) ++stop;
    if (stop == name || !std::isalpha(static_cast<unsigned char>(html[name]))) continue;
    if (end) {
      depth = std::max(0, depth - 1);
      continue;
    }
    std::string_view tag = html.substr(name, stop - name);
    bool isVoid = false;
    for (std::string_view v : kVoid) isVoid = isVoid || css::equalsIgnoreCase(tag, v);
    size_t close = stop;
    while (close < html.size() && html[close] != '>' && html[close] != '<') ++close;
    if (isVoid || (close < html.size() && html[close] == '>' && html[close - 1] == '/')) continue;
    deepest = std::max(deepest, ++depth);
  }
  return deepest;
}

void collectStyleSheets(const GumboNode* root, css::StyleSheet& sheet) {
  std::vector<const GumboNode*> pending{root};
  while (!pending.empty()) {
    const GumboNode* node = pending.back();
    pending.pop_back();
    if (node->type != GUMBO_NODE_ELEMENT) continue;  // template contents are inert
    const GumboElement& e = node->v.element;
    if (e.tag == GUMBO_TAG_NOSCRIPT) continue;
    if (e.tag == GUMBO_TAG_STYLE) {
      const char* type = HtmlDocument::attribute(node, "type");
      const char* media = HtmlDocument::attribute(node, "media");
      if ((type && *type && !css::equalsIgnoreCase(css::trim(type), "text/css")) ||
          (media && !css::StyleSheet::mediaApplies(media))) {
        continue;
      }
      for (unsigned i = 0; i < e.children.length; ++i) {
        auto* child = static_cast<const GumboNode*>(e.children.data[i]);
        if (child->type == GUMBO_NODE_TEXT || child->type == GUMBO_NODE_WHITESPACE) {
          sheet.add(child->v.text.text);
        }
      }
      continue;
    }
    for (unsigned i = e.children.length; i-- > 0;) {
      pending.push_back(static_cast<const GumboNode*>(e.children.data[i]));
    }
  }
}

// Elements shown as a box without text of their own; their content is not text either.
bool isAtom(const GumboNode* e) {
  if (e->v.element.tag_namespace == GUMBO_NAMESPACE_SVG) return true;
  switch (e->v.element.tag) {
    case GUMBO_TAG_IMG:
    case GUMBO_TAG_IMAGE:
    case GUMBO_TAG_INPUT:
    case GUMBO_TAG_VIDEO:
    case GUMBO_TAG_AUDIO:
    case GUMBO_TAG_CANVAS:
    case GUMBO_TAG_IFRAME:
    case GUMBO_TAG_EMBED:
    case GUMBO_TAG_OBJECT:
    case GUMBO_TAG_APPLET:
    case GUMBO_TAG_TEXTAREA:
    case GUMBO_TAG_METER:
    case GUMBO_TAG_PROGRESS:
    case GUMBO_TAG_KEYGEN:
    case GUMBO_TAG_FRAME:
      return true;
    default:
      return false;
  }
}

bool sameText(const ComputedStyle& a, const ComputedStyle& b) {
  return a.fontFamily == b.fontFamily && a.fontSize == b.fontSize && a.fontWeight == b.fontWeight &&
         a.italic == b.italic && a.color == b.color && a.underline == b.underline &&
         a.strikethrough == b.strikethrough && a.link == b.link && a.alignment == b.alignment &&
         a.language == b.language;
}

AttributesRef makeAttributes(const ComputedStyle& s) {
  auto a = std::make_shared<TextAttributes>();
  a->fontFamily = s.fontFamily;
  a->fontSize = s.fontSize;
  a->fontWeight = s.fontWeight;
  a->italic = s.italic;
  if (s.underline) a->underline = kUnderlineStyleSingle;
  if (s.strikethrough) a->strikethrough = kUnderlineStyleSingle;
  a->foregroundColor = Color::make(s.color.red, s.color.green, s.color.blue, s.color.alpha);
  if (!s.link.empty()) a->link = s.link;
  if (!s.language.empty()) a->language = s.language;
  a->paragraphStyle = ParagraphStyle{s.alignment};
  return a;
}

class Walker {
 public:
  Walker(const HtmlDocument& doc, const css::StyleSheet& sheet, StyledText& out)
      : resolver_(sheet, doc.quirks()), builder_(out), out_(out) {}

  void run(const GumboNode* root) {
    ComputedStyle initial;
    auto initialAttributes = makeAttributes(initial);
    frames_.push_back(Frame{nullptr, 0, std::move(initial), std::move(initialAttributes), false});
    enter(root, 0);
    while (frames_.size() > 1) {
      size_t top = frames_.size() - 1;
      const GumboVector& children = HtmlDocument::children(frames_[top].node);
      if (frames_[top].next >= children.length) {
        leave(top);
        frames_.pop_back();
        continue;
      }
      auto* child = static_cast<const GumboNode*>(children.data[frames_[top].next++]);
      if (frames_[top].closedDetails && !isFirstSummary(child)) continue;
      switch (child->type) {
        case GUMBO_NODE_ELEMENT:
          enter(child, top);
          break;
        case GUMBO_NODE_TEXT:
        case GUMBO_NODE_WHITESPACE:
        case GUMBO_NODE_CDATA:
          if (frames_[top].style.visible) text(child->v.text.text, top);
          break;
        default:  // comments; template contents are inert
          break;
      }
    }
  }

 private:
  struct Frame {
    const GumboNode* node;
    unsigned next;
    ComputedStyle style;
    AttributesRef attributes;
    bool closedDetails;
  };

  const AttributesRef& attributes(size_t index) const { return frames_[index].attributes; }

  // A frame for an element, sharing its parent's attributes when its text looks the same.
  void push(const GumboNode* e, ComputedStyle style, size_t parent, bool closedDetails) {
    AttributesRef a =
        sameText(style, frames_[parent].style) ? frames_[parent].attributes : makeAttributes(style);
    frames_.push_back(Frame{e, 0, std::move(style), std::move(a), closedDetails});
  }

  static bool isFirstSummary(const GumboNode* child) {
    if (child->type != GUMBO_NODE_ELEMENT || child->v.element.tag != GUMBO_TAG_SUMMARY) {
      return false;
    }
    for (auto* s = HtmlDocument::previousElementSibling(child); s;
         s = HtmlDocument::previousElementSibling(s)) {
      if (s->v.element.tag == GUMBO_TAG_SUMMARY) return false;
    }
    return true;
  }

  void text(std::string_view content, size_t index) {
    const ComputedStyle& s = frames_[index].style;
    // Text right inside a flex or grid container is an item of its own.
    if (s.blockifiesChildren) builder_.blockBoundary(attributes(index));
    if (s.textTransform == TextTransform::kNone) {
      builder_.text(content, s.whiteSpace, attributes(index));
    } else {
      const std::u16string& so_far = out_.characters();
      bool afterLetter = !so_far.empty() && (std::iswalnum(so_far.back()) || so_far.back() >= 0xC0);
      builder_.text(applyTextTransform(content, s.textTransform, afterLetter), s.whiteSpace,
                    attributes(index));
    }
    if (s.blockifiesChildren) builder_.blockBoundary(attributes(index));
  }

  void enter(const GumboNode* e, size_t parent) {
    ComputedStyle style = resolver_.resolve(e, frames_[parent].style);
    if (style.display == Display::kNone) return;
    if (isAtom(e)) {
      if (style.visible) builder_.atom();
      return;
    }
    if (e->v.element.tag == GUMBO_TAG_BR) {
      if (style.visible) {
        push(e, std::move(style), parent, false);
        builder_.lineBreak(attributes(frames_.size() - 1));
        frames_.pop_back();
      }
      return;
    }
    bool closedDetails = e->v.element.tag == GUMBO_TAG_DETAILS &&
                         e->v.element.tag_namespace == GUMBO_NAMESPACE_HTML &&
                         !HtmlDocument::attribute(e, "open");
    push(e, std::move(style), parent, closedDetails);
    const ComputedStyle& s = frames_.back().style;
    if (!s.visible) return;
    // The line break before a block goes with the block: when the block is struck through, the
    // break leaves with it.
    if (breaksLines(frames_.size() - 1)) {
      builder_.blockBoundary(attributes(frames_.size() - 1));
    } else if (s.display == Display::kTableCell) {
      builder_.cellStart();
    }
  }

  // Blocks and table rows stand on lines of their own; so does a paragraph whatever its display,
  // as text extraction has it.
  bool breaksLines(size_t index) const {
    const Frame& f = frames_[index];
    return f.style.display == Display::kBlock || f.style.display == Display::kTableRow ||
           (f.node->v.element.tag == GUMBO_TAG_P &&
            f.node->v.element.tag_namespace == GUMBO_NAMESPACE_HTML);
  }

  void leave(size_t index) {
    const ComputedStyle& s = frames_[index].style;
    if (!s.visible) return;
    if (breaksLines(index)) {
      builder_.blockBoundary(attributes(index));
    } else if (s.display == Display::kTableCell && hasLaterCell(frames_[index].node)) {
      builder_.cellSeparator(attributes(index));
    }
  }

  static bool hasLaterCell(const GumboNode* cell) {
    for (auto* s = HtmlDocument::nextElementSibling(cell); s;
         s = HtmlDocument::nextElementSibling(s)) {
      if (s->v.element.tag == GUMBO_TAG_TD || s->v.element.tag == GUMBO_TAG_TH) return true;
    }
    return false;
  }

  StyleResolver resolver_;
  HtmlTextBuilder builder_;
  const StyledText& out_;
  std::vector<Frame> frames_;
};

}  // namespace

std::shared_ptr<StyledText> HtmlImporter::import(std::string_view html, Error* error) {
  if (!isValidUtf8(html)) {
    if (error) {
      *error = Error{kErrorDomain, kInvalidEncoding,
                     "The HTML text could not be read because it is not valid UTF-8."};
    }
    return nullptr;
  }
  if (int depth = nestingEstimate(html); depth > kMaximumDepth) {
    if (error) {
      *error = Error{kErrorDomain, kTooDeep,
                     fmt::format("The HTML text nests elements {} deep; at most {} are read.",
                                 depth, kMaximumDepth)};
    }
    return nullptr;
  }
  HtmlDocument doc(html);
  css::StyleSheet sheet;
  if (mayHoldStyleElement(html)) collectStyleSheets(doc.root(), sheet);
  auto text = std::make_shared<StyledText>();
  Walker(doc, sheet, *text).run(doc.root());
  return text;
}

}  // namespace zv
