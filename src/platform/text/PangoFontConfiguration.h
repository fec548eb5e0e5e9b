// zv::PangoFontConfiguration is the private fontconfig configuration that text is measured and
// drawn with: it knows only the files of the pinned Inter family (Debian's fonts-inter folder, else
// where the machine's configuration finds Inter), so a machine's other fonts never change a height
// or a picture, and the machine's whole font set is never loaded. Both use the same Cairo font
// options (no hinting, unhinted metrics, unrounded glyph positions), so a label draws its text
// exactly as tall as it was measured.
#pragma once

#include <filesystem>

typedef struct _PangoFontMap PangoFontMap;
typedef struct _PangoContext PangoContext;

namespace zv {

class PangoFontConfiguration {
 public:
  // The folder that holds Inter's files; raises zv::Exception "TextMeasurerFontMissing" when the
  // machine has no Inter.
  static const std::filesystem::path& interFolder();
  // The process's one font map over the private configuration, shared by every measurer and
  // renderer so that fonts and glyphs are loaded once; the caller gets a new reference to it.
  static PangoFontMap* newFontMap();
  // Gives a context the measurer's font options.
  static void configure(PangoContext* context);
};

}  // namespace zv
