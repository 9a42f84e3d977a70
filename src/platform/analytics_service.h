#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/user_session.h"
#include "shared/date.h"

namespace linewatch {

/// The kind of list that a widget showed last in a session. The values are written in the records.
enum class TransitMessageType : std::int64_t { noFavorites = 1, noIncident, oneIncident, severalIncidents };

/// Why a widget session ended. The values are written in the events.
enum class WidgetSessionEnd : std::int64_t { itemOpened = 1, disappeared = 2 };

/// An incident that was shown in a widget session.
struct IncidentAnalyticsItem {
  /// The line's identifier in decimal digits.
  std::string transitLineMuid;
  /// Absent when the incident has no title.
  std::optional<std::string> transitIncidentTitle;

  bool operator==(const IncidentAnalyticsItem&) const = default;
};

/// What was shown and tapped in one widget session. Absent fields were never set.
struct WidgetAnalyticsRecord {
  std::optional<bool> initiallyExpanded;
  std::optional<bool> everExpanded;
  /// A `TransitMessageType`.
  std::optional<std::int64_t> transitMessageType;
  std::vector<IncidentAnalyticsItem> transitIncidents;
  /// The row, counted from 0.
  std::optional<std::int64_t> tappedItemIndex;

  bool operator==(const WidgetAnalyticsRecord&) const = default;
};

/// The event that is logged at the end of a widget session.
struct WidgetInteractionEvent {
  std::int64_t interactionType = 0;
  /// A `WidgetSessionEnd`.
  std::int64_t endState = 0;
  /// May be null.
  std::shared_ptr<const WidgetAnalyticsRecord> record;
  /// Whether the device was locked when the session started.
  bool wasLocked = false;
  Date startDate;
  Seconds duration{0};
};

/// Records single actions of the user. Main thread.
class UsageRecorder {
 public:
  virtual ~UsageRecorder() = default;

  /// Records that the user did `action` ("TAP_WIDGET_ITEM") to `target`; `eventValue` is absent when there is
  /// nothing to add. Returns at once. A record that cannot be kept is dropped without an error.
  virtual void captureUserAction(std::string_view action, std::int64_t target,
                                 const std::optional<std::string>& eventValue) = 0;
};

/// Makes analytics events. Main thread.
class AnalyticsEventFactory {
 public:
  virtual ~AnalyticsEventFactory() = default;

  /// The event with these fields. `endState` is a `WidgetSessionEnd`, `duration` is in seconds, and `record`
  /// may be null. Does not fail.
  virtual WidgetInteractionEvent widgetInteractionEvent(std::int64_t interactionType, std::int64_t endState,
                                                        std::shared_ptr<const WidgetAnalyticsRecord> record,
                                                        bool wasLocked, Date startDate, Seconds duration) = 0;
};

/// Keeps analytics events. Main thread.
class AnalyticsLogger {
 public:
  virtual ~AnalyticsLogger() = default;

  /// Keeps the event of the session. Returns at once. An event that cannot be kept is dropped without an
  /// error.
  virtual void captureEvent(const WidgetInteractionEvent& event, const UserSessionSnapshot& session) = 0;
};

}  // namespace linewatch
