#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/incident_records.h"
#include "feeds/alerts/incident_table.h"
#include "feeds/feed_documents.h"
#include "feeds/feed_state.h"
#include "feeds/gtfs/line_index.h"
#include "feeds/gtfs/line_records.h"
#include "platform/transit_line.h"
#include "shared/mutex.h"
#include "shared/outcome.h"

namespace linewatch {

/// The lines of the feeds that can be read.
struct FeedLines {
  /// One for each feed that can be read, in the order of the feeds.
  std::vector<SharedLineIndex> indexes;
  /// The error of the first feed that cannot be read; absent when all can.
  std::optional<Error> error;
};

/// A line that was asked for, but whose incidents are not known.
struct UnknownLine {
  std::string feed;
  std::string routeId;
  /// The line's name; its route id when the timetable cannot be read or does not have the line.
  std::string name;
  /// True when there is no such line: the timetable was read and does not have it, or the feed was removed.
  bool isMissing = false;

  bool operator==(const UnknownLine&) const = default;
};

/// The names of the feeds of missing lines that are not among `feeds`, each once.
std::vector<std::string> removedFeedsOf(const std::vector<UnknownLine>& lines,
                                        const std::vector<StoredFeed>& feeds);

/// The state of a feed whose lines and alerts have been read.
FeedState stateOfFeed(const StoredFeed& feed, const SharedLineIndex& lines, const FeedAlerts& alerts,
                      Date now);

/// The lines of all feeds with their incidents. A feed's timetable is read at the first look-up of its lines,
/// and again after it was renewed in the background; its alerts are fetched at every look-up. Any thread; of
/// the calls that read feeds one runs at a time.
class TransitFeeds {
 public:
  /// Gives the current list of feeds. Called on any thread, one call at a time.
  using Source = std::function<Outcome<std::vector<StoredFeed>>()>;

  TransitFeeds(Source source, std::shared_ptr<FeedDocuments> documents, IncidentLanguage language);

  /// The feeds as of the last `follow` or look-up. Does not wait.
  std::vector<StoredFeed> feeds() const LINEWATCH_EXCLUDES(mutex_);
  /// Reads the list of feeds, as every look-up does. Feeds that are still listed stay loaded. An error
  /// changes nothing.
  std::optional<Error> follow() LINEWATCH_EXCLUDES(loadingMutex_);

  /// The lines of the feed with that name.
  Outcome<SharedLineIndex> linesOf(std::string_view feedName) LINEWATCH_EXCLUDES(loadingMutex_);
  FeedLines lines() LINEWATCH_EXCLUDES(loadingMutex_);

  /// The lines in the order asked, with their incidents at `now`. Leaves out unknown lines; `unknownLines`
  /// names them. If no line is known at all, the result is the error of the first unknown line. An identifier
  /// that names no feed and fits no line is left out without being named. Also fails when the list of feeds
  /// cannot be read. Lines of a feed that is removed meanwhile are unknown.
  Outcome<TransitLineItems> lineItems(std::span<const MapItemIdentifier> identifiers, Date now)
      LINEWATCH_EXCLUDES(loadingMutex_);
  /// The states of the feeds that the last look-up asked, in the order of the feeds. Does not wait.
  std::vector<FeedState> states() const LINEWATCH_EXCLUDES(mutex_);
  /// The unknown lines of the last look-up, in the order asked. Does not wait.
  std::vector<UnknownLine> unknownLines() const LINEWATCH_EXCLUDES(mutex_);

  /// Reads every feed and gives their states, in the order of the feeds.
  Outcome<std::vector<FeedState>> check(Date now) LINEWATCH_EXCLUDES(loadingMutex_);

  /// The lines of each incident, in the order of the feeds. Uses only feeds that have been read, and waits
  /// for no server.
  using LinesOfIncidents = std::map<std::uint64_t, std::vector<std::shared_ptr<const TransitLineFields>>>;
  LinesOfIncidents linesWithIncidents(std::span<const std::uint64_t> muids) LINEWATCH_EXCLUDES(mutex_);
  /// The details of these incidents. Leaves out incidents that the last look-up did not give.
  IncidentDetailsByMuid detailsOfIncidents(std::span<const std::uint64_t> muids)
      LINEWATCH_EXCLUDES(loadingMutex_);
  /// The names of the stops of the feed with that name.
  Outcome<std::shared_ptr<StopNames>> stopsOf(std::string_view feedName) LINEWATCH_EXCLUDES(loadingMutex_);

 private:
  struct LoadedFeed {
    /// Null until the timetable has been read.
    SharedLineIndex lines;
    std::shared_ptr<LineRecords> records;
    FeedAlerts alerts;
    /// Made from `lines` and `alerts.message`; null until both are there.
    SharedIncidentTable incidents;
    /// Null until the incidents of these alerts are asked for.
    std::shared_ptr<StopNames> stops;
    IncidentRecords::NoticesOfStopIncidents noticesOfStopIncidents;
    /// The text that the last look-up logged about the feed, or would have; empty when it had no error.
    std::string loggedError;
  };
  /// A line that was asked for.
  struct Place {
    /// Absent when the feed has been removed.
    std::optional<std::size_t> feed;
    /// Absent when the feed's timetable cannot be read or does not have the line.
    std::optional<std::size_t> route;
    std::string feedName;
    std::string routeId;
    /// See `UnknownLine`.
    bool isMissing = false;
    LineChoice choice;
  };
  using States = std::map<std::size_t, FeedState>;

  std::optional<Error> followLocked() LINEWATCH_REQUIRES(loadingMutex_);
  bool haveFeedsChanged() const LINEWATCH_REQUIRES(loadingMutex_);
  /// `lineItems` for the feeds as they are at its start.
  Outcome<TransitLineItems> lookUp(std::span<const MapItemIdentifier> identifiers, Date now)
      LINEWATCH_REQUIRES(loadingMutex_);
  Outcome<SharedLineIndex> loadLines(std::size_t feed) LINEWATCH_REQUIRES(loadingMutex_);
  /// Loads the lines of the feeds in parallel, so that the waits for their servers overlap. Leaves out a feed
  /// that has just failed.
  void loadLines(const std::vector<std::size_t>& feeds) LINEWATCH_REQUIRES(loadingMutex_);
  void takeLines(std::size_t feed, const Outcome<SharedLineIndex>& lines) LINEWATCH_REQUIRES(loadingMutex_);
  std::vector<std::size_t> allFeeds() const LINEWATCH_REQUIRES(loadingMutex_);
  std::vector<std::size_t> feedsNamedBy(std::span<const MapItemIdentifier> identifiers) const
      LINEWATCH_REQUIRES(loadingMutex_);
  /// Loads the feeds that may have the lines.
  std::vector<Place> find(std::span<const MapItemIdentifier> identifiers) LINEWATCH_REQUIRES(loadingMutex_);
  Place missingPlace(const MapItemIdentifier& identifier) const LINEWATCH_REQUIRES(loadingMutex_);
  /// Absent when the feed does not have the line.
  std::optional<Place> findIn(std::size_t feed, const MapItemIdentifier& identifier) const
      LINEWATCH_REQUIRES(loadingMutex_);
  /// Gets the alerts of the feeds whose lines are loaded, in parallel.
  States update(const std::vector<std::size_t>& feeds, Date now) LINEWATCH_REQUIRES(loadingMutex_);
  void takeAlerts(std::size_t feed, FeedAlerts alerts) LINEWATCH_REQUIRES(loadingMutex_);
  Outcome<TransitLineItems> answer(std::span<const Place> places, const States& states, Date now)
      LINEWATCH_REQUIRES(loadingMutex_);
  static bool isKnown(const Place& place, const States& states);
  UnknownLine unknownLine(const Place& place) const LINEWATCH_REQUIRES(loadingMutex_);
  static Error errorOf(const Place& place, const States& states);
  IncidentRecords& recordsOf(std::size_t feed, Date now) LINEWATCH_REQUIRES(loadingMutex_);
  void logErrors(const States& states, const Outcome<TransitLineItems>& answer)
      LINEWATCH_REQUIRES(loadingMutex_);
  void publishStopIncidents() LINEWATCH_REQUIRES(loadingMutex_) LINEWATCH_EXCLUDES(mutex_);
  void publish() LINEWATCH_REQUIRES(loadingMutex_) LINEWATCH_EXCLUDES(mutex_);
  /// Also publishes the states and the unknown lines of a look-up.
  void publish(std::span<const Place> places, const States& states) LINEWATCH_REQUIRES(loadingMutex_)
      LINEWATCH_EXCLUDES(mutex_);
  void addLinesWithIncidents(const LoadedFeed& feed, LinesOfIncidents& lines);
  std::shared_ptr<const TransitLineFields> lineFields(LineRecords& records, std::size_t route)
      LINEWATCH_EXCLUDES(recordsMutex_);

  const Source source_;
  const std::shared_ptr<FeedDocuments> documents_;
  const SharedIncidentLanguage language_;

  /// Held while feeds are loaded, which may take as long as a server takes.
  Mutex loadingMutex_;
  std::vector<StoredFeed> feeds_ LINEWATCH_GUARDED_BY(loadingMutex_);
  /// One for each feed.
  std::vector<LoadedFeed> loaded_ LINEWATCH_GUARDED_BY(loadingMutex_);
  /// The incidents of the last look-up, by feed.
  std::map<std::size_t, IncidentRecords> records_ LINEWATCH_GUARDED_BY(loadingMutex_);

  /// A copy of the state after the last look-up, for the calls that do not wait.
  struct Published {
    std::vector<StoredFeed> feeds;
    std::vector<LoadedFeed> loaded;
    std::vector<FeedState> states;
    std::vector<UnknownLine> unknownLines;
  };
  /// Never held while a feed is read.
  mutable Mutex mutex_;
  Published published_ LINEWATCH_GUARDED_BY(mutex_);
  /// `LineRecords` change while they are read: they make a record when it is first asked for.
  Mutex recordsMutex_;
};

}  // namespace linewatch
