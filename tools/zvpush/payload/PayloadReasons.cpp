#include "payload/PayloadReasons.h"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <functional>
#include <optional>
#include <string>

#include "model/ModelParts.h"
#include "model/PayloadKeys.h"
#include "model/ZVMedia.h"
#include "model/ZVPushAction.h"
#include "model/ZVPushCard.h"
#include "model/ZVPushPayload.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "zentrova/Exception.h"

namespace zvpush {

namespace {

namespace json = boost::json;

constexpr char kDropped[] =
    "so the rich push is dropped: the notification shows its \"aps\" alert and no rich template";

// The model's own reader run on a part of the payload: the description of what it raised, if it
// raised. The model is the judge of what is readable; the walk below only says where and why.
std::optional<std::string> raised(const std::function<void()>& read) {
  try {
    read();
  } catch (const zv::Exception& e) {
    return e.description();
  }
  return std::nullopt;
}

// A value as the sender wrote it: JSON, so a string keeps its quotes.
std::string shown(const zv::Value& v) { return boost::json::serialize(v.json()); }

bool absent(const zv::Value& v) { return v.isNil() || v.isNull(); }

std::string quote(std::string_view s) { return "\"" + std::string(s) + "\""; }

class Explainer {
 public:
  json::array reasons;

  void add(const std::string& path, const std::string& message) {
    reasons.push_back(json::object{{"path", path}, {"message", message}});
  }

  // Why the rich push at path could not be read. Stops at the first part the model refuses, as
  // the model does.
  void richPush(const zv::Value& rich, const std::string& path) {
    if (!dictionary(rich, path)) return;
    bool missing = false;
    for (const char* key :
         {zv::kPushPayloadKeyZovFeaturesRichPushTitle, zv::kPushPayloadKeyZovFeaturesRichPushBody,
          zv::kPushPayloadKeyZovFeaturesRichPushTemplateName}) {
      if (!absent(rich.get(key))) continue;
      add(path + "." + key, quote(key) +
                                " is missing (a rich push needs \"title\", \"body\" and "
                                "\"displayName\"), " +
                                kDropped);
      missing = true;
    }
    if (missing) return;
    const char* expandedKey = zv::kPushPayloadKeyZovFeaturesRichPushExpanded;
    zv::Value expanded = rich.get(expandedKey);
    if (absent(expanded)) {
      add(path + "." + expandedKey, "\"expanded\" is missing, " + std::string(kDropped));
      return;
    }
    if (mode(expanded, path + "." + expandedKey)) return;
    if (actions(rich, zv::kPushPayloadKeyZovFeaturesRichPushDefaultActions, path)) return;
    fallback(path, [&] { zv::ZVRichPush::initWithDictionary(rich); });
  }

  // Media the service leaves out, and a template that will show nothing.
  void media(const zv::ZVPushPayload& envelope) {
    const auto& rich = envelope.richPush;
    if (rich && rich->expandedMode) {
      if (!absent(envelope.mediaAttachment)) {
        add("zentrova.media-attachment",
            "not downloaded: a rich push shows the images of its cards instead");
      }
      const auto& mode = *rich->expandedMode;
      bool anyImage = false;
      for (std::size_t i = 0; i < mode.cards.size(); ++i) {
        const auto& widgets = mode.cards[i]->widgets;
        for (std::size_t j = 0; j < widgets.size(); ++j) {
          if (widgets[j]->type != zv::ZVPushWidgetType::Image) continue;
          std::string at = "zovFeatures.richPush.expanded.cards[" + std::to_string(i) +
                           "].widgets[" + std::to_string(j) + "].content";
          anyImage = imageUrl(widgets[j]->content, at) || anyImage;
        }
      }
      if (!anyImage && mode.templateType == zv::ZVRichPushTemplateType::ImageCarousel) {
        add("zovFeatures.richPush.expanded.cards",
            "the carousel has no card with an image to download: the expanded view shows nothing");
      }
      return;
    }
    const zv::Value& url = envelope.mediaAttachment;
    if (absent(url)) return;
    if (!url.isString()) {
      add("zentrova.media-attachment", shown(url) + " is not a string: no attachment");
    } else if (!url.string().empty()) {
      imageUrl(url, "zentrova.media-attachment");
    }
  }

 private:
  bool dictionary(const zv::Value& v, const std::string& path) {
    if (v.isObject()) return true;
    add(path, shown(v) + " is not a dictionary, " + kDropped);
    return false;
  }

  // Whether content names a URL the service downloads; says why not when it does not.
  bool imageUrl(const zv::Value& content, const std::string& path) {
    if (!content.isString()) {
      add(path, shown(content) +
                    " is not a string: listing the media raises, so the notification goes "
                    "without attachments");
      return false;
    }
    if (zv::ZVMedia::initWithURL(content, zv::Value())->mediaURL) return true;
    add(path, quote(content.string()) + " is not a URL: the image is left out");
    return false;
  }

  // Reports why the part at path raised, in the model's own words when nothing more specific
  // was found before.
  bool fallback(const std::string& path, const std::function<void()>& read) {
    auto what = raised(read);
    if (what) add(path, "reading it raised (" + *what + "), " + kDropped);
    return what.has_value();
  }

  bool color(const zv::Value& dict, const std::string& path) {
    auto what = raised([&] { zv::model::backgroundColor(dict); });
    if (!what) return false;
    add(path + ".style.bgColor", "the colour cannot be read (" + *what + "), " + kDropped);
    return true;
  }

  // Each element of the list under key: whether one was refused (and reported).
  bool list(const zv::Value& dict, const char* key, const std::string& path,
            const std::function<bool(const zv::Value&, const std::string&)>& element) {
    zv::Value v = dict.get(key);
    if (absent(v)) return false;
    std::string at = path + "." + key;
    if (!v.isArray()) {
      add(at, shown(v) + " is not a list, " + kDropped);
      return true;
    }
    auto elements = v.elements();
    for (std::size_t i = 0; i < elements.size(); ++i) {
      if (element(elements[i], at + "[" + std::to_string(i) + "]")) return true;
    }
    return false;
  }

  bool actions(const zv::Value& dict, const char* key, const std::string& path) {
    return list(dict, key, path, [&](const zv::Value& action, const std::string& at) {
      if (!dictionary(action, at)) return true;
      return fallback(at, [&] { zv::ZVPushAction::initWithDictionary(action); });
    });
  }

  bool mode(const zv::Value& expanded, const std::string& path) {
    if (!dictionary(expanded, path)) return true;
    zv::Value type = expanded.get(zv::kPushPayloadKeyZovFeaturesRichPushExpandedType);
    if (zv::ZVRichPushMode::getTemplateTypeForTemplateTypeStr(type) ==
        zv::ZVRichPushTemplateType::Invalid) {
      add(path + ".type", (absent(type) ? "the template type is missing"
                                        : shown(type) + " is not a template the phone shows") +
                              std::string(" (\"stylizedBasic\" or \"imageCarousel\"), ") +
                              kDropped);
      return true;
    }
    if (color(expanded, path)) return true;
    return list(expanded, zv::kPushPayloadKeyZovFeaturesRichPushCards, path,
                [&](const zv::Value& card, const std::string& at) { return this->card(card, at); });
  }

  bool card(const zv::Value& card, const std::string& path) {
    if (!dictionary(card, path)) return true;
    if (absent(card.get(zv::kPushPayloadKeyZovFeaturesRichPushCardID))) {
      add(path + ".id", "the card has no \"id\", " + std::string(kDropped));
      return true;
    }
    if (color(card, path)) return true;
    if (list(card, zv::kPushPayloadKeyZovFeaturesRichPushCardWidgets, path,
             [&](const zv::Value& w, const std::string& at) { return widget(w, at); })) {
      return true;
    }
    if (actions(card, zv::kPushPayloadKeyZovFeaturesRichPushActions, path)) return true;
    return fallback(path, [&] { zv::ZVPushCard::initWithDictionary(card); });
  }

  bool widget(const zv::Value& widget, const std::string& path) {
    if (!dictionary(widget, path)) return true;
    for (const char* key : {zv::kPushPayloadKeyZovFeaturesRichPushWidgetID,
                            zv::kPushPayloadKeyZovFeaturesRichPushWidgetContent}) {
      if (!absent(widget.get(key))) continue;
      add(path + "." + key, "the widget has no " + quote(key) + ", " + kDropped);
      return true;
    }
    zv::Value type = widget.get(zv::kPushPayloadKeyZovFeaturesRichPushWidgetType);
    if (zv::ZVPushWidget::getWidgetTypeForWidgetTypeStr(type) == zv::ZVPushWidgetType::Invalid) {
      add(path + ".type",
          (absent(type) ? "the widget type is missing" : shown(type) + " is not a widget type") +
              std::string(" (\"image\", \"text\" or \"button\"), ") + kDropped);
      return true;
    }
    if (color(widget, path)) return true;
    if (actions(widget, zv::kPushPayloadKeyZovFeaturesRichPushActions, path)) return true;
    return fallback(path, [&] { zv::ZVPushWidget::initWithDictionary(widget); });
  }
};

zv::Value at(const zv::Value& v, const char* key) {
  return v.isObject() ? v.get(key) : zv::Value();
}

}  // namespace

json::array PayloadReasons::explain(const zv::Value& payload, const zv::ServicePlan& plan) {
  Explainer e;
  const auto& envelope = plan.envelope;
  zv::Value zentrova = at(payload, zv::kPushPayloadKeyZentrova);
  if (absent(zentrova)) {
    e.add("zentrova", "no \"zentrova\" dictionary: not a Zentrova notification, shown as it came");
  } else if (!zentrova.isObject()) {
    e.add("zentrova", shown(zentrova) +
                          " is not a dictionary: reading it raises, and the notification is "
                          "shown as it came");
  } else if (absent(zentrova.get(zv::kPushPayloadKeyCampaignID))) {
    e.add("zentrova.cid",
          "no campaign id (\"cid\"): not a Zentrova notification, shown as it came");
  }
  if (envelope && envelope->shouldProcessPushNotification()) {
    zv::Value features = at(payload, zv::kPushPayloadKeyZovFeatures);
    std::string path =
        std::string(zv::kPushPayloadKeyZovFeatures) + "." + zv::kPushPayloadKeyZovFeaturesRichPush;
    if (!absent(features) && !features.isObject()) {
      e.add(zv::kPushPayloadKeyZovFeatures, shown(features) + " is not a dictionary, " + kDropped);
    } else if (zv::Value rich = at(features, zv::kPushPayloadKeyZovFeaturesRichPush);
               !absent(rich) && !envelope->richPush) {
      e.richPush(rich, path);
    }
    e.media(plan.payload ? *plan.payload : *envelope);
  }
  if (plan.failure && envelope && envelope->shouldProcessPushNotification()) {
    e.add("", "the service caught \"" + *plan.failure + "\" " +
                  (plan.payload ? "while listing the media: the notification goes with its "
                                  "rewritten texts and without attachments"
                                : "while rewriting the notification: it is shown as it came"));
  }
  return std::move(e.reasons);
}

}  // namespace zvpush
