#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "feeds/catalogue/catalogue_feed.h"
#include "feeds/catalogue/catalogue_hit.h"
#include "feeds/catalogue/feed_links.h"
#include "feeds/catalogue/search_words.h"
#include "feeds/catalogue/searched_texts.h"
#include "feeds/catalogue/wanted_place.h"

namespace linewatch {

/// The hits of a catalogue with the words that find them. Immutable after construction.
class CatalogueIndex {
 public:
  struct Entry {
    CatalogueHit hit;
    SearchedTexts texts;
    /// The area of its largest timetable on the map, in square degrees; 0 when unknown.
    double area = 0;
  };

  explicit CatalogueIndex(const std::vector<SharedCatalogueFeed>& feeds);

  CatalogueMatches search(const SearchQuery& query) const;
  const std::vector<Entry>& entries() const { return entries_; }

 private:
  struct Place {
    SharedCatalogueFeed timetable;
    SearchedTexts texts;
  };
  struct Ranked;
  struct RankedTimetable;

  void addEntries(const std::vector<SharedCatalogueFeed>& feeds, const FeedLinks& links);
  void addPlaces(const std::vector<SharedCatalogueFeed>& feeds, const FeedLinks& links);
  Entry entryOf(const SharedCatalogueFeed& alerts, const FeedLinks& links);
  void addTexts(const CatalogueFeed& feed, SearchedTexts& texts);
  std::vector<Ranked> namedBy(const WantedPlace& wanted) const;
  std::vector<Ranked> covering(const std::vector<MappedPlace>& places) const;
  /// The timetables whose texts fit, the best first.
  std::vector<RankedTimetable> timetablesNamedBy(const WantedPlace& wanted) const;
  /// The timetables whose texts do not fit and that cover the city, the smallest first.
  std::vector<SharedCatalogueFeed> timetablesCovering(const WantedPlace& wanted) const;
  /// The entries, the best first.
  static CatalogueMatches matchesOf(std::vector<Ranked> ranked);

  std::vector<Entry> entries_;
  std::vector<Place> places_;
  /// The search forms of the names, by country.
  std::map<std::string, std::string> countryWords_;
};

}  // namespace linewatch
