#include "feeds/transit_feeds.h"

#include <algorithm>
#include <map>
#include <utility>

#include "feeds/user_favorites.h"
#include "platform/log.h"
#include "platform/transit_records.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

/// Where no alert can be matched with a line, the lines seem to run well although nobody knows: that is told
/// to everyone.
void report(const std::string& feedName, const IncidentTable& table) {
  const SelectorCounts& counts = table.counts();
  logDebug(
      "feed %@: %lu incidents; of the selectors %lu fit lines, %lu are about single stops or trips, "
      "%lu resolve to nothing; %lu alerts have none",
      {feedName, table.incidents().size(), counts.fitting, counts.notAboutLines, counts.unknown,
       counts.alertsWithoutSelector});
  const bool saysNothing = counts.fitting == 0 && counts.notAboutLines == 0;
  const std::string complaint = complaintOf(feedName, counts);
  if (saysNothing && !complaint.empty()) logError("%@: no line can have any", {complaint});
}

}  // namespace

TransitFeeds::TransitFeeds(Source source, std::shared_ptr<FeedDocuments> documents, IncidentLanguage language)
    : source_(std::move(source)),
      documents_(std::move(documents)),
      language_(std::make_shared<const IncidentLanguage>(std::move(language))) {}

std::vector<StoredFeed> TransitFeeds::feeds() const {
  const std::lock_guard lock(mutex_);
  return feeds_;
}

std::optional<Error> TransitFeeds::follow() {
  const std::lock_guard loading(loadingMutex_);
  return followWhileLoading();
}

std::optional<Error> TransitFeeds::followWhileLoading() {
  Outcome<std::vector<StoredFeed>> now = source_();
  if (!now) return now.error();
  if (*now == feeds_) return std::nullopt;
  std::vector<LoadedFeed> loaded(now->size());
  const std::lock_guard lock(mutex_);
  for (std::size_t feed = 0; feed < now->size(); ++feed) {
    const auto known = std::ranges::find(feeds_, (*now)[feed]);
    if (known != feeds_.end())
      loaded[feed] = std::move(loaded_[static_cast<std::size_t>(known - feeds_.begin())]);
  }
  feeds_.swap(*now);
  // What is not kept goes without the lock.
  loaded_.swap(loaded);
  return std::nullopt;
}

Outcome<SharedLineIndex> TransitFeeds::linesOf(std::string_view feedName) {
  const std::lock_guard loading(loadingMutex_);
  if (const auto error = followWhileLoading()) return *error;
  const auto feed = std::ranges::find(feeds_, feedName, &StoredFeed::name);
  if (feed == feeds_.end())
    return failure("feed " + std::string(feedName), "", "there is no feed of that name");
  return load(static_cast<std::size_t>(feed - feeds_.begin()));
}

FeedLines TransitFeeds::lines() {
  const std::lock_guard loading(loadingMutex_);
  FeedLines all;
  all.error = followWhileLoading();
  if (all.error) return all;
  for (std::size_t feed = 0; feed < feeds_.size(); ++feed) {
    auto lines = load(feed);
    if (lines) all.indexes.push_back(std::move(*lines));
    if (!lines && !all.error) all.error = lines.error();
  }
  return all;
}

Outcome<SharedLineIndex> TransitFeeds::load(std::size_t feed) {
  LoadedFeed& loaded = loaded_[feed];
  if (loaded.lines) return loaded.lines;
  auto lines = documents_->lineIndexOf(feeds_[feed]);
  if (!lines) return lines.error();
  auto records = std::make_shared<LineRecords>(*lines);
  const std::lock_guard lock(mutex_);
  loaded.lines = std::move(*lines);
  loaded.records = std::move(records);
  return loaded.lines;
}

Outcome<TransitLineItems> TransitFeeds::lineItems(std::span<const MapItemIdentifier> identifiers, Date now) {
  const std::lock_guard loading(loadingMutex_);
  std::set<std::size_t> read;
  const auto places = find(identifiers);
  const std::optional<Error> error = places ? loadIncidents(*places, read) : places.error();
  {
    const std::lock_guard lock(mutex_);
    states_ = statesLocked(read);
  }
  if (error) return *error;
  return makeLineItems(*places, now);
}

Outcome<std::vector<TransitFeeds::Place>> TransitFeeds::find(std::span<const MapItemIdentifier> identifiers) {
  if (const auto error = followWhileLoading()) return *error;
  if (std::ranges::find(identifiers, unreadFavorites(), &MapItemIdentifier::muid) != identifiers.end())
    return failure("favourites", "", "they could not be read");
  std::vector<Place> places;
  for (const MapItemIdentifier& identifier : identifiers) {
    bool found = false;
    for (std::size_t feed = 0; feed < feeds_.size() && !found; ++feed) {
      const auto lines = load(feed);
      if (!lines) return lines.error();
      const auto route = (*lines)->routeWithMuid(identifier.muid);
      if (route) places.push_back({feed, *route});
      found = route.has_value();
    }
    if (!found) logDebug("no feed has a line %{private}@; it is left out", {identifier.muid});
  }
  return places;
}

std::optional<Error> TransitFeeds::loadIncidents(std::span<const Place> places, std::set<std::size_t>& read) {
  for (const Place& place : places) {
    if (read.contains(place.feed)) continue;
    if (auto error = loadIncidents(place.feed)) return error;
    read.insert(place.feed);
  }
  return std::nullopt;
}

std::optional<Error> TransitFeeds::loadIncidents(std::size_t feed) {
  LoadedFeed& loaded = loaded_[feed];
  auto alerts = documents_->alertsOf(feeds_[feed], loaded.alerts);
  if (!alerts) return alerts.error();
  if (loaded.alerts == *alerts && loaded.incidents) return std::nullopt;
  auto incidents = std::make_shared<const IncidentTable>(*alerts, loaded.lines);
  report(feeds_[feed].name, *incidents);
  const std::lock_guard lock(mutex_);
  // Those held before go without the lock.
  loaded.alerts.swap(*alerts);
  loaded.incidents.swap(incidents);
  return std::nullopt;
}

TransitLineItems TransitFeeds::makeLineItems(std::span<const Place> places, Date now) {
  std::map<std::size_t, IncidentRecords> incidents;
  TransitLineItems items;
  items.reserve(places.size());
  for (const Place& place : places) {
    const LoadedFeed& feed = loaded_[place.feed];
    IncidentRecords& records =
        incidents.try_emplace(place.feed, feed.incidents, language_, now).first->second;
    items.push_back(std::make_shared<const TransitLineRecord>(lineFields(*feed.records, place.route),
                                                              records.ofRoute(place.route)));
  }
  return items;
}

TransitFeeds::LinesOfIncidents TransitFeeds::linesWithIncidents(std::span<const std::uint64_t> muids) {
  LinesOfIncidents lines;
  for (const std::uint64_t muid : muids) lines[muid];
  for (const LoadedFeed& feed : loadedFeeds()) {
    if (feed.incidents) addLinesWithIncidents(feed, lines);
  }
  return lines;
}

std::vector<TransitFeeds::LoadedFeed> TransitFeeds::loadedFeeds() const {
  const std::lock_guard lock(mutex_);
  return loaded_;
}

void TransitFeeds::addLinesWithIncidents(const LoadedFeed& feed, LinesOfIncidents& lines) {
  const IncidentRecords records(feed.incidents, language_, Date{});
  std::map<std::uint32_t, std::uint64_t> wanted;
  for (std::uint32_t place = 0; place < feed.incidents->incidents().size(); ++place) {
    const std::uint64_t muid = records.muidOf(place);
    if (lines.contains(muid)) wanted.emplace(place, muid);
  }
  if (wanted.empty()) return;
  for (std::size_t route = 0; route < feed.lines->routes().size(); ++route) {
    for (const std::uint32_t place : feed.incidents->incidentsOfRoute(route)) {
      const auto incident = wanted.find(place);
      if (incident != wanted.end()) lines[incident->second].push_back(lineFields(*feed.records, route));
    }
  }
}

std::shared_ptr<const TransitLineFields> TransitFeeds::lineFields(LineRecords& records, std::size_t route) {
  const std::lock_guard lock(recordsMutex_);
  return records.lineFieldsOfRoute(route);
}

std::vector<TransitFeeds::AlertsState> TransitFeeds::alertsStates() const {
  const std::lock_guard lock(mutex_);
  return states_;
}

std::vector<TransitFeeds::AlertsState> TransitFeeds::statesLocked(const std::set<std::size_t>& read) const {
  std::vector<AlertsState> states;
  states.reserve(read.size());
  for (const std::size_t feed : read) {
    const std::uint64_t written = loaded_[feed].alerts->timestamp();
    states.push_back({.feed = feeds_[feed].name,
                      .written = written == 0 ? std::nullopt
                                              : std::optional(Date(Seconds(static_cast<double>(written))))});
  }
  return states;
}

}  // namespace linewatch
