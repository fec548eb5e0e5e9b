// zv::PangoFontConfiguration is the private fontconfig configuration that text is measured and
// drawn with. It knows only the folders of the pinned families: Inter, the primary face (Debian's
// fonts-inter folder, else where the machine's configuration finds Inter), then Debian's Noto
// packages as the fallback for everything Inter lacks (fonts-noto-core for the other scripts,
// fonts-noto-cjk for Chinese, Japanese and Korean, fonts-noto-color-emoji for emoji). A machine's
// other fonts and its own fontconfig rules never change a height or a picture, and the machine's
// whole font set is never loaded: the same payload gives the same pixels on every machine with
// those packages. The fallback order lives in PangoFontConfiguration.cpp.
//
// Both measuring and drawing use the same Cairo font options (no hinting, unhinted metrics,
// unrounded glyph positions, colour glyphs allowed), so a label draws its text exactly as tall as
// it was measured.
//
// A machine without one of the Noto packages still renders with what it has: the first font map
// made in a process prints one warning on stderr naming the packages to install.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

typedef struct _PangoFontMap PangoFontMap;
typedef struct _PangoContext PangoContext;

namespace zv {

class PangoFontConfiguration {
 public:
  // The folder that holds Inter's files; raises zv::Exception "TextMeasurerFontMissing" when the
  // machine has no Inter.
  static const std::filesystem::path& interFolder();
  // The Debian packages of the fallback fonts that this machine lacks (empty when all are there).
  static std::vector<std::string> missingFallbackPackages();
  // The process's one font map over the private configuration, shared by every measurer and
  // renderer so that fonts and glyphs are loaded once; the caller gets a new reference to it.
  static PangoFontMap* newFontMap();
  // Gives a context the measurer's font options.
  static void configure(PangoContext* context);
};

}  // namespace zv
