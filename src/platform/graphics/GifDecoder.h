// zv::GifDecoder reads a GIF's structure once (screen, colour tables, frames and their graphic
// control extensions) and composites frames on the logical screen on demand, as browsers show
// them. It keeps one canvas: asking for the frame after the last one composited costs one frame's
// decoding; asking for an earlier one starts again from the first frame. A frame's compressed data
// is decoded with the LZW variant GIF uses, into a scratch buffer the size of the frame.
//
// Browser rules followed: a first frame larger than the screen makes the screen its size; a frame
// with a zero width or height covers the screen; frames are clipped to the screen; the
// "background" disposal clears the frame's area to transparent; "previous" restores what was
// under the frame (transparent before the first frame); disposal values above 3 act as none;
// colour indexes past the table, and the transparent index, leave the pixel as it was.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

class GifDecoder {
 public:
  enum class Disposal { kNone, kBackground, kPrevious };

  struct Frame {
    int left = 0, top = 0, width = 0, height = 0;
    bool interlaced = false;
    Disposal disposal = Disposal::kNone;
    int transparentIndex = -1;
    std::optional<int> delay;    // hundredths, when the frame has a graphic control extension
    std::size_t colorTable = 0;  // offset of its RGB triples in the file
    int colorCount = 0;
    int minCodeSize = 0;
    std::vector<std::pair<std::size_t, std::size_t>> blocks;  // (offset, length) of data sub-blocks
  };

  // nullptr when the bytes do not start with a GIF header and logical screen, or the screen is over
  // the pixel budget. Frames cut short, frames with no colour table and frames past maxFrames are
  // not listed.
  static std::shared_ptr<GifDecoder> open(std::shared_ptr<const std::string> bytes,
                                          std::size_t maxFrames);
  // The same over bytes the caller keeps alive for as long as the decoder (reading a header).
  static std::shared_ptr<GifDecoder> openView(std::string_view bytes, std::size_t maxFrames);

  int width() const { return width_; }
  int height() const { return height_; }
  bool hasGlobalColorTable() const { return globalColors_ > 0; }
  const std::vector<Frame>& frames() const { return frames_; }

  // The screen after frame i is drawn (a new buffer the caller owns), or nullptr when i is past
  // the end or memory is short.
  std::shared_ptr<const PixelBuffer> composite(std::size_t index);

  GifDecoder(std::shared_ptr<const std::string> owner, std::string_view bytes)
      : owner_(std::move(owner)), bytes_(bytes) {}

 private:
  bool parse(std::size_t maxFrames);
  // Decodes frame f's indexes into indexes_; returns how many pixels were decoded.
  std::size_t decodeIndexes(const Frame& f);
  void draw(const Frame& f);
  void dispose(const Frame& f);
  bool reset();

  std::shared_ptr<const std::string> owner_;
  std::string_view bytes_;
  int width_ = 0, height_ = 0;
  std::size_t globalTable_ = 0;
  int globalColors_ = 0;
  std::vector<Frame> frames_;

  // Compositing state: the canvas after frame cursor_ (and, when that frame's disposal is
  // "previous", what lay under it).
  std::shared_ptr<PixelBuffer> canvas_;
  std::vector<std::uint32_t> saved_;
  std::optional<std::size_t> cursor_;
  std::vector<std::uint8_t> indexes_;
  std::vector<std::uint8_t> packed_;
};

}  // namespace zv
