#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/gtfs/gtfs_source.h"
#include "shared/outcome.h"

namespace linewatch {

inline constexpr std::string_view kStopsTable = "stops.txt";

/// A piece of the sorted stops of a feed. Its text has one line per stop: id, name and the id of the station
/// that the stop is part of, separated by tabs. Name and station may be empty.
struct StopPage {
  /// The first id that belongs here; empty for the first page.
  std::string firstId;
  std::string text;

  bool operator==(const StopPage&) const = default;
};

/// Reads stops.txt into pages, sorted by id. Of several stops with one id the first counts. No pages when the
/// feed has no such table.
Outcome<std::vector<StopPage>> readStopPages(GtfsSource& source);

/// The page that has the stop if any has; null when there are no pages.
const StopPage* pageWithStop(const std::vector<StopPage>& pages, std::string_view id);

/// The stops of a feed, looked up one by one: only those in use are in memory. One thread at a time.
class StopNames {
 public:
  /// Gives the text of the page that has the stop if any has.
  using PageSource = std::function<std::optional<std::string>(std::string_view id)>;

  struct Stop {
    /// The name of the stop, else of its station. Empty when not known.
    std::string name;
    /// The id of the station that the stop is part of; empty when it is part of none.
    std::string station;
  };

  /// Asks the sources in turn until one has the stop.
  explicit StopNames(std::vector<PageSource> sources) : sources_(std::move(sources)) {}

  /// Absent when the feed does not have the stop.
  const std::optional<Stop>& find(std::string_view id);

 private:
  std::optional<Stop> lookUp(std::string_view id) const;

  std::vector<PageSource> sources_;
  std::map<std::string, std::optional<Stop>, std::less<>> found_;
};

}  // namespace linewatch
