#include "feeds/http/response_reader.h"

#include <algorithm>
#include <utility>

#include "feeds/text/ascii.h"
#include "shared/byte_size.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

Error malformedAnswer(std::string_view why) { return failure(FailureCode::malformed, "", "", why); }

Error answerTooLarge(std::size_t maximumBytes) {
  return failure(FailureCode::tooLarge, "", "", "it is larger than " + sizeInWords(maximumBytes));
}

/// `small`: in small letters. An empty field is no encoding.
bool isEncoding(std::string_view field, std::string_view small) {
  return std::ranges::equal(field, small, {}, asciiSmall);
}

}  // namespace

bool ResponseReader::fail(const Error& error) {
  error_ = error;
  return false;
}

bool ResponseReader::takeHeaderLine(std::string_view line) {
  if (isSettled()) return false;
  headerBytes_ += line.size();
  if (++headerLines_ > request_.maximumHeaderLines || headerBytes_ > request_.maximumHeaderBytes)
    return fail(failure(FailureCode::tooLarge, "", "", "the header of the answer is too large"));
  if (header_) return true;  // a trailer
  if (line == "\r\n" || line == "\n") return endHeader();
  headerText_ += line;
  return true;
}

bool ResponseReader::endHeader() {
  const auto header = parseResponseHeader(std::exchange(headerText_, {}));
  if (!header) return fail(header.error());
  if (header->status < 200) return true;  // interim, e.g. 100 Continue
  header_ = *header;
  return header_->status == 200 && prepareBody();
}

bool ResponseReader::prepareBody() {
  const auto length = contentLength(*header_);
  if (!length && !header_->contentLength.empty())
    return fail(malformedAnswer("the length that the answer states is not clear"));
  const std::uint64_t stated = length.value_or(0);
  if (stated > request_.maximumBytes) return fail(answerTooLarge(request_.maximumBytes));
  const std::string& transfer = header_->transferEncoding;
  const std::string& content = header_->contentEncoding;
  if (isEncoding(content, "gzip") || isEncoding(content, "x-gzip"))
    gzip_.emplace(request_.maximumBytes);
  else if (!content.empty() && !isEncoding(content, "identity"))
    return fail(malformedAnswer("the answer has a content encoding that was not asked for"));
  if (!transfer.empty() && !isEncoding(transfer, "chunked"))
    return fail(malformedAnswer("the answer has a transfer encoding that was not asked for"));
  // A vector that grows step by step takes twice the memory of a large body for a moment.
  if (!gzip_) body_.reserve(static_cast<std::size_t>(stated));
  reportProgress();
  return true;
}

bool ResponseReader::takeBody(std::string_view bytes) {
  if (isSettled()) return false;
  if (!header_) return fail(malformedAnswer("the answer has no header"));
  bodyBytes_ += bytes.size();
  if (bodyBytes_ > request_.maximumBytes) return fail(answerTooLarge(request_.maximumBytes));
  reportProgress();
  if (!gzip_) {
    body_.insert(body_.end(), bytes.begin(), bytes.end());
    return true;
  }
  const std::optional<Error> error = gzip_->take(bytes, body_);
  return !error || fail(*error);
}

void ResponseReader::reportProgress() const {
  if (request_.progress) request_.progress(bodyBytes_, contentLength(*header_));
}

void ResponseReader::countReceived(std::size_t bytes) {
  receivedBytes_ += bytes;
  const std::size_t most = 2 * request_.maximumBytes + kMebibyte;
  if (!isSettled() && receivedBytes_ > most) fail(answerTooLarge(request_.maximumBytes));
}

Outcome<HttpResponse> ResponseReader::response(Date now) {
  if (error_) return *error_;
  if (!header_) return malformedAnswer("the answer has no header");
  if (header_->status == 304) return notModified();
  if (header_->status != 200) return statusFailure(*header_, sendsKey(request_), now);
  if (const auto error = gzip_ ? gzip_->finish() : std::nullopt) return *error;
  return HttpResponse{.body = std::move(body_),
                      .etag = header_->etag,
                      .lastModified = header_->lastModified,
                      .maxAge = maxAge(*header_)};
}

Outcome<HttpResponse> ResponseReader::notModified() const {
  if (request_.etag.empty() && request_.lastModified.empty())
    return malformedAnswer("the server says that nothing changed, but was not asked whether");
  return HttpResponse{.notModified = true,
                      .etag = header_->etag,
                      .lastModified = header_->lastModified,
                      .maxAge = maxAge(*header_)};
}

bool sendsKey(const HttpRequest& request) {
  const std::size_t authority = request.url.find("//");
  const std::size_t path = request.url.find_first_of("/?#", authority + 2);
  const bool hasUser = authority != std::string::npos &&
                       request.url.substr(authority, path - authority).find('@') != std::string::npos;
  return hasUser || !request.headers.empty() || !request.query.empty();
}

}  // namespace linewatch
