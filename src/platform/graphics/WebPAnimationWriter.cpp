#include "platform/graphics/WebPAnimationWriter.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <cstdio>
#include <cstring>

#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/PixelBuffer.h"

namespace zv {

struct WebPAnimationWriter::Encoder {
  UniqueHandle<WebPAnimEncoder, WebPAnimEncoderDelete> handle;
  int width = 0;
  int height = 0;
};

namespace {

// A straight (not premultiplied) ARGB word, as WebPPicture's argb takes it.
std::uint32_t straight(std::uint32_t p) {
  std::uint32_t a = p >> 24;
  if (a == 0 || a == 255) return a == 0 ? 0 : p;
  auto channel = [&](int shift) {
    return std::min(255u, (((p >> shift) & 0xFF) * 255 + a / 2) / a);
  };
  return (a << 24) | (channel(16) << 16) | (channel(8) << 8) | channel(0);
}

struct Picture {
  WebPPicture picture;
  Picture() { WebPPictureInit(&picture); }
  ~Picture() { WebPPictureFree(&picture); }
};

}  // namespace

WebPAnimationWriter::WebPAnimationWriter(int quality) : quality_(quality) {}
WebPAnimationWriter::~WebPAnimationWriter() = default;

bool WebPAnimationWriter::add(const PixelBuffer& frame, int timestampMs) {
  if (previous_ && previous_->data == frame.data && previous_->width == frame.width) return true;
  if (!encoder_) {
    WebPAnimEncoderOptions options;
    if (!WebPAnimEncoderOptionsInit(&options)) return false;
    encoder_ = std::make_unique<Encoder>();
    encoder_->width = frame.width;
    encoder_->height = frame.height;
    encoder_->handle.reset(WebPAnimEncoderNew(frame.width, frame.height, &options));
    if (!encoder_->handle) return false;
  }
  Picture pic;
  pic.picture.use_argb = 1;
  pic.picture.width = encoder_->width;
  pic.picture.height = encoder_->height;
  if (!WebPPictureAlloc(&pic.picture)) return false;
  for (int y = 0; y < encoder_->height; ++y) {
    std::uint32_t* out = pic.picture.argb + static_cast<std::size_t>(y) * pic.picture.argb_stride;
    for (int x = 0; x < encoder_->width; ++x) {
      out[x] = y < frame.height && x < frame.width ? straight(frame.row(y)[x]) : 0;
    }
  }
  WebPConfig config;
  if (!WebPConfigInit(&config)) return false;
  config.quality = static_cast<float>(quality_);
  if (!WebPAnimEncoderAdd(encoder_->handle.get(), &pic.picture, timestampMs, &config)) {
    return false;
  }
  previous_ = std::make_shared<PixelBuffer>(frame);
  ++frames_;
  return true;
}

bool WebPAnimationWriter::finish(int endMs, const std::filesystem::path& file) {
  if (!encoder_) return false;
  if (!WebPAnimEncoderAdd(encoder_->handle.get(), nullptr, endMs, nullptr)) return false;
  WebPData data;
  WebPDataInit(&data);
  bool ok = WebPAnimEncoderAssemble(encoder_->handle.get(), &data) != 0;
  if (ok) {
    UniqueHandle<std::FILE, std::fclose> out(std::fopen(file.c_str(), "wb"));
    ok = out && std::fwrite(data.bytes, 1, data.size, out.get()) == data.size &&
         std::fclose(out.release()) == 0;
  }
  WebPDataClear(&data);
  return ok;
}

}  // namespace zv
