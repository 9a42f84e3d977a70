#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/analytics_service.h"
#include "shared/outcome.h"
#include "storage/state_database.h"

namespace linewatch {

/// How many sessions, and how many actions, the state database keeps; the oldest go first.
inline constexpr std::int64_t kKeptAnalyticsCount = 10'000;

/// Whether the user allows recording. Asked before each record.
using AnalyticsSwitch = std::function<bool()>;

/// Makes events from its arguments alone.
class PlainEventFactory final : public AnalyticsEventFactory {
 public:
  WidgetInteractionEvent widgetInteractionEvent(std::int64_t interactionType, std::int64_t endState,
                                                std::shared_ptr<const WidgetAnalyticsRecord> record,
                                                bool wasLocked, Date startDate, Seconds duration) override {
    return {interactionType, endState, std::move(record), wasLocked, startDate, duration};
  }
};

/// Records the sessions of the widget in the state database. They never leave the machine.
class StoredAnalyticsLogger final : public AnalyticsLogger {
 public:
  StoredAnalyticsLogger(SharedDatabase database, AnalyticsSwitch isOn)
      : database_(std::move(database)), isOn_(std::move(isOn)) {}

  void captureEvent(const WidgetInteractionEvent& event, const UserSessionSnapshot& session) override;

 private:
  SharedDatabase database_;
  AnalyticsSwitch isOn_;
};

/// Records the user's actions in the state database, with their times.
class StoredUsageRecorder final : public UsageRecorder {
 public:
  StoredUsageRecorder(SharedDatabase database, AnalyticsSwitch isOn, std::function<Date()> now)
      : database_(std::move(database)), isOn_(std::move(isOn)), now_(std::move(now)) {}

  void captureUserAction(std::string_view action, std::int64_t target,
                         const std::optional<std::string>& eventValue) override;

 private:
  SharedDatabase database_;
  AnalyticsSwitch isOn_;
  std::function<Date()> now_;
};

/// A recorded session of the widget.
struct StoredWidgetSession {
  UserSessionSnapshot userSession;
  /// Its record is never null.
  WidgetInteractionEvent event;
};

/// A recorded action of the user.
struct StoredUserAction {
  Date time;
  std::string action;
  std::int64_t target = 0;
  std::optional<std::string> value;

  bool operator==(const StoredUserAction&) const = default;
};

/// All records, oldest first.
Outcome<std::vector<StoredWidgetSession>> storedWidgetSessions(StoredDatabase& database);
Outcome<std::vector<StoredUserAction>> storedUserActions(StoredDatabase& database);
/// Deletes all records.
std::optional<Error> clearAnalytics(StoredDatabase& database);

}  // namespace linewatch
