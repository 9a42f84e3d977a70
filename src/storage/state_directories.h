#pragma once

#include <filesystem>

#include "shared/environment.h"
#include "shared/outcome.h"

namespace linewatch {

/// The folders for files that LineWatch keeps. The first write makes them, nothing here does.
struct StateDirectories {
  /// For favourites, feeds and preferences.
  std::filesystem::path data;
  /// For cached feeds, which can be fetched again.
  std::filesystem::path cache;
  /// For the settings file, which the user may edit; empty when no folder for it is known.
  std::filesystem::path settings;

  /// Everything in the given folder. Fails for an empty name, for a file, and for a relative name when the
  /// current folder is gone.
  static Outcome<StateDirectories> under(const std::filesystem::path& folder);
  /// The user's own folders by the XDG base directory rules: in XDG_DATA_HOME, XDG_CACHE_HOME and
  /// XDG_CONFIG_HOME when these are absolute, else in HOME. Fails when HOME is needed for data or cache and
  /// not absolute.
  static Outcome<StateDirectories> fromEnvironment(const Environment& environment);
};

}  // namespace linewatch
