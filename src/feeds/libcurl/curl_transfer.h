#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <curl/curl.h>

#include "feeds/http/http_fetcher.h"
#include "feeds/http/response_reader.h"
#include "feeds/libcurl/http_url.h"
#include "shared/error.h"

namespace linewatch {

/// One GET of a URL by libcurl, without redirects. It has a connection of its own, which is closed when the
/// transfer is destroyed.
class CurlTransfer {
 public:
  using Clock = std::chrono::steady_clock;

  /// What goes out, and when it must be over.
  struct Order {
    const HttpRequest& request;
    /// The request's own URL, or one that it was redirected to; without a user name.
    HttpUrl url;
    /// Whether the request's headers and its URL's user name go along.
    bool sendsKeys = true;
    Clock::time_point deadline;
  };

  /// The order's request and the reader outlive the transfer.
  CurlTransfer(Order order, ResponseReader& reader);
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;
  ~CurlTransfer();

  /// Hands the answer to the reader until it is complete or the reader is settled. The error of a transfer
  /// that ended before that.
  std::optional<Error> run();

 private:
  struct ListCloser {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  struct EasyCloser {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
  };
  struct MultiCloser {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };

  template <class T>
  void set(CURLoption option, T value) {
    curl_easy_setopt(easy_.get(), option, value);
  }
  void setProtocol();
  void setReceivers();
  void setHeaders();
  void setUser(const std::optional<HttpUrl>& url);
  void addHeader(const std::string& line);
  /// The error of a transfer that may not go on.
  std::optional<Error> interruption() const;
  CURLcode result();
  Error errorOf(CURLcode result) const;

  Order order_;
  ResponseReader& reader_;
  std::unique_ptr<curl_slist, ListCloser> headers_;
  std::unique_ptr<CURL, EasyCloser> easy_;
  std::unique_ptr<CURLM, MultiCloser> multi_;
  char curlMessage_[CURL_ERROR_SIZE] = {};
};

}  // namespace linewatch
