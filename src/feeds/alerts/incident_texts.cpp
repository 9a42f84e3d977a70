#include "feeds/alerts/incident_texts.h"

#include <utility>
#include <vector>

#include "feeds/alerts/row_text.h"
#include "feeds/alerts/translation_choice.h"
#include "feeds/text/plain_text.h"

namespace linewatch {

namespace {

std::vector<AlertTranslation> translationsOf(const IncidentSources& sources, const DistinctIncident& incident,
                                             AlertText kind) {
  const AlertsMessage& message = sources.table->message();
  std::vector<AlertTranslation> all;
  const auto add = [&](std::uint32_t entity) {
    for (const AlertTranslation& translation : message.translations(message.entities()[entity])) {
      if (translation.kind == kind) all.push_back(translation);
    }
  };
  add(incident.entity);
  for (const std::uint32_t entity : incident.otherLanguages) add(entity);
  return translationsByFit(std::move(all), sources.language->languages, sources.table->lines().language());
}

}  // namespace

IncidentText bestText(const IncidentSources& sources, const DistinctIncident& incident, AlertText kind) {
  for (const AlertTranslation& translation : translationsOf(sources, incident, kind)) {
    if (std::string text = plainText(translation.text); !text.empty()) {
      const std::string_view tag = translation.language;
      return {std::move(text), tag.empty() ? std::string_view(sources.table->lines().language()) : tag};
    }
  }
  return {};
}

OptionalText bestAddress(const IncidentSources& sources, const DistinctIncident& incident) {
  for (const AlertTranslation& translation : translationsOf(sources, incident, AlertText::url)) {
    if (auto address = webAddress(translation.text)) return address;
  }
  return std::nullopt;
}

bool onlyNamesItsLine(const IncidentSources& sources, std::string_view title,
                      const AlertsMessage::Entity& alert) {
  const LineIndex& lines = sources.table->lines();
  for (const AlertSelector& selector : sources.table->message().selectors(alert)) {
    const auto route = lines.routeWithId(selector.routeId);
    if (!route) continue;
    const FeedRoute& line = lines.routes()[*route];
    if (onlyNamesLine(title, line.shortName, line.longName)) return true;
  }
  return false;
}

std::uint64_t muidOf(const IncidentSources& sources, const DistinctIncident& incident) {
  const AlertsMessage::Entity& alert = sources.alert(incident);
  std::string id(alert.id);
  if (id.empty()) id = alert.bytes;  // tells incidents without ids apart
  if (incident.sameIdBefore > 0) id.append(1, '\0').append(std::to_string(incident.sameIdBefore));
  return stableMuid(sources.table->lines().feedName(), id);
}

OptionalText textIfAny(std::string text) {
  return text.empty() ? OptionalText() : OptionalText(std::move(text));
}

}  // namespace linewatch
