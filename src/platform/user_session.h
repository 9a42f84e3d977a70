#pragma once

#include <string>
#include <utility>

#include "platform/url.h"
#include "shared/value.h"

namespace linewatch {

/// The session of an event, for the analytics logger.
struct UserSessionSnapshot {
  std::string sessionIdentifier;
};

/// The session that the widget shares with the companion application. Main thread.
class UserSession {
 public:
  virtual ~UserSession() = default;

  /// Shares the session's identifier with the companion application if `share`; replaces the identifier first
  /// if `reset`.
  virtual void sessionEntity(bool share, bool reset) = 0;
  /// Shares the session's identifier with the companion application and keeps the identifier.
  void shareSession() { sessionEntity(/*share=*/true, /*reset=*/false); }
  /// The URL with the shared session added.
  virtual URL sharedSessionPunchOutURL(const std::string& absoluteString) = 0;
  /// The user info with the shared session added.
  virtual Dictionary sharedSessionPunchOutUserInfo(Dictionary userInfo) = 0;
  virtual UserSessionSnapshot snapshot() = 0;
};

/// Builds URLs of the companion application. Main thread.
class MapURLBuilder {
 public:
  virtual ~MapURLBuilder() = default;
  /// The URL that shows the user's favourites of the given type on a map of the given type.
  virtual URL urlForFavorites(int favoritesType, int mapType) = 0;
};

}  // namespace linewatch
