#include "app/upcoming_text.h"

#include <vector>

#include "app/local_time.h"
#include "feeds/upcoming_incidents.h"

namespace linewatch::app {

namespace {

std::string datesOf(const TransitIncident& incident, const UserLocale& locale) {
  const std::string start = localTime(*incident.startDate(), locale);
  return incident.endDate() ? start + " – " + localTime(*incident.endDate(), locale) : start + " –";
}

TerminalRow rowOf(const UpcomingIncident& upcoming, const UserLocale& locale) {
  const TransitIncident& incident = *upcoming.incident;
  TerminalRow row{.shields = {}, .texts = {incident.title(), datesOf(incident, locale), incident.summary()}};
  for (const SharedLineItem& line : upcoming.lines) {
    if (line->alternateArtwork()) row.shields.push_back(line->alternateArtwork());
  }
  return row;
}

}  // namespace

std::string upcomingText(Session& session, const RVResult& result, const UserLocale& locale,
                         const TerminalStyle& style) {
  if (!result.successObject()) return {};
  const Date now = session.platform().mainLoop().now();
  std::vector<TerminalRow> rows;
  for (const UpcomingIncident& upcoming : upcomingIncidents(*result.successObject(), now))
    rows.push_back(rowOf(upcoming, locale));
  return rows.empty() ? "Nothing begins within 7 days.\n" : terminalRows(rows, style);
}

}  // namespace linewatch::app
