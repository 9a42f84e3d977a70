#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"

namespace linewatch {

/// A large city, which riders search for by name though a catalogue may know only its agency or another of
/// its names.
struct KnownPlace {
  /// As its inhabitants and other languages call it, e.g. "München" and "Munich"; the first one is to be
  /// shown.
  std::vector<std::string> names;
  std::string country;
  /// Its middle, to a tenth of a degree.
  GeoBox position;
};

/// The city with a name that has this search form, or that starts with it if it has three letters at least;
/// absent when it is none of those known.
std::optional<KnownPlace> knownPlace(std::string_view searchForm);

}  // namespace linewatch
