#include "feeds/alerts/incident_table.h"

#include <algorithm>
#include <set>
#include <utility>

#include "feeds/gtfs/route_type_family.h"

namespace linewatch {

namespace {

bool typeCovers(std::int32_t selected, const std::optional<std::int32_t>& type) {
  return type && (*type == selected || basicRouteType(*type) == selected);
}

/// Empty when the selector names no route.
std::string_view routeIdOf(const AlertSelector& selector) {
  return selector.routeId.empty() ? selector.tripRouteId : selector.routeId;
}

std::string counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + (count == 1 ? one : many);
}

}  // namespace

std::string complaintOf(std::string_view feedName, const SelectorCounts& counts) {
  std::string complaint;
  const std::size_t all = counts.fitting + counts.notAboutLines + counts.unknown;
  if (counts.unknown > 0) {
    complaint += std::to_string(counts.unknown) + " of " + counted(all, " selector", " selectors") +
                 " resolved to nothing";
  }
  if (counts.alertsWithoutSelector > 0) {
    if (!complaint.empty()) complaint += ", ";
    complaint += counted(counts.alertsWithoutSelector, " alert", " alerts") + " without a selector";
  }
  if (complaint.empty()) return {};
  return "feed " + std::string(feedName) + ": alerts: " + complaint;
}

IncidentTable::IncidentTable(SharedAlertsMessage message, SharedLineIndex lines)
    : message_(std::move(message)),
      lines_(std::move(lines)),
      incidents_(distinctIncidents(*message_)),
      lastOfRoutes_(lines_->routes().size(), kNone) {
  indexAgencies();
  aboutStops_.reserve(incidents_.size());
  for (std::uint32_t incident = 0; incident < incidents_.size(); ++incident) {
    aboutStops_.push_back(findIsAboutStops(incident));
    const DistinctIncident& entry = incidents_[incident];
    addSelectors(incident, entry.entity);
    for (const std::uint32_t entity : entry.repetitions) addSelectors(incident, entity);
    for (const std::uint32_t entity : entry.otherLanguages) addSelectors(incident, entity);
  }
  countGroups();
}

void IncidentTable::indexAgencies() {
  for (const FeedAgency& agency : lines_->agencies()) {
    if (!agency.name.empty()) agencyTexts_.emplace(agency.name, false);
  }
  for (const FeedAgency& agency : lines_->agencies()) {
    if (!agency.id.empty()) agencyTexts_.insert_or_assign(agency.id, true);
  }
}

std::vector<std::uint32_t> IncidentTable::entitiesOf(std::uint32_t incident) const {
  const DistinctIncident& entry = incidents_[incident];
  std::vector<std::uint32_t> entities{entry.entity};
  entities.insert(entities.end(), entry.repetitions.begin(), entry.repetitions.end());
  entities.insert(entities.end(), entry.otherLanguages.begin(), entry.otherLanguages.end());
  return entities;
}

bool IncidentTable::findIsAboutStops(std::uint32_t incident) const {
  const DistinctIncident& entry = incidents_[incident];
  const AlertEffect effect = message_->entities()[entry.entity].effect;
  if (isAboutStopAlone(effect)) return true;
  const auto namesOnlyStops = [this](std::uint32_t entity) { return this->namesOnlyStops(entity); };
  const bool mayBe =
      effect == AlertEffect::noService || effect == AlertEffect::unknownEffect || !hasText(entry.entity);
  return mayBe && namesOnlyStops(entry.entity) && std::ranges::all_of(entry.repetitions, namesOnlyStops) &&
         std::ranges::all_of(entry.otherLanguages, namesOnlyStops);
}

bool IncidentTable::hasText(std::uint32_t entity) const {
  return std::ranges::any_of(
      message_->translations(message_->entities()[entity]), [](const AlertTranslation& translation) {
        const bool isShown =
            translation.kind == AlertText::header || translation.kind == AlertText::description;
        return isShown && !translation.text.empty();
      });
}

bool IncidentTable::namesOnlyStops(std::uint32_t entity) const {
  const auto selectors = message_->selectors(message_->entities()[entity]);
  return !selectors.empty() && std::ranges::all_of(selectors, &AlertSelector::namesStop);
}

void IncidentTable::addSelectors(std::uint32_t incident, std::uint32_t entity) {
  const AlertsMessage::Entity& alert = message_->entities()[entity];
  const auto selectors = message_->selectors(alert);
  if (selectors.empty()) ++counts_.alertsWithoutSelector;
  for (const AlertSelector& selector : selectors) {
    countRoute(selector);
    switch (addSelector(incident, selector)) {
      case Fit::lines:
        ++counts_.fitting;
        break;
      case Fit::noLine:
        ++counts_.notAboutLines;
        break;
      case Fit::unknown:
        ++counts_.unknown;
        break;
    }
  }
}

void IncidentTable::countRoute(const AlertSelector& selector) {
  const std::string_view routeId = routeIdOf(selector);
  if (routeId.empty()) return;
  ++counts_.namingRoutes;
  if (!lines_->routeWithId(routeId)) ++counts_.unknownRoutes;
}

IncidentTable::Fit IncidentTable::addSelector(std::uint32_t incident, const AlertSelector& selector) {
  const std::string_view routeId = routeIdOf(selector);
  if (selector.namesTrip) return Fit::noLine;
  if (selector.namesStop() && routeId.empty()) return Fit::noLine;
  return routeId.empty() ? addToGroup(incident, selector) : addToRoute(incident, selector, routeId);
}

IncidentTable::Fit IncidentTable::addToRoute(std::uint32_t incident, const AlertSelector& selector,
                                             std::string_view routeId) {
  const std::optional<std::size_t> place = lines_->routeWithId(routeId);
  if (!place || (!selector.tripRouteId.empty() && selector.tripRouteId != routeId)) return Fit::unknown;
  const FeedRoute& route = lines_->routes()[*place];
  if (!mayBelongTo(route, selector.agencyId)) return Fit::unknown;
  if (selector.routeType && route.type && !typeCovers(*selector.routeType, route.type)) return Fit::unknown;
  std::uint32_t& last = lastOfRoutes_[*place];
  listings_.push_back({.selector = &selector, .incident = incident, .before = last});
  last = static_cast<std::uint32_t>(listings_.size() - 1);
  return Fit::lines;
}

IncidentTable::Fit IncidentTable::addToGroup(std::uint32_t incident, const AlertSelector& selector) {
  GroupKey key{.type = selector.routeType};
  if (!selector.agencyId.empty()) {
    key.agency = agencyNamed(selector.agencyId);
    if (!key.agency) return Fit::unknown;
  }
  if (!key.agency && !key.type) return Fit::unknown;
  Group& group = groups_[key];
  group.incidents.push_back(incident);
  ++group.selectors;
  return Fit::lines;
}

void IncidentTable::countGroups() {
  if (groups_.empty()) return;
  for (std::size_t route = 0; route < lines_->routes().size(); ++route) {
    forGroupsOf(route, [&](const GroupKey& key) { groups_.find(key)->second.hasLines = true; });
  }
  for (const auto& [key, group] : groups_) {
    if (group.hasLines) continue;
    counts_.fitting -= group.selectors;
    counts_.unknown += group.selectors;
  }
}

std::optional<IncidentTable::AgencyKey> IncidentTable::agencyNamed(std::string_view text) const {
  const auto known = agencyTexts_.find(text);
  if (known == agencyTexts_.end()) return std::nullopt;
  return AgencyKey{.byId = known->second, .text = known->first};
}

// False when the selector's agency is not the route's. A route whose agency has no id, or is not stated, may
// belong to any agency.
bool IncidentTable::mayBelongTo(const FeedRoute& route, std::string_view agency) const {
  if (agency.empty() || !route.agency) return true;
  const FeedAgency& owner = lines_->agencies()[*route.agency];
  if (owner.id.empty()) return true;
  const std::optional<AgencyKey> key = agencyNamed(agency);
  return key && key->text == (key->byId ? owner.id : owner.name);
}

template <class Operation>
void IncidentTable::forGroupsOf(std::size_t route, Operation operation) const {
  const FeedRoute& entry = lines_->routes()[route];
  std::vector<std::optional<AgencyKey>> agencies{std::nullopt};
  if (entry.agency) {
    const FeedAgency& owner = lines_->agencies()[*entry.agency];
    if (!owner.id.empty()) agencies.emplace_back(AgencyKey{.byId = true, .text = owner.id});
    if (!owner.name.empty()) agencies.emplace_back(AgencyKey{.byId = false, .text = owner.name});
  }
  std::vector<std::optional<std::int32_t>> types{std::nullopt};
  if (entry.type) {
    types.push_back(entry.type);
    if (const auto basic = basicRouteType(*entry.type)) types.push_back(basic);
  }
  for (const auto& agency : agencies) {
    for (const auto& type : types) {
      if (const auto group = groups_.find({agency, type}); group != groups_.end()) operation(group->first);
    }
  }
}

template <class Operation>
void IncidentTable::forListingsOf(std::size_t route, Direction direction, Operation operation) const {
  for (std::uint32_t place = lastOfRoutes_[route]; place != kNone; place = listings_[place].before) {
    const Direction named = listings_[place].selector->direction;
    if (!direction || !named || named == direction) operation(listings_[place]);
  }
}

std::vector<std::uint32_t> IncidentTable::incidentsOfRoute(std::size_t route, Direction direction) const {
  std::vector<std::uint32_t> all;
  forListingsOf(route, direction, [&](const Listing& listing) {
    if (!isStopNotice(listing)) all.push_back(listing.incident);
  });
  forGroupsOf(route, [&](const GroupKey& key) {
    const std::vector<std::uint32_t>& ofGroup = groups_.find(key)->second.incidents;
    all.insert(all.end(), ofGroup.begin(), ofGroup.end());
  });
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

std::vector<StopNotice> IncidentTable::stopNoticesOfRoute(std::size_t route, Direction direction) const {
  std::map<std::uint32_t, std::set<std::string_view>> stopsOfNotices;
  forListingsOf(route, direction, [&](const Listing& listing) {
    if (isStopNotice(listing)) stopsOfNotices[listing.incident].insert(listing.selector->stopId);
  });
  if (stopsOfNotices.empty()) return {};
  // The line lists these already, because they also name the whole line.
  for (const std::uint32_t incident : incidentsOfRoute(route, direction)) stopsOfNotices.erase(incident);
  std::vector<StopNotice> notices;
  for (const auto& [incident, stops] : stopsOfNotices)
    notices.push_back({incident, {stops.begin(), stops.end()}});
  return notices;
}

}  // namespace linewatch
