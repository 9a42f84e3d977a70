#include "simulation/roles/simulated_companion.h"

#include <utility>

namespace linewatch::simulation {

void SimulatedUserSession::sessionEntity(bool share, bool) {
  if (share) backstage_->transcript->record("shareSession");
}

URL SimulatedMapURLBuilder::urlForFavorites(int favoritesType, int mapType) {
  return {"rova://favorites?type=" + std::to_string(favoritesType) + "&map=" + std::to_string(mapType)};
}

std::optional<UserActivity> SimulatedSystemController::makeUserActivity(const std::string& activityType) {
  if (!backstage_->world.acceptsActivities) return std::nullopt;
  return UserActivity{activityType, {}};
}

std::optional<BundleRecord> SimulatedSystemController::bundleRecordOfCurrentProcess() {
  const ApplicationRecord application{std::string(kSimulatedApplication)};
  switch (backstage_->world.bundle) {
    case WorldBundle::plugin:
      return std::make_shared<const PlugInRecord>(PlugInRecord{std::string(kSimulatedPlugin), application});
    case WorldBundle::application:
      return application;
    case WorldBundle::other:
      return OtherBundleRecord{std::string(kSimulatedPlugin)};
    case WorldBundle::none:
      break;
  }
  return std::nullopt;
}

void SimulatedSystemController::openUserActivity(const UserActivity& activity,
                                                 const std::optional<ApplicationRecord>& application,
                                                 bool promptToUnlock, OpenHandler handler) {
  backstage_->transcript->record(
      "openUserActivity", {{"type", activity.activityType},
                           {"userInfo", activity.userInfo},
                           {"application", application ? Value(application->bundleIdentifier) : noValue()},
                           {"promptToUnlock", promptToUnlock}});
  if (!handler) return;
  backstage_->mainLoop.dispatchAsync([backstage = backstage_, handler = std::move(handler)] {
    const bool opens = backstage->world.opens;
    handler(opens,
            opens ? std::nullopt : std::optional(Error{std::string(kSimulatedOpeningErrorDomain), 1, {}}));
  });
}

}  // namespace linewatch::simulation
