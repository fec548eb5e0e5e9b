// The content extension showing one delivered notification, as zvpush preview and zvpush studio
// draw it: the phone's settings applied (width, screen, scale, system version, light or dark, the
// host's default-content setting), the template handler's view laid out on a manual run loop,
// run-loop time let pass and a tap delivered. Content side only (zvpush-content).
#pragma once

#include <boost/json/value.hpp>
#include <memory>
#include <optional>
#include <string>

#include "zentrova/Geometry.h"
#include "zentrova/Value.h"

namespace zv {
class ManualRunLoop;
class UIView;
class UIViewController;
}  // namespace zv

namespace zvpush {

struct PreviewSettings {
  double width = 375, screenHeight = 812, scale = 2, platformVersion = 17.0, at = 0;
  bool dark = false, contentHidden = false;
  std::optional<zv::CGPoint> tap;
};

struct PreviewScene {
  // Installs the text measurer (once per process) and the interface files. Raises zv::Exception
  // when the fonts cannot be loaded. Card clicks land in the store the platform and the data
  // manager point at when show() runs.
  static void prepare();
  // Shows input (the output of zvpush service, or a bare payload without attachments).
  static PreviewScene show(const zv::Value& input, const PreviewSettings& settings);

  std::shared_ptr<zv::ManualRunLoop> loop;
  std::shared_ptr<zv::UIViewController> controller;
  // What the tap did ({"point", "view", "defaultAction", "cardClick"}), null without a tap.
  boost::json::value tap;

  const std::shared_ptr<zv::UIView>& root() const;
  // "media", "carousel", "empty", or nullopt when no template view was added.
  std::optional<std::string> templateKind() const;
};

}  // namespace zvpush
