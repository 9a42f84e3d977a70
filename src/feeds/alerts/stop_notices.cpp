#include "feeds/alerts/stop_notices.h"

#include <string>
#include <string_view>
#include <utility>

#include "feeds/alerts/incident_stops.h"
#include "feeds/alerts/incident_texts.h"

namespace linewatch {

namespace {

Phase phaseOf(const ShownPeriod& period, Date now) {
  if (period.start && *period.start > now) return Phase::coming;
  return period.end && *period.end < now ? Phase::over : Phase::inForce;
}

WordedStopNotice worded(const IncidentSources& sources, const StopNotice& notice) {
  const DistinctIncident& incident = sources.incident(notice.incident);
  const AlertsMessage::Entity& alert = sources.alert(incident);
  IncidentText header = bestText(sources, incident, AlertText::header);
  IncidentText description = bestText(sources, incident, AlertText::description);
  // The shield says this already.
  if (onlyNamesItsLine(sources, header.text, alert)) header.text.clear();
  return {.muid = muidOf(sources, incident),
          .effect = alert.effect,
          .cause = alert.cause,
          .period = periodToShow(sources.table->message().periods(alert), sources.now),
          .header = std::move(header.text),
          .description = std::move(description.text),
          .language = std::string(description.language.empty() ? header.language : description.language),
          .url = bestAddress(sources, incident),
          .stops = namesOfStops(sources, notice.stopIds)};
}

}  // namespace

std::map<Phase, StopNotices> stopNoticesByPhase(const IncidentSources& sources, std::size_t route,
                                                const LineChoice& choice) {
  std::map<Phase, StopNotices> byPhase;
  if (choice.stops == LineChoice::Stops::none) return byPhase;
  for (StopNotice& notice : sources.table->stopNoticesOfRoute(route, choice.direction)) {
    std::erase_if(notice.stopIds,
                  [&](std::string_view stopId) { return !isChosenStop(sources, stopId, choice); });
    if (notice.stopIds.empty()) continue;
    WordedStopNotice words = worded(sources, notice);
    StopNotices& ofPhase = byPhase[phaseOf(words.period, sources.now)];
    ofPhase.notices.push_back(std::move(words));
    ofPhase.places.push_back(notice.incident);
  }
  return byPhase;
}

}  // namespace linewatch
