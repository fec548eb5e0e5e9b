#include "platform/graphics/Resampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zv {

Resampler::Resampler(int sourceWidth, int sourceHeight, PixelBuffer& target)
    : sourceWidth_(sourceWidth), sourceHeight_(sourceHeight), target_(target) {
  const double step = static_cast<double>(sourceWidth) / target.width;
  spans_.resize(target.width);
  for (int x = 0; x < target.width; ++x) {
    double from = x * step, to = std::min((x + 1) * step, static_cast<double>(sourceWidth));
    Span& s = spans_[x];
    s.first = static_cast<int>(from);
    s.last = std::max(s.first, static_cast<int>(std::ceil(to)) - 1);
    s.firstWeight = static_cast<float>(std::min(to, s.first + 1.0) - from);
    s.lastWeight = s.last == s.first ? s.firstWeight : static_cast<float>(to - s.last);
  }
  horizontal_.assign(static_cast<std::size_t>(target.width) * 4, 0);
  sum_.assign(horizontal_.size(), 0);
}

void Resampler::addRow(const std::uint32_t* row) {
  if (targetRow_ >= target_.height) return;
  if (target_.width == sourceWidth_ && target_.height == sourceHeight_) {
    std::memcpy(target_.row(targetRow_++), row, sizeof(std::uint32_t) * sourceWidth_);
    ++sourceRow_;
    return;
  }
  // Across: each target column sums the source columns it covers.
  for (int x = 0; x < target_.width; ++x) {
    const Span& s = spans_[x];
    float a = 0, r = 0, g = 0, b = 0, weight = 0;
    for (int c = s.first; c <= s.last; ++c) {
      float w = c == s.first ? s.firstWeight : c == s.last ? s.lastWeight : 1.0f;
      std::uint32_t p = row[c];
      a += w * (p >> 24);
      r += w * ((p >> 16) & 0xFF);
      g += w * ((p >> 8) & 0xFF);
      b += w * (p & 0xFF);
      weight += w;
    }
    float* out = &horizontal_[static_cast<std::size_t>(x) * 4];
    out[0] = a / weight, out[1] = r / weight, out[2] = g / weight, out[3] = b / weight;
  }
  // Down: this source row covers [top, bottom) of target rows, maybe two of them.
  const double step = static_cast<double>(sourceHeight_) / target_.height;
  double top = sourceRow_ / step, bottom = (sourceRow_ + 1) / step;
  ++sourceRow_;
  while (targetRow_ < target_.height) {
    double end = std::min(bottom, targetRow_ + 1.0);
    auto w = static_cast<float>(end - std::max(top, static_cast<double>(targetRow_)));
    if (w > 0) {
      for (std::size_t i = 0; i < sum_.size(); ++i) sum_[i] += w * horizontal_[i];
      gathered_ += w;
    }
    if (bottom < targetRow_ + 1.0 - 1e-9 && sourceRow_ < sourceHeight_) break;
    emit();
  }
}

void Resampler::emit() {
  if (gathered_ <= 0) gathered_ = 1;  // a row no source row reached stays transparent
  std::uint32_t* out = target_.row(targetRow_++);
  for (int x = 0; x < target_.width; ++x) {
    const float* p = &sum_[static_cast<std::size_t>(x) * 4];
    auto channel = [&](int i) {
      return static_cast<std::uint32_t>(std::clamp(std::lround(p[i] / gathered_), 0L, 255L));
    };
    std::uint32_t a = channel(0);
    out[x] = (a << 24) | (std::min(channel(1), a) << 16) | (std::min(channel(2), a) << 8) |
             std::min(channel(3), a);
  }
  std::fill(sum_.begin(), sum_.end(), 0.0f);
  gathered_ = 0;
}

void Resampler::finishPartial() {
  if (gathered_ > 0 && targetRow_ < target_.height) emit();
}

}  // namespace zv
