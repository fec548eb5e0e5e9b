// zv::CGImageSource reads the images in a file's bytes: a GIF's frames, each composited on the
// logical screen as browsers show it (disposal to none, background or previous; transparency;
// global and local colour tables; interlacing; frames smaller than the screen), or the one image of
// a PNG, JPEG or WebP file. Frames decode when their pixels are first drawn and are composited in
// order from the last one shown, so a long GIF holds one canvas, not every frame.
//
// Each frame's properties hold the pixel size and, for a GIF, a GIF dictionary: the raw delay in
// seconds as "UnclampedDelayTime" and as "DelayTime", except that a raw delay of 0 or 1 hundredth
// reads as 0.1 s there; a frame without a graphic control extension has no delay keys.
//
// Damage: a frame whose data is cut short, or that has no colour table, is not counted (a truncated
// file gives the frames before the damage); codes that do not decode leave the rest of their frame
// undrawn. At most kMaxFrames frames are read; a canvas over the pixel budget gives no source.
// Main thread only.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/graphics/CGImage.h"
#include "zentrova/Value.h"

namespace zv {

class GifDecoder;

inline constexpr const char* kCGImagePropertyGIFDictionary = "{GIF}";
inline constexpr const char* kCGImagePropertyGIFDelayTime = "DelayTime";
inline constexpr const char* kCGImagePropertyGIFUnclampedDelayTime = "UnclampedDelayTime";
inline constexpr const char* kCGImagePropertyPixelWidth = "PixelWidth";
inline constexpr const char* kCGImagePropertyPixelHeight = "PixelHeight";

class CGImageSource {
 public:
  // More frames than any animation sent in a push needs; later frames are not read.
  static constexpr std::size_t kMaxFrames = 1000;

  // nullptr when the bytes are not an image that can be read.
  static std::shared_ptr<CGImageSource> createWithData(std::shared_ptr<const std::string> data);
  static std::shared_ptr<CGImageSource> createWithURL(const std::filesystem::path& file);

  std::size_t count() const;
  // Frame i, its pixels decoded when first drawn; nullptr past the end.
  std::shared_ptr<CGImage> createImageAtIndex(std::size_t index) const;
  // Frame i's properties, nil past the end.
  Value copyPropertiesAtIndex(std::size_t index) const;
  bool isGif() const { return gif_ != nullptr; }

  explicit CGImageSource(std::shared_ptr<GifDecoder> gif);
  explicit CGImageSource(std::shared_ptr<CGImage> still);

 private:
  std::shared_ptr<GifDecoder> gif_;
  std::shared_ptr<CGImage> still_;
};

}  // namespace zv
