#include "feeds/feed_keys.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "feeds/text/ascii.h"

namespace linewatch {

namespace {

/// The position of the next word KEY from `start`; npos when there is none. "MONKEY" and "KEYS" do not count.
std::size_t nextKeyWord(std::string_view value, std::size_t start) {
  for (std::size_t at = value.find(kKeyWord, start); at != std::string_view::npos;
       at = value.find(kKeyWord, at + 1)) {
    const std::size_t end = at + kKeyWord.size();
    const bool startsWord = at == 0 || !isAsciiAlphanumeric(value[at - 1]);
    if (startsWord && (end == value.size() || !isAsciiAlphanumeric(value[end]))) return at;
  }
  return std::string_view::npos;
}

std::string withKey(std::string_view value, std::string_view key) {
  std::string whole;
  std::size_t start = 0;
  for (std::size_t at = nextKeyWord(value, 0); at != std::string_view::npos; at = nextKeyWord(value, start)) {
    whole.append(value.substr(start, at - start)).append(key);
    start = at + kKeyWord.size();
  }
  return whole.append(value.substr(start));
}

std::vector<NameAndValue> withKey(const std::vector<FeedKeys::Field>& fields, std::string_view key) {
  std::vector<NameAndValue> whole;
  for (const FeedKeys::Field& field : fields) whole.push_back({field.name, withKey(field.value, key)});
  return whole;
}

}  // namespace

bool wantsKey(const FeedKeys& keys) {
  const auto holdsWord = [](const FeedKeys::Field& field) {
    return nextKeyWord(field.value, 0) != std::string::npos;
  };
  return std::ranges::any_of(keys.headers, holdsWord) || std::ranges::any_of(keys.query, holdsWord);
}

void addKeys(const FeedKeys& keys, const std::string& key, HttpRequest& request) {
  request.headers = withKey(keys.headers, key);
  request.query = withKey(keys.query, key);
  if (!key.empty()) request.secrets.push_back(key);
}

}  // namespace linewatch
