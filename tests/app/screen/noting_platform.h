#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/analytics_service.h"
#include "platform/platform_wrapper.h"
#include "platform/system_controller.h"
#include "platform/transit_service.h"
#include "shared/mutex.h"
#include "simulation/roles/simulated_analytics.h"
#include "simulation/simulated_platform.h"
#include "wire/json_text.h"

namespace linewatch::app {

/// A platform that notes the widget's calls in the form of a transcript. The texts are the keys and arguments
/// that a transcript has.
class NotingPlatform final : public PlatformWrapper {
 public:
  /// `didAnswer` is called when the widget has taken an answer of the transit service.
  NotingPlatform(Platform& noted, std::function<void()> didAnswer)
      : PlatformWrapper(noted), didAnswer_(std::move(didAnswer)) {}

  /// The calls so far, one JSON object each, without their times.
  std::vector<std::string> calls() const LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    return calls_;
  }

  Localization& localization() override { return keys_->localization(); }
  TransitService& transitService() override { return service_; }
  UsageRecorder& usageRecorder() override { return usage_; }
  AnalyticsLogger& analyticsLogger() override { return analytics_; }
  SystemController& systemController() override { return controller_; }

 private:
  /// Any thread.
  void note(std::string_view event, Dictionary call) LINEWATCH_EXCLUDES(mutex_) {
    call.emplace("event", event);
    const MutexLock lock(mutex_);
    calls_.push_back(jsonText(call));
  }

  struct Ticket final : TransitLinesTicket {
    Ticket(std::shared_ptr<TransitLinesTicket> ticket, std::function<void()> didAnswer_)
        : noted(std::move(ticket)), didAnswer(std::move(didAnswer_)) {}
    void submit(Handler handler) override {
      noted->submit([handler = std::move(handler), didAnswer = didAnswer](
                        std::shared_ptr<const TransitLineItems> items, std::optional<Error> error) {
        handler(std::move(items), std::move(error));
        didAnswer();
      });
    }
    std::shared_ptr<TransitLinesTicket> noted;
    std::function<void()> didAnswer;
  };
  struct Service final : TransitService {
    explicit Service(NotingPlatform& owner) : platform(owner) {}
    std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
        std::vector<MapItemIdentifier> identifiers) override {
      Array muids;
      for (const MapItemIdentifier& identifier : identifiers) muids.emplace_back(identifier.muid);
      platform.note("lookup", {{"identifiers", std::move(muids)}});
      return std::make_shared<Ticket>(
          platform.wrapped().transitService().ticketForTransitLines(std::move(identifiers)),
          platform.didAnswer_);
    }
    NotingPlatform& platform;
  };
  struct Usage final : UsageRecorder {
    explicit Usage(NotingPlatform& owner) : platform(owner) {}
    void captureUserAction(std::string_view action, std::int64_t target,
                           const std::optional<std::string>& value) override {
      platform.note("usage", {{"action", action}, {"target", target}});
      platform.wrapped().usageRecorder().captureUserAction(action, target, value);
    }
    NotingPlatform& platform;
  };
  struct Analytics final : AnalyticsLogger {
    explicit Analytics(NotingPlatform& owner) : platform(owner) {}
    void captureEvent(const WidgetInteractionEvent& event, const UserSessionSnapshot& session) override {
      platform.note("analytics", {{"interactionType", event.interactionType},
                                  {"endState", event.endState},
                                  {"record", simulation::dictionaryOf(*event.record)},
                                  {"wasLocked", event.wasLocked}});
      platform.wrapped().analyticsLogger().captureEvent(event, session);
    }
    NotingPlatform& platform;
  };
  struct Controller final : SystemController {
    explicit Controller(NotingPlatform& owner) : platform(owner) {}
    SystemController& noted() const { return platform.wrapped().systemController(); }
    std::optional<UserActivity> makeUserActivity(const std::string& activityType) override {
      return noted().makeUserActivity(activityType);
    }
    std::optional<BundleRecord> bundleRecordOfCurrentProcess() override {
      return noted().bundleRecordOfCurrentProcess();
    }
    void openUserActivity(const UserActivity& activity, const std::optional<ApplicationRecord>& application,
                          bool promptToUnlock, OpenHandler handler) override {
      platform.note("openUserActivity", {{"type", activity.activityType},
                                         {"userInfo", activity.userInfo},
                                         {"promptToUnlock", promptToUnlock}});
      noted().openUserActivity(activity, application, promptToUnlock, std::move(handler));
    }
    NotingPlatform& platform;
  };

  std::function<void()> didAnswer_;
  std::shared_ptr<simulation::SimulatedPlatform> keys_ = simulation::SimulatedPlatform::make();
  Service service_{*this};
  Usage usage_{*this};
  Analytics analytics_{*this};
  Controller controller_{*this};
  mutable Mutex mutex_;
  std::vector<std::string> calls_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace linewatch::app
