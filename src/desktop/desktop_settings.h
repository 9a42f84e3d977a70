#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "companion/companion_controller.h"
#include "desktop/desktop_screen.h"
#include "localization/user_locale.h"
#include "shared/date.h"
#include "storage/overlaid_preferences.h"
#include "storage/stored_feeds.h"

namespace linewatch {
class UserSettings;
}

namespace linewatch::desktop {

/// The settings of one run of the program.
struct DesktopSettings {
  /// The feed on the command line of a run without saved state.
  struct GivenFeed {
    FeedSource gtfs;
    FeedSource alerts;
    /// Route ids.
    std::vector<std::string> favorites;
  };

  std::optional<GivenFeed> given;
  /// The folder for all saved state; absent for the user's XDG folders.
  std::optional<std::filesystem::path> stateFolder;
  /// The folder of the sample city, which is shown until the user adds a feed.
  std::filesystem::path sampleCity;
  std::optional<Date> now;
  /// Whether the clock stops at `now`, e.g. to print a list. Otherwise it goes on from there.
  bool isTimeFrozen = false;
  UserLocale locale;
  bool verbose = false;
  /// Whether the main thread has to react to a user at any time, as in the panel. Then changes are saved on
  /// another thread, and waiting for another program ends after 0.1 s.
  bool isInteractive = false;
  /// Preferences of the companion application for this run; they replace the saved ones.
  Dictionary preferences;
  /// The user's settings; null: the defaults.
  std::shared_ptr<UserSettings> user = {};
  CompanionController::Opener openActivity;
  /// Null in a run without views, which does not ask for these roles.
  std::shared_ptr<DesktopScreen> screen;
};

}  // namespace linewatch::desktop
