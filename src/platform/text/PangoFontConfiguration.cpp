#include "platform/text/PangoFontConfiguration.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <iostream>

#include "platform/foundation/UniqueHandle.h"
#include "zentrova/Exception.h"

namespace zv {

namespace {

// Debian's Noto folders: fonts-noto-core and fonts-noto-color-emoji share the first.
constexpr char kNotoFolder[] = "/usr/share/fonts/truetype/noto";
constexpr char kNotoCjkFolder[] = "/usr/share/fonts/opentype/noto";

struct FallbackPackage {
  const char* package;
  const char* file;  // one file the package installs
};
constexpr FallbackPackage kFallbackPackages[] = {
    {"fonts-noto-core", "/usr/share/fonts/truetype/noto/NotoSans-Regular.ttf"},
    {"fonts-noto-cjk", "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc"},
    {"fonts-noto-color-emoji", "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf"},
};

// After Inter, a character is looked for in these families, in this order; what none of them has
// falls to the rest of the Noto folders by fontconfig's own ranking (still only Noto sans faces).
// The serif, display, UI and calligraphic variants are left out so that a script always gets the
// plain face the phone's system font resembles: sans, but looped for Thai and Lao, whose system
// faces keep the loops (the loopless faces read as Latin letters).
//
// Bitmap faces (Noto Color Emoji holds its emoji as pictures of one size, no outlines) are scaled
// to the size asked for, so an emoji is as large, and advances as far, as the text around it at
// every size.
//
// Noto Color Emoji comes right after Inter: a character Inter lacks that has an emoji picture is
// drawn in colour, and a sequence (a keycap's digit, variation selector and enclosing keycap; a
// skin tone; a flag's two letters; a ZWJ sequence) is shaped in it whole, as one picture. What
// Inter has (digits, arrows, stars, check marks) stays text.
//
// Chinese, Japanese and Korean share the Han ideographs but draw them differently, so the CJK face
// follows the language of the run (the layout gives each CJK text a language, see
// PangoTextLayout.h; a sender's HTML lang goes with its run): Japanese, Korean, Traditional
// Chinese (zh-TW, zh-Hant) and Hong Kong get their face
// first, and everything else, including a run with no language, gets Simplified Chinese, which
// follows the other scripts' faces. All CJK faces share their vertical metrics, so the choice never
// changes a height.
constexpr char kRules[] = R"(
  <selectfont><rejectfont>
    <glob>*/NotoSerif*</glob><glob>*/NotoKufi*</glob><glob>*/NotoNaskh*</glob>
    <glob>*/NotoNastaliq*</glob><glob>*/NotoRashi*</glob>
    <glob>*/NotoSansDisplay*</glob><glob>*UI-*</glob><glob>*Unjoined*</glob>
  </rejectfont></selectfont>
  <match target="font"><test name="outline"><bool>false</bool></test>
    <edit name="pixelsizefixupfactor" mode="assign">
      <divide><name target="pattern">pixelsize</name><name target="font">pixelsize</name></divide>
    </edit>
    <edit name="matrix" mode="assign">
      <times><name>matrix</name><matrix><name>pixelsizefixupfactor</name><double>0</double>
        <double>0</double><name>pixelsizefixupfactor</name></matrix></times>
    </edit>
  </match>
  <match target="pattern">
    <edit name="family" mode="append" binding="strong"><string>Noto Color Emoji</string></edit>
  </match>
  <match target="pattern"><test name="lang"><string>ja</string></test>
    <edit name="family" mode="append" binding="strong"><string>Noto Sans CJK JP</string></edit></match>
  <match target="pattern"><test name="lang"><string>ko</string></test>
    <edit name="family" mode="append" binding="strong"><string>Noto Sans CJK KR</string></edit></match>
  <match target="pattern"><test name="lang"><string>zh-tw</string></test>
    <edit name="family" mode="append" binding="strong"><string>Noto Sans CJK TC</string></edit></match>
  <match target="pattern"><test name="lang"><string>zh-hant</string></test>
    <edit name="family" mode="append" binding="strong"><string>Noto Sans CJK TC</string></edit></match>
  <match target="pattern"><test name="lang"><string>zh-hk</string></test>
    <edit name="family" mode="append" binding="strong"><string>Noto Sans CJK HK</string></edit></match>
  <match target="pattern">
    <edit name="family" mode="append" binding="strong">
      <string>Noto Sans</string>
      <string>Noto Sans Arabic</string><string>Noto Sans Hebrew</string>
      <string>Noto Looped Thai</string><string>Noto Looped Lao</string><string>Noto Sans Khmer</string>
      <string>Noto Sans Devanagari</string><string>Noto Sans Bengali</string>
      <string>Noto Sans Tamil</string><string>Noto Sans Armenian</string>
      <string>Noto Sans Georgian</string><string>Noto Sans Ethiopic</string>
      <string>Noto Sans CJK SC</string>
      <string>Noto Sans Symbols</string><string>Noto Sans Symbols 2</string>
      <string>Noto Sans Math</string>
    </edit>
  </match>
)";

}  // namespace

const std::filesystem::path& PangoFontConfiguration::interFolder() {
  static const std::filesystem::path folder = [] {
    const std::filesystem::path debian = "/usr/share/fonts/opentype/inter";
    if (std::filesystem::exists(debian / "Inter-Regular.otf")) return debian;
    UniqueHandle<FcPattern, FcPatternDestroy> pattern(
        FcNameParse(reinterpret_cast<const FcChar8*>("Inter")));
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    UniqueHandle<FcPattern, FcPatternDestroy> match(FcFontMatch(nullptr, pattern.get(), &result));
    FcChar8* family = nullptr;
    FcChar8* file = nullptr;
    if (!match || FcPatternGetString(match.get(), FC_FAMILY, 0, &family) != FcResultMatch ||
        std::string(reinterpret_cast<char*>(family)) != "Inter" ||
        FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch) {
      throw Exception("TextMeasurerFontMissing",
                      "Pictures are drawn in Inter (Debian package fonts-inter), which fontconfig "
                      "does not find");
    }
    return std::filesystem::path(reinterpret_cast<char*>(file)).parent_path();
  }();
  return folder;
}

std::vector<std::string> PangoFontConfiguration::missingFallbackPackages() {
  std::vector<std::string> missing;
  for (const auto& p : kFallbackPackages) {
    std::error_code error;
    if (!std::filesystem::exists(p.file, error)) missing.emplace_back(p.package);
  }
  return missing;
}

PangoFontMap* PangoFontConfiguration::newFontMap() {
  static PangoFontMap* const shared = [] {
    if (auto missing = missingFallbackPackages(); !missing.empty()) {
      std::string list;
      for (const auto& p : missing) list += (list.empty() ? "" : " ") + p;
      std::cerr << "zentrova: warning: text in scripts or emoji that Inter lacks is drawn as "
                   "boxes: install the Debian package"
                << (missing.size() > 1 ? "s " : " ") << list << "\n";
    }
    // The fonts' folders and the usual caches (the user's first, so a cache can always be
    // written). Fontconfig reads the folders' caches, not the files: a face is opened, mapped
    // rather than copied, only when a run first needs it.
    std::string xml = "<fontconfig><dir>" + interFolder().string() + "</dir><dir>" + kNotoFolder +
                      "</dir><dir>" + kNotoCjkFolder +
                      "</dir><cachedir prefix=\"xdg\">fontconfig</cachedir>"
                      "<cachedir>/var/cache/fontconfig</cachedir>" +
                      kRules + "</fontconfig>";
    FcConfig* config = FcConfigCreate();
    FcConfigParseAndLoadFromMemory(config, reinterpret_cast<const FcChar8*>(xml.c_str()), FcTrue);
    FcConfigBuildFonts(config);
    PangoFontMap* map = pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT);
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map), config);  // takes its own reference
    FcConfigDestroy(config);
    return map;
  }();
  return PANGO_FONT_MAP(g_object_ref(shared));
}

void PangoFontConfiguration::configure(PangoContext* context) {
  UniqueHandle<cairo_font_options_t, cairo_font_options_destroy> options(
      cairo_font_options_create());
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(context, options.get());
  pango_context_set_round_glyph_positions(context, FALSE);
}

}  // namespace zv
