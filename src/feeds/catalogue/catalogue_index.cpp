#include "feeds/catalogue/catalogue_index.h"

#include <algorithm>
#include <functional>
#include <set>
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
bool covers(const CatalogueFeed& network, const CatalogueFeed& place) {
  if (!network.box || !place.box || network.country != place.country) return false;
  const GeoBox& box = *network.box;
  return box.north - box.south <= kTallestBox && box.east - box.west <= kWidestBox &&
         box.holds(centerOf(*place.box)) && areaOf(box) > areaOf(*place.box);
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

void CatalogueIndex::addCovering(const Places& places, std::vector<Ranked>& ranked) const {
  std::set<const Entry*> known;
  for (const Ranked& found : ranked) known.insert(found.entry);
  for (const Place* const place : places) {
    const CatalogueFeed& timetable = *place->timetable;
    for (const Entry& entry : entries_) {
      const bool isCovering = std::ranges::any_of(
          entry.hit.timetables, [&](const auto& network) { return covers(*network, timetable); });
      if (!isCovering || !known.insert(&entry).second) continue;
      ranked.push_back(
          {.entry = &entry,
           .fit = CatalogueFit::onMap,
           .holds = timetable.municipality.empty() ? timetable.provider : timetable.municipality});
    }
  }
}

CatalogueMatches CatalogueIndex::search(const SearchQuery& query) const {
  std::vector<Ranked> ranked;
  for (const Entry& entry : entries_) {
    const CatalogueFit fit = entry.texts.fit(query);
    if (fit != CatalogueFit::none) ranked.push_back({.entry = &entry, .fit = fit});
  }
  Places places;
  for (const Place& place : places_) {
    if (ranked.empty() && place.texts.fit(query) != CatalogueFit::none) places.push_back(&place);
  }
  addCovering(places, ranked);
  std::ranges::stable_sort(ranked, std::less<>());
  CatalogueMatches matches;
  for (Ranked& found : ranked) {
    matches.hits.push_back(found.entry->hit);
    matches.hits.back().holds = std::move(found.holds);
  }
  if (!ranked.empty()) return matches;
  for (const Place* const place : places) matches.timetables.push_back(place->timetable);
  return matches;
}

}  // namespace linewatch
