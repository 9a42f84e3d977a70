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

  /// The request to send and its deadline.
  struct Order {
    const HttpRequest& request;
    /// The URL of the request or of a redirect, without a user name.
    HttpUrl url;
    /// Whether to send the request's headers and the user name of its URL.
    bool sendsKeys = true;
    Clock::time_point deadline;
  };

  /// The order's request and the reader must outlive the transfer.
  CurlTransfer(Order order, ResponseReader& reader);
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;
  ~CurlTransfer();

  /// Passes the answer to the reader until it is complete or the reader is settled. An error if the transfer
  /// ends before.
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
  /// The error of a transfer that was stopped or has passed its deadline.
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
