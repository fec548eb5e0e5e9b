// zvpush inspect's warnings: each code from a payload that has that one fault, none for a clean
// payload, and --strict turning a warning into exit status 1.
#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <fstream>

#include "support/TestSupport.h"

namespace zvtest {
namespace {

namespace json = boost::json;

json::object clean() {
  return json::parse(R"({
    "aps": {"alert": {"title": "T", "body": "B"}, "mutable-content": 1},
    "zentrova": {"cid": "c", "app_id": "a"},
    "zovFeatures": {"richPush": {"title": "T", "body": "B", "displayName": "D",
      "expanded": {"type": "imageCarousel", "autoStart": true, "style": {"bgColor": "#102030"},
        "cards": [
          {"id": 1, "widgets": [{"id": 1, "type": "image", "content": "https://cdn.example.com/1.png"}]},
          {"id": 2, "widgets": [{"id": 1, "type": "image", "content": "https://cdn.example.com/2.png"}]}]}}}})")
      .as_object();
}

json::value& at(json::object& o, std::initializer_list<const char*> path) {
  json::value* v = &o[*path.begin()];
  for (auto it = path.begin() + 1; it != path.end(); ++it) v = &v->as_object()[*it];
  return *v;
}

json::value& card(json::object& o, int i) {
  return at(o, {"zovFeatures", "richPush", "expanded", "cards"}).as_array()[i];
}

TEST(InspectWarningsTest, EachCodeFromItsOneFault) {
  struct Case {
    const char* code;
    std::function<void(json::object&)> fault;
    std::string path;
  } cases[] = {
      {"mutable-content-missing",
       [](json::object& p) { at(p, {"aps"}).as_object().erase("mutable-content"); },
       "aps.mutable-content"},
      {"alert-missing", [](json::object& p) { at(p, {"aps"}).as_object().erase("alert"); },
       "aps.alert"},
      {"alert-body-missing",
       [](json::object& p) {
         at(p, {"aps", "alert"}).as_object().erase("body");
       },
       "aps.alert.body"},
      {"payload-too-large", [](json::object& p) { p["padding"] = std::string(5000, 'x'); }, ""},
      {"media-url-not-https",
       [](json::object& p) {
         at(p, {"zentrova"}).as_object()["media-attachment"] = "http://h/a.png";
       },
       "zentrova.media-attachment"},
      {"media-url-invalid",
       [](json::object& p) { at(p, {"zentrova"}).as_object()["media-attachment"] = "not a url"; },
       "zentrova.media-attachment"},
      {"media-type-unknown",
       [](json::object& p) { at(p, {"zentrova"}).as_object()["media-type"] = "Image"; },
       "zentrova.media-type"},
      {"color-invalid",
       [](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded", "style"}).as_object()["bgColor"] = "red";
       },
       "zovFeatures.richPush.expanded.style.bgColor"},
      {"autostart-string",
       [](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded"}).as_object()["autoStart"] = "true";
       },
       "zovFeatures.richPush.expanded.autoStart"},
      {"carousel-single-card",
       [](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded", "cards"}).as_array().pop_back();
       },
       "zovFeatures.richPush.expanded.cards"},
      {"carousel-card-without-image",
       [](json::object& p) {
         card(p, 1).as_object()["widgets"].as_array()[0].as_object()["type"] = "text";
       },
       "zovFeatures.richPush.expanded.cards[1].widgets[0]"},
      {"stylized-without-image",
       [](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded"}).as_object()["type"] = "stylizedBasic";
         card(p, 0).as_object()["widgets"].as_array()[0].as_object()["type"] = "text";
       },
       "zovFeatures.richPush.expanded.cards[0].widgets"},
  };
  TempDir dir;
  auto inspect = [&](const json::object& payload, const std::string& flags = "") {
    std::ofstream(dir.path() / "p.json") << json::serialize(payload);
    return runZvpush("inspect " + (dir.path() / "p.json").string() + " --compact " + flags);
  };
  auto none = inspect(clean(), "--strict");
  EXPECT_EQ(none.exit, 0);
  EXPECT_EQ(json::parse(none.out).at("warnings"), json::array());
  for (const auto& c : cases) {
    json::object payload = clean();
    c.fault(payload);
    auto r = inspect(payload);
    EXPECT_EQ(r.exit, 0) << c.code;
    json::value out = json::parse(r.out);
    const auto& warnings = out.at("warnings").as_array();
    ASSERT_EQ(warnings.size(), 1u) << c.code << ": " << json::serialize(warnings);
    EXPECT_EQ(warnings[0].at("code"), c.code);
    EXPECT_EQ(warnings[0].at("path"), c.path.c_str()) << c.code;
    EXPECT_FALSE(warnings[0].at("message").as_string().empty());
    EXPECT_EQ(inspect(payload, "--strict").exit, 1) << c.code;
  }
}

}  // namespace
}  // namespace zvtest
