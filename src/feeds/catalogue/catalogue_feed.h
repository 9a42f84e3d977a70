#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace linewatch {

/// A rectangle on the map, in degrees. South is at most north, and west at most east.
struct GeoBox {
  double south = 0, north = 0, west = 0, east = 0;

  bool holds(const GeoBox& other) const {
    return south <= other.south && other.north <= north && west <= other.west && other.east <= east;
  }
  bool operator==(const GeoBox&) const = default;
};

/// How a server takes the key of a feed.
struct CatalogueKey {
  enum class Kind : std::uint8_t {
    none,
    queryParameter,
    header,
    other,  // in a way that LineWatch does not know
  };

  Kind kind = Kind::none;
  /// The name of the parameter or header; only for these kinds.
  std::string name;
  /// The page on which a rider gets a key; empty when the catalogue names none.
  std::string page;

  bool operator==(const CatalogueKey&) const = default;
};

/// A timetable or an alerts feed in the catalogue: one row of its spreadsheet. A text is empty when the
/// catalogue does not say.
struct CatalogueFeed {
  enum class Kind : std::uint8_t { timetable, alerts };
  enum class Status : std::uint8_t { active, inactive, deprecated };

  /// E.g. "mdb-437". Never empty.
  std::string id;
  Kind kind = Kind::timetable;
  Status status = Status::active;
  /// Two capital letters, e.g. "US".
  std::string country;
  /// A state, province or region, as the catalogue spells it.
  std::string subdivision;
  std::string municipality;
  /// The agency, or several of them with commas between them.
  std::string provider;
  /// What the feed covers if the provider has several, e.g. "Subway".
  std::string name;
  /// The http(s) address. Never empty.
  std::string url;
  /// The catalogue's own copy of a timetable, an http(s) address.
  std::string copyUrl;
  /// The http(s) address of the licence.
  std::string license;
  CatalogueKey key;
  std::optional<GeoBox> box;
  /// The ids of the timetables that the alerts are about.
  std::vector<std::string> timetables;
  /// The ids of the feeds that replace this one.
  std::vector<std::string> replacements;

  bool operator==(const CatalogueFeed&) const = default;
};

using SharedCatalogueFeed = std::shared_ptr<const CatalogueFeed>;

}  // namespace linewatch
