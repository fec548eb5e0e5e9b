#include "platform/foundation/Md5.h"

#include <openssl/evp.h>

#include <memory>
#include <stdexcept>

namespace zv {

std::string md5Hex(std::string_view bytes) {
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> ctx(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  if (!ctx || EVP_DigestInit_ex(ctx.get(), EVP_md5(), nullptr) != 1 ||
      EVP_DigestUpdate(ctx.get(), bytes.data(), bytes.size()) != 1 ||
      EVP_DigestFinal_ex(ctx.get(), digest, &length) != 1) {
    throw std::runtime_error("OpenSSL could not compute an MD5 digest");
  }
  static constexpr char kHex[] = "0123456789abcdef";
  std::string out;
  out.reserve(length * 2);
  for (unsigned int i = 0; i < length; ++i) {
    out.push_back(kHex[digest[i] >> 4]);
    out.push_back(kHex[digest[i] & 0xF]);
  }
  return out;
}

}  // namespace zv
