// zv::FontConfiguration is the private fontconfig configuration pictures are drawn with: it knows
// only the files of the pinned Inter family (found once through the machine's configuration), so a
// machine's other fonts never change a picture. Text is laid out with the same Cairo font options
// as the text measurer (no hinting, unhinted metrics, unrounded glyph positions), so a label draws
// its text exactly as tall as it was measured.
#pragma once

#include <filesystem>

typedef struct _PangoFontMap PangoFontMap;
typedef struct _PangoContext PangoContext;

namespace zv {

class FontConfiguration {
 public:
  // The folder that holds Inter's files; raises zv::Exception "TextMeasurerFontMissing" when the
  // machine has no Inter.
  static const std::filesystem::path& interFolder();
  // A new font map over the private configuration (the caller owns the reference).
  static PangoFontMap* newFontMap();
  // Gives a context the measurer's font options.
  static void configure(PangoContext* context);
};

}  // namespace zv
