#pragma once

#include <memory>
#include <set>

#include "platform/transit_line.h"
#include "shared/date.h"

namespace linewatch {

class Timer;
class RVTransitIncidentUpdater;

/// Observes when the list must be rebuilt or fetched again. Main thread.
class RVTransitIncidentUpdaterObserver {
 public:
  virtual ~RVTransitIncidentUpdaterObserver() = default;

  /// An incident has begun or ended: the list must be rebuilt from the same data.
  virtual void transitIncidentUpdaterDateExpired(RVTransitIncidentUpdater& updater, Date date) = 0;
  /// The refresh interval has passed: the data should be fetched again.
  virtual void transitIncidentUpdaterNeedsRefresh(RVTransitIncidentUpdater& updater) = 0;
};

/// Tells its observer when a list made from a set of line items is out of date: at each start and end of an
/// incident, and each time the refresh interval has passed. Main thread.
///
/// It runs from its construction. The main loop keeps it alive until it is invalidated, so its owner must
/// invalidate it.
class RVTransitIncidentUpdater : public std::enable_shared_from_this<RVTransitIncidentUpdater> {
 public:
  /// Distinct dates, the earliest first.
  using Dates = std::set<Date>;

  static std::shared_ptr<RVTransitIncidentUpdater> make(TransitLineItems lineItems, Seconds refreshInterval);
  ~RVTransitIncidentUpdater();
  RVTransitIncidentUpdater(const RVTransitIncidentUpdater&) = delete;
  RVTransitIncidentUpdater& operator=(const RVTransitIncidentUpdater&) = delete;

  /// Keeps a weak reference to the observer.
  void setObserver(std::weak_ptr<RVTransitIncidentUpdaterObserver> observer) {
    observer_ = std::move(observer);
  }
  std::shared_ptr<RVTransitIncidentUpdaterObserver> observer() const { return observer_.lock(); }

  /// A snapshot of the dates not yet reported. They are computed once, at construction. When the earliest
  /// date is already past, no timer is armed: that date and all later ones stay and are never reported.
  Dates updateDates() const { return dates_; }
  const TransitLineItems& lineItems() const { return lineItems_; }
  Seconds refreshInterval() const { return refreshInterval_; }

  /// Stops both timers; nothing is reported afterwards.
  void invalidate();

 private:
  RVTransitIncidentUpdater(TransitLineItems lineItems, Seconds refreshInterval);
  void start();

  void _calculateUpdateDatesForIncidents();
  void _scheduleAutoRefreshTimer();
  void _schedulateNextUpdate();
  void _nextUpdateTimerFired();
  void _autoRefreshTimerFired();
  /// Removes the earliest date and returns it; the current date when none is left.
  Date takeNextDate();

  Dates dates_;
  std::shared_ptr<Timer> updateTimer_;
  std::shared_ptr<Timer> autoRefreshTimer_;
  TransitLineItems lineItems_;
  Seconds refreshInterval_;
  std::weak_ptr<RVTransitIncidentUpdaterObserver> observer_;
};

}  // namespace linewatch
