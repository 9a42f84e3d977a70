#include "desktop/transit_feeds.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/log.h"
#include "platform/transit_records.h"

namespace linewatch::desktop {

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

TransitFeeds::TransitFeeds(std::vector<StoredFeed> feeds, std::shared_ptr<FeedDocuments> documents,
                           IncidentLanguage language)
    : feeds_(std::move(feeds)),
      documents_(std::move(documents)),
      language_(std::make_shared<const IncidentLanguage>(std::move(language))),
      loaded_(feeds_.size()) {}

Outcome<SharedLineIndex> TransitFeeds::linesOf(std::string_view feedName) {
  const auto feed = std::ranges::find(feeds_, feedName, &StoredFeed::name);
  if (feed == feeds_.end())
    return failure("feed " + std::string(feedName), "", "there is no feed of that name");
  const std::lock_guard lock(mutex_);
  return linesLocked(static_cast<std::size_t>(feed - feeds_.begin()));
}

Outcome<std::vector<SharedLineIndex>> TransitFeeds::lines() {
  const std::lock_guard lock(mutex_);
  std::vector<SharedLineIndex> all;
  for (std::size_t feed = 0; feed < feeds_.size(); ++feed) {
    auto lines = linesLocked(feed);
    if (!lines) return lines.error();
    all.push_back(std::move(*lines));
  }
  return all;
}

Outcome<SharedLineIndex> TransitFeeds::linesLocked(std::size_t feed) {
  LoadedFeed& loaded = loaded_[feed];
  if (!loaded.lines) {
    auto lines = documents_->lineIndexOf(feeds_[feed]);
    if (!lines) return lines.error();
    loaded.lines = std::move(*lines);
    loaded.records = std::make_unique<LineRecords>(loaded.lines);
  }
  return loaded.lines;
}

Outcome<TransitLineItems> TransitFeeds::lineItems(std::span<const MapItemIdentifier> identifiers, Date now) {
  const std::lock_guard lock(mutex_);
  Outcome<TransitLineItems> items = lineItemsLocked(identifiers, now);
  const std::lock_guard statesLock(statesMutex_);
  states_ = statesLocked();
  return items;
}

Outcome<TransitLineItems> TransitFeeds::lineItemsLocked(std::span<const MapItemIdentifier> identifiers,
                                                        Date now) {
  for (LoadedFeed& feed : loaded_) feed.readByLastLookUp = false;
  const auto places = find(identifiers);
  if (!places) return places.error();
  std::map<std::size_t, IncidentRecords> incidents;
  TransitLineItems items;
  for (const Place& place : *places) {
    if (auto error = loadIncidents(place.feed)) return *error;
    LoadedFeed& feed = loaded_[place.feed];
    IncidentRecords& records =
        incidents.try_emplace(place.feed, feed.incidents, language_, now).first->second;
    items.push_back(std::make_shared<const TransitLineRecord>(feed.records->lineFieldsOfRoute(place.route),
                                                              records.ofRoute(place.route)));
  }
  return items;
}

Outcome<std::vector<TransitFeeds::Place>> TransitFeeds::find(std::span<const MapItemIdentifier> identifiers) {
  std::vector<Place> places;
  for (const MapItemIdentifier& identifier : identifiers) {
    bool found = false;
    for (std::size_t feed = 0; feed < feeds_.size() && !found; ++feed) {
      const auto lines = linesLocked(feed);
      if (!lines) return lines.error();
      const auto route = (*lines)->routeWithMuid(identifier.muid);
      if (route) places.push_back({feed, *route});
      found = route.has_value();
    }
    if (!found) logDebug("no feed has a line %{private}@; it is left out", {identifier.muid});
  }
  return places;
}

std::optional<Error> TransitFeeds::loadIncidents(std::size_t feed) {
  LoadedFeed& loaded = loaded_[feed];
  if (loaded.readByLastLookUp) return std::nullopt;
  auto alerts = documents_->alertsOf(feeds_[feed], loaded.alerts);
  if (!alerts) return alerts.error();
  if (loaded.alerts != *alerts || !loaded.incidents) {
    loaded.alerts = std::move(*alerts);
    loaded.incidents = std::make_shared<const IncidentTable>(loaded.alerts, loaded.lines);
    report(feeds_[feed].name, *loaded.incidents);
  }
  loaded.readByLastLookUp = true;
  return std::nullopt;
}

TransitFeeds::LinesOfIncidents TransitFeeds::linesWithIncidents(std::span<const std::uint64_t> muids) {
  const std::lock_guard lock(mutex_);
  LinesOfIncidents lines;
  for (const std::uint64_t muid : muids) lines[muid];
  for (LoadedFeed& feed : loaded_) {
    if (feed.incidents) addLinesWithIncidents(feed, lines);
  }
  return lines;
}

void TransitFeeds::addLinesWithIncidents(LoadedFeed& feed, LinesOfIncidents& lines) const {
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
      if (incident != wanted.end()) lines[incident->second].push_back(feed.records->lineFieldsOfRoute(route));
    }
  }
}

std::vector<TransitFeeds::AlertsState> TransitFeeds::alertsStates() const {
  const std::lock_guard lock(statesMutex_);
  return states_;
}

std::vector<TransitFeeds::AlertsState> TransitFeeds::statesLocked() const {
  std::vector<AlertsState> states;
  for (std::size_t feed = 0; feed < feeds_.size(); ++feed) {
    const LoadedFeed& loaded = loaded_[feed];
    if (!loaded.readByLastLookUp) continue;
    const std::uint64_t written = loaded.alerts->timestamp();
    states.push_back({.feed = feeds_[feed].name,
                      .written = written == 0 ? std::nullopt
                                              : std::optional(Date(Seconds(static_cast<double>(written))))});
  }
  return states;
}

}  // namespace linewatch::desktop
