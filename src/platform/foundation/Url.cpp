#include "zentrova/Url.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <boost/url/parse.hpp>
#include <system_error>

#include "zentrova/Exception.h"

namespace zv {

namespace {

bool isQueryAllowed(unsigned char c) {
  if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
  switch (c) {
    case '-':
    case '.':
    case '_':
    case '~':
    case '!':
    case '$':
    case '&':
    case '\'':
    case '(':
    case ')':
    case '*':
    case '+':
    case ',':
    case ';':
    case '=':
    case ':':
    case '@':
    case '/':
    case '?':
      return true;
    default:
      return false;
  }
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::optional<Url> Url::parse(std::string_view text) {
  auto r = boost::urls::parse_uri_reference(text);
  if (!r) return std::nullopt;
  return Url(boost::urls::url(*r));
}

Url Url::fileUrl(const std::filesystem::path& path) {
  boost::urls::url u;
  u.set_scheme("file");
  u.set_encoded_host("");
  // A relative path is taken from the current directory, as the phone's file URLs are.
  std::error_code ec;
  std::filesystem::path absolute = path.is_absolute() ? path : std::filesystem::absolute(path, ec);
  u.set_path((ec ? path : absolute).string());
  return Url(std::move(u));
}

std::optional<Url> Url::fromComponents(std::string_view scheme, std::string_view host,
                                       std::optional<long> port, std::string_view path) {
  boost::urls::url u;
  try {
    if (!scheme.empty()) u.set_scheme(scheme);
  } catch (const std::exception&) {
    throw Exception(Exception::kInvalidArgument,
                    "invalid characters in scheme \"" + std::string(scheme) + "\"");
  }
  if (!host.empty()) {
    if (!path.empty() && path.front() != '/') return std::nullopt;
    u.set_host(host);
  }
  if (port) {
    if (*port < 0 || *port > 65535) return std::nullopt;
    u.set_port_number(static_cast<std::uint16_t>(*port));
  }
  u.set_path(path);
  return Url(std::move(u));
}

std::optional<long> Url::port() const {
  if (!url_.has_port()) return std::nullopt;
  return static_cast<long>(url_.port_number());
}

std::string Url::lastPathComponent() const {
  std::string p = path();
  while (p.size() > 1 && p.back() == '/') p.pop_back();
  auto slash = p.rfind('/');
  return slash == std::string::npos || p == "/" ? p : p.substr(slash + 1);
}

std::string Url::pathExtension() const {
  std::string last = lastPathComponent();
  auto dot = last.rfind('.');
  if (dot == std::string::npos || dot == 0) return "";
  std::string extension = last.substr(dot + 1);
  // Decoded bytes that cannot be part of a file name (a NUL, a control character, bytes that are
  // not UTF-8) make no extension at all, rather than a file named after part of them.
  bool clean =
      isValidUtf8(extension) && std::none_of(extension.begin(), extension.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '\\';
      });
  return clean ? extension : "";
}

std::string percentEncodeQueryAllowed(std::string_view s) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(s.size());
  for (unsigned char c : s) {
    if (isQueryAllowed(c)) {
      out.push_back(static_cast<char>(c));
    } else {
      out.push_back('%');
      out.push_back(kHex[c >> 4]);
      out.push_back(kHex[c & 0xF]);
    }
  }
  return out;
}

std::optional<std::string> percentDecode(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] != '%') {
      out.push_back(s[i]);
      continue;
    }
    if (i + 2 >= s.size()) return std::nullopt;
    int hi = hexValue(s[i + 1]);
    int lo = hexValue(s[i + 2]);
    if (hi < 0 || lo < 0) return std::nullopt;
    out.push_back(static_cast<char>(hi * 16 + lo));
    i += 2;
  }
  if (!isValidUtf8(out)) return std::nullopt;
  return out;
}

bool isValidUtf8(std::string_view s) {
  size_t i = 0;
  while (i < s.size()) {
    unsigned char c = static_cast<unsigned char>(s[i]);
    size_t n;
    char32_t cp;
    if (c < 0x80) {
      ++i;
      continue;
    } else if ((c & 0xE0) == 0xC0) {
      n = 1;
      cp = c & 0x1F;
    } else if ((c & 0xF0) == 0xE0) {
      n = 2;
      cp = c & 0x0F;
    } else if ((c & 0xF8) == 0xF0) {
      n = 3;
      cp = c & 0x07;
    } else {
      return false;
    }
    if (i + n >= s.size()) return false;
    for (size_t k = 1; k <= n; ++k) {
      unsigned char d = static_cast<unsigned char>(s[i + k]);
      if ((d & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (d & 0x3F);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not UTF-8.
    if ((n == 1 && cp < 0x80) || (n == 2 && cp < 0x800) || (n == 3 && cp < 0x10000) ||
        (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) {
      return false;
    }
    i += n + 1;
  }
  return true;
}

namespace {
std::atomic<long> accessGranted{0}, accessRefused{0}, accessStopped{0};
}  // namespace

bool Url::startAccessingSecurityScopedResource() const {
  bool readable = isFileUrl() && ::access(filePath().c_str(), R_OK) == 0 &&
                  std::filesystem::is_regular_file(filePath());
  ++(readable ? accessGranted : accessRefused);
  return readable;
}

void Url::stopAccessingSecurityScopedResource() const { ++accessStopped; }

Url::AccessCounts Url::securityScopedAccessCounts() {
  return {accessGranted.load(), accessRefused.load(), accessStopped.load()};
}

}  // namespace zv
