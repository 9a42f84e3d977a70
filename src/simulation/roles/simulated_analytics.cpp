#include "simulation/roles/simulated_analytics.h"

#include <utility>

namespace linewatch::simulation {

namespace {

template <class T>
void addIfSet(Dictionary& fields, const char* name, const std::optional<T>& value) {
  if (value) fields.emplace(name, *value);
}

}  // namespace

Dictionary dictionaryOf(const WidgetAnalyticsRecord& record) {
  Array incidents;
  for (const IncidentAnalyticsItem& item : record.transitIncidents) {
    Dictionary incident{{"transitLineMuid", item.transitLineMuid}};
    addIfSet(incident, "transitIncidentTitle", item.transitIncidentTitle);
    incidents.emplace_back(std::move(incident));
  }
  Dictionary fields{{"transitIncidents", std::move(incidents)}};
  addIfSet(fields, "initiallyExpanded", record.initiallyExpanded);
  addIfSet(fields, "everExpanded", record.everExpanded);
  addIfSet(fields, "transitMessageType", record.transitMessageType);
  addIfSet(fields, "tappedItemIndex", record.tappedItemIndex);
  return fields;
}

void SimulatedUsageRecorder::captureUserAction(std::string_view action, std::int64_t target,
                                               const std::optional<std::string>&) {
  backstage_->transcript->record("usage", {{"action", action}, {"target", target}});
}

WidgetInteractionEvent SimulatedAnalyticsEventFactory::widgetInteractionEvent(
    std::int64_t interactionType, std::int64_t endState, std::shared_ptr<const WidgetAnalyticsRecord> record,
    bool wasLocked, Date startDate, Seconds duration) {
  return {interactionType, endState, std::move(record), wasLocked, startDate, duration};
}

void SimulatedAnalyticsLogger::captureEvent(const WidgetInteractionEvent& event, const UserSessionSnapshot&) {
  const Seconds start = event.startDate - backstage_->world.start;
  backstage_->transcript->record("analytics",
                                 {{"interactionType", event.interactionType},
                                  {"endState", event.endState},
                                  {"record", event.record ? Value(dictionaryOf(*event.record)) : noValue()},
                                  {"wasLocked", event.wasLocked},
                                  {"start", start.count()},
                                  {"duration", event.duration.count()}});
}

}  // namespace linewatch::simulation
