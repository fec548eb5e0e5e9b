// WebP through libwebp; an animated WebP shows its first frame (libwebpdemux).
#include <webp/decode.h>
#include <webp/demux.h>

#include <cstring>

#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/PixelBuffer.h"

namespace zv {

std::optional<ImageHeader> ImageDecoder::webpHeader(std::string_view bytes) {
  WebPBitstreamFeatures features;
  if (WebPGetFeatures(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(),
                      &features) != VP8_STATUS_OK) {
    return std::nullopt;
  }
  return ImageHeader{ImageFormat::kWebp, features.width, features.height};
}

std::shared_ptr<const PixelBuffer> ImageDecoder::decodeWebp(std::string_view bytes) {
  auto data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config) ||
      WebPGetFeatures(data, bytes.size(), &config.input) != VP8_STATUS_OK) {
    return nullptr;
  }
  auto pixels = PixelBuffer::make(config.input.width, config.input.height);
  if (!pixels) return nullptr;
  std::size_t size = pixels->byteSize();
  auto* out = reinterpret_cast<std::uint8_t*>(pixels->data.data());

  if (config.input.has_animation) {
    WebPData whole{data, bytes.size()};
    WebPAnimDecoderOptions options;
    if (!WebPAnimDecoderOptionsInit(&options)) return nullptr;
    options.color_mode = MODE_bgrA;  // premultiplied ARGB words
    UniqueHandle<WebPAnimDecoder, WebPAnimDecoderDelete> decoder(
        WebPAnimDecoderNew(&whole, &options));
    std::uint8_t* frame = nullptr;
    int timestamp = 0;
    if (!decoder || !WebPAnimDecoderGetNext(decoder.get(), &frame, &timestamp)) return nullptr;
    std::memcpy(out, frame, size);
    return pixels;
  }
  config.output.colorspace = MODE_bgrA;
  config.output.is_external_memory = 1;
  config.output.u.RGBA.rgba = out;
  config.output.u.RGBA.stride = pixels->width * 4;
  config.output.u.RGBA.size = size;
  VP8StatusCode status = WebPDecode(data, bytes.size(), &config);
  WebPFreeDecBuffer(&config.output);
  if (status != VP8_STATUS_OK) return nullptr;
  return pixels;
}

}  // namespace zv
