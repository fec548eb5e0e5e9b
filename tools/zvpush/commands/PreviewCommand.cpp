// zvpush preview: runs the content extension on a delivered notification (the output of zvpush
// service, or a bare payload, which has no attachments) as the phone would show it expanded, lets
// --at seconds of run-loop time pass, optionally taps a point, and draws the controller's view to a
// PNG. Prints {"png", "size", "template", "tap"} (and "animation" with --animate, which draws the
// notification over time into an animated WebP); --tree writes the view tree as JSON.
#include <malloc.h>
#include <stdlib.h>

#include <boost/json.hpp>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"
#ifdef ZVPUSH_CONTENT
#include "common/ScratchFolder.h"
#include "platform/graphics/WebPAnimationWriter.h"
#include "platform/ui/RunLoop.h"
#include "preview/PreviewScene.h"
#include "preview/PreviewTree.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/Renderer.h"
#include "zentrova/UIViewController.h"
#include "zentrova/ZVExtensionDataManager.h"
#else
#include "common/ContentProgram.h"
#endif

namespace zvpush {

namespace {

namespace json = boost::json;

#ifdef ZVPUSH_CONTENT

struct Options {
  std::string input, output;
  PreviewSettings settings;
  std::optional<std::string> tree, store, appGroup;
  // --animate: the file, how long and how many frames a second.
  std::optional<std::string> animate;
  double duration = 10, fps = 10;
};

double positive(const ArgParser& p, const char* name, double fallback) {
  auto v = p.number(name);
  if (!v) return fallback;
  if (!(*v > 0 && *v < 1e5)) throw UsageError(std::string(name) + " needs a number above 0");
  return *v;
}

Options parse(const Args& args) {
  ArgParser p({"-o", "--width", "--screen-height", "--scale", "--platform-version", "--at", "--tap",
               "--tree", "--store", "--app-group", "--animate", "--duration", "--fps"},
              {"--dark", "--default-content-hidden"});
  p.parse(args);
  if (p.positional().size() != 1) throw UsageError("preview needs one INPUT.json");
  Options o;
  o.input = p.positional()[0];
  o.animate = p.value("--animate");
  if (!p.value("-o") && !o.animate)
    throw UsageError("preview needs -o OUT.png or --animate OUT.webp");
  o.output = p.value("-o").value_or("");
  o.duration = positive(p, "--duration", 10);
  o.fps = positive(p, "--fps", 10);
  if (o.duration > 600) throw UsageError("--duration is at most 600 seconds");
  if (o.fps > 60) throw UsageError("--fps is at most 60");
  o.settings.width = positive(p, "--width", 375);
  o.settings.screenHeight = positive(p, "--screen-height", 812);
  o.settings.scale = positive(p, "--scale", 2);
  if (o.settings.scale > 8) throw UsageError("--scale is at most 8");
  o.settings.platformVersion = positive(p, "--platform-version", 17.0);
  o.settings.at = p.number("--at").value_or(0);
  if (!(o.settings.at >= 0 && o.settings.at <= 86400))
    throw UsageError("--at needs seconds from 0 to 86400");
  o.settings.dark = p.flag("--dark");
  o.settings.contentHidden = p.flag("--default-content-hidden");
  if (auto tap = p.value("--tap")) {
    double x = 0, y = 0;
    char comma = 0;
    std::istringstream in(*tap);
    if (!(in >> x >> comma >> y) || comma != ',' || !in.eof() || !std::isfinite(x) ||
        !std::isfinite(y)) {
      throw UsageError("--tap needs X,Y");
    }
    o.settings.tap = zv::CGPoint{x, y};
  }
  o.tree = p.value("--tree");
  o.store = p.value("--store");
  o.appGroup = p.value("--app-group");
  if (o.store.has_value() != o.appGroup.has_value()) {
    throw UsageError("--store and --app-group go together");
  }
  return o;
}

// The expanded notification over time: a frame every 1/fps seconds of run-loop time from now on
// (the carousel pages, GIFs play, clips run), drawn and written as an animated WebP in which equal
// frames in a row are one longer frame. The number of frames written, or nullopt on failure.
std::optional<int> animate(const Options& o, zv::ManualRunLoop& loop, zv::UIView& root,
                           const zv::Renderer& renderer) {
  zv::WebPAnimationWriter writer;
  const double start = loop.now();
  const int count = std::max(1, static_cast<int>(std::lround(o.duration * o.fps)));
  for (int i = 0; i < count; ++i) {
    // Frame times are computed from the start, not summed, and nudged past rounding, so that a
    // timer due at a frame's time has fired in that frame.
    double target = start + i / o.fps + 1e-9;
    if (target > loop.now()) loop.advance(target - loop.now());
    root.layoutIfNeeded();
    auto pixels = renderer.draw(root);
    int ms = static_cast<int>(std::lround(i * 1000.0 / o.fps));
    if (!pixels || !writer.add(*pixels, ms)) return std::nullopt;
  }
  if (!writer.finish(static_cast<int>(std::lround(o.duration * 1000)), *o.animate)) {
    return std::nullopt;
  }
  return writer.frameCount();
}

int preview(const Options& o) {
  zv::Value input = readJsonObject(o.input);

  // Card clicks land in the given store, else in a scratch one that goes away with the run.
  std::optional<ScratchFolder> scratch;
  auto& platform = zv::Platform::shared();
  if (o.store) {
    platform.setStoreDirectory(std::filesystem::absolute(*o.store));
    zv::ZVExtensionDataManager::sharedManager().setAppGroupID(*o.appGroup);
  } else {
    scratch.emplace("zvpush-preview");
    platform.setStoreDirectory(scratch->path);
    zv::ZVExtensionDataManager::sharedManager().setAppGroupID("group.zvpush.preview");
  }
  try {
    PreviewScene::prepare();
  } catch (const zv::Exception& e) {
    std::cerr << "zvpush: " << e.reason() << "\n";
    return kFailure;
  }
  PreviewScene scene = PreviewScene::show(input, o.settings);
  const auto& root = scene.root();
  const auto& loop = scene.loop;
  json::value tap = scene.tap;

  // What the layout read and let go (attachment bytes measured for their headers) goes back to
  // the system before the pictures are decoded and drawn: the peak is the drawing's.
  malloc_trim(0);
  zv::Renderer renderer(o.settings.scale);
  if (!o.output.empty() && !renderer.writePng(*root, o.output)) {
    std::cerr << "zvpush: cannot write " << o.output << "\n";
    return kFailure;
  }
  if (o.tree) {
    std::ofstream out(*o.tree);
    out << pretty(PreviewTree::describe(*root)) << "\n";
    if (!out) {
      std::cerr << "zvpush: cannot write " << *o.tree << "\n";
      return kFailure;
    }
  }
  auto kind = scene.templateKind();
  zv::CGSize size = root->frame().size;
  json::object out{{"png", o.output.empty() ? json::value(nullptr) : json::value(o.output)},
                   {"size", json::array{size.width, size.height}},
                   {"template", kind ? json::value(*kind) : json::value(nullptr)},
                   {"tap", tap}};
  if (o.animate) {
    auto frames = animate(o, *loop, *root, renderer);
    if (!frames) {
      std::cerr << "zvpush: cannot write " << *o.animate << "\n";
      return kFailure;
    }
    out["animation"] = json::object{
        {"webp", *o.animate}, {"frames", *frames}, {"duration", o.duration}, {"fps", o.fps}};
  }
  std::cout << pretty(out) << "\n";
  return kOk;
}

#endif

int run(const Args& args) {
#ifdef ZVPUSH_CONTENT
  return preview(parse(args));
#else
  return runContentProgram("preview", args);
#endif
}

}  // namespace

ZVPUSH_COMMAND(
    "preview", "render the expanded notification as the content extension shows it",
    "preview INPUT.json -o OUT.png [--width 375] [--screen-height 812] [--scale 2] "
    "[--dark] [--default-content-hidden] [--platform-version V] [--at SECONDS] "
    "[--tap X,Y] [--tree FILE] [--store DIR --app-group ID] "
    "[--animate OUT.webp [--duration 10] [--fps 10]]",
    run,
    "  INPUT.json               the output of zvpush service, or a bare payload\n"
    "  -o OUT.png               where the picture goes (required without --animate)\n"
    "  --width W                the controller's width in points (375)\n"
    "  --screen-height H        the screen's height in points (812)\n"
    "  --scale S                pixels per point (2)\n"
    "  --dark                   dark style\n"
    "  --default-content-hidden the host hides the system's text: the body view shows\n"
    "  --platform-version V     the phone's system version (17.0)\n"
    "  --at SECONDS             run-loop time that passes before drawing (0)\n"
    "  --tap X,Y                tap that point after --at\n"
    "  --tree FILE              also write the view tree as JSON\n"
    "  --store DIR --app-group ID  the store a card click lands in (default: a scratch\n"
    "                           store removed afterwards)\n"
    "  --animate OUT.webp       also (or, without -o, only) write the notification over\n"
    "                           time as an animated WebP, from --at on: the carousel\n"
    "                           paging, GIFs playing, a clip's first seconds; equal\n"
    "                           frames in a row become one longer frame\n"
    "  --duration S             the animation's length in seconds (10, at most 600)\n"
    "  --fps N                  frames drawn per second of the animation (10, at most 60)\n");

}  // namespace zvpush
