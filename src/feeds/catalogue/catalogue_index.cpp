#include "feeds/catalogue/catalogue_index.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "feeds/catalogue/country_names.h"

namespace linewatch {

namespace {

/// Degrees. A larger box belongs to a network that spans a continent, or holds a mistaken stop.
constexpr double kTallestBox = 15;
constexpr double kWidestBox = 30;

double areaOf(const GeoBox& box) { return (box.north - box.south) * (box.east - box.west); }

GeoBox centerOf(const GeoBox& box) {
  const double latitude = (box.south + box.north) / 2;
  const double longitude = (box.west + box.east) / 2;
  return {latitude, latitude, longitude, longitude};
}

/// True if a rider of the place may use the network: it is larger, and has the place's middle in its box.
bool covers(const CatalogueFeed& network, const MappedPlace& place) {
  if (!network.box || network.country != place.country) return false;
  const GeoBox& box = *network.box;
  return box.north - box.south <= kTallestBox && box.east - box.west <= kWidestBox &&
         box.holds(centerOf(place.box)) && areaOf(box) > areaOf(place.box);
}

bool coversOneOf(const std::vector<SharedCatalogueFeed>& networks, const MappedPlace& place) {
  return std::ranges::any_of(networks, [&place](const auto& network) { return covers(*network, place); });
}

/// The place of a timetable with a box.
MappedPlace placeOf(const CatalogueFeed& timetable) {
  return {timetable.municipality.empty() ? timetable.provider : timetable.municipality, timetable.country,
          *timetable.box};
}

void addNames(const CatalogueFeed& feed, SearchedTexts& texts) {
  texts.addName(feed.municipality);
  texts.addName(feed.provider);
}

double largestArea(const std::vector<SharedCatalogueFeed>& timetables) {
  double area = 0;
  for (const SharedCatalogueFeed& feed : timetables)
    area = std::max(area, feed->box ? areaOf(*feed->box) : 0);
  return area;
}

}  // namespace

/// An entry that fits a query.
struct CatalogueIndex::Ranked {
  const Entry* entry;
  CatalogueFit fit;
  std::string holds = {};

  /// Networks come before parts of them; of those that cover a place, the one of the place comes first.
  double size() const { return fit == CatalogueFit::onMap ? entry->area : -entry->area; }

  friend bool operator<(const Ranked& a, const Ranked& b) {
    return std::tuple(!a.entry->hit.isActive(), a.fit, a.size()) <
           std::tuple(!b.entry->hit.isActive(), b.fit, b.size());
  }
};

/// A timetable that fits a query.
struct CatalogueIndex::RankedTimetable {
  SharedCatalogueFeed timetable;
  CatalogueFit fit;

  friend bool operator<(const RankedTimetable& a, const RankedTimetable& b) {
    const auto isGivenUp = [](const CatalogueFeed& feed) {
      return feed.status != CatalogueFeed::Status::active;
    };
    return std::pair(isGivenUp(*a.timetable), a.fit) < std::pair(isGivenUp(*b.timetable), b.fit);
  }
};

CatalogueIndex::CatalogueIndex(const std::vector<SharedCatalogueFeed>& feeds) {
  const FeedLinks links(feeds);
  addEntries(feeds, links);
  addPlaces(feeds, links);
}

void CatalogueIndex::addTexts(const CatalogueFeed& feed, SearchedTexts& texts) {
  const auto [words, isNew] = countryWords_.emplace(feed.country, searchForm(feed.country));
  if (isNew) {
    for (const std::string& name : countryNames(feed.country)) words->second += " " + searchForm(name);
  }
  texts.add(feed, words->second);
}

CatalogueIndex::Entry CatalogueIndex::entryOf(const SharedCatalogueFeed& alerts, const FeedLinks& links) {
  Entry entry{.hit = {.alerts = alerts, .timetables = links.timetablesOf(*alerts), .holds = {}}, .texts = {}};
  entry.area = largestArea(entry.hit.timetables);
  addTexts(*alerts, entry.texts);
  addNames(*alerts, entry.texts);
  for (const SharedCatalogueFeed& timetable : entry.hit.timetables) {
    addTexts(*timetable, entry.texts);
    if (alerts->municipality.empty()) entry.texts.addName(timetable->municipality);
  }
  return entry;
}

void CatalogueIndex::addEntries(const std::vector<SharedCatalogueFeed>& feeds, const FeedLinks& links) {
  std::unordered_map<SharedCatalogueFeed, std::size_t> entryOfFeed;
  for (const SharedCatalogueFeed& feed : feeds) {
    if (feed->kind != CatalogueFeed::Kind::alerts || links.find(feed->id) != feed) continue;
    for (const SharedCatalogueFeed& alerts : links.currentFeedsOf(feed)) {
      const auto [entry, isNew] = entryOfFeed.emplace(alerts, entries_.size());
      if (isNew) entries_.push_back(entryOf(alerts, links));
      // The names of a replaced feed find the new one.
      if (alerts == feed) continue;
      addTexts(*feed, entries_[entry->second].texts);
      addNames(*feed, entries_[entry->second].texts);
    }
  }
}

void CatalogueIndex::addPlaces(const std::vector<SharedCatalogueFeed>& feeds, const FeedLinks& links) {
  for (const SharedCatalogueFeed& feed : feeds) {
    const bool isTimetable = feed->kind == CatalogueFeed::Kind::timetable && links.find(feed->id) == feed;
    if (!isTimetable || feed->status == CatalogueFeed::Status::deprecated) continue;
    places_.push_back({feed, {}});
    addTexts(*feed, places_.back().texts);
    addNames(*feed, places_.back().texts);
  }
}

std::vector<CatalogueIndex::Ranked> CatalogueIndex::namedBy(const WantedPlace& wanted) const {
  std::vector<Ranked> ranked;
  for (const Entry& entry : entries_) {
    const CatalogueFit fit = wanted.fitOf(entry.texts, entry.hit.alerts->country);
    if (fit != CatalogueFit::none) ranked.push_back({.entry = &entry, .fit = fit});
  }
  return ranked;
}

std::vector<CatalogueIndex::Ranked> CatalogueIndex::covering(const std::vector<MappedPlace>& places) const {
  std::vector<Ranked> ranked;
  for (const Entry& entry : entries_) {
    const auto place = std::ranges::find_if(
        places, [&entry](const auto& found) { return coversOneOf(entry.hit.timetables, found); });
    if (place != places.end())
      ranked.push_back({.entry = &entry, .fit = CatalogueFit::onMap, .holds = place->name});
  }
  return ranked;
}

CatalogueMatches CatalogueIndex::matchesOf(std::vector<Ranked> ranked) {
  std::ranges::stable_sort(ranked, std::less<>());
  CatalogueMatches matches;
  for (Ranked& found : ranked) {
    matches.hits.push_back(found.entry->hit);
    matches.hits.back().holds = std::move(found.holds);
  }
  return matches;
}

CatalogueMatches CatalogueIndex::search(const SearchQuery& query) const {
  const WantedPlace wanted(query);
  if (auto named = namedBy(wanted); !named.empty()) return matchesOf(std::move(named));
  const auto timetables = timetablesNamedBy(wanted);
  std::vector<MappedPlace> places;
  if (wanted.city()) places.push_back(*wanted.city());
  for (const RankedTimetable& found : timetables) {
    if (found.timetable->box) places.push_back(placeOf(*found.timetable));
  }
  CatalogueMatches matches = matchesOf(covering(places));
  if (!matches.hits.empty()) return matches;
  for (const RankedTimetable& found : timetables) matches.timetables.push_back(found.timetable);
  matches.timetablesOnMap = timetablesCovering(wanted);
  return matches;
}

std::vector<CatalogueIndex::RankedTimetable> CatalogueIndex::timetablesNamedBy(
    const WantedPlace& wanted) const {
  std::vector<RankedTimetable> named;
  for (const auto& [timetable, texts] : places_) {
    const CatalogueFit fit = wanted.fitOf(texts, timetable->country);
    if (fit != CatalogueFit::none) named.push_back({timetable, fit});
  }
  std::ranges::stable_sort(named, std::less<>());
  return named;
}

std::vector<SharedCatalogueFeed> CatalogueIndex::timetablesCovering(const WantedPlace& wanted) const {
  std::vector<SharedCatalogueFeed> found;
  for (const auto& [timetable, texts] : places_) {
    if (!wanted.city() || !covers(*timetable, *wanted.city())) continue;
    if (wanted.fitOf(texts, timetable->country) == CatalogueFit::none) found.push_back(timetable);
  }
  std::ranges::stable_sort(found, {}, [](const auto& feed) { return areaOf(*feed->box); });
  return found;
}

}  // namespace linewatch
