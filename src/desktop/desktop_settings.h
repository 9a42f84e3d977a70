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

namespace linewatch::desktop {

/// The settings of one run of the program.
struct DesktopSettings {
  /// One feed that is given on the command line, for a run without saved state.
  struct GivenFeed {
    FeedSource gtfs;
    FeedSource alerts;
    /// Route ids.
    std::vector<std::string> favorites;
  };

  std::optional<GivenFeed> given;
  /// The folder for all saved state; absent: the user's XDG folders.
  std::optional<std::filesystem::path> stateFolder;
  /// The sample city's folder. The sample city is shown until the user adds a feed.
  std::filesystem::path sampleCity;
  std::optional<Date> now;
  /// Whether the clock stays at `now`, as for a list that is printed once. Otherwise it goes on from there.
  bool isTimeFrozen = false;
  UserLocale locale;
  bool verbose = false;
  /// Whether a person uses the main thread, as in the panel. Unconfirmed changes are then saved on another
  /// thread, and nothing waits longer than 0.1 s for another program.
  bool isInteractive = false;
  /// Values that override the companion application's preferences in this run.
  Dictionary preferences;
  CompanionController::Opener openActivity;
  /// Null for a run without views, which never asks for the roles of a screen.
  std::shared_ptr<DesktopScreen> screen;
};

}  // namespace linewatch::desktop
