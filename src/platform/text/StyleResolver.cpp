#include "platform/text/StyleResolver.h"

#include "platform/text/CssColor.h"
#include "platform/text/CssProperties.h"
#include "platform/text/CssText.h"
#include "platform/text/HtmlDocument.h"

namespace zv {

namespace {

Display defaultDisplay(const GumboNode* e) {
  switch (e->v.element.tag) {
    case GUMBO_TAG_HEAD:
    case GUMBO_TAG_SCRIPT:
    case GUMBO_TAG_STYLE:
    case GUMBO_TAG_TITLE:
    case GUMBO_TAG_META:
    case GUMBO_TAG_LINK:
    case GUMBO_TAG_BASE:
    case GUMBO_TAG_BASEFONT:
    case GUMBO_TAG_TEMPLATE:
    case GUMBO_TAG_NOSCRIPT:  // scripting is on in a browser: its content is not shown
    case GUMBO_TAG_AREA:
    case GUMBO_TAG_MAP:
    case GUMBO_TAG_DATALIST:
    case GUMBO_TAG_PARAM:
    case GUMBO_TAG_SOURCE:
    case GUMBO_TAG_TRACK:
    case GUMBO_TAG_RP:
    case GUMBO_TAG_NOEMBED:
    case GUMBO_TAG_NOFRAMES:
    case GUMBO_TAG_COL:
    case GUMBO_TAG_COLGROUP:
      return Display::kNone;
    case GUMBO_TAG_HTML:
    case GUMBO_TAG_BODY:
    case GUMBO_TAG_ADDRESS:
    case GUMBO_TAG_ARTICLE:
    case GUMBO_TAG_ASIDE:
    case GUMBO_TAG_BLOCKQUOTE:
    case GUMBO_TAG_CENTER:
    case GUMBO_TAG_DETAILS:
    case GUMBO_TAG_DD:
    case GUMBO_TAG_DIR:
    case GUMBO_TAG_DIV:
    case GUMBO_TAG_DL:
    case GUMBO_TAG_DT:
    case GUMBO_TAG_FIELDSET:
    case GUMBO_TAG_FIGCAPTION:
    case GUMBO_TAG_FIGURE:
    case GUMBO_TAG_FOOTER:
    case GUMBO_TAG_FORM:
    case GUMBO_TAG_FRAMESET:
    case GUMBO_TAG_H1:
    case GUMBO_TAG_H2:
    case GUMBO_TAG_H3:
    case GUMBO_TAG_H4:
    case GUMBO_TAG_H5:
    case GUMBO_TAG_H6:
    case GUMBO_TAG_HEADER:
    case GUMBO_TAG_HGROUP:
    case GUMBO_TAG_HR:
    case GUMBO_TAG_LEGEND:
    case GUMBO_TAG_LI:
    case GUMBO_TAG_LISTING:
    case GUMBO_TAG_MAIN:
    case GUMBO_TAG_MENU:
    case GUMBO_TAG_NAV:
    case GUMBO_TAG_OL:
    case GUMBO_TAG_P:
    case GUMBO_TAG_PLAINTEXT:
    case GUMBO_TAG_PRE:
    case GUMBO_TAG_SECTION:
    case GUMBO_TAG_SUMMARY:
    case GUMBO_TAG_TABLE:
    case GUMBO_TAG_CAPTION:
    case GUMBO_TAG_UL:
    case GUMBO_TAG_XMP:
    case GUMBO_TAG_OPTGROUP:
    case GUMBO_TAG_OPTION:
    case GUMBO_TAG_MULTICOL:
      return Display::kBlock;
    case GUMBO_TAG_TR:
      return Display::kTableRow;
    case GUMBO_TAG_TD:
    case GUMBO_TAG_TH:
      return Display::kTableCell;
    case GUMBO_TAG_THEAD:
    case GUMBO_TAG_TBODY:
    case GUMBO_TAG_TFOOT:
      return Display::kTableInternal;
    case GUMBO_TAG_INPUT: {
      const char* type = HtmlDocument::attribute(e, "type");
      return type && css::equalsIgnoreCase(type, "hidden") ? Display::kNone : Display::kInline;
    }
    case GUMBO_TAG_UNKNOWN: {
      std::string_view name = HtmlDocument::tagName(e);
      if (name == "search") return Display::kBlock;
      if (name == "dialog") {
        return HtmlDocument::attribute(e, "open") ? Display::kBlock : Display::kNone;
      }
      return Display::kInline;
    }
    default:
      return Display::kInline;
  }
}

void bolder(ComputedStyle& s, const ComputedStyle& parent) {
  s.fontWeight = parent.fontWeight < 350 ? 400 : parent.fontWeight < 550 ? 700 : 900;
}

}  // namespace

void StyleResolver::applyDefaults(const GumboNode* e, ComputedStyle& s,
                                  const ComputedStyle& parent) const {
  s.display = defaultDisplay(e);
  if (e->v.element.tag_namespace != GUMBO_NAMESPACE_HTML) return;
  if (HtmlDocument::attribute(e, "hidden")) s.display = Display::kNone;
  switch (e->v.element.tag) {
    case GUMBO_TAG_B:
    case GUMBO_TAG_STRONG:
      bolder(s, parent);
      break;
    case GUMBO_TAG_H1:
    case GUMBO_TAG_H2:
    case GUMBO_TAG_H3:
    case GUMBO_TAG_H4:
    case GUMBO_TAG_H5:
    case GUMBO_TAG_H6: {
      static constexpr double kScale[] = {2.0, 1.5, 1.17, 1.0, 0.83, 0.67};
      s.fontSize = parent.fontSize * kScale[e->v.element.tag - GUMBO_TAG_H1];
      s.fontWeight = 700;
      break;
    }
    case GUMBO_TAG_TH:
      s.fontWeight = 700;
      s.alignment = TextAlignment::kCenter;
      break;
    case GUMBO_TAG_I:
    case GUMBO_TAG_EM:
    case GUMBO_TAG_CITE:
    case GUMBO_TAG_VAR:
    case GUMBO_TAG_DFN:
    case GUMBO_TAG_ADDRESS:
      s.italic = true;
      break;
    case GUMBO_TAG_SMALL:
    case GUMBO_TAG_SUB:
    case GUMBO_TAG_SUP:
      s.fontSize = parent.fontSize / 1.2;
      break;
    case GUMBO_TAG_BIG:
      s.fontSize = parent.fontSize * 1.2;
      break;
    case GUMBO_TAG_PRE:
    case GUMBO_TAG_LISTING:
    case GUMBO_TAG_XMP:
    case GUMBO_TAG_PLAINTEXT:
    case GUMBO_TAG_TEXTAREA:
      s.fontFamily = "monospace";
      s.whiteSpace = WhiteSpace::kPre;
      break;
    case GUMBO_TAG_CODE:
    case GUMBO_TAG_KBD:
    case GUMBO_TAG_SAMP:
    case GUMBO_TAG_TT:
      s.fontFamily = "monospace";
      break;
    case GUMBO_TAG_NOBR:
      s.whiteSpace = WhiteSpace::kNormal;
      break;
    case GUMBO_TAG_CENTER:
      s.alignment = TextAlignment::kCenter;
      break;
    case GUMBO_TAG_U:
    case GUMBO_TAG_INS:
      s.ownUnderline = true;
      break;
    case GUMBO_TAG_S:
    case GUMBO_TAG_STRIKE:
    case GUMBO_TAG_DEL:
      s.ownLineThrough = true;
      break;
    case GUMBO_TAG_A:
      // Links are underlined but keep the colour of their text: a notification's text is tapped
      // as a whole, so painting links in a link colour would promise something it does not do.
      if (HtmlDocument::attribute(e, "href")) s.ownUnderline = true;
      break;
    case GUMBO_TAG_MARK:
      s.color = Color{0, 0, 0, 1};
      break;
    default:
      break;
  }
}

void StyleResolver::applyHints(const GumboNode* e, ComputedStyle& s) const {
  if (e->v.element.tag_namespace != GUMBO_NAMESPACE_HTML) return;
  switch (e->v.element.tag) {
    case GUMBO_TAG_FONT:
      if (const char* color = HtmlDocument::attribute(e, "color")) {
        if (auto c = css::parseLegacyColor(color)) s.color = *c;
      }
      if (const char* face = HtmlDocument::attribute(e, "face")) {
        if (auto f = css::firstFontFamily(face)) s.fontFamily = *f;
      }
      if (const char* size = HtmlDocument::attribute(e, "size")) {
        if (auto px = css::legacyFontSize(size)) s.fontSize = *px;
      }
      break;
    case GUMBO_TAG_BODY:
      if (const char* text = HtmlDocument::attribute(e, "text")) {
        if (auto c = css::parseLegacyColor(text)) s.color = *c;
      }
      break;
    case GUMBO_TAG_P:
    case GUMBO_TAG_DIV:
    case GUMBO_TAG_H1:
    case GUMBO_TAG_H2:
    case GUMBO_TAG_H3:
    case GUMBO_TAG_H4:
    case GUMBO_TAG_H5:
    case GUMBO_TAG_H6:
    case GUMBO_TAG_CAPTION:
    case GUMBO_TAG_TD:
    case GUMBO_TAG_TH:
    case GUMBO_TAG_TR:
      if (const char* align = HtmlDocument::attribute(e, "align")) {
        std::string a = css::toLower(css::trim(align));
        if (a == "left") s.alignment = TextAlignment::kLeft;
        if (a == "right") s.alignment = TextAlignment::kRight;
        if (a == "center" || a == "middle") s.alignment = TextAlignment::kCenter;
        if (a == "justify") s.alignment = TextAlignment::kJustified;
      }
      break;
    default:
      break;
  }
}

ComputedStyle StyleResolver::resolve(const GumboNode* e, const ComputedStyle& parent) {
  ComputedStyle s = parent;
  s.ownUnderline = false;
  s.ownLineThrough = false;
  s.blockifiesChildren = false;
  s.outOfFlow = false;
  applyDefaults(e, s, parent);
  applyHints(e, s);

  normal_.clear();
  important_.clear();
  if (!sheet_.empty()) sheet_.match(e, quirks_, normal_, important_);
  std::vector<css::Declaration> inlineStyle;
  if (const char* style = HtmlDocument::attribute(e, "style")) {
    inlineStyle = css::parseDeclarations(style);
  }
  const bool isRoot = e->parent && e->parent->type == GUMBO_NODE_DOCUMENT;
  css::PropertyContext context{isRoot ? parent.fontSize : rootFontSize_, quirks_};
  for (const auto* d : normal_) css::applyDeclaration(*d, s, parent, context);
  for (const auto& d : inlineStyle) {
    if (!d.important) css::applyDeclaration(d, s, parent, context);
  }
  for (const auto* d : important_) css::applyDeclaration(*d, s, parent, context);
  for (const auto& d : inlineStyle) {
    if (d.important) css::applyDeclaration(d, s, parent, context);
  }
  if (isRoot) rootFontSize_ = s.fontSize;
  // Floats, absolutely positioned boxes and the items of flex and grid containers are blocks.
  if ((s.outOfFlow || parent.blockifiesChildren) && s.display == Display::kInline) {
    s.display = Display::kBlock;
  }

  if (const char* lang = HtmlDocument::attribute(e, "lang")) s.language = lang;
  if (e->v.element.tag == GUMBO_TAG_A) {
    if (const char* href = HtmlDocument::attribute(e, "href")) s.link = href;
  }
  s.underline = parent.underline || s.ownUnderline;
  s.strikethrough = parent.strikethrough || s.ownLineThrough;
  return s;
}

}  // namespace zv
