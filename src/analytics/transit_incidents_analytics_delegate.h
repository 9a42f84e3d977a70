#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include <tsl/robin_map.h>

#include "platform/analytics_service.h"
#include "platform/extension_context.h"
#include "platform/transit_line.h"
#include "shared/date.h"
#include "shared/hash_mixing.h"
#include "ui/index_path.h"
#include "ui/view_controller.h"

namespace linewatch {

/// Maps the `muid` of each incident in a list to the first line that lists it. The pointers are valid only
/// while the list is being built.
using IncidentsToLineMapping = tsl::robin_map<std::uint64_t, const TransitLineItem*, IdentifierHash>;

/// Records each appearance of the widget as one session and one event: the list on screen and the user's
/// actions. Most calls outside a session are dropped. Failures are not reported. Main thread.
class RVTransitIncidentsAnalyticsDelegate {
 public:
  /// Asks the controller for the current display mode, which counts as compact once the controller is
  /// destroyed.
  explicit RVTransitIncidentsAnalyticsDelegate(
      std::weak_ptr<ui::ViewController> transitIncidentsViewController);

  /// The widget's view has appeared. A running session keeps its start date and gets a new record.
  void startSessionIfNeeded();
  void recordWidgetChangeDisplayMode(WidgetDisplayMode mode);
  /// A list has been built from the favourite lines; `incidentDisplayed` is in row order.
  void recordInfoForLines(const TransitLineItems& lines, const TransitIncidents& incidentDisplayed,
                          const IncidentsToLineMapping& incidentsToLineMapping);
  /// A row has been opened successfully: ends the session.
  void recordOpenItemAtIndexPath(const ui::IndexPath& indexPath);
  /// The widget's view has disappeared: ends the session.
  void recordCloseSessionSwiping();

  /// None while no session runs.
  const std::optional<Date>& sessionStartDate() const { return sessionStartDate_; }
  /// The record of the current session; null before the first start and after a close.
  std::shared_ptr<const WidgetAnalyticsRecord> analyticsData() const { return analyticsData_; }

 private:
  void _closeSessionWithEndState(WidgetSessionEnd endState);
  void logSessionEvent(Date startDate, WidgetSessionEnd endState) const;
  static TransitMessageType _messageTypeForIncidentCount(std::size_t count);
  bool isExpanded() const;

  std::weak_ptr<ui::ViewController> transitIncidentsViewController_;
  std::optional<Date> sessionStartDate_;
  std::shared_ptr<WidgetAnalyticsRecord> analyticsData_;
};

}  // namespace linewatch
