#include "platform/net/CurlTransfer.h"

#include <fmt/format.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "platform/foundation/Clock.h"
#include "platform/foundation/Log.h"
#include "zentrova/Version.h"

namespace zv {

namespace {

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() &&
         (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n'))
    s.remove_suffix(1);
  return s;
}

// The time-out of a task: the shorter of its request's and its session's; zero or less means none.
double effectiveTimeout(double request, double session) {
  if (request <= 0) return session;
  if (session <= 0) return request;
  return std::min(request, session);
}

}  // namespace

CurlTransfer::CurlTransfer(std::shared_ptr<UrlSessionTask> task, double timeoutSeconds)
    : task_(std::move(task)),
      timeoutSeconds_(timeoutSeconds),
      started_(Clock::now()),
      lastActivity_(started_) {}

CurlTransfer::~CurlTransfer() { removeDownloadFile(); }

std::unique_ptr<CurlTransfer> CurlTransfer::create(std::shared_ptr<UrlSessionTask> task,
                                                   const UrlSessionConfiguration& configuration) {
  double timeout = effectiveTimeout(task->originalRequest().timeoutInterval(),
                                    configuration.timeoutIntervalForRequest);
  std::unique_ptr<CurlTransfer> transfer(new CurlTransfer(std::move(task), timeout));
  Error error;
  if (!transfer->task_->originalRequest().url()) {
    transfer->setupError_ = Error{Error::kUrlDomain, CURLE_URL_MALFORMAT, "unsupported URL"};
  } else if (!transfer->configure(configuration, &error)) {
    transfer->setupError_ = std::move(error);
  }
  return transfer;
}

bool CurlTransfer::configure(const UrlSessionConfiguration& configuration, Error* error) {
  downloadDirectory_ = configuration.temporaryDirectory;
  observer_ = configuration.observer;
  easy_.reset(curl_easy_init());
  if (!easy_) {
    *error = Error{Error::kUrlDomain, CURLE_OUT_OF_MEMORY, curl_easy_strerror(CURLE_OUT_OF_MEMORY)};
    return false;
  }
  const UrlRequest& request = task_->originalRequest();
  curl_easy_setopt(easy_.get(), CURLOPT_URL, request.url()->absoluteString().c_str());
  curl_easy_setopt(easy_.get(), CURLOPT_PRIVATE, this);
  curl_easy_setopt(easy_.get(), CURLOPT_ERRORBUFFER, errorBuffer_);
  curl_easy_setopt(easy_.get(), CURLOPT_NOSIGNAL, 1L);
  // Only the web: a payload naming "file:///etc/passwd" or "gopher://" downloads nothing, and a
  // redirect cannot lead there either.
  curl_easy_setopt(easy_.get(), CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy_.get(), CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy_.get(), CURLOPT_MAXREDIRS, kMaxRedirects);
  curl_easy_setopt(easy_.get(), CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  curl_easy_setopt(easy_.get(), CURLOPT_ACCEPT_ENCODING, "");
  curl_easy_setopt(easy_.get(), CURLOPT_TCP_KEEPALIVE, 1L);
  curl_easy_setopt(easy_.get(), CURLOPT_USERAGENT, "zentrova/" ZENTROVA_VERSION_STRING);
  // The extra CA is added to each connection's certificate store; a store shared between
  // connections would keep it for connections that must not trust it.
  curl_easy_setopt(easy_.get(), CURLOPT_CA_CACHE_TIMEOUT, 0L);
  extraCaFile_ = configuration.extraCaFile;
  if (!extraCaFile_.empty()) {
    curl_easy_setopt(easy_.get(), CURLOPT_SSL_CTX_FUNCTION, &CurlTransfer::onSslContext);
    curl_easy_setopt(easy_.get(), CURLOPT_SSL_CTX_DATA, this);
  }

  const std::string& method = request.httpMethod();
  bool hasBody = request.httpBody().has_value();
  // A request with a body follows only the redirects that keep it (307 and 308, see
  // followRedirectWithBody); libcurl would follow a 301, 302 or 303 as a GET without the body, and
  // that answer's 200 would pass for the body's.
  sendsBody_ = hasBody || method == "POST";
  curl_easy_setopt(easy_.get(), CURLOPT_FOLLOWLOCATION, sendsBody_ ? 0L : 1L);
  if (sendsBody_) {
    requestBody_ = request.httpBody().value_or("");
    curl_easy_setopt(easy_.get(), CURLOPT_POSTFIELDSIZE_LARGE,
                     static_cast<curl_off_t>(requestBody_.size()));
    curl_easy_setopt(easy_.get(), CURLOPT_POSTFIELDS, requestBody_.data());
    if (method != "POST") curl_easy_setopt(easy_.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
  } else if (method == "HEAD") {
    curl_easy_setopt(easy_.get(), CURLOPT_NOBODY, 1L);
  } else if (method == "GET") {
    curl_easy_setopt(easy_.get(), CURLOPT_HTTPGET, 1L);
  } else {
    curl_easy_setopt(easy_.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
  }

  // curl_slist_append returns the list's head, or null (the list unchanged) when out of memory.
  auto appendHeader = [this](const char* line) {
    if (curl_slist* head = curl_slist_append(headerList_.get(), line)) {
      (void)headerList_.release();
      headerList_.reset(head);
    }
  };
  bool expectSet = false;
  for (const auto& [name, value] : request.allHTTPHeaderFields()) {
    expectSet = expectSet || headerNameEquals(name, "Expect");
    std::string line = value.empty() ? name + ";" : name + ": " + value;
    appendHeader(line.c_str());
  }
  // No "Expect: 100-continue" round trip before a body: it costs a second on servers that ignore
  // it.
  if (!expectSet) appendHeader("Expect:");
  curl_easy_setopt(easy_.get(), CURLOPT_HTTPHEADER, headerList_.get());

  curl_easy_setopt(easy_.get(), CURLOPT_WRITEFUNCTION, &CurlTransfer::onWrite);
  curl_easy_setopt(easy_.get(), CURLOPT_WRITEDATA, this);
  curl_easy_setopt(easy_.get(), CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
  curl_easy_setopt(easy_.get(), CURLOPT_HEADERDATA, this);
  curl_easy_setopt(easy_.get(), CURLOPT_XFERINFOFUNCTION, &CurlTransfer::onProgress);
  curl_easy_setopt(easy_.get(), CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(easy_.get(), CURLOPT_NOPROGRESS, 0L);

  if (task_->isDownload()) {
    if (auto max = task_->maximumSize()) {
      curl_easy_setopt(easy_.get(), CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(*max));
    }
    return openDownloadFile(error);
  }
  return true;
}

bool CurlTransfer::openDownloadFile(Error* error) {
  const std::filesystem::path& dir = downloadDirectory_;
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  std::string path = (dir / "ZVDownload_XXXXXX.tmp").string();
  int fd = mkstemps(path.data(), 4);
  if (fd >= 0) file_.reset(fdopen(fd, "wb"));
  if (!file_) {
    std::string reason = std::generic_category().message(errno);
    if (fd >= 0) {
      ::close(fd);
      std::filesystem::remove(path, ec);
    }
    *error = Error{Error::kUrlDomain, CURLE_WRITE_ERROR,
                   fmt::format("Cannot create a temporary file in {}: {}", dir.string(), reason)};
    return false;
  }
  filePath_ = path;
  return true;
}

std::optional<CurlTransfer::Clock::time_point> CurlTransfer::idleDeadline() const {
  if (timeoutSeconds_ <= 0) return std::nullopt;
  return lastActivity_ + std::chrono::duration_cast<Clock::duration>(
                             std::chrono::duration<double>(timeoutSeconds_));
}

Error CurlTransfer::timeoutError() const {
  auto elapsed =
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started_).count();
  return Error{Error::kUrlDomain, CURLE_OPERATION_TIMEDOUT,
               fmt::format("Operation timed out after {} milliseconds with {} bytes received",
                           elapsed, received_)};
}

std::shared_ptr<HttpUrlResponse> CurlTransfer::response() const {
  long status = 0;
  if (!easy_.get() || curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status) != CURLE_OK ||
      status <= 0) {
    return nullptr;
  }
  char* effective = nullptr;
  curl_easy_getinfo(easy_.get(), CURLINFO_EFFECTIVE_URL, &effective);
  std::optional<Url> url = effective ? Url::parse(effective) : task_->originalRequest().url();
  return std::make_shared<HttpUrlResponse>(std::move(url), status, headers_);
}

Error CurlTransfer::errorFor(CURLcode code) const {
  if (sizeExceeded_ || code == CURLE_FILESIZE_EXCEEDED) {
    return Error{Error::kUrlDomain, CURLE_FILESIZE_EXCEEDED,
                 fmt::format("Maximum file size exceeded: the body is larger than {} bytes",
                             task_->maximumSize().value_or(0))};
  }
  if (writeFailed_) {
    return Error{Error::kUrlDomain, CURLE_WRITE_ERROR,
                 fmt::format("Cannot write the downloaded file {}", filePath_.string())};
  }
  std::string message = errorBuffer_[0] ? std::string(errorBuffer_) : curl_easy_strerror(code);
  return Error{Error::kUrlDomain, static_cast<long>(code), std::move(message)};
}

bool CurlTransfer::followRedirectWithBody() {
  if (!sendsBody_ || redirects_ >= kMaxRedirects) return false;
  long status = 0;
  char* location = nullptr;
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
  if (status != 307 && status != 308) return false;
  if (curl_easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &location) != CURLE_OK || !location) {
    return false;
  }
  if (curl_easy_setopt(easy_.get(), CURLOPT_URL, location) != CURLE_OK) return false;
  ++redirects_;
  body_.clear();
  received_ = 0;
  return true;
}

void CurlTransfer::finish(CURLcode code) {
  if (file_) {
    if (std::fclose(file_.release()) != 0 && code == CURLE_OK) code = CURLE_WRITE_ERROR;
  }
  auto answer = response();
  if (code != CURLE_OK) {
    removeDownloadFile();
    deliver(std::nullopt, std::nullopt, std::move(answer), errorFor(code));
  } else if (task_->isDownload()) {
    deliver(std::nullopt, Url::fileUrl(filePath_), std::move(answer), std::nullopt);
  } else {
    deliver(std::move(body_), std::nullopt, std::move(answer), std::nullopt);
  }
  removeDownloadFile();
}

void CurlTransfer::finishWithError(const Error& error) {
  if (file_) {
    file_.reset();
  }
  removeDownloadFile();
  deliver(std::nullopt, std::nullopt, response(), error);
}

void CurlTransfer::deliver(std::optional<std::string> body, std::optional<Url> location,
                           std::shared_ptr<HttpUrlResponse> response, std::optional<Error> error) {
  task_->markCompleted();
  if (observer_) {
    observer_->taskFinished(*task_, response ? response->statusCode() : 0,
                            static_cast<std::int64_t>(received_), error);
  }
  // A completion that throws must not take the delegate thread (and with it every later task)
  // down: the exception ends there, with a line in the system log.
  try {
    if (task_->isDownload()) {
      if (auto completion = task_->takeDownloadCompletion()) {
        completion(std::move(location), std::move(response), std::move(error));
      }
    } else if (auto completion = task_->takeDataCompletion()) {
      completion(std::move(body), std::move(response), std::move(error));
    }
  } catch (const std::exception& e) {
    log::system(fmt::format("Uncaught exception in a URL session completion: {}", e.what()));
  } catch (...) {
    log::system("Uncaught exception in a URL session completion");
  }
}

void CurlTransfer::removeDownloadFile() {
  if (filePath_.empty()) return;
  std::error_code ec;
  std::filesystem::remove(filePath_, ec);
  filePath_.clear();
}

size_t CurlTransfer::onWrite(char* data, size_t size, size_t count, void* self) {
  auto* t = static_cast<CurlTransfer*>(self);
  size_t n = size * count;
  t->lastActivity_ = Clock::now();
  auto max = t->task_->maximumSize();
  if (max && t->received_ + n > *max) {
    t->sizeExceeded_ = true;
    return 0;
  }
  t->received_ += n;
  if (t->file_) {
    if (std::fwrite(data, 1, n, t->file_.get()) != n) {
      t->writeFailed_ = true;
      return 0;
    }
  } else {
    t->body_.append(data, n);
  }
  return n;
}

size_t CurlTransfer::onHeader(char* data, size_t size, size_t count, void* self) {
  auto* t = static_cast<CurlTransfer*>(self);
  size_t n = size * count;
  t->lastActivity_ = Clock::now();
  std::string_view line = trim(std::string_view(data, n));
  if (line.rfind("HTTP/", 0) == 0) {
    t->headers_.clear();  // a new response (after a redirect or an interim answer) begins
    return n;
  }
  auto colon = line.find(':');
  if (colon == std::string_view::npos) return n;
  std::string name(trim(line.substr(0, colon)));
  std::string value(trim(line.substr(colon + 1)));
  for (auto& [existing, v] : t->headers_) {
    if (headerNameEquals(existing, name)) {
      v += ", " + value;
      return n;
    }
  }
  t->headers_.emplace_back(std::move(name), std::move(value));
  return n;
}

int CurlTransfer::onProgress(void* self, curl_off_t dltotal, curl_off_t dlnow, curl_off_t,
                             curl_off_t ulnow) {
  auto* t = static_cast<CurlTransfer*>(self);
  if (t->observer_) {
    t->observer_->taskProgressed(*t->task_, static_cast<std::int64_t>(t->received_),
                                 dltotal > 0 ? static_cast<std::int64_t>(dltotal) : -1);
  }
  if (dlnow != t->lastDownloaded_ || ulnow != t->lastUploaded_) {
    t->lastDownloaded_ = dlnow;
    t->lastUploaded_ = ulnow;
    t->lastActivity_ = Clock::now();
  }
  return 0;
}

CURLcode CurlTransfer::onSslContext(CURL*, void* sslContext, void* self) {
  auto* t = static_cast<CurlTransfer*>(self);
  X509_STORE* store = SSL_CTX_get_cert_store(static_cast<SSL_CTX*>(sslContext));
  BIO* bio = BIO_new_file(t->extraCaFile_.c_str(), "r");
  if (!bio) {
    ERR_clear_error();
    return CURLE_SSL_CACERT_BADFILE;
  }
  int added = 0;
  while (X509* cert = PEM_read_bio_X509(bio, nullptr, nullptr, nullptr)) {
    X509_STORE_add_cert(store, cert);
    X509_free(cert);
    ++added;
  }
  ERR_clear_error();  // the end of the file reads as an error
  BIO_free(bio);
  return added > 0 ? CURLE_OK : CURLE_SSL_CACERT_BADFILE;
}

}  // namespace zv
