#pragma once

#include <filesystem>

#include "shared/environment.h"
#include "shared/outcome.h"

namespace linewatch {

/// The folders in which LineWatch keeps things. Nothing here makes them: who first writes does.
struct StateDirectories {
  /// What the user would miss: favourites, feeds and preferences.
  std::filesystem::path data;
  /// What can be fetched again.
  std::filesystem::path cache;

  /// Everything in one folder of the user's choosing. Fails for an empty name, and for one that is relative
  /// to a folder that is gone.
  static Outcome<StateDirectories> under(const std::filesystem::path& folder);
  /// The user's own folders by the XDG base directory rules: XDG_DATA_HOME and XDG_CACHE_HOME when they are
  /// absolute, else the usual places in HOME. Fails when neither is known.
  static Outcome<StateDirectories> fromEnvironment(const Environment& environment);
};

}  // namespace linewatch
