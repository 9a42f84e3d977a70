#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "feeds/http/gzip_body.h"
#include "feeds/http/http_fetcher.h"
#include "feeds/http/response_header.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "shared/value.h"

namespace linewatch {

/// Turns the header lines and the body of one answer into a response, and enforces the limits of the request.
/// The transport passes on lines and bytes as they arrive, and closes the connection when the reader wants no
/// more.
class ResponseReader {
 public:
  /// The request outlives the reader.
  explicit ResponseReader(const HttpRequest& request) : request_(request) {}

  /// Takes a header line with its line break: the status line, a field, or the empty line at the end. Also
  /// takes the lines of interim answers (1xx) and of trailers. False: no more is wanted.
  bool takeHeaderLine(std::string_view line);
  /// Takes bytes of the body, without the transfer encoding. False: no more is wanted.
  bool takeBody(std::string_view bytes);
  /// Counts bytes of the body with the transfer encoding, so that endless padding of chunks hits the limit.
  void countReceived(std::size_t bytes);

  /// The answer's header; null until it is complete.
  const ResponseHeader* header() const { return header_ ? &*header_ : nullptr; }
  /// True when nothing more can change the outcome: a limit is exceeded, the answer is malformed, or its
  /// status is not 200.
  bool isSettled() const { return error_ || (header_ && header_->status != 200); }

  /// The response or the error. Call it when the reader is settled or the transport has passed on the whole
  /// body. `now` is the date of an answer without a Date field.
  Outcome<HttpResponse> response(Date now);

 private:
  bool fail(const Error& error);
  bool endHeader();
  bool prepareBody();
  void reportProgress() const;
  Outcome<HttpResponse> notModified() const;

  const HttpRequest& request_;
  std::string headerText_;
  std::size_t headerBytes_ = 0;
  std::size_t headerLines_ = 0;
  std::optional<ResponseHeader> header_;
  std::optional<GzipBody> gzip_;
  std::size_t receivedBytes_ = 0;
  std::size_t bodyBytes_ = 0;
  Bytes body_;
  std::optional<Error> error_;
};

/// True if the request holds a key: a header, a query parameter, or a user name in its URL.
bool sendsKey(const HttpRequest& request);

}  // namespace linewatch
