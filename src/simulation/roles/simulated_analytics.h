#pragma once

#include "platform/analytics_service.h"
#include "simulation/world/backstage.h"

namespace linewatch::simulation {

/// The form of the record in the transcript; fields that were never set are left out.
Dictionary dictionaryOf(const WidgetAnalyticsRecord& record);

/// Records every action as "usage".
class SimulatedUsageRecorder final : public UsageRecorder {
 public:
  explicit SimulatedUsageRecorder(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  void captureUserAction(std::string_view action, std::int64_t target,
                         const std::optional<std::string>& eventValue) override;

 private:
  SharedBackstage backstage_;
};

/// Makes events from their fields.
class SimulatedAnalyticsEventFactory final : public AnalyticsEventFactory {
 public:
  WidgetInteractionEvent widgetInteractionEvent(std::int64_t interactionType, std::int64_t endState,
                                                std::shared_ptr<const WidgetAnalyticsRecord> record,
                                                bool wasLocked, Date startDate, Seconds duration) override;
};

/// Records every event as "analytics", its start in seconds from the world's start.
class SimulatedAnalyticsLogger final : public AnalyticsLogger {
 public:
  explicit SimulatedAnalyticsLogger(SharedBackstage backstage) : backstage_(std::move(backstage)) {}

  void captureEvent(const WidgetInteractionEvent& event, const UserSessionSnapshot& session) override;

 private:
  SharedBackstage backstage_;
};

}  // namespace linewatch::simulation
