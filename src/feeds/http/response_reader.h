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

/// Turns the lines and bytes of one answer into a response, within the limits of the request. The transport
/// hands them on as they come and closes the connection as soon as no more is wanted.
class ResponseReader {
 public:
  /// The request outlives the reader.
  explicit ResponseReader(const HttpRequest& request) : request_(request) {}

  /// Takes a header line with its line break: the status line, a field, or the empty line at the end; also
  /// those of interim answers before the answer, and of trailers after its body. False: no more is wanted.
  bool takeHeaderLine(std::string_view line);
  /// Takes bytes of the body, as sent but for the transfer encoding. False: no more is wanted.
  bool takeBody(std::string_view bytes);
  /// Counts bytes of the body in their transfer encoding. A body that consists of padding of its chunks
  /// settles the reader, too.
  void countReceived(std::size_t bytes);

  /// The answer's header; null until it is complete.
  const ResponseHeader* header() const { return header_ ? &*header_ : nullptr; }
  /// True once the outcome is known, whatever else the server sends: a limit is exceeded, the answer is
  /// malformed, or its status brings no document.
  bool isSettled() const { return error_ || (header_ && header_->status != 200); }

  /// The response, or the failure of the answer. Call it once the reader is settled, or once the transport
  /// says that the body is complete. `now` dates the answer where the server does not.
  Outcome<HttpResponse> response(Date now);

 private:
  bool fail(const Error& error);
  bool endHeader();
  bool prepareBody();
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
