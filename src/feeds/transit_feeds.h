#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/incident_records.h"
#include "feeds/alerts/incident_table.h"
#include "feeds/feed_documents.h"
#include "feeds/gtfs/line_index.h"
#include "feeds/gtfs/line_records.h"
#include "platform/transit_line.h"
#include "shared/outcome.h"

namespace linewatch {

/// The lines of several feeds, as far as they can be had.
struct FeedLines {
  /// A feed each.
  std::vector<SharedLineIndex> indexes;
  /// What is wrong with the first feed that cannot be read; absent when all can.
  std::optional<Error> error;
};

/// The lines of all feeds with their incidents. Each feed's lines are loaded when they are first asked for
/// and kept; its alerts are asked for at every look-up. Any thread; what loads waits for what is loading.
class TransitFeeds {
 public:
  /// What is known of a feed's alerts.
  struct AlertsState {
    std::string feed;
    /// When the feed says that it was written; absent when it does not say.
    std::optional<Date> written;
  };

  /// Gives the feeds as they are now. Called on any thread, one at a time.
  using Source = std::function<Outcome<std::vector<StoredFeed>>()>;

  TransitFeeds(Source source, std::shared_ptr<FeedDocuments> documents, IncidentLanguage language);

  /// Those that were followed last.
  std::vector<StoredFeed> feeds() const;
  /// Takes the feeds as they are now, which every look-up does. What has been loaded of those that stay is
  /// kept. After an error all are as before.
  std::optional<Error> follow();

  /// The lines of the feed with that name.
  Outcome<SharedLineIndex> linesOf(std::string_view feedName);
  /// The lines of every feed that can be read, in the order of the feeds.
  FeedLines lines();

  /// The lines asked with the incidents that they have at `now`, in the order asked; those that no feed has
  /// are left out. An error when the alerts of one of them, or the lines of any feed, cannot be had: what is
  /// not known must not pass for good service.
  Outcome<TransitLineItems> lineItems(std::span<const MapItemIdentifier> identifiers, Date now);

  /// The lines, in the feeds' order, that the alerts read last say have each of the incidents, by `muid`.
  /// Nothing is loaded for it, and no server waited for: of feeds that were not read nothing is known.
  using LinesOfIncidents = std::map<std::uint64_t, std::vector<std::shared_ptr<const TransitLineFields>>>;
  LinesOfIncidents linesWithIncidents(std::span<const std::uint64_t> muids);

  /// Of the feeds that the last look-up read, in their order. Waits for nothing.
  std::vector<AlertsState> alertsStates() const;

 private:
  struct LoadedFeed {
    SharedLineIndex lines;
    SharedAlertsMessage alerts;
    SharedIncidentTable incidents;
    std::shared_ptr<LineRecords> records;
  };
  struct Place {
    std::size_t feed;
    std::size_t route;
  };

  std::optional<Error> followWhileLoading();
  Outcome<SharedLineIndex> load(std::size_t feed);
  Outcome<std::vector<Place>> find(std::span<const MapItemIdentifier> identifiers);
  /// Of the places' feeds, each once; `read` gets those that could be had.
  std::optional<Error> loadIncidents(std::span<const Place> places, std::set<std::size_t>& read);
  std::optional<Error> loadIncidents(std::size_t feed);
  /// While loading.
  TransitLineItems makeLineItems(std::span<const Place> places, Date now);
  std::vector<LoadedFeed> loadedFeeds() const;
  std::vector<AlertsState> statesLocked(const std::set<std::size_t>& read) const;
  void addLinesWithIncidents(const LoadedFeed& feed, LinesOfIncidents& lines);
  std::shared_ptr<const TransitLineFields> lineFields(LineRecords& records, std::size_t route);

  const Source source_;
  const std::shared_ptr<FeedDocuments> documents_;
  const SharedIncidentLanguage language_;

  /// Held while feeds are loaded, which may take as long as a server does.
  std::mutex loadingMutex_;
  /// Guards the feeds, and is held for moments only. They are changed under both, so that whoever loads may
  /// read without it.
  mutable std::mutex mutex_;
  std::vector<StoredFeed> feeds_;
  std::vector<LoadedFeed> loaded_;
  std::vector<AlertsState> states_;
  /// Of any feed: whoever reads a feed's records fills them. Taken under none but the loading one.
  std::mutex recordsMutex_;
};

}  // namespace linewatch
