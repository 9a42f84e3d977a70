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

/// How the selectors of a feed's alerts were matched with its lines. Each selector is one of the first three.
struct SelectorCounts {
  /// Fit a line or more.
  std::size_t fitting = 0;
  /// Are about single trips, or about stops without naming a line.
  std::size_t notAboutLines = 0;
  /// Name an agency, a route type or a route that the timetable does not have.
  std::size_t unknown = 0;
  /// Alerts that do not say what they are about.
  std::size_t alertsWithoutSelector = 0;
  /// Name a route, with or without a stop or a trip; and how many of these the timetable does not have.
  std::size_t namingRoutes = 0;
  std::size_t unknownRoutes = 0;

  bool operator==(const SelectorCounts&) const = default;
};

/// One line for the user about the selectors that could not be matched, e.g. "feed Metro: alerts: 3 of 8
/// selectors resolved to nothing"; empty when there are none.
std::string complaintOf(std::string_view feedName, const SelectorCounts& counts);

/// An alert about stops of a line alone, which says nothing of the line's service.
struct StopNotice {
  /// An index into `IncidentTable::incidents()`.
  std::uint32_t incident = 0;
  /// The ids of the line's stops that the alert names, sorted, each once.
  std::vector<std::string_view> stopIds;

  bool operator==(const StopNotice&) const = default;
};

/// The incidents of each line of a feed. Built in time proportional to the number of lines and selectors,
/// also when a selector fits every line. Immutable; read on any thread.
class IncidentTable {
 public:
  IncidentTable(SharedAlertsMessage message, SharedLineIndex lines);

  const AlertsMessage& message() const { return *message_; }
  const LineIndex& lines() const { return *lines_; }
  const std::vector<DistinctIncident>& incidents() const { return incidents_; }
  const SelectorCounts& counts() const { return counts_; }

  /// A direction of a line, 0 or 1; absent for both. An alert that names no direction is about both.
  using Direction = std::optional<std::uint8_t>;

  /// Indexes into `incidents()`, ascending, so in the feed's order; each incident once. Stop notices are not
  /// among them.
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
  // The lines that a selector without a route fits: those of an agency, of a route type, or of both.
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
  // A selector that fits a route, its incident, and the index of the route's previous listing.
  struct Listing {
    const AlertSelector* selector;
    std::uint32_t incident;
    std::uint32_t before;
  };
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};
  enum class Fit { lines, noLine, unknown };

  void indexAgencies();
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
  std::vector<bool> aboutStops_;                  // one for each incident
  std::map<std::string_view, bool> agencyTexts_;  // true for an id, false for a name alone
  // One list for all routes, because most have few incidents or none. Each route's listings are linked.
  std::vector<Listing> listings_;
  std::vector<std::uint32_t> lastOfRoutes_;
  std::map<GroupKey, Group> groups_;
  SelectorCounts counts_;
};

using SharedIncidentTable = std::shared_ptr<const IncidentTable>;

}  // namespace linewatch
