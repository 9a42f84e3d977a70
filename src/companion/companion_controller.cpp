#include "companion/companion_controller.h"

#include "shared/failure.h"

namespace linewatch {

namespace {

std::string companionName(std::string_view name) {
  return std::string(kCompanionReverseDomainPrefix) + std::string(name);
}

}  // namespace

std::optional<UserActivity> CompanionController::makeUserActivity(const std::string& activityType) {
  if (!activityType.starts_with(kCompanionReverseDomainPrefix)) return std::nullopt;
  return UserActivity{activityType, {}};
}

std::optional<BundleRecord> CompanionController::bundleRecordOfCurrentProcess() {
  return std::make_shared<const PlugInRecord>(
      PlugInRecord{companionName("Rova.LineWatch"), ApplicationRecord{companionName("Rova")}});
}

void CompanionController::openUserActivity(const UserActivity& activity,
                                           const std::optional<ApplicationRecord>&, bool promptToUnlock,
                                           OpenHandler handler) {
  if (opener_ && promptToUnlock && whenUnlocked_)
    return whenUnlocked_(
        [opener = opener_, activity, handler = std::move(handler)] { opener(activity, handler); });
  if (opener_) return opener_(activity, std::move(handler));
  if (handler)
    handler(false, failure("cannot open " + activity.activityType, "", "there is no companion application"));
}

}  // namespace linewatch
