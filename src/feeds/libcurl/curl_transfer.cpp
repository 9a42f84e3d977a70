#include "feeds/libcurl/curl_transfer.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <stop_token>
#include <system_error>
#include <utility>

#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr std::chrono::milliseconds kLongestPoll{60'000};

/// The result of a receiving callback. libcurl ends the transfer when it is not the size that was received.
std::size_t sizeTaken(bool goesOn, std::size_t size) { return goesOn ? size : size + 1; }

/// Whether the folder finds certificates by a hash of their subjects, as OpenSSL's rehash makes it.
bool hasHashedCertificates(const char* folder) {
  if (!folder) return false;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() == ".0") return true;
  }
  return false;
}

/// The folder of trusted certificates, where it is hashed; else null. From it OpenSSL reads the certificate
/// that it needs; without it, it reads all of them, which takes 25 ms for each connection.
const char* hashedCertificates() {
  static const char* const folder = [] {
    const char* const standard = curl_version_info(CURLVERSION_NOW)->capath;
    return hasHashedCertificates(standard) ? standard : nullptr;
  }();
  return folder;
}

struct CurlMeaning {
  CURLcode result;
  FailureCode code;
  const char* words;
};

constexpr CurlMeaning kCurlMeanings[] = {
    {CURLE_COULDNT_RESOLVE_HOST, FailureCode::unreachable, "no address is found for the host"},
    {CURLE_COULDNT_RESOLVE_PROXY, FailureCode::unreachable, "no address is found for the proxy"},
    {CURLE_COULDNT_CONNECT, FailureCode::unreachable, "there is no connection to the server"},
    {CURLE_PARTIAL_FILE, FailureCode::unreachable, "the answer is cut off"},
    {CURLE_HTTP2, FailureCode::unreachable, "the answer is cut off"},
    {CURLE_HTTP2_STREAM, FailureCode::unreachable, "the answer is cut off"},
    {CURLE_GOT_NOTHING, FailureCode::unreachable, "the server closed the connection without an answer"},
    {CURLE_RECV_ERROR, FailureCode::unreachable, "the connection broke"},
    {CURLE_SEND_ERROR, FailureCode::unreachable, "the connection broke"},
    {CURLE_PEER_FAILED_VERIFICATION, FailureCode::unreachable, "the server's certificate is not trusted"},
    {CURLE_SSL_CONNECT_ERROR, FailureCode::unreachable, "there is no secure connection to the server"},
    {CURLE_OPERATION_TIMEDOUT, FailureCode::timedOut, "it took too long"},
    {CURLE_UNSUPPORTED_PROTOCOL, FailureCode::malformed, "the answer is not HTTP"},
    {CURLE_WEIRD_SERVER_REPLY, FailureCode::malformed, "the answer is not HTTP"},
    // libcurl's own limit on one line of a header; 100 is CURLE_TOO_LARGE of libcurl 8.6 and later.
    {CURLE_OUT_OF_MEMORY, FailureCode::tooLarge, "the header of the answer is too large"},
    {static_cast<CURLcode>(100), FailureCode::tooLarge, "the header of the answer is too large"},
};

}  // namespace

CurlTransfer::CurlTransfer(Order order, ResponseReader& reader)
    : order_(std::move(order)), reader_(reader), easy_(curl_easy_init()), multi_(curl_multi_init()) {
  setProtocol();
  setHeaders();
  setReceivers();
  set(CURLOPT_URL, order_.url.text().c_str());
  set(CURLOPT_ERRORBUFFER, curlMessage_);
  curl_multi_add_handle(multi_.get(), easy_.get());
}

CurlTransfer::~CurlTransfer() { curl_multi_remove_handle(multi_.get(), easy_.get()); }

void CurlTransfer::setReceivers() {
  const auto takeHeader = +[](char* bytes, std::size_t, std::size_t size, void* self) {
    auto& transfer = *static_cast<CurlTransfer*>(self);
    return sizeTaken(!transfer.interruption() && transfer.reader_.takeHeaderLine({bytes, size}), size);
  };
  const auto takeBody = +[](char* bytes, std::size_t, std::size_t size, void* self) {
    auto& transfer = *static_cast<CurlTransfer*>(self);
    return sizeTaken(!transfer.interruption() && transfer.reader_.takeBody({bytes, size}), size);
  };
  // Counts the body before chunks are taken apart: their padding reaches no receiver.
  const auto count = +[](CURL*, curl_infotype type, char*, std::size_t size, void* self) {
    if (type == CURLINFO_DATA_IN) static_cast<CurlTransfer*>(self)->reader_.countReceived(size);
    return 0;
  };
  set(CURLOPT_VERBOSE, 1L);
  set(CURLOPT_DEBUGFUNCTION, count);
  set(CURLOPT_DEBUGDATA, this);
  set(CURLOPT_HEADERFUNCTION, takeHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, takeBody);
  set(CURLOPT_WRITEDATA, this);
}

void CurlTransfer::setProtocol() {
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_2TLS);
  // The headers of a proxy's answer to CONNECT are not the server's.
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  if (const auto idle = order_.request.idleTimeout) {
    const auto seconds = static_cast<long>(std::ceil(idle->count()));
    set(CURLOPT_CONNECTTIMEOUT, seconds);
    set(CURLOPT_LOW_SPEED_TIME, seconds);
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);  // bytes a second
  }
  set(CURLOPT_FRESH_CONNECT, 1L);
  set(CURLOPT_FORBID_REUSE, 1L);
  // Signals would reach any thread.
  set(CURLOPT_NOSIGNAL, 1L);
  // A name lookup cannot be cancelled. A transfer that is over leaves it to its thread, which then ends.
  set(CURLOPT_QUICK_EXIT, 1L);
  if (const char* const folder = hashedCertificates()) {
    set(CURLOPT_CAPATH, folder);
    set(CURLOPT_CAINFO, static_cast<const char*>(nullptr));
  }
}

void CurlTransfer::setHeaders() {
  const HttpRequest& request = order_.request;
  set(CURLOPT_USERAGENT, "LineWatch/" LINEWATCH_VERSION);
  // Not libcurl's own unpacking, which takes a gzip stream that is cut off as whole.
  addHeader("Accept-Encoding: gzip");
  if (!request.etag.empty()) addHeader("If-None-Match: " + request.etag);
  if (!request.lastModified.empty()) addHeader("If-Modified-Since: " + request.lastModified);
  if (order_.sendsKeys) {
    // libcurl takes "Name:" as an order to leave the header out, and "Name;" as one without a value.
    for (const auto& [name, value] : request.headers) {
      std::string line = name;
      line.append(value.empty() ? ";" : ": ").append(value);
      addHeader(line);
    }
    setUser(HttpUrl::parse(request.url));
  }
  set(CURLOPT_HTTPHEADER, headers_.get());
  set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));  // a proxy's CONNECT has no keys
}

void CurlTransfer::setUser(const std::optional<HttpUrl>& url) {
  if (!url || (url->user().empty() && url->password().empty())) return;
  set(CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
  set(CURLOPT_USERNAME, url->user().c_str());
  set(CURLOPT_PASSWORD, url->password().c_str());
}

void CurlTransfer::addHeader(const std::string& line) {
  curl_slist* const longer = curl_slist_append(headers_.get(), line.c_str());
  (void)headers_.release();  // a part of the longer list
  headers_.reset(longer);
}

std::optional<Error> CurlTransfer::interruption() const {
  if (order_.request.stop.stop_requested())
    return failure(FailureCode::cancelled, "", "", "it is no longer wanted");
  if (Clock::now() >= order_.deadline) return failure(FailureCode::timedOut, "", "", "it took too long");
  return std::nullopt;
}

std::optional<Error> CurlTransfer::run() {
  const std::stop_callback wake(order_.request.stop, [this] { curl_multi_wakeup(multi_.get()); });
  int running = 1;
  for (;;) {
    if (auto error = interruption()) return error;
    curl_multi_perform(multi_.get(), &running);
    if (running == 0 || reader_.isSettled()) break;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(order_.deadline - Clock::now());
    const auto wait = std::clamp(left, std::chrono::milliseconds(0), kLongestPoll);
    curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(wait.count()), nullptr);
  }
  if (reader_.isSettled()) return std::nullopt;
  if (const CURLcode failed = result(); failed != CURLE_OK) {
    const auto error = interruption();
    return error ? *error : errorOf(failed);
  }
  return std::nullopt;
}

CURLcode CurlTransfer::result() {
  int left = 0;
  const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left);
  return message ? message->data.result : CURLE_GOT_NOTHING;
}

Error CurlTransfer::errorOf(CURLcode result) const {
  const auto* const meaning = std::ranges::find(kCurlMeanings, result, &CurlMeaning::result);
  long systemError = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_OS_ERRNO, &systemError);
  const std::string detail = curlMessage_[0] != '\0' ? curlMessage_ : curl_easy_strerror(result);
  if (meaning == std::end(kCurlMeanings)) return failure(FailureCode::unreachable, "", "", detail);
  if (result == CURLE_COULDNT_CONNECT && systemError != 0)
    return failure(meaning->code, "", "", std::generic_category().message(static_cast<int>(systemError)));
  const bool isTls = result == CURLE_PEER_FAILED_VERIFICATION || result == CURLE_SSL_CONNECT_ERROR;
  return failure(meaning->code, "", meaning->words, isTls ? detail : "");
}

}  // namespace linewatch
