// Certificates made at run time for HTTPS tests: a certificate authority and a server certificate
// for "localhost" and 127.0.0.1 signed by it (EC P-256). Made once per test process, in a
// temporary folder that is removed at exit.
#pragma once

#include <filesystem>

namespace zvtest {

struct TlsFiles {
  std::filesystem::path caCert;      // PEM: the authority to trust (the extra CA file)
  std::filesystem::path serverCert;  // PEM: the server's certificate
  std::filesystem::path serverKey;   // PEM: the server's private key
};

const TlsFiles& testTlsFiles();

}  // namespace zvtest
