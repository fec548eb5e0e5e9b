/// @file
/// zv::Url is a parsed URL reference (RFC 3986) that keeps the exact text it was made from as its
/// absolute string, as the phone's URL type does: nothing is normalised, so the identifier computed
/// from a media URL is stable. Percent encoding writes upper-case hexadecimal digits ("%20",
/// "%C3%A9"), as the phone's system does.
#pragma once

#include <boost/url/url.hpp>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

/// A URL reference that keeps the exact text it was made from.
///
/// A value type: copy it freely. A const Url may be read from several threads at once. Parsing
/// reports bad text as nullopt; only fromComponents() raises (zv::Exception, for a bad scheme).
class Url {
 public:
  /// Parses an absolute URL or a relative reference as written; nullopt when the text is not a
  /// valid URL reference (a raw space, a lone "%", a non-ASCII character, ...).
  static std::optional<Url> parse(std::string_view text);
  /// The file URL ("file:///...") of a local path; a relative path is made absolute first.
  static Url fileUrl(const std::filesystem::path& path);
  /// A URL from components, as URL components build one: the scheme, host and path are encoded as
  /// needed; a port is written when given. Raises zv::Exception when the scheme holds characters a
  /// scheme cannot have; nullopt when a host is given and a non-empty path does not start with "/".
  static std::optional<Url> fromComponents(std::string_view scheme, std::string_view host,
                                           std::optional<long> port, std::string_view path);

  /// The text of the URL exactly as it was given.
  std::string absoluteString() const { return std::string(url_.buffer()); }
  /// The scheme ("https", "file"; "" for a relative reference).
  std::string scheme() const { return std::string(url_.scheme()); }
  /// The percent-decoded host ("" when there is none).
  std::string host() const { return url_.host(); }
  /// The port when the URL gives one.
  std::optional<long> port() const;
  /// The percent-decoded path.
  std::string path() const { return url_.path(); }
  /// The last path component, ignoring a trailing "/".
  std::string lastPathComponent() const;
  /// The extension of the last path component without its dot; "" when there is none (a component
  /// that starts with its only dot, such as ".gif", has none, and neither has one whose decoded
  /// bytes are not a clean file-name part: not UTF-8, or holding a NUL or another control
  /// character).
  std::string pathExtension() const;
  /// Whether the scheme is "file".
  bool isFileUrl() const { return url_.scheme() == "file"; }
  /// The local path of a file URL.
  std::filesystem::path filePath() const { return std::filesystem::path(path()); }

  /// The same text (no normalisation: "HTTP://a" differs from "http://a").
  bool operator==(const Url& o) const { return url_.buffer() == o.url_.buffer(); }

  /// Access to the file of a file URL, as a sandboxed extension asks for it: granted when the file
  /// can be read. Every start and stop is counted process-wide, so a test can see each granted
  /// start matched by a stop.
  /// True when access is granted (a file URL of a readable regular file).
  bool startAccessingSecurityScopedResource() const;
  /// Ends an access that startAccessingSecurityScopedResource() granted.
  void stopAccessingSecurityScopedResource() const;
  /// How many accesses were granted, refused and stopped in this process so far.
  struct AccessCounts {
    /// Accesses granted, refused, and stopped.
    ///@{
    long granted = 0, refused = 0, stopped = 0;
    ///@}
  };
  /// The counts so far (thread-safe).
  static AccessCounts securityScopedAccessCounts();

 private:
  explicit Url(boost::urls::url u) : url_(std::move(u)) {}
  boost::urls::url url_;
};

/// Percent-encodes every byte outside the URL-query allowed set (letters, digits and
/// -._~!$&'()*+,;=:@/?), with upper-case hexadecimal digits.
std::string percentEncodeQueryAllowed(std::string_view s);
/// Decodes "%XX" escapes. nullopt when a "%" is not followed by two hexadecimal digits or the
/// decoded bytes are not valid UTF-8.
std::optional<std::string> percentDecode(std::string_view s);
/// Whether bytes are valid UTF-8.
bool isValidUtf8(std::string_view s);

}  // namespace zv

ZENTROVA_API_END
