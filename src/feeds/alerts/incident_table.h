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

/// What became of the selectors of a feed's alerts.
struct SelectorCounts {
  /// They fit a line or more.
  std::size_t fitting = 0;
  /// They are about single stops or trips.
  std::size_t notAboutLines = 0;
  /// They name nothing that the lines know: the lines and the alerts may not belong together.
  std::size_t unknown = 0;
  /// Alerts that do not say what they are about.
  std::size_t alertsWithoutSelector = 0;

  bool operator==(const SelectorCounts&) const = default;
};

/// What is wrong with the counts; empty when every alert could be understood. Stops and trips alone are no
/// fault.
std::string complaintOf(std::string_view feedName, const SelectorCounts& counts);

/// Which incidents a line has. Built in time proportional to lines and selectors, whatever the number of
/// lines that a selector fits. Immutable; read on any thread.
class IncidentTable {
 public:
  IncidentTable(SharedAlertsMessage message, SharedLineIndex lines);

  const AlertsMessage& message() const { return *message_; }
  const LineIndex& lines() const { return *lines_; }
  const std::vector<DistinctIncident>& incidents() const { return incidents_; }
  const SelectorCounts& counts() const { return counts_; }

  /// Places in `incidents()`, ascending: each incident once, in the feed's order.
  std::vector<std::uint32_t> incidentsOfRoute(std::size_t route) const;

 private:
  // An agency as selectors name it: whether by its id, and the text.
  struct AgencyKey {
    bool byId = false;
    std::string_view text;
    bool operator<(const AgencyKey& other) const {
      return std::tie(byId, text) < std::tie(other.byId, other.text);
    }
  };
  // What selectors without a route are about: the lines of an agency, of a type, or of both.
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
  // An incident of a route, and the place of the route's incident before it.
  struct Listing {
    std::uint32_t incident;
    std::uint32_t before;
  };
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};
  enum class Fit { lines, noLine, unknown };

  void indexAgencies();
  void addSelectors(std::uint32_t incident, std::uint32_t entity);
  Fit addSelector(std::uint32_t incident, const AlertSelector& selector, AlertEffect effect);
  Fit addToRoute(std::uint32_t incident, const AlertSelector& selector, std::string_view routeId);
  Fit addToGroup(std::uint32_t incident, const AlertSelector& selector);
  void countGroups();

  std::optional<AgencyKey> agencyNamed(std::string_view text) const;
  bool mayBelongTo(const FeedRoute& route, std::string_view agency) const;
  template <class Operation>
  void forGroupsOf(std::size_t route, Operation operation) const;

  SharedAlertsMessage message_;
  SharedLineIndex lines_;
  std::vector<DistinctIncident> incidents_;
  std::map<std::string_view, bool> agencyTexts_;  // true for an id, false for a name alone
  // One list for all routes, as most have few incidents or none: each entry leads to the one before it.
  std::vector<Listing> listings_;
  std::vector<std::uint32_t> lastOfRoutes_;
  std::map<GroupKey, Group> groups_;
  SelectorCounts counts_;
};

using SharedIncidentTable = std::shared_ptr<const IncidentTable>;

}  // namespace linewatch
