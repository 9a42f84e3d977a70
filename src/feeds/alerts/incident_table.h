#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "feeds/alerts/alerts_message.h"
#include "feeds/alerts/distinct_incidents.h"
#include "feeds/gtfs/line_index.h"

namespace linewatch {

/// Counts of a feed's selectors by how they match its lines. Each selector is `fitting`, `notAboutLines` or
/// `unknown`.
struct SelectorCounts {
  /// Selectors that match at least one line.
  std::size_t fitting = 0;
  /// Selectors for a single trip, or for a stop without a line.
  std::size_t notAboutLines = 0;
  /// Selectors with an agency, a route type or a route that is not in the timetable.
  std::size_t unknown = 0;
  /// Alerts without any selector.
  std::size_t alertsWithoutSelector = 0;
  /// Selectors with a route, also those with a stop or a trip too.
  std::size_t namingRoutes = 0;
  /// The part of `namingRoutes` whose route is not in the timetable.
  std::size_t unknownRoutes = 0;

  bool operator==(const SelectorCounts&) const = default;
};

/// A line for the user: "feed Metro: alerts: 3 of 8 selectors resolved to nothing". Empty when all selectors
/// were matched.
std::string complaintOf(std::string_view feedName, const SelectorCounts& counts);

/// An alert about stops of a line only. The line's service is not affected.
struct StopNotice {
  /// An index into `IncidentTable::incidents()`.
  std::uint32_t incident = 0;
  /// The ids of the line's stops that the alert names, sorted, each once.
  std::vector<std::string_view> stopIds;

  bool operator==(const StopNotice&) const = default;
};

/// The incidents of each line of a feed. Construction takes time proportional to the number of lines and
/// selectors, also when every selector fits every line. Immutable; may be read on any thread.
class IncidentTable {
 public:
  IncidentTable(SharedAlertsMessage message, SharedLineIndex lines);

  const AlertsMessage& message() const { return *message_; }
  const LineIndex& lines() const { return *lines_; }
  const std::vector<DistinctIncident>& incidents() const { return incidents_; }
  const SelectorCounts& counts() const { return counts_; }

  /// A direction of a line, 0 or 1; absent for both. An alert that names no direction is about both.
  using Direction = std::optional<std::uint8_t>;

  /// Indexes into `incidents()`, each once, in the feed's order. Without stop notices.
  std::vector<std::uint32_t> incidentsOfRoute(std::size_t route, Direction direction = {}) const;
  /// In the feed's order.
  std::vector<StopNotice> stopNoticesOfRoute(std::size_t route, Direction direction = {}) const;
  /// The entities that describe an incident, as indexes into the message's entities.
  std::vector<std::uint32_t> entitiesOf(std::uint32_t incident) const;

 private:
  // An agency as a selector names it: by its id, else by its name.
  struct AgencyKey {
    bool byId = false;
    std::string_view text;
    bool operator<(const AgencyKey& other) const {
      return std::tie(byId, text) < std::tie(other.byId, other.text);
    }
  };
  // The lines of a selector without a route: by agency, route type or both.
  struct GroupKey {
    std::optional<AgencyKey> agency;
    std::optional<std::int32_t> type;
    bool operator<(const GroupKey& other) const {
      return std::tie(agency, type) < std::tie(other.agency, other.type);
    }
  };
  struct Group {
    std::vector<std::uint32_t> incidents;
    std::size_t selectors = 0;
    bool hasLines = false;
  };
  // An incident listed at a route.
  struct Listing {
    const AlertSelector* selector;  // the one that names the route
    std::uint32_t incident;
    std::uint32_t before;  // index of the route's previous listing, or kNone
  };
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};
  enum class Fit { lines, noLine, unknown };

  void indexAgencies();
  // True for an alert about the stops that it names: by its effect, or because every selector names a stop
  // and no effect on the lines is stated.
  bool findIsAboutStops(std::uint32_t incident) const;
  bool hasText(std::uint32_t entity) const;
  bool namesOnlyStops(std::uint32_t entity) const;
  void addSelectors(std::uint32_t incident, std::uint32_t entity);
  void countRoute(const AlertSelector& selector);
  Fit addSelector(std::uint32_t incident, const AlertSelector& selector);
  Fit addToRoute(std::uint32_t incident, const AlertSelector& selector, std::string_view routeId);
  Fit addToGroup(std::uint32_t incident, const AlertSelector& selector);
  void countGroups();
  bool isStopNotice(const Listing& listing) const {
    return listing.selector->namesStop() && aboutStops_[listing.incident];
  }
  template <class Operation>
  void forListingsOf(std::size_t route, Direction direction, Operation operation) const;

  std::optional<AgencyKey> agencyNamed(std::string_view text) const;
  bool mayBelongTo(const FeedRoute& route, std::string_view agency) const;
  template <class Operation>
  void forGroupsOf(std::size_t route, Operation operation) const;

  SharedAlertsMessage message_;
  SharedLineIndex lines_;
  std::vector<DistinctIncident> incidents_;
  std::vector<bool> aboutStops_;                  // by incident
  std::map<std::string_view, bool> agencyTexts_;  // true for an id, false for a name alone
  // One list for all routes, because most have few incidents or none. Each route's listings are linked.
  std::vector<Listing> listings_;
  std::vector<std::uint32_t> lastOfRoutes_;
  std::map<GroupKey, Group> groups_;
  SelectorCounts counts_;
};

using SharedIncidentTable = std::shared_ptr<const IncidentTable>;

}  // namespace linewatch
