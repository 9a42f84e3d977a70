#include "feeds/alerts/incident_records.h"

#include <algorithm>
#include <utility>

#include "feeds/alerts/alert_period.h"
#include "feeds/alerts/row_text.h"
#include "feeds/alerts/translation_choice.h"
#include "feeds/text/plain_text.h"
#include "feeds/text/single_line.h"
#include "feeds/text/utf8.h"
#include "platform/transit_storage_incident.h"

namespace linewatch {

namespace {

OptionalText present(std::string text) {
  return text.empty() ? OptionalText() : OptionalText(std::move(text));
}

/// Effect and cause in words, each left out when the title says it already.
std::string effectAndCauseBelow(std::string_view title, AlertEffect effect, AlertCause cause,
                                const FeedTexts& words) {
  const auto news = [title](const std::string& text) {
    return titleSays(title, text) ? std::string() : text;
  };
  return words.together(news(words.effect(effect)), news(words.cause(cause)));
}

/// The effect in words, else the cause; absent when neither is known.
OptionalText effectOrCause(AlertEffect effect, AlertCause cause, const FeedTexts& words) {
  const std::string& effectInWords = words.effect(effect);
  return present(effectInWords.empty() ? words.cause(cause) : effectInWords);
}

/// Where a period lies; an incident in force comes first.
enum class Phase { inForce, coming, over };

Phase phaseOf(const ShownPeriod& period, Date now) {
  if (period.start && *period.start > now) return Phase::coming;
  return period.end && *period.end < now ? Phase::over : Phase::inForce;
}

std::string_view routeIdNamedBy(const AlertSelector& selector) {
  return selector.routeId.empty() ? selector.tripRouteId : selector.routeId;
}

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text.append(text.empty() ? "" : ", ").append(name);
  return text;
}

}  // namespace

IncidentRecords::IncidentRecords(SharedIncidentTable table, SharedIncidentLanguage language, Date now,
                                 std::shared_ptr<StopNames> stops)
    : table_(std::move(table)), language_(std::move(language)), now_(now), stops_(std::move(stops)) {}

TransitIncidents IncidentRecords::ofRoute(std::size_t route, const LineChoice& choice) {
  TransitIncidents incidents;
  for (const std::uint32_t place : table_->incidentsOfRoute(route, choice.direction))
    incidents.push_back(record(place));
  if (choice.stops != LineChoice::Stops::none) addStopIncidents(route, choice, incidents);
  return incidents;
}

void IncidentRecords::addStopIncidents(std::size_t route, const LineChoice& choice,
                                       TransitIncidents& incidents) {
  std::map<Phase, std::pair<std::vector<WordedStopNotice>, std::vector<std::uint32_t>>> noticesByPhase;
  for (StopNotice& notice : table_->stopNoticesOfRoute(route, choice.direction)) {
    std::erase_if(notice.stopIds, [&](std::string_view stopId) { return !isChosen(stopId, choice); });
    if (notice.stopIds.empty()) continue;
    WordedStopNotice words = worded(notice);
    auto& [notices, places] = noticesByPhase[phaseOf(words.period, now_)];
    notices.push_back(std::move(words));
    places.push_back(notice.incident);
  }
  for (const auto& [phase, ofPhase] : noticesByPhase) {
    const auto& [notices, places] = ofPhase;
    const std::uint64_t muid = muidOfStopIncident(table_->lines().feedName(), notices);
    SharedIncident& known = madeStopIncidents_[muid];
    if (!known) known = stopIncident(muid, notices, *language_);
    noticesOfStopIncidents_.emplace(muid, places);
    incidents.push_back(known);
  }
}

WordedStopNotice IncidentRecords::worded(const StopNotice& notice) const {
  const DistinctIncident& incident = table_->incidents()[notice.incident];
  const AlertsMessage::Entity& alert = table_->message().entities()[incident.entity];
  Text header = bestText(incident, AlertText::header);
  Text description = bestText(incident, AlertText::description);
  // The shield says this already.
  if (onlyNamesLines(header.text, alert)) header.text.clear();
  return {.muid = muidOf(incident),
          .effect = alert.effect,
          .cause = alert.cause,
          .period = periodToShow(table_->message().periods(alert), now_),
          .header = std::move(header.text),
          .description = std::move(description.text),
          .language = std::string(description.language.empty() ? header.language : description.language),
          .url = bestAddress(incident),
          .stops = namesOf(notice.stopIds)};
}

bool IncidentRecords::isChosen(std::string_view stopId, const LineChoice& choice) const {
  if (choice.stops == LineChoice::Stops::all) return true;
  return std::ranges::any_of(choice.stopIds, [&](const std::string& chosen) {
    return chosen == stopId || chosen == stationOf(stopId) || stationOf(chosen) == stopId;
  });
}

std::string_view IncidentRecords::stationOf(std::string_view stopId) const {
  if (!stops_) return {};
  const auto& stop = stops_->find(stopId);
  return stop ? std::string_view(stop->station) : std::string_view();
}

std::string IncidentRecords::nameOf(std::string_view stopId) const {
  if (!stops_) return {};
  const auto& stop = stops_->find(stopId);
  return stop ? stop->name : std::string();
}

template <class StopIds>
std::vector<std::string> IncidentRecords::namesOf(const StopIds& stopIds) const {
  std::vector<std::string> names;
  std::set<std::string> known;
  for (const std::string_view id : stopIds) {
    std::string name = nameOf(id);
    if (name.empty())
      name = filledIn(language_->texts.stopWithIdFormat, singleLine(withValidUtf8(std::string(id))));
    if (known.insert(name).second) names.push_back(std::move(name));
  }
  return names;
}

std::set<std::string_view> IncidentRecords::stopIdsOf(std::uint32_t place) const {
  std::set<std::string_view> ids;
  for (const std::uint32_t entity : table_->entitiesOf(place)) {
    for (const AlertSelector& selector : table_->message().selectors(table_->message().entities()[entity])) {
      if (selector.namesStop()) ids.insert(selector.stopId);
    }
  }
  return ids;
}

std::string IncidentRecords::lineNamesOf(std::uint32_t place) const {
  std::set<std::size_t> routes;
  for (const std::uint32_t entity : table_->entitiesOf(place)) {
    for (const AlertSelector& selector : table_->message().selectors(table_->message().entities()[entity])) {
      const auto route = table_->lines().routeWithId(routeIdNamedBy(selector));
      if (route && !selector.namesTrip) routes.insert(*route);
    }
  }
  std::vector<std::string> names;
  for (const std::size_t route : routes) names.push_back(table_->lines().nameOfRoute(route));
  return listed(names);
}

std::optional<IncidentDetails> IncidentRecords::detailsOf(std::uint64_t muid) const {
  IncidentDetails details;
  const auto stopIncident = noticesOfStopIncidents_.find(muid);
  if (stopIncident != noticesOfStopIncidents_.end()) {
    for (const std::uint32_t place : stopIncident->second) {
      addDetails(place, details);
      details.notices.push_back(muidOf(place));
    }
    std::ranges::sort(details.notices);
    return details;
  }
  const auto place = placesOfMade_.find(muid);
  if (place == placesOfMade_.end()) return std::nullopt;
  addDetails(place->second, details);
  return details;
}

/// Effect and cause are those of the first alert, the severity is the worst.
void IncidentRecords::addDetails(std::uint32_t place, IncidentDetails& details) const {
  const AlertsMessage& message = table_->message();
  const AlertsMessage::Entity& alert = message.entities()[table_->incidents()[place].entity];
  if (details.effect == AlertEffect::unknownEffect) details.effect = alert.effect;
  if (details.cause == AlertCause::unknownCause) details.cause = alert.cause;
  const auto periods = message.periods(alert);
  details.periods.insert(details.periods.end(), periods.begin(), periods.end());
  std::map<std::string, std::string> names;
  for (const IncidentStop& stop : details.stops) names.emplace(stop.id, stop.name);
  for (const std::string_view id : stopIdsOf(place))
    names.emplace(singleLine(withValidUtf8(std::string(id))), nameOf(id));
  details.stops.clear();
  for (const auto& [id, name] : names) details.stops.push_back({id, name});
  std::set<std::uint8_t> directions(details.directions.begin(), details.directions.end());
  for (const std::uint32_t entity : table_->entitiesOf(place)) {
    details.severity = std::max(details.severity, message.entities()[entity].severity);
    for (const AlertSelector& selector : message.selectors(message.entities()[entity])) {
      if (selector.direction) directions.insert(*selector.direction);
    }
  }
  details.directions.assign(directions.begin(), directions.end());
}

SharedIncident IncidentRecords::record(std::uint32_t place) {
  SharedIncident& known = made_[place];
  if (!known) {
    known = make(place);
    placesOfMade_.emplace(known->muid(), place);
  }
  return known;
}

/// What a feed says of an alert without texts: "Detour · Construction", then its lines and stops.
OptionalText IncidentRecords::detailsInWords(std::uint32_t place) const {
  const FeedTexts& words = language_->texts;
  const AlertsMessage::Entity& alert = table_->message().entities()[table_->incidents()[place].entity];
  std::string text = words.together(words.effect(alert.effect), words.cause(alert.cause));
  const auto add = [&text](const std::string& format, const std::string& names) {
    if (!names.empty()) text.append(text.empty() ? "" : "\n").append(filledIn(format, names));
  };
  add(words.linesFormat, lineNamesOf(place));
  add(words.stopsFormat, listed(namesOf(stopIdsOf(place))));
  return present(std::move(text));
}

SharedIncident IncidentRecords::make(std::uint32_t place) const {
  const DistinctIncident& incident = table_->incidents()[place];
  const AlertsMessage& message = table_->message();
  const AlertsMessage::Entity& entity = message.entities()[incident.entity];
  const FeedTexts& words = language_->texts;
  const AlertEffect effect = entity.effect;
  const ShownPeriod period = periodToShow(message.periods(entity), now_);
  const Text header = bestText(incident, AlertText::header);
  const Text description = bestText(incident, AlertText::description);

  TransitIncidentFields fields{.muid = muidOf(incident),
                               .isBlockingIncident = effect == AlertEffect::noService,
                               .startDate = period.start,
                               .endDate = period.end};
  std::string title = rowTitle(header.text, header.language);
  if (title.empty()) title = words.effect(effect);
  if (onlyNamesLines(title, entity)) title = effectOrCause(effect, entity.cause, words).value_or(title);
  if (title.empty()) title = words.incident;
  std::string secondary = rowSecondaryText(description.text, title, description.language);
  if (secondary.empty()) secondary = effectAndCauseBelow(title, effect, entity.cause, words);
  const bool isWordless = header.text.empty() && description.text.empty();
  if (isWordless) secondary = words.together(secondary, listed(namesOf(stopIdsOf(place))));
  std::string details = description.text;
  if (title.ends_with(kEllipsis) && !header.text.ends_with(kEllipsis)) {
    // The details show the part of the header that was cut from the row.
    details = details.empty() ? header.text : header.text + "\n\n" + details;
  }
  fields.summary = present(std::move(secondary));
  fields.title = present(std::move(title));
  fields.fullDescription = isWordless ? detailsInWords(place) : present(std::move(details));
  fields.infoURL = bestAddress(incident);
  // lastUpdated stays absent. The feed's header time changes with every fetch, and with it an unchanged list
  // would count as a new one.
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

std::uint64_t IncidentRecords::muidOf(const DistinctIncident& incident) const {
  const AlertsMessage::Entity& entity = table_->message().entities()[incident.entity];
  std::string id(entity.id);
  if (id.empty()) id = entity.bytes;  // tells incidents without ids apart
  if (incident.sameIdBefore > 0) id.append(1, '\0').append(std::to_string(incident.sameIdBefore));
  return stableMuid(table_->lines().feedName(), id);
}

std::vector<AlertTranslation> IncidentRecords::translations(const DistinctIncident& incident,
                                                            AlertText kind) const {
  std::vector<AlertTranslation> all;
  const auto add = [&](std::uint32_t place) {
    const AlertsMessage& message = table_->message();
    for (const AlertTranslation& translation : message.translations(message.entities()[place])) {
      if (translation.kind == kind) all.push_back(translation);
    }
  };
  add(incident.entity);
  for (const std::uint32_t place : incident.otherLanguages) add(place);
  return translationsByFit(std::move(all), language_->languages, table_->lines().language());
}

IncidentRecords::Text IncidentRecords::bestText(const DistinctIncident& incident, AlertText kind) const {
  for (const AlertTranslation& translation : translations(incident, kind)) {
    const std::string_view tag = translation.language;
    if (std::string text = plainText(translation.text); !text.empty()) {
      return {std::move(text), tag.empty() ? std::string_view(table_->lines().language()) : tag};
    }
  }
  return {};
}

bool IncidentRecords::onlyNamesLines(std::string_view title, const AlertsMessage::Entity& entity) const {
  for (const AlertSelector& selector : table_->message().selectors(entity)) {
    const auto route = table_->lines().routeWithId(selector.routeId);
    if (!route) continue;
    const FeedRoute& line = table_->lines().routes()[*route];
    if (onlyNamesLine(title, line.shortName, line.longName)) return true;
  }
  return false;
}

OptionalText IncidentRecords::bestAddress(const DistinctIncident& incident) const {
  for (const AlertTranslation& translation : translations(incident, AlertText::url)) {
    if (auto address = webAddress(translation.text)) return address;
  }
  return std::nullopt;
}

}  // namespace linewatch
