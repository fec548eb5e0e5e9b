// A fixture for the content extension's templates: a manual run loop, the interface files
// registered with a measurer whose answers the test controls, a real store in a temporary folder,
// and notifications made from a payload plus image, GIF or clip files written as its attachments.
#pragma once

#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <map>
#include <memory>
#include <string>

#include "platform/text/TextMeasurer.h"
#include "platform/ui/RunLoop.h"
#include "support/ProcessStateReset.h"
#include "support/TestSupport.h"
#include "zentrova/UIViewController.h"

namespace zv {
class UNNotification;
}

namespace zvtest {

// Measures every text as `lines` lines of 20 points (one line of 20 when lines is 0).
class RowMeasurer : public zv::TextMeasurer {
 public:
  int lines = 1;
  zv::TextSize boundingSize(std::string_view text, const zv::Font&, double width) override {
    if (text.empty()) return {};
    return {width, 20.0 * lines};
  }
};

class TemplateFixture : public ::testing::Test {
 protected:
  TemplateFixture();
  ~TemplateFixture() override;

  // A notification of the payload whose attachments are the files named (URL -> file bytes),
  // each under the identifier the service gives that URL.
  std::shared_ptr<zv::UNNotification> notification(
      const boost::json::object& payload, const std::map<std::string, std::string>& files = {});
  // A controller of the given width, light or dark, its view laid out by the handler.
  std::shared_ptr<zv::UIViewController> show(const std::shared_ptr<zv::UNNotification>& n,
                                             double width = 375, bool dark = false);
  void hideDefaultContent(bool hidden);
  // A PNG of w x h pixels; a GIF of three frames w x h.
  static std::string png(int w, int h);
  static std::string gif(int w, int h);
  // A rich push: an image carousel (or stylised basic) of cards whose first widget is an image.
  static boost::json::object richPayload(const std::vector<std::string>& images,
                                         const std::string& type = "imageCarousel",
                                         bool autoStart = false);

  ProcessStateReset state;
  TempDir dir;
  std::shared_ptr<zv::ManualRunLoop> loop = std::make_shared<zv::ManualRunLoop>();
  std::shared_ptr<zv::RunLoop> previousLoop;
  std::shared_ptr<RowMeasurer> measurer = std::make_shared<RowMeasurer>();
};

}  // namespace zvtest
