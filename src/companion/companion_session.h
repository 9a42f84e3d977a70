#pragma once

#include <string>
#include <string_view>

#include "platform/user_session.h"

namespace linewatch {

/// The scheme of the companion application's URLs.
inline constexpr std::string_view kCompanionScheme = "rova";
/// What the shared session's identifier is called in the query of a URL and in a user info.
inline constexpr std::string_view kSessionParameter = "session";
inline constexpr std::string_view kSessionKey = "sessionIdentifier";

/// The session of one run of the program: a random identifier that is kept in memory only.
///
/// Once it is shared, the companion application's URLs carry it in their query and user infos under a key of
/// their own; URLs of others never do. Carrying it along twice is the same as once.
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

/// Favourites are shown at "rova://favorites?type=FAVORITES_TYPE&map=MAP_TYPE".
class CompanionURLBuilder final : public MapURLBuilder {
 public:
  URL urlForFavorites(int favoritesType, int mapType) override;
};

}  // namespace linewatch
