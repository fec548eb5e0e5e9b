#include "payload/PayloadWarnings.h"

#include <boost/json/object.hpp>
#include <regex>

#include "zentrova/Url.h"

namespace zvpush {

namespace {

namespace json = boost::json;

// The push service refuses larger payloads.
constexpr std::size_t kMaxPayloadBytes = 4096;

struct Warnings {
  json::array list;
  void add(const char* code, const std::string& path, const std::string& message) {
    list.push_back(json::object{{"code", code}, {"path", path}, {"message", message}});
  }
};

zv::Value at(const zv::Value& v, const char* key) {
  return v.isObject() ? v.get(key) : zv::Value();
}

void checkUrl(Warnings& w, const zv::Value& value, const std::string& path) {
  if (!value.isString()) return;
  auto url = zv::Url::parse(value.string());
  if (!url || url->scheme().empty()) {
    w.add("media-url-invalid", path, "\"" + std::string(value.string()) + "\" is not a URL");
  } else if (url->scheme() != "https") {
    w.add("media-url-not-https", path,
          "the phone refuses plain " + url->scheme() +
              " by default (App Transport Security): the media will not download");
  }
}

void checkColor(Warnings& w, const zv::Value& style, const std::string& path) {
  zv::Value color = at(style, "bgColor");
  if (color.isNil() || color.isNull()) return;
  static const std::regex hex("#[0-9A-Fa-f]{6}");
  if (!color.isString() ||
      (!color.string().empty() && !std::regex_match(std::string(color.string()), hex))) {
    w.add("color-invalid", path + ".bgColor",
          color.description() + " is not a colour of the form \"#RRGGBB\"");
  }
}

}  // namespace

json::array PayloadWarnings::check(const zv::Value& payload, std::size_t rawSize) {
  Warnings w;
  zv::Value aps = at(payload, "aps");
  zv::Value mutableContent = at(aps, "mutable-content");
  if (!mutableContent.isNumber() || mutableContent.doubleValue() != 1) {
    w.add("mutable-content-missing", "aps.mutable-content",
          "without \"mutable-content\": 1 the service extension never runs: no image, no rich "
          "texts");
  }
  zv::Value alert = at(aps, "alert");
  if (alert.isNil() || alert.isNull()) {
    w.add("alert-missing", "aps.alert", "no alert: the notification shows no text");
  } else if (alert.isObject() && !at(alert, "body").isString()) {
    w.add("alert-body-missing", "aps.alert.body", "the alert has no body");
  }
  if (rawSize > kMaxPayloadBytes) {
    w.add("payload-too-large", "",
          "the payload is " + std::to_string(rawSize) + " bytes; the push service accepts " +
              std::to_string(kMaxPayloadBytes));
  }
  zv::Value zentrova = at(payload, "zentrova");
  checkUrl(w, at(zentrova, "media-attachment"), "zentrova.media-attachment");
  zv::Value type = at(zentrova, "media-type");
  if (type.isString() && type.string() != "image" && type.string() != "audio" &&
      type.string() != "video") {
    w.add("media-type-unknown", "zentrova.media-type",
          "\"" + std::string(type.string()) +
              "\" is not \"image\", \"audio\" or \"video\": it is played as a clip");
  }

  const std::string richPath = "zovFeatures.richPush";
  zv::Value expanded = at(at(at(payload, "zovFeatures"), "richPush"), "expanded");
  if (!expanded.isObject()) return w.list;
  const std::string expandedPath = richPath + ".expanded";
  checkColor(w, at(expanded, "style"), expandedPath + ".style");
  if (at(expanded, "autoStart").isString()) {
    w.add("autostart-string", expandedPath + ".autoStart",
          "\"autoStart\" is a string; give true or false");
  }
  zv::Value cards = at(expanded, "cards");
  std::string templateType =
      at(expanded, "type").isString() ? std::string(at(expanded, "type").string()) : "";
  if (!cards.isArray()) return w.list;
  auto list = cards.elements();
  if (templateType == "imageCarousel" && list.size() == 1) {
    w.add("carousel-single-card", expandedPath + ".cards", "a carousel of one card does not page");
  }
  for (std::size_t i = 0; i < list.size(); ++i) {
    const std::string cardPath = expandedPath + ".cards[" + std::to_string(i) + "]";
    checkColor(w, at(list[i], "style"), cardPath + ".style");
    zv::Value widgets = at(list[i], "widgets");
    std::vector<zv::Value> items =
        widgets.isArray() ? widgets.elements() : std::vector<zv::Value>{};
    bool hasImage = false;
    for (std::size_t j = 0; j < items.size(); ++j) {
      bool image = at(items[j], "type").isString() && at(items[j], "type").string() == "image";
      hasImage = hasImage || image;
      const std::string widgetPath = cardPath + ".widgets[" + std::to_string(j) + "]";
      if (image) checkUrl(w, at(items[j], "content"), widgetPath + ".content");
      checkColor(w, at(items[j], "style"), widgetPath + ".style");
    }
    bool firstIsImage = !items.empty() && at(items[0], "type").isString() &&
                        at(items[0], "type").string() == "image";
    if (templateType == "imageCarousel" && !firstIsImage) {
      w.add("carousel-card-without-image", cardPath + ".widgets[0]",
            "a carousel card shows its first widget's image: this card will not show");
    }
    if (templateType == "stylizedBasic" && i == 0 && !hasImage) {
      w.add("stylized-without-image", cardPath + ".widgets",
            "the stylised template shows the first card's first image widget: it has none");
    }
  }
  return w.list;
}

}  // namespace zvpush
