#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>

#include "platform/analytics_service.h"
#include "platform/extension_context.h"
#include "platform/transit_line.h"
#include "shared/date.h"
#include "ui/index_path.h"
#include "ui/view_controller.h"

namespace linewatch {

/// For each incident that a list shows, by the incident's `muid`, the line under which it is shown. The lines
/// are known as long as the list is being built.
using IncidentsToLineMapping = std::unordered_map<std::uint64_t, const TransitLineItem*>;

/// Records what the widget showed and what the user did with it: one session, and one event, each time the
/// widget is shown. Without a running session most calls are dropped; nothing is reported back. Main thread.
class RVTransitIncidentsAnalyticsDelegate {
 public:
  /// The controller, known weakly, tells the current display mode; once it is gone the mode counts as
  /// compact.
  explicit RVTransitIncidentsAnalyticsDelegate(
      std::weak_ptr<ui::ViewController> transitIncidentsViewController);

  /// The widget's view has appeared. A running session goes on with its start date; the record starts afresh.
  void startSessionIfNeeded();
  void recordWidgetChangeDisplayMode(WidgetDisplayMode mode);
  /// A list has been built: the favourite lines, the incidents it shows in row order, and the line of each.
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
  static TransitMessageType _messageTypeForIncidentCount(std::size_t count);
  bool isExpanded() const;

  std::weak_ptr<ui::ViewController> transitIncidentsViewController_;
  std::optional<Date> sessionStartDate_;
  std::shared_ptr<WidgetAnalyticsRecord> analyticsData_;
};

}  // namespace linewatch
