// zv::ColorTransform converts decoded pixels from an image's colour space to sRGB, the space the
// renderer draws in, with Little CMS 2. A transform is made once per profile (keyed by a hash of
// the profile's bytes and the pixel layout) and kept in a small cache shared by every decoder, so a
// carousel of photos from one camera builds one. Images without a profile are sRGB and need none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace zv {

class ColorTransform {
 public:
  enum class Layout {
    kBgra,          // straight B, G, R, A bytes (an ARGB word): alpha kept
    kCmyk,          // C, M, Y, K bytes, 0 = no ink; written as opaque ARGB words
    kCmykInverted,  // the same with 255 = no ink, as Adobe's JPEGs store it
  };
  // At most this many transforms are kept; the oldest made goes first.
  static constexpr std::size_t kCacheSize = 8;
  // ICC profiles larger than this are not read (a JPEG can carry 16 MB of them).
  static constexpr std::size_t kMaxProfileBytes = 4u << 20;

  // The transform from an ICC profile; nullptr when the profile cannot be read, is sRGB's own or
  // does not describe pixels of the layout (a greyscale profile on RGB pixels).
  static std::shared_ptr<const ColorTransform> fromIcc(std::string_view profile, Layout layout);
  // The transform for a PNG's gAMA and cHRM chunks (file gamma; white point and red, green, blue
  // primaries as x, y pairs, or nullptr for sRGB's); nullptr when they describe sRGB.
  static std::shared_ptr<const ColorTransform> fromGamma(double gamma,
                                                         const double* chromaticities);
  // A CMYK image without a profile: the plain complement of ink (no transform object needed).
  static void cmykToArgb(const std::uint8_t* in, std::uint32_t* out, int pixels, bool inverted);

  // Converts pixels; in and out may be the same row for kBgra.
  void apply(const void* in, std::uint32_t* out, int pixels) const;

  struct Handle;
  explicit ColorTransform(std::shared_ptr<Handle> handle, Layout layout)
      : handle_(std::move(handle)), layout_(layout) {}

 private:
  std::shared_ptr<Handle> handle_;
  Layout layout_;
};

}  // namespace zv
