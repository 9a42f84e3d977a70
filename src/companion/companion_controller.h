#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/companion_application.h"
#include "platform/system_controller.h"

namespace linewatch {

/// Hands activities to the companion application. On the desktop this is a window of this program or the
/// user's command.
class CompanionController final : public SystemController {
 public:
  using Opener = std::function<void(const UserActivity&, OpenHandler)>;
  /// Runs the action as soon as the device is unlocked.
  using WhenUnlocked = std::function<void(std::function<void()> action)>;

  /// Without an opener activities can be made, but opening one fails. Without `whenUnlocked` the device is
  /// never locked.
  explicit CompanionController(Opener opener, WhenUnlocked whenUnlocked = {})
      : opener_(std::move(opener)), whenUnlocked_(std::move(whenUnlocked)) {}

  /// Makes an activity of any type that begins with the companion application's prefix.
  std::optional<UserActivity> makeUserActivity(const std::string& activityType) override;
  /// The widget is a plug-in of the companion application.
  std::optional<BundleRecord> bundleRecordOfCurrentProcess() override;
  /// The lock screen is the prompt: with `promptToUnlock` the activity is opened as soon as the user has
  /// unlocked the device.
  void openUserActivity(const UserActivity& activity, const std::optional<ApplicationRecord>& application,
                        bool promptToUnlock, OpenHandler handler) override;

 private:
  Opener opener_;
  WhenUnlocked whenUnlocked_;
};

}  // namespace linewatch
