#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "shared/date.h"
#include "shared/outcome.h"

namespace linewatch {

/// The fields of an answer's header that matter here, as the server wrote them, without space around them. A
/// field is empty when the server sent none, or one with control characters.
struct ResponseHeader {
  int status = 0;
  std::string etag;
  std::string lastModified;
  std::string location;
  std::string contentLength;
  std::string contentEncoding;
  std::string transferEncoding;
  std::string cacheControl;
  std::string age;
  std::string date;
  std::string retryAfter;
};

/// Reads the status line and the header lines, which end with "\r\n" or "\n". Only the status line can make
/// the header malformed; lines that are no field are skipped.
Outcome<ResponseHeader> parseResponseHeader(std::string_view text);

/// Content-Length in bytes; absent when it is missing, no number, or stated twice with different numbers.
std::optional<std::uint64_t> contentLength(const ResponseHeader& header);

/// For how long the answer is fresh: max-age less Age, from 0 to 5 minutes. Absent without max-age and under
/// no-cache and no-store.
std::optional<Seconds> maxAge(const ResponseHeader& header);

/// When to ask again after a status 429 or 503: Retry-After in seconds from now, from 0 to a day. A date
/// counts from the server's own Date, or from `now` where there is none.
std::optional<Seconds> retryAfter(const ResponseHeader& header, Date now);

/// A date of HTTP in any of its three forms, e.g. "Sun, 06 Nov 1994 08:49:37 GMT".
std::optional<Date> parseHttpDate(std::string_view text);

/// True for a redirect that a GET follows.
bool isRedirect(const ResponseHeader& header);

/// The failure of a status that brings no document, with status and Retry-After in its info.
/// `keySent`: the request held a key, which matters to the words of a 401 or 403.
Error statusFailure(const ResponseHeader& header, bool keySent, Date now);

}  // namespace linewatch
