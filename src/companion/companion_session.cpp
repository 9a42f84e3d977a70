#include "companion/companion_session.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>
#include <utility>

namespace linewatch {

namespace {

/// 128 random bits in hexadecimal digits.
std::string randomIdentifier() {
  std::random_device random;
  std::string identifier;
  for (int i = 0; i < 4; ++i) {
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", static_cast<std::uint32_t>(random()));
    identifier += digits;
  }
  return identifier;
}

bool isCompanionURL(std::string_view url) {
  return url.starts_with(kCompanionScheme) && url.substr(kCompanionScheme.size()).starts_with("://");
}

/// The query without the parameters called `name`.
std::string withoutParameter(std::string_view query, std::string_view name) {
  std::string kept;
  while (!query.empty()) {
    const std::string_view parameter = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(query.size(), parameter.size() + 1));
    if (parameter.substr(0, parameter.find('=')) == name) continue;
    if (!kept.empty()) kept += '&';
    kept += parameter;
  }
  return kept;
}

std::string withParameter(std::string_view url, std::string_view name, std::string_view value) {
  const std::string_view beforeFragment = url.substr(0, url.find('#'));
  const std::string_view beforeQuery = beforeFragment.substr(0, beforeFragment.find('?'));
  std::string_view query = beforeFragment.substr(beforeQuery.size());
  if (!query.empty()) query.remove_prefix(1);
  std::string changed = withoutParameter(query, name);
  if (!changed.empty()) changed += '&';
  changed.append(name).append("=").append(value);
  return std::string(beforeQuery) + "?" + changed + std::string(url.substr(beforeFragment.size()));
}

}  // namespace

CompanionSession::CompanionSession() : identifier_(randomIdentifier()) {}

void CompanionSession::sessionEntity(bool share, bool reset) {
  if (reset) identifier_ = randomIdentifier();
  if (share) isShared_ = true;
}

URL CompanionSession::sharedSessionPunchOutURL(const std::string& absoluteString) {
  if (!isShared_ || !isCompanionURL(absoluteString)) return {absoluteString};
  return {withParameter(absoluteString, kSessionParameter, identifier_)};
}

Dictionary CompanionSession::sharedSessionPunchOutUserInfo(Dictionary userInfo) {
  if (isShared_) userInfo.insert_or_assign(std::string(kSessionKey), identifier_);
  return userInfo;
}

URL CompanionURLBuilder::urlForFavorites(int favoritesType, int mapType) {
  return {std::string(kCompanionScheme) + "://favorites?type=" + std::to_string(favoritesType) +
          "&map=" + std::to_string(mapType)};
}

}  // namespace linewatch
