// zv::Resampler shrinks an image as its rows arrive, so a decoder never holds more than the
// target: each target pixel is the average of the source area it covers (fractional edges
// weighted), the filter that keeps fine detail from aliasing when shrinking by any ratio. Rows
// are premultiplied ARGB words; a target no smaller than the source is copied row for row.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

class Resampler {
 public:
  // Writes into target (whose size is the target size) from a source of the given size.
  Resampler(int sourceWidth, int sourceHeight, PixelBuffer& target);

  // The next source row (sourceWidth words).
  void addRow(const std::uint32_t* row);
  // Source rows given so far.
  int rowsAdded() const { return sourceRow_; }
  // After damage: the target row in progress is written from the rows it has, so a partial
  // image ends on its last decoded row rather than on transparency.
  void finishPartial();

 private:
  void emit();

  struct Span {
    int first = 0, last = 0;                // source columns [first, last]
    float firstWeight = 1, lastWeight = 1;  // coverage of the edge columns
  };
  int sourceWidth_, sourceHeight_;
  PixelBuffer& target_;
  std::vector<Span> spans_;
  std::vector<float> horizontal_;  // one source row shrunk across: 4 floats a pixel
  std::vector<float> sum_;         // the target row being gathered
  float gathered_ = 0;             // source rows' weight in sum_
  int sourceRow_ = 0;
  int targetRow_ = 0;
};

}  // namespace zv
