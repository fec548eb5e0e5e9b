#include "platform/text/PangoTextMeasurer.h"

#include <fmt/format.h>
#include <pango/pangocairo.h>
#include <strings.h>

#include <algorithm>

#include "platform/text/PangoFontConfiguration.h"
#include "platform/text/PangoTextLayout.h"
#include "zentrova/Exception.h"

namespace zv {

namespace {

constexpr char kFontMissing[] = "TextMeasurerFontMissing";

using Description = UniqueHandle<PangoFontDescription, pango_font_description_free>;

Description describe(const Font& font) { return Description(PangoTextLayout::describe(font)); }

}  // namespace

void releaseGObject(void* object) { g_object_unref(object); }

PangoTextMeasurer::PangoTextMeasurer() {
  fontMap_.reset(PangoFontConfiguration::newFontMap());
  context_.reset(pango_font_map_create_context(fontMap_.get()));
  PangoFontConfiguration::configure(context_.get());
  layout_.reset(pango_layout_new(context_.get()));
  std::lock_guard lock(mutex_);
  checkFace(Font::systemFont(17));
}

PangoTextMeasurer::~PangoTextMeasurer() = default;

std::string PangoTextMeasurer::resolvedFamilyLocked(const Font& font) {
  Description wanted = describe(font);
  UniqueHandle<PangoFont, releaseGObject> face(
      pango_font_map_load_font(fontMap_.get(), context_.get(), wanted.get()));
  if (!face) return "";
  Description got(pango_font_describe(face.get()));
  const char* family = pango_font_description_get_family(got.get());
  return family ? family : "";
}

std::string PangoTextMeasurer::resolvedFamily(const Font& font) {
  std::lock_guard lock(mutex_);
  return resolvedFamilyLocked(font);
}

void PangoTextMeasurer::checkFace(const Font& font) {
  auto key = std::make_pair(std::clamp(font.weight(), 100, 1000), font.italic());
  if (checkedFaces_.count(key)) return;
  std::string family = resolvedFamilyLocked(font);
  if (strcasecmp(family.c_str(), kFamily) != 0) {
    throw Exception(kFontMissing,
                    fmt::format("The text measurer needs the font {} (Debian package fonts-inter), "
                                "but fontconfig chose \"{}\" for {}",
                                kFamily, family, font.description()));
  }
  checkedFaces_.insert(key);
}

TextSize PangoTextMeasurer::boundingSize(std::string_view text, const Font& font, double width) {
  if (text.empty()) return {};
  std::lock_guard lock(mutex_);
  checkFace(font);
  PangoTextLayout::prepare(layout_.get(), text, font, width);
  PangoRectangle logical;
  pango_layout_get_extents(layout_.get(), nullptr, &logical);
  return TextSize{static_cast<double>(logical.width) / PANGO_SCALE,
                  static_cast<double>(logical.height) / PANGO_SCALE};
}

#if defined(__SANITIZE_ADDRESS__)
// Fontconfig keeps its configuration and caches until the process ends, by design: in sanitizer
// builds, do not report them as leaks.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }
#endif

}  // namespace zv
