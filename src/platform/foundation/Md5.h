// The MD5 digest (RFC 1321) on OpenSSL's EVP interface, as 32 lower-case hexadecimal digits.
#pragma once

#include <string>
#include <string_view>

namespace zv {

std::string md5Hex(std::string_view bytes);

}  // namespace zv
