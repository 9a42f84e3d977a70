#pragma once

#include <string>
#include <utility>

#include "platform/system_controller.h"
#include "platform/user_session.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// A session whose conversions return their argument unchanged, until a mark is set. Records sharing as
/// "shareSession".
class SimulatedUserSession final : public UserSession {
 public:
  explicit SimulatedUserSession(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  void sessionEntity(bool share, bool reset) override;
  URL sharedSessionPunchOutURL(const std::string& absoluteString) override {
    return {absoluteString + (mark_.empty() ? "" : "#" + mark_)};
  }
  Dictionary sharedSessionPunchOutUserInfo(Dictionary userInfo) override {
    if (!mark_.empty()) userInfo.emplace("session", mark_);
    return userInfo;
  }
  UserSessionSnapshot snapshot() override { return {"simulated session"}; }

  /// Conversions add the mark: as the fragment of a URL, and under "session" in a user info. An empty mark is
  /// not added.
  void setMark(std::string mark) { mark_ = std::move(mark); }

 private:
  SharedBackstage backstage_;
  std::string mark_;
};

/// The favourites' URL is "rova://favorites?type=FAVORITES_TYPE&map=MAP_TYPE".
class SimulatedMapURLBuilder final : public MapURLBuilder {
 public:
  URL urlForFavorites(int favoritesType, int mapType) override;
};

inline constexpr std::string_view kSimulatedApplication = "org.linewatch.Rova";
inline constexpr std::string_view kSimulatedPlugin = "org.linewatch.Rova.LineWatch";
inline constexpr std::string_view kSimulatedOpeningErrorDomain = "SystemController";

/// Records each opening as "openUserActivity" and opens nothing. The handler gets the world's `opens` after
/// the call has returned.
class SimulatedSystemController final : public SystemController {
 public:
  explicit SimulatedSystemController(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  std::optional<UserActivity> makeUserActivity(const std::string& activityType) override;
  std::optional<BundleRecord> bundleRecordOfCurrentProcess() override;
  void openUserActivity(const UserActivity& activity, const std::optional<ApplicationRecord>& application,
                        bool promptToUnlock, OpenHandler handler) override;

 private:
  SharedBackstage backstage_;
};

}  // namespace linewatch::simulation
