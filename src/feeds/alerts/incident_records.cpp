#include "feeds/alerts/incident_records.h"

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

/// Effect and cause in words, without what the title says already.
std::string effectAndCauseBelow(std::string_view title, const AlertsMessage::Entity& entity,
                                const FeedTexts& words) {
  const auto news = [title](const std::string& text) {
    return titleSays(title, text) ? std::string() : text;
  };
  return words.together(news(words.effect(entity.effect)), news(words.cause(entity.cause)));
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
  const ShownPeriod period = periodToShow(message.periods(entity), now_);
  const std::string header = bestText(incident, AlertText::header);
  std::string description = bestText(incident, AlertText::description);

  TransitIncidentFields fields{.muid = muidOf(incident),
                               .isBlockingIncident = entity.effect == AlertEffect::noService,
                               .startDate = period.start,
                               .endDate = period.end};
  std::string title = rowTitle(header);
  if (title.empty()) title = words.effect(entity.effect);
  if (title.empty()) title = words.incident;
  std::string secondary = rowSecondaryText(description, title);
  if (secondary.empty()) secondary = effectAndCauseBelow(title, entity, words);
  if (title.ends_with(kEllipsis) && !header.ends_with(kEllipsis)) {
    // The details have what the row could not take.
    description = description.empty() ? header : header + "\n\n" + description;
  }
  fields.summary = present(std::move(secondary));
  fields.title = present(std::move(title));
  fields.fullDescription = present(std::move(description));
  fields.infoURL = bestAddress(incident);
  // When the incident was last updated is not known: the header's date is of the feed and another each time,
  // and would make an unchanged list count as a new one.
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

std::uint64_t IncidentRecords::muidOf(const DistinctIncident& incident) const {
  const AlertsMessage::Entity& entity = table_->message().entities()[incident.entity];
  std::string id(entity.id);
  if (id.empty()) id = entity.bytes;  // what tells it from others that have no id either
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

std::string IncidentRecords::bestText(const DistinctIncident& incident, AlertText kind) const {
  for (const AlertTranslation& translation : translations(incident, kind)) {
    if (std::string text = plainText(translation.text); !text.empty()) return text;
  }
  return {};
}

OptionalText IncidentRecords::bestAddress(const DistinctIncident& incident) const {
  for (const AlertTranslation& translation : translations(incident, AlertText::url)) {
    if (auto address = webAddress(translation.text)) return address;
  }
  return std::nullopt;
}

}  // namespace linewatch
