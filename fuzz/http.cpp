// Reads any bytes as a server's answer: header lines up to an empty one, then the body. However it is split
// into pieces, an answer is refused or within its limits, and no message shows a key.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "feeds/http/redacted.h"
#include "feeds/http/response_reader.h"
#include "require.h"
#include "shared/failure.h"

namespace {

using namespace linewatch;

constexpr std::size_t kMostBodyBytes = 10'000;
const HttpRequest kRequest{.url = "https://agency.example/feed",
                           .etag = "\"held\"",
                           .maximumBytes = kMostBodyBytes,
                           .maximumHeaderBytes = 4096,
                           .maximumHeaderLines = 50};

Outcome<HttpResponse> readAnswer(std::string_view answer, std::size_t pieceSize) {
  ResponseReader reader(kRequest);
  bool goesOn = true;
  while (goesOn && !answer.empty() && !reader.header()) {
    const std::size_t length = std::min(answer.find('\n'), answer.size() - 1) + 1;
    goesOn = reader.takeHeaderLine(answer.substr(0, length));
    answer.remove_prefix(length);
  }
  while (goesOn && !answer.empty()) {
    const std::string_view piece = answer.substr(0, pieceSize);
    goesOn = reader.takeBody(piece);
    answer.remove_prefix(piece.size());
  }
  require(goesOn || reader.isSettled());
  return reader.response(Date(Seconds(1'700'000'000)));
}

void requireWithin(const std::optional<Seconds>& time, double longest) {
  require(!time || (time->count() >= 0 && time->count() <= longest));
}

void requireValidator(std::string_view text) {
  require(std::ranges::none_of(text, [](char byte) { return byte == '\r' || byte == '\n' || byte == '\0'; }));
}

void checkAnswer(std::string_view answer) {
  const auto whole = readAnswer(answer, answer.size() + 1);
  const auto pieces = readAnswer(answer, 7);
  require(whole.succeeded() == pieces.succeeded());
  if (!whole) {
    requireWithin(retryAfterOf(whole.error()), 86400);
    require(failureCodeOf(whole.error()) != FailureCode::other);
    return;
  }
  require(whole->body == pieces->body && whole->body.size() <= kMostBodyBytes);
  require(!whole->notModified || whole->body.empty());
  requireWithin(whole->maxAge, 300);
  requireValidator(whole->etag);
  requireValidator(whole->lastModified);
}

/// The first line of the text is the key.
void checkRedaction(std::string_view text) {
  constexpr std::size_t kMostBytes = 512;  // looking for a key everywhere takes time
  text = text.substr(0, kMostBytes);
  const std::string key(text.substr(0, std::min(text.find('\n'), std::size_t{32})));
  // A key of asterisks is part of its own replacement.
  if (key.find_first_not_of('*') == std::string::npos) return;
  const std::string safe = redacted(text, {key});
  require(safe.find(key) == std::string::npos || key.find('*') != std::string::npos);
  require(redacted(redacted(text)) == redacted(text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  checkAnswer(input);
  checkRedaction(input);
  return 0;
}
