#include "incidents/transit_incident_updater.h"

#include <optional>
#include <utility>

#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch {

namespace {

constexpr double kToleranceOfRefreshInterval = 0.1;

Date now() { return platform().mainLoop().now(); }

void add(RVTransitIncidentUpdater::Dates& dates, const std::optional<Date>& date) {
  if (date) dates.insert(*date);
}

/// Adds the dates at which the incident changes the list. A future incident adds its start and its end, even
/// if the end is past. An incident that has ended adds nothing.
void addDatesOf(const TransitIncident& incident, Date now, RVTransitIncidentUpdater::Dates& dates) {
  const auto start = incident.startDate();
  const auto end = incident.endDate();
  if (start && *start > now) {
    add(dates, start);
    add(dates, end);
  } else if (end && *end > now) {
    add(dates, end);
  }
}

Array textsOf(const RVTransitIncidentUpdater::Dates& dates) {
  Array texts;
  for (const Date date : dates) texts.emplace_back(description(date));
  return texts;
}

}  // namespace

std::shared_ptr<RVTransitIncidentUpdater> RVTransitIncidentUpdater::make(TransitLineItems lineItems,
                                                                         Seconds refreshInterval) {
  std::shared_ptr<RVTransitIncidentUpdater> updater(
      new RVTransitIncidentUpdater(std::move(lineItems), refreshInterval));
  updater->start();
  return updater;
}

RVTransitIncidentUpdater::RVTransitIncidentUpdater(TransitLineItems lineItems, Seconds refreshInterval)
    : lineItems_(std::move(lineItems)), refreshInterval_(refreshInterval) {}

RVTransitIncidentUpdater::~RVTransitIncidentUpdater() { invalidate(); }

void RVTransitIncidentUpdater::start() {
  _calculateUpdateDatesForIncidents();
  logDebug("Incident updater calculated update dates for incidents: %{private}@", {textsOf(dates_)});
  _scheduleAutoRefreshTimer();
  _schedulateNextUpdate();
}

void RVTransitIncidentUpdater::invalidate() {
  for (const auto& timer : {autoRefreshTimer_, updateTimer_}) {
    if (timer) timer->invalidate();
  }
}

void RVTransitIncidentUpdater::_calculateUpdateDatesForIncidents() {
  const Date scanned = now();
  for (const SharedLineItem& item : lineItems_) {
    for (const SharedIncident& incident : item->incidents()) addDatesOf(*incident, scanned, dates_);
  }
}

void RVTransitIncidentUpdater::_scheduleAutoRefreshTimer() {
  if (autoRefreshTimer_ && autoRefreshTimer_->isValid()) autoRefreshTimer_->invalidate();
  logDebug("Scheduling incident updater  auto refresh update with interval %.2f", {refreshInterval_.count()});
  autoRefreshTimer_ = platform().mainLoop().scheduleTimer(
      refreshInterval_, /*repeats=*/true, [self = shared_from_this()] { self->_autoRefreshTimerFired(); });
  autoRefreshTimer_->setTolerance(refreshInterval_ * kToleranceOfRefreshInterval);
}

void RVTransitIncidentUpdater::_schedulateNextUpdate() {
  if (dates_.empty()) return;
  const Seconds untilNext = *dates_.begin() - now();
  if (untilNext <= Seconds(0)) return;
  updateTimer_ = platform().mainLoop().scheduleTimer(
      untilNext, /*repeats=*/false, [self = shared_from_this()] { self->_nextUpdateTimerFired(); });
}

Date RVTransitIncidentUpdater::takeNextDate() {
  if (dates_.empty()) {
    logError("Incident updater next update date timer fired but we should not have any update anymore.");
    return now();
  }
  const Date date = *dates_.begin();
  logDebug("Incident updater next update date was reached: %{private}@.", {description(date)});
  dates_.erase(dates_.begin());
  _schedulateNextUpdate();
  return date;
}

void RVTransitIncidentUpdater::_nextUpdateTimerFired() {
  const Date date = takeNextDate();
  if (const auto observing = observer()) observing->transitIncidentUpdaterDateExpired(*this, date);
}

void RVTransitIncidentUpdater::_autoRefreshTimerFired() {
  logDebug("Incident updater auto-refresh timer fired.");
  if (const auto observing = observer()) observing->transitIncidentUpdaterNeedsRefresh(*this);
}

}  // namespace linewatch
