// zvpush inspect's advice to a sender: each warning code and each reason from a payload that has
// that one fault, none for a clean payload, --strict turning a warning into exit status 1, and the
// library's own log left as it is beside the reasons.
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

// Runs zvpush inspect on a payload and returns its exit status and parsed output.
struct Inspected {
  int exit;
  json::value out;
};

Inspected inspect(const json::object& payload, const std::string& flags = "") {
  TempDir dir;
  std::ofstream(dir.path() / "p.json") << json::serialize(payload);
  auto r = runZvpush("inspect " + (dir.path() / "p.json").string() + " --compact " + flags);
  return {r.exit, r.out.empty() ? json::value() : json::parse(r.out)};
}

TEST(PlanAdviceTest, EachWarningFromItsOneFault) {
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
  auto none = inspect(clean(), "--strict");
  EXPECT_EQ(none.exit, 0);
  EXPECT_EQ(none.out.at("warnings"), json::array());
  for (const auto& c : cases) {
    json::object payload = clean();
    c.fault(payload);
    auto r = inspect(payload);
    EXPECT_EQ(r.exit, 0) << c.code;
    const auto& warnings = r.out.at("warnings").as_array();
    ASSERT_EQ(warnings.size(), 1u) << c.code << ": " << json::serialize(warnings);
    EXPECT_EQ(warnings[0].at("code"), c.code);
    EXPECT_EQ(warnings[0].at("path"), c.path.c_str()) << c.code;
    EXPECT_FALSE(warnings[0].at("message").as_string().empty());
    EXPECT_EQ(inspect(payload, "--strict").exit, 1) << c.code;
  }
}

TEST(PlanAdviceTest, EachReasonFromItsOneFault) {
  struct Case {
    std::function<void(json::object&)> fault;
    std::string path;
    std::string says;  // a part of the message
  } cases[] = {
      {[](json::object& p) {
         at(p, {"zovFeatures", "richPush"}).as_object().erase("title");
       },
       "zovFeatures.richPush.title", "\"title\" is missing"},
      {[](json::object& p) {
         at(p, {"zovFeatures", "richPush"}).as_object().erase("expanded");
       },
       "zovFeatures.richPush.expanded", "\"expanded\" is missing"},
      {[](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded"}) = 7;
       },
       "zovFeatures.richPush.expanded", "7 is not a dictionary"},
      {[](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded"}).as_object()["type"] = "prodGrid";
       },
       "zovFeatures.richPush.expanded.type", "\"prodGrid\" is not a template"},
      {[](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded", "style"}).as_object()["bgColor"] = 5;
       },
       "zovFeatures.richPush.expanded.style.bgColor", "the colour cannot be read"},
      {[](json::object& p) {
         at(p, {"zovFeatures", "richPush", "expanded"}).as_object()["cards"] = "c";
       },
       "zovFeatures.richPush.expanded.cards", "\"c\" is not a list"},
      {[](json::object& p) { card(p, 1).as_object().erase("id"); },
       "zovFeatures.richPush.expanded.cards[1].id", "no \"id\""},
      {[](json::object& p) {
         card(p, 0).as_object()["widgets"].as_array()[0].as_object().erase("content");
       },
       "zovFeatures.richPush.expanded.cards[0].widgets[0].content", "no \"content\""},
      {[](json::object& p) {
         card(p, 0).as_object()["widgets"].as_array()[0].as_object()["type"] = "video";
       },
       "zovFeatures.richPush.expanded.cards[0].widgets[0].type", "\"video\" is not a widget type"},
      {[](json::object& p) {
         at(p, {"zovFeatures", "richPush"}).as_object()["defaultActions"] = json::array{"x"};
       },
       "zovFeatures.richPush.defaultActions[0]", "is not a dictionary"},
      // The rich push survives; a media item or the whole expanded view does not.
      {[](json::object& p) {
         card(p, 0).as_object()["widgets"].as_array()[0].as_object()["content"] = "";
       },
       "zovFeatures.richPush.expanded.cards[0].widgets[0].content", "is not a URL"},
      {[](json::object& p) {
         card(p, 0).as_object()["widgets"].as_array()[0].as_object()["content"] = 5;
       },
       "zovFeatures.richPush.expanded.cards[0].widgets[0].content", "without attachments"},
      {[](json::object& p) {
         for (int i : {0, 1})
           card(p, i).as_object()["widgets"].as_array()[0].as_object()["type"] = "text";
       },
       "zovFeatures.richPush.expanded.cards", "shows nothing"},
      {[](json::object& p) {
         at(p, {"zentrova"}).as_object()["media-attachment"] = "https://cdn.example.com/m.png";
       },
       "zentrova.media-attachment", "not downloaded"},
      // Not Zentrova's at all.
      {[](json::object& p) { at(p, {"zentrova"}).as_object().erase("cid"); }, "zentrova.cid",
       "not a Zentrova notification"},
      {[](json::object& p) { p.erase("zentrova"); }, "zentrova", "not a Zentrova notification"},
      {[](json::object& p) { p["zentrova"] = "z"; }, "zentrova", "\"z\" is not a dictionary"},
  };
  EXPECT_EQ(inspect(clean()).out.at("reasons"), json::array());
  for (const auto& c : cases) {
    json::object payload = clean();
    c.fault(payload);
    auto r = inspect(payload);
    const auto& reasons = r.out.at("reasons").as_array();
    ASSERT_FALSE(reasons.empty()) << c.path;
    EXPECT_EQ(reasons[0].at("path"), c.path.c_str()) << json::serialize(reasons);
    EXPECT_NE(std::string(reasons[0].at("message").as_string()).find(c.says), std::string::npos)
        << json::serialize(reasons);
  }
}

TEST(PlanAdviceTest, TheLibrarysLogStaysAsItIs) {
  json::object payload = clean();
  at(payload, {"zovFeatures", "richPush"}).as_object().erase("title");
  auto r = inspect(payload);
  EXPECT_EQ(r.out.at("richPush"), nullptr);
  for (const auto& line : r.out.at("log").as_array()) {
    EXPECT_EQ(line, "Mandatory params missing exception : %@");
  }
  EXPECT_FALSE(r.out.at("log").as_array().empty());
}

}  // namespace
}  // namespace zvtest
