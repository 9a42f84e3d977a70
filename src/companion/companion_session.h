#pragma once

#include <string>
#include <string_view>

#include "platform/user_session.h"

namespace linewatch {

/// The scheme of the companion application's URLs.
inline constexpr std::string_view kCompanionScheme = "rova";
/// The key of the shared session's identifier, in the query of a URL and in a user info.
inline constexpr std::string_view kSessionParameter = "session";
inline constexpr std::string_view kSessionKey = "sessionIdentifier";

/// The session of one run of the program: a random identifier in memory.
///
/// After it has been shared, URLs of the companion application have it in their query, and user infos have it
/// too. Other URLs never have it. A URL or user info that has it stays as it is.
class CompanionSession final : public UserSession {
 public:
  CompanionSession();

  void sessionEntity(bool share, bool reset) override;
  URL sharedSessionPunchOutURL(const std::string& absoluteString) override;
  Dictionary sharedSessionPunchOutUserInfo(Dictionary userInfo) override;
  UserSessionSnapshot snapshot() override { return {identifier_}; }

 private:
  std::string identifier_;
  bool isShared_ = false;
};

/// URLs of the form "rova://favorites?type=FAVORITES_TYPE&map=MAP_TYPE".
class CompanionURLBuilder final : public MapURLBuilder {
 public:
  URL urlForFavorites(int favoritesType, int mapType) override;
};

}  // namespace linewatch
