#include "app/upcoming_text.h"

#include <cstdint>
#include <vector>

#include "app/rider_texts.h"
#include "app/text_table.h"
#include "feeds/upcoming_incidents.h"

namespace linewatch::app {

namespace {

/// The number of days in which `upcomingIncidents` looks.
constexpr std::uint64_t kDays = 7;

std::string datesOf(const TransitIncident& incident, Date now, const RiderTexts& texts) {
  const std::string start = texts.dateAndTime(*incident.startDate(), now);
  return incident.endDate() ? texts("Period", {start, texts.dateAndTime(*incident.endDate(), now)})
                            : texts("From", {start});
}

TerminalRow rowOf(const UpcomingIncident& upcoming, Date now, const RiderTexts& texts) {
  const TransitIncident& incident = *upcoming.incident;
  TerminalRow row{.shields = {},
                  .texts = {incident.title(), datesOf(incident, now, texts), incident.summary()}};
  for (const SharedLineItem& line : upcoming.lines) {
    if (line->alternateArtwork()) row.shields.push_back(line->alternateArtwork());
  }
  return row;
}

}  // namespace

std::string upcomingText(Session& session, const RVResult& result, const TerminalStyle& style) {
  if (!result.successObject()) return {};
  const Date now = session.platform().mainLoop().now();
  std::vector<TerminalRow> rows;
  for (const UpcomingIncident& upcoming : upcomingIncidents(*result.successObject(), now))
    rows.push_back(rowOf(upcoming, now, session.texts()));
  return rows.empty() ? paragraph(session.texts()("NothingBegins", {kDays}), 0, style)
                      : terminalRows(rows, style);
}

}  // namespace linewatch::app
