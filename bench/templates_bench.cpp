// The content extension's work for a five-card carousel of 1080 x 720 JPEG attachments, from
// addPushTemplateToController to a laid-out view, against decoding those five JPEGs once (goal: at
// most 1.5 times). The carousel reads only each image's header to measure it; a cell's pixels are
// decoded when it is drawn. The JPEGs are made once with ImageMagick's convert.
#include <benchmark/benchmark.h>

#include <boost/json.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "model/ZVRichNotifUtils.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/ui/NSBundle.h"
#include "resources/ZVInterfaceFiles.h"
#include "zentrova/Error.h"
#include "zentrova/Platform.h"
#include "zentrova/UIViewController.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotification.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

const fs::path kFolder = fs::temp_directory_path() / "zv-templates-bench";

std::vector<fs::path> jpegs() {
  static std::vector<fs::path> files = [] {
    fs::create_directories(kFolder);
    std::vector<fs::path> made;
    const char* colours[] = {"orange", "teal", "purple", "gold", "navy"};
    for (int i = 0; i < 5; ++i) {
      fs::path file = kFolder / ("card" + std::to_string(i) + ".jpg");
      if (!fs::exists(file)) {
        std::string command = std::string("convert -size 1080x720 plasma:") + colours[i] +
                              "-white " + file.string() + " 2>/dev/null";
        if (std::system(command.c_str()) != 0) std::abort();
      }
      made.push_back(file);
    }
    return made;
  }();
  return files;
}

std::string readAll(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::shared_ptr<zv::UNNotification> carousel() {
  json::array cards;
  std::vector<std::shared_ptr<zv::UNNotificationAttachment>> attachments;
  int i = 0;
  for (const auto& file : jpegs()) {
    std::string url = "https://cdn.example.com/card" + std::to_string(i++) + ".jpg";
    cards.push_back(json::object{
        {"id", i},
        {"widgets", json::array{json::object{{"id", 1}, {"type", "image"}, {"content", url}}}}});
    zv::Error error;
    attachments.push_back(zv::UNNotificationAttachment::attachmentWithIdentifier(
        *zv::ZVRichNotifUtils::getAttachmentIDForURL(zv::Url::parse(url)), zv::Url::fileUrl(file),
        zv::Value(), &error));
  }
  json::object payload{
      {"aps", json::object{{"alert", "a"}}},
      {"zentrova", json::object{{"cid", "c"}, {"app_id", "a"}}},
      {"zovFeatures",
       json::object{{"richPush", json::object{{"title", "T"},
                                              {"body", "B"},
                                              {"displayName", "D"},
                                              {"expanded", json::object{{"type", "imageCarousel"},
                                                                        {"cards", cards}}}}}}}};
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("b", zv::Value(payload));
  auto content = request->content()->mutableCopy();
  content->setAttachments(attachments);
  return zv::UNNotification::notificationWithRequest(
      zv::UNNotificationRequest::requestWithIdentifier("b", content), 0);
}

void BM_DecodeFiveJpegs(benchmark::State& state) {
  std::vector<std::shared_ptr<const std::string>> bytes;
  for (const auto& file : jpegs())
    bytes.push_back(std::make_shared<const std::string>(readAll(file)));
  for (auto _ : state) {
    for (const auto& b : bytes) benchmark::DoNotOptimize(zv::ImageDecoder::decode(b));
  }
}

void BM_CarouselToLaidOutView(benchmark::State& state) {
  zv::ZVInterfaceFiles::registerWithBundle(zv::NSBundle::mainBundle(),
                                           std::make_shared<zv::PangoTextMeasurer>());
  zv::Platform::shared().setStoreDirectory(kFolder / "store");
  auto notification = carousel();
  for (auto _ : state) {
    auto controller = std::make_shared<zv::UIViewController>();
    controller->setView(zv::UIView::make({{0, 0}, {375, 0}}));
    zv::ZVPushTemplateHandler::sharedInstance().addPushTemplateToController(controller,
                                                                            notification);
    if (controller->view()->frame().size.height != 250) {
      state.SkipWithError("the carousel was not laid out at 250 points");
      return;
    }
  }
}

BENCHMARK(BM_DecodeFiveJpegs)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CarouselToLaidOutView)->Unit(benchmark::kMillisecond);

}  // namespace
