#pragma once

#include <memory>

#include "platform/device.h"
#include "platform/platform_wrapper.h"
#include "platform/random_source.h"
#include "platform/system_controller.h"
#include "platform/transit_service.h"
#include "simulation/recording/session_recorder.h"

namespace linewatch::simulation {

/// A platform whose answers a recorder hears. Every role is that of the recorded platform. The roles whose
/// answers a scenario has to name, such as the transit service, pass on the question and tell the recorder
/// the answer.
class RecordingPlatform : public PlatformWrapper {
 public:
  RecordingPlatform(Platform& recorded, std::shared_ptr<SessionRecorder> recorder);

  RandomSource& randomSource() override { return randomSource_; }
  TransitService& transitService() override { return transitService_; }
  SystemController& systemController() override { return systemController_; }
  Device& device() override { return device_; }
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override;

 private:
  class RecordingService final : public TransitService {
   public:
    explicit RecordingService(RecordingPlatform& platform) : platform_(platform) {}
    std::shared_ptr<TransitLinesTicket> ticketForTransitLines(
        std::vector<MapItemIdentifier> identifiers) override;

   private:
    RecordingPlatform& platform_;
  };

  class RecordingRandomSource final : public RandomSource {
   public:
    explicit RecordingRandomSource(RecordingPlatform& platform) : platform_(platform) {}
    std::uint32_t next() override;

   private:
    RecordingPlatform& platform_;
  };

  class RecordingDevice final : public Device {
   public:
    explicit RecordingDevice(RecordingPlatform& platform) : platform_(platform) {}
    ConnectionFailureDiagnosis diagnoseConnectionFailure() override;
    bool hasCapability(std::string_view capability) override;
    int lockState() override;

   private:
    RecordingPlatform& platform_;
  };

  class RecordingController final : public SystemController {
   public:
    explicit RecordingController(RecordingPlatform& platform) : platform_(platform) {}
    std::optional<UserActivity> makeUserActivity(const std::string& activityType) override {
      return platform_.wrapped().systemController().makeUserActivity(activityType);
    }
    std::optional<BundleRecord> bundleRecordOfCurrentProcess() override {
      return platform_.wrapped().systemController().bundleRecordOfCurrentProcess();
    }
    void openUserActivity(const UserActivity& activity, const std::optional<ApplicationRecord>& application,
                          bool promptToUnlock, OpenHandler handler) override;

   private:
    RecordingPlatform& platform_;
  };

  std::shared_ptr<SessionRecorder> recorder_;
  RecordingService transitService_{*this};
  RecordingRandomSource randomSource_{*this};
  RecordingDevice device_{*this};
  RecordingController systemController_{*this};
};

}  // namespace linewatch::simulation
