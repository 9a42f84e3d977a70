#include "feeds/transit_feeds.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include "feeds/service_badge.h"
#include "feeds/side_by_side.h"
#include "platform/log.h"
#include "platform/transit_records.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

void logCounts(const std::string& feedName, const IncidentTable& table) {
  const SelectorCounts& counts = table.counts();
  logDebug(
      "feed %@: %lu incidents; of the selectors %lu fit lines, %lu are about single stops or trips, "
      "%lu resolve to nothing; %lu alerts have none",
      {feedName, table.incidents().size(), counts.fitting, counts.notAboutLines, counts.unknown,
       counts.alertsWithoutSelector});
}

/// A timetable that could not be read is not tried again for this long, so that one command does not wait for
/// the same server several times.
constexpr Seconds kTimetableRetry{15};

/// How often one look-up follows feeds that change meanwhile.
constexpr int kMostRepeats = 3;

bool hasJustFailed(const FeedAlerts& alerts, Date now) {
  if (!alerts.failed || *alerts.failed > now) return false;
  return now - *alerts.failed < kTimetableRetry || (alerts.retryAfter && now < *alerts.retryAfter);
}

std::optional<Date> headerTime(const AlertsMessage& message) {
  if (message.timestamp() == 0) return std::nullopt;
  return Date(Seconds(static_cast<double>(message.timestamp())));
}

/// `incidents` is null when the feed's lines or alerts have not been read.
FeedFacts factsOf(const StoredFeed& feed, const FeedAlerts& alerts, const IncidentTable* incidents) {
  FeedFacts facts{.feed = feed.name,
                  .failure = alerts.failure,
                  .failures = alerts.failures,
                  .failed = alerts.failed,
                  .retryAfter = alerts.retryAfter};
  if (!incidents) return facts;
  facts.received = alerts.received;
  facts.isWhole = !alerts.message->isDifference();
  facts.counts = incidents->counts();
  facts.written = headerTime(*alerts.message);
  return facts;
}

bool hasAllNotices(const IncidentTable& incidents, std::size_t route,
                   const std::vector<std::uint32_t>& notices) {
  const std::vector<StopNotice> ofRoute = incidents.stopNoticesOfRoute(route);
  return std::ranges::all_of(notices, [&](std::uint32_t notice) {
    return std::ranges::find(ofRoute, notice, &StopNotice::incident) != ofRoute.end();
  });
}

}  // namespace

std::vector<std::string> removedFeedsOf(const std::vector<UnknownLine>& lines,
                                        const std::vector<StoredFeed>& feeds) {
  std::vector<std::string> removed;
  for (const UnknownLine& line : lines) {
    const bool isListed = std::ranges::find(feeds, line.feed, &StoredFeed::name) != feeds.end();
    const bool isKnown = std::ranges::find(removed, line.feed) != removed.end();
    if (line.isMissing && !isListed && !isKnown) removed.push_back(line.feed);
  }
  return removed;
}

FeedState stateOfFeed(const StoredFeed& feed, const SharedLineIndex& lines, const FeedAlerts& alerts,
                      Date now) {
  if (!alerts.message) return stateOf(factsOf(feed, alerts, nullptr), now);
  const IncidentTable incidents(alerts.message, lines);
  return stateOf(factsOf(feed, alerts, &incidents), now);
}

TransitFeeds::TransitFeeds(Source source, std::shared_ptr<FeedDocuments> documents, IncidentLanguage language)
    : source_(std::move(source)),
      documents_(std::move(documents)),
      language_(std::make_shared<const IncidentLanguage>(std::move(language))) {}

std::vector<StoredFeed> TransitFeeds::feeds() const {
  const MutexLock lock(mutex_);
  return published_.feeds;
}

std::vector<FeedState> TransitFeeds::states() const {
  const MutexLock lock(mutex_);
  return published_.states;
}

std::vector<UnknownLine> TransitFeeds::unknownLines() const {
  const MutexLock lock(mutex_);
  return published_.unknownLines;
}

void TransitFeeds::publish() {
  std::vector<StoredFeed> feeds = feeds_;
  std::vector<LoadedFeed> loaded = loaded_;
  const MutexLock lock(mutex_);
  // The former ones are destroyed after the lock is released.
  published_.feeds.swap(feeds);
  published_.loaded.swap(loaded);
}

std::optional<Error> TransitFeeds::follow() {
  const MutexLock loading(loadingMutex_);
  return followLocked();
}

std::optional<Error> TransitFeeds::followLocked() {
  const Outcome<std::vector<StoredFeed>> now = source_();
  if (!now) return now.error();
  if (*now == feeds_) return std::nullopt;
  std::vector<LoadedFeed> loaded(now->size());
  for (std::size_t feed = 0; feed < now->size(); ++feed) {
    const auto known = std::ranges::find(feeds_, (*now)[feed]);
    if (known != feeds_.end())
      loaded[feed] = std::move(loaded_[static_cast<std::size_t>(known - feeds_.begin())]);
  }
  feeds_ = *now;
  records_.clear();
  loaded_ = std::move(loaded);
  publish();
  return std::nullopt;
}

Outcome<SharedLineIndex> TransitFeeds::linesOf(std::string_view feedName) {
  const MutexLock loading(loadingMutex_);
  if (const auto error = followLocked()) return *error;
  const auto feed = std::ranges::find(feeds_, feedName, &StoredFeed::name);
  if (feed == feeds_.end())
    return failure(FailureCode::notFound, "feed " + std::string(feedName), "",
                   "there is no feed of that name");
  return loadLines(static_cast<std::size_t>(feed - feeds_.begin()));
}

FeedLines TransitFeeds::lines() {
  const MutexLock loading(loadingMutex_);
  FeedLines all;
  all.error = followLocked();
  if (all.error) return all;
  loadLines(allFeeds());
  for (std::size_t feed = 0; feed < feeds_.size(); ++feed) {
    auto lines = loadLines(feed);
    if (lines) all.indexes.push_back(std::move(*lines));
    if (!lines && !all.error) all.error = lines.error();
  }
  return all;
}

Outcome<SharedLineIndex> TransitFeeds::loadLines(std::size_t feed) {
  loadLines(std::vector{feed});
  const LoadedFeed& loaded = loaded_[feed];
  return loaded.lines ? Outcome<SharedLineIndex>(loaded.lines) : *loaded.alerts.failure;
}

void TransitFeeds::loadLines(const std::vector<std::size_t>& feeds) {
  std::vector<std::size_t> wanted;
  std::vector<StoredFeed> asked;
  for (const std::size_t feed : feeds) {
    const bool isLoaded = loaded_[feed].lines != nullptr;
    if (!isLoaded && hasJustFailed(loaded_[feed].alerts, documents_->now())) continue;
    if (isLoaded && !documents_->hasNewerLines(feeds_[feed])) continue;
    wanted.push_back(feed);
    asked.push_back(feeds_[feed]);
  }
  std::vector<std::optional<Outcome<SharedLineIndex>>> read(wanted.size());
  runSideBySide(wanted.size(),
                [&](std::size_t place) { read[place].emplace(documents_->lineIndexOf(asked[place])); });
  for (std::size_t place = 0; place < wanted.size(); ++place) takeLines(wanted[place], *read[place]);
}

void TransitFeeds::takeLines(std::size_t feed, const Outcome<SharedLineIndex>& lines) {
  LoadedFeed& loaded = loaded_[feed];
  if (!lines && loaded.lines) return;
  if (!lines) {
    loaded.alerts = afterFailure(std::move(loaded.alerts), lines.error(), documents_->now());
    return;
  }
  loaded.records = std::make_shared<LineRecords>(*lines);
  loaded.lines = *lines;
  // They are made anew for these lines.
  loaded.incidents = nullptr;
  loaded.stops = nullptr;
}

Outcome<TransitLineItems> TransitFeeds::lineItems(std::span<const MapItemIdentifier> identifiers, Date now) {
  const MutexLock loading(loadingMutex_);
  auto items = lookUp(identifiers, now);
  // The user may have changed the feeds while a server was asked.
  for (int repeats = 0; repeats < kMostRepeats && haveFeedsChanged(); ++repeats)
    items = lookUp(identifiers, now);
  return items;
}

bool TransitFeeds::haveFeedsChanged() const {
  const Outcome<std::vector<StoredFeed>> now = source_();
  return now && *now != feeds_;
}

Outcome<TransitLineItems> TransitFeeds::lookUp(std::span<const MapItemIdentifier> identifiers, Date now) {
  const std::optional<Error> error = followLocked();
  const std::vector<Place> places = error ? std::vector<Place>() : find(identifiers);
  std::set<std::size_t> feeds;
  for (const Place& place : places) {
    if (!place.isMissing) feeds.insert(*place.feed);
  }
  const States states = update({feeds.begin(), feeds.end()}, now);
  publish(places, states);
  if (error) return *error;
  auto items = answer(places, states, now);
  publishStopIncidents();
  logErrors(states, items);
  return items;
}

/// Logs the errors of feeds, except the error of the answer and what the last look-up has logged: a retry
/// that fails in the same way is no news.
void TransitFeeds::logErrors(const States& states, const Outcome<TransitLineItems>& answer) {
  for (const auto& [feed, state] : states) {
    std::string text = state.error ? sentenceOf(*state.error) : "";
    if (state.kind == FeedState::Kind::kept)
      text += "; the alerts received at " + description(*state.since) + " serve for now";
    const std::string logged = std::exchange(loaded_[feed].loggedError, text);
    if (text.empty() || text == logged || (!answer && answer.error() == state.error)) continue;
    logError("%@", {text});
  }
}

std::vector<TransitFeeds::Place> TransitFeeds::find(std::span<const MapItemIdentifier> identifiers) {
  loadLines(feedsNamedBy(identifiers));
  std::set<std::size_t> tried;
  std::vector<Place> places;
  for (const MapItemIdentifier& identifier : identifiers) {
    std::optional<Place> place;
    for (std::size_t feed = 0; feed < feeds_.size() && !(place && place->route); ++feed) {
      if (!identifier.feed.empty() && identifier.feed != feeds_[feed].name) continue;
      // An unreachable feed is tried once a look-up.
      if (tried.insert(feed).second) (void)loadLines(feed);
      if (auto found = findIn(feed, identifier); found && (found->route || !place)) place = std::move(found);
    }
    if (!place) {
      logDebug("no feed has a line %{private}@; it is left out", {identifier.muid});
      // Without the name of its feed there is nothing to tell the user.
      if (identifier.feed.empty()) continue;
      place = missingPlace(identifier);
    }
    place->choice = identifier.choice;
    places.push_back(*std::move(place));
  }
  return places;
}

std::vector<std::size_t> TransitFeeds::allFeeds() const {
  std::vector<std::size_t> all(feeds_.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  return all;
}

std::vector<std::size_t> TransitFeeds::feedsNamedBy(std::span<const MapItemIdentifier> identifiers) const {
  std::vector<std::size_t> named;
  for (std::size_t feed = 0; feed < feeds_.size(); ++feed) {
    const auto asked = std::ranges::find(identifiers, feeds_[feed].name, &MapItemIdentifier::feed);
    if (asked != identifiers.end()) named.push_back(feed);
  }
  return named;
}

std::optional<TransitFeeds::Place> TransitFeeds::findIn(std::size_t feed,
                                                        const MapItemIdentifier& identifier) const {
  const SharedLineIndex& lines = loaded_[feed].lines;
  Place place{.feed = feed, .feedName = feeds_[feed].name, .routeId = identifier.routeId};
  if (!lines) return place;
  const auto route = identifier.routeId.empty() ? lines->routeWithMuid(identifier.muid)
                                                : lines->routeWithId(identifier.routeId);
  if (!route) return std::nullopt;
  place.route = route;
  place.routeId = lines->routes()[*route].id;
  return place;
}

TransitFeeds::Place TransitFeeds::missingPlace(const MapItemIdentifier& identifier) const {
  Place place{.feedName = identifier.feed, .routeId = identifier.routeId, .isMissing = true};
  const auto feed = std::ranges::find(feeds_, identifier.feed, &StoredFeed::name);
  if (feed != feeds_.end()) place.feed = static_cast<std::size_t>(feed - feeds_.begin());
  return place;
}

TransitFeeds::States TransitFeeds::update(const std::vector<std::size_t>& feeds, Date now) {
  std::vector<std::size_t> wanted;
  std::vector<StoredFeed> asked;
  std::vector<FeedAlerts> alerts;
  for (const std::size_t feed : feeds) {
    if (!loaded_[feed].lines) continue;
    wanted.push_back(feed);
    asked.push_back(feeds_[feed]);
    alerts.push_back(loaded_[feed].alerts);
  }
  runSideBySide(wanted.size(), [&](std::size_t place) {
    alerts[place] = documents_->alertsOf(asked[place], std::move(alerts[place]));
  });
  for (std::size_t place = 0; place < wanted.size(); ++place)
    takeAlerts(wanted[place], std::move(alerts[place]));
  States states;
  for (const std::size_t feed : feeds) {
    const LoadedFeed& loaded = loaded_[feed];
    states.emplace(feed, stateOf(factsOf(feeds_[feed], loaded.alerts, loaded.incidents.get()), now));
  }
  return states;
}

void TransitFeeds::takeAlerts(std::size_t feed, FeedAlerts alerts) {
  LoadedFeed& loaded = loaded_[feed];
  const SharedAlertsMessage before = std::exchange(loaded.alerts, std::move(alerts)).message;
  const SharedAlertsMessage& message = loaded.alerts.message;
  if (!message) loaded.incidents = nullptr;
  if (message && (message != before || !loaded.incidents)) {
    loaded.incidents = std::make_shared<const IncidentTable>(message, loaded.lines);
    loaded.stops = nullptr;
    logCounts(feeds_[feed].name, *loaded.incidents);
  }
}

bool TransitFeeds::isKnown(const Place& place, const States& states) {
  return place.route && states.at(*place.feed).knowsLines();
}

void TransitFeeds::publish(std::span<const Place> places, const States& states) {
  publish();
  std::vector<FeedState> all;
  for (const auto& [feed, state] : states) all.push_back(state);
  std::vector<UnknownLine> unknown;
  for (const Place& place : places) {
    if (!isKnown(place, states)) unknown.push_back(unknownLine(place));
  }
  const MutexLock lock(mutex_);
  published_.states.swap(all);
  published_.unknownLines.swap(unknown);
}

UnknownLine TransitFeeds::unknownLine(const Place& place) const {
  return {.feed = place.feedName,
          .routeId = place.routeId,
          .name = place.route ? loaded_[*place.feed].lines->nameOfRoute(*place.route) : place.routeId,
          .isMissing = place.isMissing};
}

Error TransitFeeds::errorOf(const Place& place, const States& states) {
  if (!place.isMissing) return *states.at(*place.feed).error;
  return failure(FailureCode::notFound, "feed " + place.feedName, "",
                 place.feed ? "its timetable no longer has the line " + place.routeId
                            : "it has been removed, so nothing is known of its line " + place.routeId);
}

Outcome<TransitLineItems> TransitFeeds::answer(std::span<const Place> places, const States& states,
                                               Date now) {
  records_.clear();
  TransitLineItems items;
  items.reserve(places.size());
  for (const Place& place : places) {
    if (!isKnown(place, states)) continue;
    const LoadedFeed& feed = loaded_[*place.feed];
    TransitIncidents incidents = recordsOf(*place.feed, now).ofRoute(*place.route, place.choice);
    auto fields = withServiceBadge(lineFields(*feed.records, *place.route), incidents, now,
                                   language_->texts.effect(AlertEffect::noService));
    items.push_back(std::make_shared<const TransitLineRecord>(std::move(fields), std::move(incidents)));
  }
  if (items.empty() && !places.empty()) return errorOf(places.front(), states);
  return items;
}

IncidentRecords& TransitFeeds::recordsOf(std::size_t feed, Date now) {
  LoadedFeed& loaded = loaded_[feed];
  if (!loaded.stops) loaded.stops = documents_->stopNamesOf(feeds_[feed], loaded.alerts.message);
  return records_.try_emplace(feed, loaded.incidents, language_, now, loaded.stops).first->second;
}

void TransitFeeds::publishStopIncidents() {
  for (const auto& [feed, records] : records_)
    loaded_[feed].noticesOfStopIncidents = records.noticesOfStopIncidents();
  publish();
}

Outcome<std::vector<FeedState>> TransitFeeds::check(Date now) {
  const MutexLock loading(loadingMutex_);
  if (const auto error = followLocked()) return *error;
  loadLines(allFeeds());
  std::vector<FeedState> states;
  for (const auto& [feed, state] : update(allFeeds(), now)) states.push_back(state);
  publish();
  return states;
}

TransitFeeds::LinesOfIncidents TransitFeeds::linesWithIncidents(std::span<const std::uint64_t> muids) {
  LinesOfIncidents lines;
  for (const std::uint64_t muid : muids) lines[muid];
  std::vector<LoadedFeed> loaded;
  {
    const MutexLock lock(mutex_);
    loaded = published_.loaded;
  }
  for (const LoadedFeed& feed : loaded) {
    if (feed.incidents) addLinesWithIncidents(feed, lines);
  }
  return lines;
}

IncidentDetailsByMuid TransitFeeds::detailsOfIncidents(std::span<const std::uint64_t> muids) {
  const MutexLock loading(loadingMutex_);
  IncidentDetailsByMuid all;
  for (const std::uint64_t muid : muids) {
    for (const auto& [feed, records] : records_) {
      if (auto details = records.detailsOf(muid)) all.emplace(muid, *std::move(details));
    }
  }
  return all;
}

Outcome<std::shared_ptr<StopNames>> TransitFeeds::stopsOf(std::string_view feedName) {
  const MutexLock loading(loadingMutex_);
  if (const auto error = followLocked()) return *error;
  const auto feed = std::ranges::find(feeds_, feedName, &StoredFeed::name);
  if (feed == feeds_.end()) return std::make_shared<StopNames>(std::vector<StopNames::PageSource>());
  return documents_->stopNamesOf(*feed);
}

void TransitFeeds::addLinesWithIncidents(const LoadedFeed& feed, LinesOfIncidents& lines) {
  const IncidentRecords records(feed.incidents, language_, Date{});
  std::map<std::uint32_t, std::uint64_t> wanted;
  for (std::uint32_t place = 0; place < feed.incidents->incidents().size(); ++place) {
    const std::uint64_t muid = records.muidOf(place);
    if (lines.contains(muid)) wanted.emplace(place, muid);
  }
  IncidentRecords::NoticesOfStopIncidents wantedNotices;
  for (const auto& [muid, notices] : feed.noticesOfStopIncidents) {
    if (lines.contains(muid)) wantedNotices.emplace(muid, notices);
  }
  if (wanted.empty() && wantedNotices.empty()) return;
  for (std::size_t route = 0; route < feed.lines->routes().size(); ++route) {
    for (const std::uint32_t place : feed.incidents->incidentsOfRoute(route)) {
      const auto incident = wanted.find(place);
      if (incident != wanted.end()) lines[incident->second].push_back(lineFields(*feed.records, route));
    }
    for (const auto& [muid, notices] : wantedNotices) {
      if (hasAllNotices(*feed.incidents, route, notices))
        lines[muid].push_back(lineFields(*feed.records, route));
    }
  }
}

std::shared_ptr<const TransitLineFields> TransitFeeds::lineFields(LineRecords& records, std::size_t route) {
  const MutexLock lock(recordsMutex_);
  return records.lineFieldsOfRoute(route);
}

}  // namespace linewatch
