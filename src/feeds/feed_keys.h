#pragma once

#include <string>
#include <string_view>

#include "feeds/http/http_fetcher.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// The word in a value that stands for the key.
inline constexpr std::string_view kKeyWord = "KEY";

/// True if a value holds the word KEY, so that the user or a command must give the key.
bool wantsKey(const FeedKeys& keys);

/// Adds the headers and parameters to the request, with `key` in place of the word KEY, and makes the key one
/// of the request's secrets.
void addKeys(const FeedKeys& keys, const std::string& key, HttpRequest& request);

}  // namespace linewatch
