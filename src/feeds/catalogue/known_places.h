#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"

namespace linewatch {

/// A large city. Riders search for it by name, but a catalogue may have only its agency, or a name in another
/// language.
struct KnownPlace {
  /// Its own name first, then names in other languages, e.g. "München" and "Munich".
  std::vector<std::string> names;
  std::string country;
  /// Its middle, to a tenth of a degree.
  GeoBox position;
};

/// The city with this name, given in its search form. Three letters or more also find a name that starts with
/// them. Absent when no known city has such a name.
std::optional<KnownPlace> knownPlace(std::string_view searchForm);

}  // namespace linewatch
