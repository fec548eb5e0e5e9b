#include "platform/graphics/ColorTransform.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/UniqueHandle.h"

namespace zv {

// A matrix/TRC profile (Display P3, Adobe RGB, most camera and monitor profiles) is converted
// by tables of our own, a few times faster than Little CMS's general path: the source curves to
// 16-bit linear light, one fixed-point matrix from the source primaries to sRGB's (both adapted
// to D50 in the profiles), and sRGB's curve from linear light (a table small enough to
// stay in the first-level cache: a step of 1/4096 is under one 8-bit level everywhere). Other
// profiles go through lcms.
struct ColorTransform::Handle {
  UniqueHandle<void, cmsDeleteTransform> transform;
  bool matrixShaper = false;
  std::array<std::array<std::int32_t, 256>, 3> linear{};  // 0 to 65535
  std::array<std::array<std::int32_t, 3>, 3> matrix{};    // 4096 = 1
  std::array<std::int32_t, 4096> encode{};                // by linear light / 16
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

// The matrix whose columns are a matrix profile's red, green and blue colorants (XYZ, D50).
bool colorants(cmsHPROFILE p, double m[3][3]) {
  const cmsTagSignature tags[3] = {cmsSigRedColorantTag, cmsSigGreenColorantTag,
                                   cmsSigBlueColorantTag};
  for (int c = 0; c < 3; ++c) {
    auto* xyz = static_cast<const cmsCIEXYZ*>(cmsReadTag(p, tags[c]));
    if (!xyz) return false;
    m[0][c] = xyz->X, m[1][c] = xyz->Y, m[2][c] = xyz->Z;
  }
  return true;
}

bool invert(const double m[3][3], double out[3][3]) {
  double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
               m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
  if (std::abs(det) < 1e-9) return false;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      int a = (j + 1) % 3, b = (j + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
      out[i][j] = (m[a][c] * m[b][d] - m[a][d] * m[b][c]) / det;
    }
  }
  return true;
}

void matrixShaperTables(cmsHPROFILE source, cmsHPROFILE srgb, ColorTransform::Handle& h) {
  if (!cmsIsMatrixShaper(source) || !cmsIsMatrixShaper(srgb)) return;
  double from[3][3], to[3][3], toInverse[3][3];
  if (!colorants(source, from) || !colorants(srgb, to) || !invert(to, toInverse)) return;
  const cmsTagSignature curves[3] = {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
  for (int c = 0; c < 3; ++c) {
    auto* curve = static_cast<cmsToneCurve*>(cmsReadTag(source, curves[c]));
    if (!curve) return;
    for (int v = 0; v < 256; ++v) {
      double l =
          std::clamp(static_cast<double>(cmsEvalToneCurveFloat(curve, v / 255.0f)), 0.0, 1.0);
      h.linear[c][v] = static_cast<std::int32_t>(std::lround(l * 65535));
    }
  }
  for (int i = 0; i < 3; ++i) {
    // A row's weights may add up to at most 7 (ProPhoto's reach 3): a sum of three 16-bit lights
    // times them stays within 31 bits. Stranger profiles go through lcms.
    double weight = 0;
    for (int j = 0; j < 3; ++j) {
      double sum = 0;
      for (int k = 0; k < 3; ++k) sum += toInverse[i][k] * from[k][j];
      weight += std::abs(sum);
      if (!(weight <= 7)) return;
      h.matrix[i][j] = static_cast<std::int32_t>(std::lround(sum * 4096));
    }
  }
  for (int i = 0; i < 4096; ++i) {
    double l = (i * 16 + 8) / 65535.0;
    double v = l <= 0.0031308 ? 12.92 * l : 1.055 * std::pow(l, 1 / 2.4) - 0.055;
    h.encode[i] = static_cast<std::int32_t>(std::lround(std::clamp(v, 0.0, 1.0) * 255));
  }
  h.matrixShaper = true;
}

std::shared_ptr<const ColorTransform> make(cmsHPROFILE source, ColorTransform::Layout layout) {
  bool cmyk = layout != ColorTransform::Layout::kBgra;
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
  cmsHTRANSFORM t =
      cmsCreateTransform(source, in, srgb.get(), TYPE_BGRA_8, INTENT_RELATIVE_COLORIMETRIC,
                         cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOCACHE);
  if (!t) return nullptr;
  auto handle = std::make_shared<ColorTransform::Handle>();
  handle->transform.reset(t);
  if (!cmyk) matrixShaperTables(source, srgb.get(), *handle);
  return std::make_shared<ColorTransform>(std::move(handle), layout);
}

void silenceLittleCms() {
  static std::once_flag once;
  std::call_once(once, [] { cmsSetLogErrorHandler(nullptr); });
}

// The table conversion, in a loop simple enough for the compiler to vectorise: with AVX2 (chosen
// when the processor has it) the table reads become gathers, eight pixels at a time.
__attribute__((target_clones("avx2", "default"))) void convertMatrixShaper(
    const std::uint32_t* __restrict from, std::uint32_t* __restrict out, int pixels,
    const std::int32_t* __restrict lr, const std::int32_t* __restrict lg,
    const std::int32_t* __restrict lb, const std::int32_t* __restrict matrix,
    const std::int32_t* __restrict encode) {
  const std::int32_t m0 = matrix[0], m1 = matrix[1], m2 = matrix[2], m3 = matrix[3], m4 = matrix[4],
                     m5 = matrix[5], m6 = matrix[6], m7 = matrix[7], m8 = matrix[8];
  for (int i = 0; i < pixels; ++i) {
    const std::uint32_t p = from[i];
    const std::int32_t r = lr[(p >> 16) & 0xFF], g = lg[(p >> 8) & 0xFF], b = lb[p & 0xFF];
    // To steps of 1/4096 of linear light.
    std::int32_t x = (m0 * r + m1 * g + m2 * b) >> 16;
    std::int32_t y = (m3 * r + m4 * g + m5 * b) >> 16;
    std::int32_t z = (m6 * r + m7 * g + m8 * b) >> 16;
    x = x < 0 ? 0 : x > 4095 ? 4095 : x;
    y = y < 0 ? 0 : y > 4095 ? 4095 : y;
    z = z < 0 ? 0 : z > 4095 ? 4095 : z;
    out[i] = (p & 0xFF000000u) | (static_cast<std::uint32_t>(encode[x]) << 16) |
             (static_cast<std::uint32_t>(encode[y]) << 8) | static_cast<std::uint32_t>(encode[z]);
  }
}

}  // namespace

std::shared_ptr<const ColorTransform> ColorTransform::fromIcc(std::string_view profile,
                                                              Layout layout) {
  if (profile.size() < 128 || profile.size() > kMaxProfileBytes) return nullptr;
  // The colour space, from the header's bytes 16 to 19 (lcms would give it as an enum, whatever
  // value a damaged file holds): RGB pixels need an RGB profile, CMYK ones a CMYK profile.
  if (profile.substr(16, 4) != (layout == Layout::kBgra ? "RGB " : "CMYK")) return nullptr;
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
  if (handle_->matrixShaper) {
    const Handle& h = *handle_;
    convertMatrixShaper(static_cast<const std::uint32_t*>(in), out, pixels, h.linear[0].data(),
                        h.linear[1].data(), h.linear[2].data(), &h.matrix[0][0], h.encode.data());
    return;
  }
  if (layout_ != Layout::kBgra) {
    for (int i = 0; i < pixels; ++i) out[i] = 0xFF000000u;  // CMYK has no alpha to copy
  }
  cmsDoTransform(handle_->transform.get(), in, out, static_cast<cmsUInt32Number>(pixels));
}

}  // namespace zv
