#pragma once

#include <optional>
#include <string>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"
#include "feeds/catalogue/search_words.h"
#include "feeds/catalogue/searched_texts.h"

namespace linewatch {

/// A place on the map.
struct MappedPlace {
  std::string name;
  std::string country;
  GeoBox box;
};

/// What a rider searches for: the query, and if it names a large city, this city with its other names.
class WantedPlace {
 public:
  explicit WantedPlace(const SearchQuery& query);

  /// Absent when the query names no large city, nor the start of one.
  const std::optional<MappedPlace>& city() const { return city_; }
  /// The best fit of the names. `country`: of the feed with these texts; may be empty. Abroad only a name of
  /// the city fits: "Mexico City" is no "City Transit" in New Mexico.
  CatalogueFit fitOf(const SearchedTexts& texts, const std::string& country) const;

 private:
  std::vector<SearchQuery> queries_;
  std::optional<MappedPlace> city_;
  /// Whether the query is the whole name of the city.
  bool isCityWhole_ = false;
};

}  // namespace linewatch
