// zv::PangoTextMeasurer is the real text measurer: Pango lays the text out with Cairo's font
// options fixed (no hinting, unhinted metrics, glyph positions not rounded), so heights are the
// same on every machine and do not depend on a screen. Whatever family a Font names, it is measured
// in Inter (Debian's fonts-inter), which stands in for the system font, with the Noto families as
// its fallback for other scripts and colour emoji; size, weight and italic come from the Font.
// Sizes are pixels. The text is laid out exactly as the renderer lays out a label
// (PangoTextLayout.h: script rules for breaking, bidirectional text, each line as tall as its
// tallest face), so the height measured is the height drawn. A width of 0 or less does not wrap.
//
// Construction fails loudly, raising zv::Exception "TextMeasurerFontMissing", when fontconfig does
// not resolve Inter to Inter itself (the package is missing or a configuration substitutes it);
// every new weight and style is checked the same way when first used.
//
// A content-side program makes one and hands it to what measures (or installs it in the platform
// object, from which the content side's process-wide objects take it when they are made).
//
// It lives in the content library (zv_content): the service side never measures text.
#pragma once

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "platform/foundation/UniqueHandle.h"
#include "platform/text/TextMeasurer.h"

typedef struct _PangoFontMap PangoFontMap;
typedef struct _PangoContext PangoContext;
typedef struct _PangoLayout PangoLayout;

namespace zv {

// Drops a reference to a GLib object (g_object_unref), for UniqueHandle.
void releaseGObject(void* object);

class PangoTextMeasurer : public TextMeasurer {
 public:
  static constexpr const char* kFamily = "Inter";

  PangoTextMeasurer();
  ~PangoTextMeasurer() override;
  PangoTextMeasurer(const PangoTextMeasurer&) = delete;
  PangoTextMeasurer& operator=(const PangoTextMeasurer&) = delete;

  TextSize boundingSize(std::string_view text, const Font& font, double width) override;
  // The family that fontconfig resolved the font's face to ("Inter").
  std::string resolvedFamily(const Font& font);

 private:
  std::string resolvedFamilyLocked(const Font& font);
  void checkFace(const Font& font);

  std::mutex mutex_;
  // Released in reverse order: the layout, its context, then the font map.
  UniqueHandle<PangoFontMap, releaseGObject> fontMap_;
  UniqueHandle<PangoContext, releaseGObject> context_;
  UniqueHandle<PangoLayout, releaseGObject> layout_;
  std::set<std::pair<int, bool>> checkedFaces_;  // weight, italic
};

}  // namespace zv
