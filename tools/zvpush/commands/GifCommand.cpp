// zvpush gif: how an animated GIF plays in the content extension. Prints the source frames'
// delays (hundredths), the slot length every frame is shown for, the expanded sequence (which
// source frame each slot shows) and the total duration; --frames DIR writes each composited source
// frame as frame_<i>.png. A file that is not a GIF that can be played prints {"error"} and exits 1.
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"
#ifdef ZVPUSH_CONTENT
#include "platform/graphics/CGImageSource.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/PngWriter.h"
#include "templates/ZVRichPushGif.h"
#else
#include "common/ContentProgram.h"
#endif

namespace zvpush {

namespace {

namespace json = boost::json;

#ifdef ZVPUSH_CONTENT
int failure(const std::string& message) {
  std::cout << pretty(json::object{{"error", message}}) << "\n";
  return kFailure;
}

int play(const std::string& path, const std::optional<std::string>& framesDir) {
  auto bytes = std::make_shared<const std::string>(readInput(path));
  if (zv::ImageDecoder::sniff(*bytes) != zv::ImageFormat::kGif) {
    return failure(path + " is not a GIF (no GIF87a or GIF89a header)");
  }
  auto source = zv::CGImageSource::createWithData(bytes);
  if (!source)
    return failure(path + " has no readable logical screen, or one over 4096 x 4096 pixels");
  if (source->count() == 0) return failure(path + " has no frame that can be decoded");
  auto image = zv::ZVRichPushGif::animatedImageWithAnimatedGIFData(bytes);
  if (!image) {
    return failure(path + " would play for more than " +
                   std::to_string(zv::ZVRichPushGif::kMaxSlots) + " slots");
  }

  json::array delays;
  std::int64_t total = 0;
  for (std::size_t i = 0; i < source->count(); ++i) {
    auto delay = zv::ZVRichPushGif::delayForFrameProperties(source->copyPropertiesAtIndex(i));
    delays.push_back(delay);
    total += delay;
  }
  // The expanded list repeats one image object per source frame, in order: runs of the same
  // object are one frame.
  json::array sequence;
  std::int64_t frame = -1;
  const zv::UIImage* last = nullptr;
  for (const auto& entry : image->images()) {
    if (entry.get() != last) ++frame;
    last = entry.get();
    sequence.push_back(frame);
  }
  auto slots = static_cast<std::int64_t>(image->images().size());

  if (framesDir) {
    std::error_code ec;
    std::filesystem::create_directories(*framesDir, ec);
    for (std::size_t i = 0; i < source->count(); ++i) {
      auto pixels = source->createImageAtIndex(i)->pixels();
      auto file = std::filesystem::path(*framesDir) / ("frame_" + std::to_string(i) + ".png");
      if (!pixels || !zv::PngWriter::write(*pixels, file)) {
        std::cerr << "zvpush: cannot write " << file.string() << "\n";
        return kFailure;
      }
    }
  }
  std::cout << pretty(json::object{{"frameCount", source->count()},
                                   {"delays", delays},
                                   {"slot", slots ? total / slots : 0},
                                   {"sequence", sequence},
                                   {"duration", image->duration()}})
            << "\n";
  return kOk;
}
#endif

int run(const Args& args) {
  ArgParser p({"--frames"}, {});
  p.parse(args);
  if (p.positional().size() != 1) throw UsageError("gif needs one GIF file");
#ifdef ZVPUSH_CONTENT
  return play(p.positional()[0], p.value("--frames"));
#else
  return runContentProgram("gif", args);
#endif
}

}  // namespace

ZVPUSH_COMMAND("gif", "how an animated GIF plays: frame delays, slot, sequence, duration",
               "gif FILE [--frames DIR]", run,
               "  FILE          the GIF (\"-\" reads stdin)\n"
               "  --frames DIR  also write each composited source frame as DIR/frame_<i>.png\n"
               "Prints {frameCount, delays (hundredths per frame), slot, sequence, duration}; a\n"
               "file that is not a playable GIF prints {error} and exits 1.\n");

}  // namespace zvpush
