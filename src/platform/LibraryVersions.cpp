#include "platform/LibraryVersions.h"

#include <curl/curl.h>
#include <openssl/crypto.h>
#include <sqlite3.h>

namespace zv {

LibraryVersions::List LibraryVersions::service() {
  return {{"libcurl", curl_version_info(CURLVERSION_NOW)->version},
          {"SQLite", sqlite3_libversion()},
          {"OpenSSL", OpenSSL_version(OPENSSL_VERSION_STRING)}};
}

}  // namespace zv
