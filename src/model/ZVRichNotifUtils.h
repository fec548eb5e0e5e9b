// ZVRichNotifUtils: the stateless class operations shared by both extensions. Payload lookups that
// turn null into absence, the mandatory-parameters exception, time stamps, colours from hexadecimal
// text and the log sink (ZVRichNotifUtils.cpp); URL, MD5 and file-name operations
// (ZVRichNotifUtilsMedia.cpp); the rich text operations (ZVRichNotifUtilsText.cpp); making a
// notification attachment from a downloaded file (ZVRichNotifUtilsAttachment.cpp).
#pragma once

#include <boost/json/object.hpp>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "zentrova/Color.h"
#include "zentrova/Url.h"
#include "zentrova/Value.h"

namespace zv {

class StyledText;
class Font;
class FileManager;
class TextMeasurer;
class Clock;
class UNNotificationAttachment;
class UNNotification;

class ZVRichNotifUtils {
 public:
  // The name of the exception that marks a rich push with a missing mandatory field; the envelope
  // recognises it by this name.
  static constexpr char kMandatoryParamsMissingExceptionName[] =
      "PAYLOAD_MANDATORY_PARAMS_MISSING_EXCEPTION";

  // ---- Payload lookups ----
  // The object under key, or nil when the dictionary is nil, the key is absent or the object is
  // null. Raises zv::Exception when dict is neither nil nor a dictionary.
  static Value validObjectForKey(std::string_view key, const Value& dict);
  // The same along a dot-separated key path through nested dictionaries; a missing step gives nil,
  // a step that lands on anything but a dictionary (null included) raises.
  static Value validObjectForKeyPath(std::string_view keyPath, const Value& dict);
  // Removes the entry under key (a null entry too). A null dict is the nil dictionary: nothing.
  static void removeValidObjectForKey(std::string_view key, boost::json::object* dict);
  // Raises kMandatoryParamsMissingExceptionName.
  [[noreturn]] static void raiseMandatoryParamsMissingException();

  // ---- Time stamps ----
  // Whole seconds since 1970 UTC, as decimal text ("1700000000").
  static std::string getGMTtime(const Clock& clock);
  // The local time as "dd:MM:yyyy:HH:mm:ss".
  static std::string getLocalTime(const Clock& clock);
  // The user-info dictionary of a delivered notification's request content; nil for none.
  static Value getPayloadFromNotification(const std::shared_ptr<UNNotification>& notification);

  // ---- Colours ----
  // Colour from "#RRGGBB" text; nil or empty text gives the clear colour object. Raises when the
  // value is neither nil nor a string.
  static ColorRef getColorFromHexValue(const Value& hex);

  // ---- Log sink ----
  static void logWithMessage(const std::string& message);

  // ---- URLs, MD5 and file names ----
  static std::optional<Url> getURLFromString(const std::optional<std::string>& s);
  static bool isPercentageEncodedString(std::string_view s);
  static std::optional<std::string> getAttachmentIDForURL(const std::optional<Url>& url);
  static std::string getAttachmentImageNameForURL(const Url& url);
  static std::string getDefaultExtensionForMediaType(const std::optional<std::string>& mediaType);
  static std::string MD5hashForString(std::string_view s);
  static std::string getFileExtension(const Url& url);
  static bool isImageGifWithURL(const Url& url);
  // Moves a downloaded file into "Attachments" under the file manager's temporary directory (the
  // process's file manager when none is given) and makes the attachment; nullptr on any failure.
  static std::shared_ptr<UNNotificationAttachment> createWithID(const std::string& identifier,
                                                                const std::string& name,
                                                                const Url& temporaryLocation);
  static std::shared_ptr<UNNotificationAttachment> createWithID(const std::string& identifier,
                                                                const std::string& name,
                                                                const Url& temporaryLocation,
                                                                const FileManager& fileManager);

  // ---- Rich text ----
  static std::shared_ptr<StyledText> getAttributedStringFromHTMLStr(
      const std::optional<std::string>& html, bool darkTheme);
  static std::shared_ptr<StyledText> getAttributedStringFromText(
      const std::optional<std::string>& text, bool strong, bool darkTheme);
  static double getHeightForText(const std::optional<std::string>& text, double width,
                                 const Font& font, TextMeasurer& measurer);
  static std::optional<std::string> getStringFromHTML(const std::optional<std::string>& html);
};

}  // namespace zv
