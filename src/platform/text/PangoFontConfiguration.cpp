#include "platform/text/PangoFontConfiguration.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include "platform/foundation/UniqueHandle.h"
#include "zentrova/Exception.h"

namespace zv {

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

PangoFontMap* PangoFontConfiguration::newFontMap() {
  static PangoFontMap* const shared = [] {
    // Inter's folder and the usual caches (the user's first, so a cache can always be written).
    std::string xml = "<fontconfig><dir>" + interFolder().string() +
                      "</dir><cachedir prefix=\"xdg\">fontconfig</cachedir>"
                      "<cachedir>/var/cache/fontconfig</cachedir></fontconfig>";
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
