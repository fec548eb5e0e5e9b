#include "support/TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <stdexcept>

#include "support/TestSupport.h"

namespace zvtest {

namespace {

void addExtension(X509* cert, X509V3_CTX* ctx, int nid, const char* value) {
  X509_EXTENSION* ext = X509V3_EXT_conf_nid(nullptr, ctx, nid, value);
  if (!ext) throw std::runtime_error("bad certificate extension");
  X509_add_ext(cert, ext, -1);
  X509_EXTENSION_free(ext);
}

// A certificate for key, signed by issuer (self-signed when issuer is null).
X509* makeCertificate(EVP_PKEY* key, const char* commonName, X509* issuer, EVP_PKEY* issuerKey,
                      long serial) {
  X509* cert = X509_new();
  X509_set_version(cert, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert), serial);
  X509_gmtime_adj(X509_getm_notBefore(cert), -3600);
  X509_gmtime_adj(X509_getm_notAfter(cert), 30L * 24 * 3600);
  X509_set_pubkey(cert, key);
  X509_NAME* name = X509_get_subject_name(cert);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
  X509_set_issuer_name(cert, issuer ? X509_get_subject_name(issuer) : name);
  X509V3_CTX ctx;
  X509V3_set_ctx_nodb(&ctx);
  X509V3_set_ctx(&ctx, issuer ? issuer : cert, cert, nullptr, nullptr, 0);
  addExtension(cert, &ctx, NID_subject_key_identifier, "hash");
  if (issuer) {
    addExtension(cert, &ctx, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(cert, &ctx, NID_key_usage, "critical,digitalSignature,keyEncipherment");
    addExtension(cert, &ctx, NID_ext_key_usage, "serverAuth");
    addExtension(cert, &ctx, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    addExtension(cert, &ctx, NID_authority_key_identifier, "keyid:always");
  } else {
    addExtension(cert, &ctx, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(cert, &ctx, NID_key_usage, "critical,keyCertSign,cRLSign");
  }
  X509_sign(cert, issuerKey ? issuerKey : key, EVP_sha256());
  return cert;
}

void writePem(const std::filesystem::path& path, X509* cert, EVP_PKEY* key) {
  std::FILE* f = std::fopen(path.c_str(), "w");
  if (!f) throw std::runtime_error("cannot write " + path.string());
  bool ok = cert ? PEM_write_X509(f, cert)
                 : PEM_write_PrivateKey(f, key, nullptr, nullptr, 0, nullptr, nullptr);
  std::fclose(f);
  if (!ok) throw std::runtime_error("cannot write " + path.string());
}

TlsFiles makeFiles(const std::filesystem::path& dir) {
  EVP_PKEY* caKey = EVP_EC_gen("P-256");
  EVP_PKEY* serverKey = EVP_EC_gen("P-256");
  X509* ca = makeCertificate(caKey, "Zentrova Test CA", nullptr, nullptr, 1);
  X509* server = makeCertificate(serverKey, "localhost", ca, caKey, 2);
  TlsFiles files{dir / "ca.pem", dir / "server.pem", dir / "server-key.pem"};
  writePem(files.caCert, ca, nullptr);
  writePem(files.serverCert, server, nullptr);
  writePem(files.serverKey, nullptr, serverKey);
  X509_free(server);
  X509_free(ca);
  EVP_PKEY_free(serverKey);
  EVP_PKEY_free(caKey);
  return files;
}

}  // namespace

const TlsFiles& testTlsFiles() {
  static TempDir dir;
  static const TlsFiles files = makeFiles(dir.path());
  return files;
}

}  // namespace zvtest
