#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"

namespace linewatch {

/// An alerts feed of the catalogue with its timetables: what a rider can add. The texts are plain lines, safe
/// to show.
struct CatalogueHit {
  /// Never null.
  SharedCatalogueFeed alerts;
  /// The alerts' timetables, after redirects. Empty when the catalogue has none of them: then the rider has
  /// to give a timetable.
  std::vector<SharedCatalogueFeed> timetables;
  /// A place that this feed does not name but covers on the map, and by which it was found, e.g. "Lowell" for
  /// a feed of Boston. Else empty.
  std::string holds;

  bool operator==(const CatalogueHit&) const = default;

  /// The agency; of a long list of agencies the first ones, with "…".
  std::string provider() const;
  /// E.g. "Boston, Massachusetts, United States". `language`: for the country's name and the commas, e.g.
  /// "de".
  std::string place(std::string_view language) const;
  /// The names of the alerts and of their timetables, with semicolons between them, e.g. "Bus; Tram". A name
  /// that says no more than the provider is left out. Empty when there is no other name.
  std::string coverage() const;
  /// False when the catalogue says that the feed was given up or replaced.
  bool isActive() const { return alerts->status == CatalogueFeed::Status::active; }
  /// The key that the alerts need, or else the timetable if it has no copy without a key.
  const CatalogueKey& key() const;
  bool needsKey() const { return key().kind != CatalogueKey::Kind::none; }
  /// The licence of the alerts, or else of a timetable; empty when the catalogue names none.
  std::string license() const;
};

/// The names of the first few timetables, with semicolons between them, for a rider to judge them by.
std::string namesOf(const std::vector<SharedCatalogueFeed>& timetables);

/// What a search of the catalogue found.
struct CatalogueMatches {
  /// The best first; inactive and deprecated ones last.
  std::vector<CatalogueHit> hits;
  /// The timetables whose texts match, when there are no hits: the place is known but has no alerts feed. The
  /// best first.
  std::vector<SharedCatalogueFeed> timetables;
  /// The other timetables whose area on the map holds the city that was searched for, when there are no hits.
  /// They may be of a network that only touches the city. The smallest area first.
  std::vector<SharedCatalogueFeed> timetablesOnMap;

  bool operator==(const CatalogueMatches&) const = default;
};

}  // namespace linewatch
