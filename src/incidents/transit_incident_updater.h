#pragma once

#include <memory>
#include <set>

#include "platform/transit_line.h"
#include "shared/date.h"

namespace linewatch {

class Timer;
class RVTransitIncidentUpdater;

/// Hears when the list has become old. Main thread.
class RVTransitIncidentUpdaterObserver {
 public:
  virtual ~RVTransitIncidentUpdaterObserver() = default;

  /// An incident has begun or ended: the list is to be built again from the same data.
  virtual void transitIncidentUpdaterDateExpired(RVTransitIncidentUpdater& updater, Date date) = 0;
  /// The refresh interval has passed: the data is to be fetched again.
  virtual void transitIncidentUpdaterNeedsRefresh(RVTransitIncidentUpdater& updater) = 0;
};

/// Tells its observer when one set of line items needs to be shown or fetched anew: at each start and end of
/// an incident, and whenever the refresh interval has passed. Main thread.
///
/// It runs from the moment it is made. The main loop keeps it alive until it is invalidated, so whoever made
/// it invalidates it.
class RVTransitIncidentUpdater : public std::enable_shared_from_this<RVTransitIncidentUpdater> {
 public:
  /// Distinct, the next one first.
  using Dates = std::set<Date>;

  static std::shared_ptr<RVTransitIncidentUpdater> make(TransitLineItems lineItems, Seconds refreshInterval);
  ~RVTransitIncidentUpdater();
  RVTransitIncidentUpdater(const RVTransitIncidentUpdater&) = delete;
  RVTransitIncidentUpdater& operator=(const RVTransitIncidentUpdater&) = delete;

  /// Known weakly; one that is gone hears nothing.
  void setObserver(std::weak_ptr<RVTransitIncidentUpdaterObserver> observer) {
    observer_ = std::move(observer);
  }
  std::shared_ptr<RVTransitIncidentUpdaterObserver> observer() const { return observer_.lock(); }

  /// The dates that have not been reported yet, as they are at this moment. They are read off the incidents
  /// once, when the updater is made. Dates behind one that is already past when its turn comes stay and are
  /// never reported.
  Dates updateDates() const { return dates_; }
  const TransitLineItems& lineItems() const { return lineItems_; }
  Seconds refreshInterval() const { return refreshInterval_; }

  /// Nothing is reported any more.
  void invalidate();

 private:
  RVTransitIncidentUpdater(TransitLineItems lineItems, Seconds refreshInterval);
  void start();

  void _calculateUpdateDatesForIncidents();
  void _scheduleAutoRefreshTimer();
  void _schedulateNextUpdate();
  void _nextUpdateTimerFired();
  void _autoRefreshTimerFired();
  /// Removes the next date; now when there is none.
  Date takeNextDate();

  Dates dates_;
  std::shared_ptr<Timer> updateTimer_;
  std::shared_ptr<Timer> autoRefreshTimer_;
  TransitLineItems lineItems_;
  Seconds refreshInterval_;
  std::weak_ptr<RVTransitIncidentUpdaterObserver> observer_;
};

}  // namespace linewatch
