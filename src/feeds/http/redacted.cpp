#include "feeds/http/redacted.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>

#include "feeds/text/ascii.h"

namespace linewatch {

namespace {

constexpr std::string_view kMark = "***";

/// The length of the URL at the start of the text; 0 when there is none.
std::size_t urlLength(std::string_view text) {
  const auto startsWith = [text](std::string_view scheme) {
    return std::ranges::equal(text.substr(0, scheme.size()), scheme, {}, asciiSmall);
  };
  if (!startsWith("http://") && !startsWith("https://")) return 0;
  const auto end = std::ranges::find_if(
      text, [](char byte) { return static_cast<unsigned char>(byte) <= ' ' || byte == '"' || byte == '\''; });
  auto length = static_cast<std::size_t>(end - text.begin());
  // The punctuation of a sentence around it.
  while (text[length - 1] == ':' || text[length - 1] == ',') --length;
  return length;
}

/// "a=1&b=&c" becomes "a=***&b=&***": a name without a value may be a key itself.
std::string redactedQuery(std::string_view query) {
  std::string safe;
  while (!query.empty()) {
    const std::size_t end = std::min(query.find_first_of("&;"), query.size());
    const std::string_view parameter = query.substr(0, end);
    const std::size_t equals = parameter.find('=');
    if (equals != std::string_view::npos) safe += parameter.substr(0, equals + 1);
    if (!parameter.empty() && equals != parameter.size() - 1) safe += kMark;
    if (end < query.size()) safe += query[end];
    query.remove_prefix(std::min(end + 1, query.size()));
  }
  return safe;
}

std::string redactedUrl(std::string_view url) {
  const std::size_t authority = url.find("//") + 2;
  const std::size_t path = std::min(url.find_first_of("/?#\\", authority), url.size());
  const std::size_t at = url.substr(0, path).rfind('@');
  const std::size_t host = at != std::string_view::npos && at >= authority ? at + 1 : authority;
  const std::size_t fragment = std::min(url.find('#', path), url.size());
  const std::size_t query = std::min(url.find('?', path), fragment);

  std::string safe(url.substr(0, authority));
  safe += url.substr(host, query - host);
  if (query < fragment) safe.append("?").append(redactedQuery(url.substr(query + 1, fragment - query - 1)));
  if (fragment < url.size()) safe.append("#").append(kMark);
  return safe;
}

std::string withUrlsRedacted(std::string_view text) {
  std::string safe;
  while (!text.empty()) {
    const std::size_t length = urlLength(text);
    safe += length > 0 ? redactedUrl(text.substr(0, length)) : std::string(1, text.front());
    text.remove_prefix(std::max(length, std::size_t{1}));
  }
  return safe;
}

/// The length of the encoding of `byte` at the start of the text, e.g. 3 for "%2F" and '/'; 0 when another
/// byte is there.
std::size_t encodedLength(std::string_view text, char byte) {
  if (text.empty()) return 0;
  if (text.front() == byte || (text.front() == '+' && byte == ' ')) return 1;
  if (text.front() != '%' || text.size() < 3) return 0;
  unsigned value = 0;
  const char* const end = text.data() + 3;
  const auto read = std::from_chars(text.data() + 1, end, value, 16);
  return read.ptr == end && value == static_cast<unsigned char>(byte) ? 3 : 0;
}

/// The length of the secret at the start of the text, however it is encoded; 0 when it is not there.
std::size_t secretLength(std::string_view text, std::string_view secret) {
  std::size_t length = 0;
  for (const char byte : secret) {
    const std::size_t encoded = encodedLength(text.substr(length), byte);
    if (encoded == 0) return 0;
    length += encoded;
  }
  return length;
}

/// The longest secret at the start of the text.
std::size_t longestSecret(std::string_view text, const std::vector<std::string>& secrets) {
  std::size_t longest = 0;
  for (const std::string& secret : secrets) longest = std::max(longest, secretLength(text, secret));
  return longest;
}

std::string withoutSecrets(std::string_view text, const std::vector<std::string>& secrets) {
  std::string safe;
  while (!text.empty()) {
    const std::size_t length = longestSecret(text, secrets);
    safe += length > 0 ? kMark : text.substr(0, 1);
    text.remove_prefix(std::max(length, std::size_t{1}));
  }
  return safe;
}

}  // namespace

std::string redacted(std::string_view text, const std::vector<std::string>& secrets) {
  // Before the URLs are redacted, because each secret is still whole; and after, because the removal of parts
  // of a URL can join others into a secret.
  return withoutSecrets(withUrlsRedacted(withoutSecrets(text, secrets)), secrets);
}

Error redacted(Error error, const std::vector<std::string>& secrets) {
  for (const char* key : {kLocalizedDescriptionKey, kDebugDescriptionKey}) {
    const auto entry = error.info.find(key);
    if (entry == error.info.end()) continue;
    if (const auto* const text = entry->second.get<std::string>()) entry->second = redacted(*text, secrets);
  }
  return error;
}

bool holdsSecret(std::string_view text, const std::vector<std::string>& secrets) {
  for (; !text.empty(); text.remove_prefix(1)) {
    if (longestSecret(text, secrets) > 0) return true;
  }
  return false;
}

}  // namespace linewatch
