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

/// What a widget last showed in a session. The values are those of the records.
enum class TransitMessageType : std::int64_t { noFavorites = 1, noIncident, oneIncident, severalIncidents };

/// What ended a widget session. The values are those of the events.
enum class WidgetSessionEnd : std::int64_t { itemOpened = 1, disappeared = 2 };

/// One incident that a widget session showed.
struct IncidentAnalyticsItem {
  /// The line's identifier in decimal digits.
  std::string transitLineMuid;
  /// Absent when the incident has no title.
  std::optional<std::string> transitIncidentTitle;

  bool operator==(const IncidentAnalyticsItem&) const = default;
};

/// What one showing of the widget was like. Absent fields were never set.
struct WidgetAnalyticsRecord {
  std::optional<bool> initiallyExpanded;
  std::optional<bool> everExpanded;
  /// A `TransitMessageType`.
  std::optional<std::int64_t> transitMessageType;
  std::vector<IncidentAnalyticsItem> transitIncidents;
  std::optional<std::int64_t> tappedItemIndex;

  bool operator==(const WidgetAnalyticsRecord&) const = default;
};

/// The event that closes a widget session.
struct WidgetInteractionEvent {
  std::int64_t interactionType = 0;
  /// A `WidgetSessionEnd`.
  std::int64_t endState = 0;
  std::shared_ptr<const WidgetAnalyticsRecord> record;
  bool wasLocked = false;
  Date startDate;
  Seconds duration{0};
};

/// Records single actions of the user. Main thread; never fails.
class UsageRecorder {
 public:
  virtual ~UsageRecorder() = default;
  virtual void captureUserAction(std::string_view action, std::int64_t target,
                                 const std::optional<std::string>& eventValue) = 0;
};

/// Makes analytics events. Main thread.
class AnalyticsEventFactory {
 public:
  virtual ~AnalyticsEventFactory() = default;
  virtual WidgetInteractionEvent widgetInteractionEvent(std::int64_t interactionType, std::int64_t endState,
                                                        std::shared_ptr<const WidgetAnalyticsRecord> record,
                                                        bool wasLocked, Date startDate, Seconds duration) = 0;
};

/// Takes finished events. Main thread; never fails.
class AnalyticsLogger {
 public:
  virtual ~AnalyticsLogger() = default;
  virtual void captureEvent(const WidgetInteractionEvent& event, const UserSessionSnapshot& session) = 0;
};

}  // namespace linewatch
