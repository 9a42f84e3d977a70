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

  /// Without an opener activities can be made, but opening one fails.
  explicit CompanionController(Opener opener) : opener_(std::move(opener)) {}

  /// Makes an activity of any type that begins with the companion application's prefix.
  std::optional<UserActivity> makeUserActivity(const std::string& activityType) override;
  /// The widget is a plug-in of the companion application.
  std::optional<BundleRecord> bundleRecordOfCurrentProcess() override;
  /// Never prompts, because the desktop is unlocked while it shows the widget.
  void openUserActivity(const UserActivity& activity, const std::optional<ApplicationRecord>& application,
                        bool promptToUnlock, OpenHandler handler) override;

 private:
  Opener opener_;
};

}  // namespace linewatch
