#include "zentrova/platform/graphics/ColorTransform.h"

#include <lcms2.h>

#include <cmath>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

#include "zentrova/platform/foundation/UniqueHandle.h"

namespace zv {

struct ColorTransform::Handle {
  UniqueHandle<void, cmsDeleteTransform> transform;
};

namespace {

using Profile = UniqueHandle<void, cmsCloseProfile>;

std::uint64_t fnv1a(std::string_view bytes, std::uint64_t h = 14695981039346656037ull) {
  for (unsigned char c : bytes) h = (h ^ c) * 1099511628211ull;
  return h;
}

struct Cache {
  std::mutex mutex;
  std::deque<std::pair<std::uint64_t, std::shared_ptr<const ColorTransform>>> entries;
};
Cache& cache() {
  static Cache* c = new Cache;  // outlives static destruction: decoders may run at exit
  return *c;
}

// The cached transform for key, made by make (which may give nullptr: also remembered).
std::shared_ptr<const ColorTransform> cached(
    std::uint64_t key, const std::function<std::shared_ptr<const ColorTransform>()>& make) {
  Cache& c = cache();
  std::lock_guard lock(c.mutex);
  for (const auto& [k, t] : c.entries)
    if (k == key) return t;
  auto made = make();
  if (c.entries.size() >= ColorTransform::kCacheSize) c.entries.pop_front();
  c.entries.emplace_back(key, made);
  return made;
}

bool isSrgb(cmsHPROFILE profile) {
  char name[128] = {};
  cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", name, sizeof name);
  return std::string_view(name).starts_with("sRGB");
}

std::shared_ptr<const ColorTransform> make(cmsHPROFILE source, ColorTransform::Layout layout) {
  cmsColorSpaceSignature space = cmsGetColorSpace(source);
  bool cmyk = layout != ColorTransform::Layout::kBgra;
  if (space != (cmyk ? cmsSigCmykData : cmsSigRgbData)) return nullptr;
  if (!cmyk && isSrgb(source)) return nullptr;
  Profile srgb(cmsCreate_sRGBProfile());
  cmsUInt32Number in = layout == ColorTransform::Layout::kBgra   ? TYPE_BGRA_8
                       : layout == ColorTransform::Layout::kCmyk ? TYPE_CMYK_8
                                                                 : TYPE_CMYK_8_REV;
  // Relative colorimetric with black point compensation: colours inside sRGB come out exactly
  // as the profile defines them (a P3 photo's skin tones are not shifted) and only those outside
  // are clipped to the nearest, as colour-managed displays show them. Perceptual would change
  // in-gamut colours too, by tables that differ from one profile maker to the next (and a
  // matrix profile like P3's or Adobe RGB's has none: it falls back to colorimetric anyway).
  // No per-pixel cache, so one transform may serve several decoders at once.
  cmsHTRANSFORM t = cmsCreateTransform(
      source, in, srgb.get(), TYPE_BGRA_8, INTENT_RELATIVE_COLORIMETRIC,
      cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOCACHE | (cmyk ? 0 : cmsFLAGS_COPY_ALPHA));
  if (!t) return nullptr;
  auto handle = std::make_shared<ColorTransform::Handle>();
  handle->transform.reset(t);
  return std::make_shared<ColorTransform>(std::move(handle), layout);
}

void silenceLittleCms() {
  static std::once_flag once;
  std::call_once(once, [] { cmsSetLogErrorHandler(nullptr); });
}

}  // namespace

std::shared_ptr<const ColorTransform> ColorTransform::fromIcc(std::string_view profile,
                                                              Layout layout) {
  if (profile.size() < 128 || profile.size() > kMaxProfileBytes) return nullptr;
  silenceLittleCms();
  std::uint64_t key = fnv1a(profile) ^ (static_cast<std::uint64_t>(layout) + 1);
  return cached(key, [&]() -> std::shared_ptr<const ColorTransform> {
    Profile source(
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())));
    return source ? make(source.get(), layout) : nullptr;
  });
}

std::shared_ptr<const ColorTransform> ColorTransform::fromGamma(double gamma,
                                                                const double* chromaticities) {
  // sRGB's primaries and D65 white, and the gamma PNG writers use for sRGB (1 / 2.2).
  static constexpr double kSrgb[8] = {0.3127, 0.329, 0.64, 0.33, 0.3, 0.6, 0.15, 0.06};
  const double* c = chromaticities ? chromaticities : kSrgb;
  bool srgbPrimaries = true;
  for (int i = 0; i < 8; ++i) srgbPrimaries = srgbPrimaries && std::abs(c[i] - kSrgb[i]) < 0.002;
  if (!(gamma > 0.01 && gamma < 10)) gamma = 1 / 2.2;
  if (srgbPrimaries && std::abs(gamma - 1 / 2.2) < 0.002) return nullptr;
  for (int i = 0; i < 8; ++i)
    if (!(c[i] > 0 && c[i] < 1)) return nullptr;
  silenceLittleCms();
  std::string key = std::to_string(gamma);
  for (int i = 0; i < 8; ++i) key += "," + std::to_string(c[i]);
  return cached(fnv1a(key), [&]() -> std::shared_ptr<const ColorTransform> {
    cmsCIExyY white{c[0], c[1], 1};
    cmsCIExyYTRIPLE primaries{{c[2], c[3], 1}, {c[4], c[5], 1}, {c[6], c[7], 1}};
    // The stored values are the linear light raised to the file gamma: decoding raises them to
    // its inverse.
    UniqueHandle<cmsToneCurve, cmsFreeToneCurve> curve(cmsBuildGamma(nullptr, 1 / gamma));
    if (!curve) return nullptr;
    cmsToneCurve* curves[3] = {curve.get(), curve.get(), curve.get()};
    Profile source(cmsCreateRGBProfile(&white, &primaries, curves));
    return source ? make(source.get(), Layout::kBgra) : nullptr;
  });
}

void ColorTransform::cmykToArgb(const std::uint8_t* in, std::uint32_t* out, int pixels,
                                bool inverted) {
  for (int i = 0; i < pixels; ++i, in += 4) {
    unsigned c = in[0], m = in[1], y = in[2], k = in[3];
    if (!inverted) c = 255 - c, m = 255 - m, y = 255 - y, k = 255 - k;
    // What is left of white after the ink of each colour and the black.
    unsigned r = (c * k + 127) / 255, g = (m * k + 127) / 255, b = (y * k + 127) / 255;
    out[i] = 0xFF000000u | (r << 16) | (g << 8) | b;
  }
}

void ColorTransform::apply(const void* in, std::uint32_t* out, int pixels) const {
  if (layout_ != Layout::kBgra) {
    for (int i = 0; i < pixels; ++i) out[i] = 0xFF000000u;  // CMYK has no alpha to copy
  }
  cmsDoTransform(handle_->transform.get(), in, out, static_cast<cmsUInt32Number>(pixels));
}

}  // namespace zv
