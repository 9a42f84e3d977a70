#include "feeds/alerts/incident_records.h"

#include <algorithm>
#include <utility>

#include "feeds/alerts/alert_period.h"
#include "feeds/alerts/row_text.h"
#include "feeds/alerts/translation_choice.h"
#include "feeds/text/plain_text.h"
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

/// True when the alert has selectors and each of them names a stop.
bool namesOnlyStops(const AlertsMessage& message, const AlertsMessage::Entity& alert) {
  const auto selectors = message.selectors(alert);
  return !selectors.empty() && std::ranges::all_of(selectors, &AlertSelector::namesStop);
}

/// The effect in words, else the cause; absent when neither is known.
OptionalText effectOrCause(AlertEffect effect, AlertCause cause, const FeedTexts& words) {
  const std::string& effectInWords = words.effect(effect);
  return present(effectInWords.empty() ? words.cause(cause) : effectInWords);
}

}  // namespace

IncidentRecords::IncidentRecords(SharedIncidentTable table, SharedIncidentLanguage language, Date now)
    : table_(std::move(table)), language_(std::move(language)), now_(now) {}

TransitIncidents IncidentRecords::ofRoute(std::size_t route) {
  TransitIncidents incidents;
  for (const std::uint32_t place : table_->incidentsOfRoute(route)) incidents.push_back(record(place));
  return incidents;
}

SharedIncident IncidentRecords::record(std::uint32_t place) {
  SharedIncident& known = made_[place];
  if (!known) known = make(table_->incidents()[place]);
  return known;
}

SharedIncident IncidentRecords::make(const DistinctIncident& incident) const {
  const AlertsMessage& message = table_->message();
  const AlertsMessage::Entity& entity = message.entities()[incident.entity];
  const FeedTexts& words = language_->texts;
  const AlertEffect effect = effectOnLines(incident);
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
  std::string details = description.text;
  if (title.ends_with(kEllipsis) && !header.text.ends_with(kEllipsis)) {
    // The details show the part of the header that was cut from the row.
    details = details.empty() ? header.text : header.text + "\n\n" + details;
  }
  fields.summary = present(std::move(secondary));
  fields.title = present(std::move(title));
  fields.fullDescription = present(std::move(details));
  fields.infoURL = bestAddress(incident);
  // lastUpdated stays absent. The feed's header time changes with every fetch, and with it an unchanged list
  // would count as a new one.
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

/// "No service" at stops alone says nothing of the service of the lines that call there.
AlertEffect IncidentRecords::effectOnLines(const DistinctIncident& incident) const {
  const AlertsMessage& message = table_->message();
  const AlertsMessage::Entity& alert = message.entities()[incident.entity];
  if (alert.effect != AlertEffect::noService) return alert.effect;
  const auto atStops = [&](std::uint32_t place) {
    return namesOnlyStops(message, message.entities()[place]);
  };
  const bool isAboutStops = atStops(incident.entity) && std::ranges::all_of(incident.repetitions, atStops) &&
                            std::ranges::all_of(incident.otherLanguages, atStops);
  return isAboutStops ? AlertEffect::unknownEffect : alert.effect;
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
