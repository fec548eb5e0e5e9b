// The payload keys and values that Zentrova reads, published as immutable strings that host code
// may compare against. Keys name entries of the remote-notification payload ("aps", "zentrova",
// "zovFeatures" and the rich-push tree below "zovFeatures"."richPush"); values are the words the
// sender writes into them (template, widget, action and navigation names).
#pragma once

namespace zv {

// ---- Keys ----
inline constexpr char kPushPayloadKeyAPS[] = "aps";
inline constexpr char kPushPayloadKeyAPSAlert[] = "alert";
inline constexpr char kPushPayloadKeyAPSAlertTitle[] = "title";
inline constexpr char kPushPayloadKeyAPSAlertSubTitle[] = "subtitle";
inline constexpr char kPushPayloadKeyAPSAlertBody[] = "body";
inline constexpr char kPushPayloadKeyAPSSound[] = "sound";
inline constexpr char kPushPayloadKeyAPSCategory[] = "category";
inline constexpr char kPushPayloadKeyAppExtras[] = "app_extra";
inline constexpr char kPushPayloadKeyCampaignID[] = "cid";
inline constexpr char kPushPayloadKeyCoupon[] = "couponCode";
inline constexpr char kPushPayloadKeyDeepLink[] = "zov_deeplink";
inline constexpr char kPushPayloadKeyIOS[] = "ios";
inline constexpr char kPushPayloadKeyMediaType[] = "media-type";
inline constexpr char kPushPayloadKeyMediaURL[] = "media-attachment";
inline constexpr char kPushPayloadKeyZoVAppID[] = "app_id";
inline constexpr char kPushPayloadKeyZentrova[] = "zentrova";
inline constexpr char kPushPayloadKeyZovFeatures[] = "zovFeatures";
inline constexpr char kPushPayloadKeyZovFeaturesRichPush[] = "richPush";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushTemplateName[] = "displayName";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushTitle[] = "title";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushSubTitle[] = "subtitle";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushBody[] = "body";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushCollapsed[] = "collapsed";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushExpanded[] = "expanded";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushExpandedType[] = "type";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushExpandedAutoStart[] = "autoStart";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushStyle[] = "style";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushBGColor[] = "bgColor";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushCards[] = "cards";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushDefaultActions[] = "defaultActions";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushCardID[] = "id";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushCardType[] = "type";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushCardWidgets[] = "widgets";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushWidgetID[] = "id";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushWidgetType[] = "type";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushWidgetContent[] = "content";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushActions[] = "actions";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushActionName[] = "name";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushActionType[] = "type";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushActionValue[] = "value";
inline constexpr char kPushPayloadKeyZovFeaturesRichPushActionkvPairs[] = "kvPairs";
inline constexpr char kPushPayloadKeyRichLanding[] = "webUrl";
inline constexpr char kPushPayloadKeyScreenData[] = "screenData";
inline constexpr char kPushPayloadKeyScreenName[] = "screenName";

// ---- Values ----
inline constexpr char kPushPayloadValTemplateTypeStylizedBasic[] = "stylizedBasic";
inline constexpr char kPushPayloadValTemplateTypeImageCarousel[] = "imageCarousel";
// Declared for senders; only the two templates above are supported.
inline constexpr char kPushPayloadValTemplateTypeProductGrid[] = "prodGrid";
inline constexpr char kPushPayloadValTemplateTypeProductWidget[] = "prodWidget";
inline constexpr char kPushPayloadValWidgetTypeImage[] = "image";
inline constexpr char kPushPayloadValWidgetTypeText[] = "text";
inline constexpr char kPushPayloadValWidgetTypeButton[] = "button";
inline constexpr char kPushPayloadValActionNameNavigate[] = "navigate";
inline constexpr char kPushPayloadValActionNameCoupon[] = "coupon";
inline constexpr char kPushPayloadValActionTypeDeepLinking[] = "deepLink";
inline constexpr char kPushPayloadValActionTypeRichLanding[] = "richLanding";
inline constexpr char kPushPayloadValActionTypeScreenNav[] = "screenName";

}  // namespace zv
