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

namespace linewatch::desktop {

/// What a run of the program is told.
struct DesktopSettings {
  /// A run without saved state on one feed.
  struct GivenFeed {
    std::string gtfs;
    std::string alerts;
    /// Route ids.
    std::vector<std::string> favorites;
  };

  std::optional<GivenFeed> given;
  /// The folder of all saved state; absent: the user's own folders.
  std::optional<std::filesystem::path> stateFolder;
  /// Where the sample city lies, which is shown until a feed is added.
  std::filesystem::path sampleCity;
  std::optional<Date> now;
  /// Whether `now` remains the time for as long as the program runs, as for a list that is made once.
  bool nowStandsStill = false;
  UserLocale locale;
  bool verbose = false;
  /// Whether a person waits for the main thread, which then waits for other programs only for as long as
  /// nobody notices.
  bool mainThreadHurries = false;
  /// Values in front of the companion application's preferences, for this run.
  Dictionary preferences;
  CompanionController::Opener openActivity;
  /// Null for a run that shows no views and so never asks for the roles of a screen.
  std::shared_ptr<DesktopScreen> screen;
};

}  // namespace linewatch::desktop
