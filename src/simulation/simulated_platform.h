#pragma once

#include <functional>
#include <memory>

#include "platform/platform.h"
#include "simulation/roles/simulated_analytics.h"
#include "simulation/roles/simulated_artwork.h"
#include "simulation/roles/simulated_companion.h"
#include "simulation/roles/simulated_compressor.h"
#include "simulation/roles/simulated_device.h"
#include "simulation/roles/simulated_favorites.h"
#include "simulation/roles/simulated_host.h"
#include "simulation/roles/simulated_interface.h"
#include "simulation/roles/simulated_keyed_archiver.h"
#include "simulation/roles/simulated_log.h"
#include "simulation/roles/simulated_preferences.h"
#include "simulation/roles/simulated_random_source.h"
#include "simulation/roles/simulated_text_engine.h"
#include "simulation/roles/simulated_texts.h"
#include "simulation/roles/simulated_transit_service.h"
#include "simulation/world/backstage.h"
#include "ui/notification_center.h"

namespace linewatch::simulation {

/// A platform in memory and virtual time. It is made from a scripted world, every role answers from that
/// world, and a transcript records each call between the widget and the platform. The same world and the same
/// calls give the same transcript on every machine.
class SimulatedPlatform final : public Platform {
 public:
  static std::shared_ptr<SimulatedPlatform> make(World world = {});
  /// The platform of a new process in the same world. It keeps the preferences of `previous`, and continues
  /// its transcript and clock; everything else starts fresh. Waiting actions and timers of `previous` never
  /// run.
  static std::shared_ptr<SimulatedPlatform> restarted(SimulatedPlatform& previous);
  ~SimulatedPlatform() override;

  const World& world() const { return backstage_->world; }
  /// Changes the world while the platform runs. `change` sees the current preferences of the companion
  /// application's suite, and its changes to them are stored at once. A new text size is announced. The start
  /// of the clock does not change.
  void changeWorld(const std::function<void(World&)>& change);

  /// Answers the oldest waiting look-up that has no delay in the world. False when there is none.
  bool answerLookup();

  Transcript& transcript() { return *backstage_->transcript; }
  /// The values of all preferences stores.
  PreferencesStorage& preferences() { return *preferences_; }

  // The same functions as in the main loop, for short.
  void advance(Seconds seconds) { mainLoop().advance(seconds); }
  void advance(double seconds) { advance(Seconds(seconds)); }
  void runUntilIdle() { mainLoop().runUntilIdle(); }

  /// Null when the world's host does not show the widget.
  std::shared_ptr<SimulatedExtensionContext> extensionContext() const;
  /// A controller that has the extension context.
  std::shared_ptr<SimulatedViewController> makeViewController() const;

  SimulatedLog& log() override { return log_; }
  VirtualMainLoop& mainLoop() override { return backstage_->mainLoop; }
  SimulatedRandomSource& randomSource() override { return randomSource_; }
  SimulatedLocalization& localization() override { return localization_; }
  SimulatedIncidentStringProvider& incidentStringProvider() override { return incidentStringProvider_; }
  SimulatedKeyedArchiver& keyedArchiver() override { return keyedArchiver_; }
  SimulatedTransitService& transitService() override { return transitService_; }
  SimulatedUserSession& userSession() override { return userSession_; }
  SimulatedMapURLBuilder& mapURLBuilder() override { return mapURLBuilder_; }
  SimulatedSystemController& systemController() override { return systemController_; }
  SimulatedDevice& device() override { return device_; }
  SimulatedUsageRecorder& usageRecorder() override { return usageRecorder_; }
  SimulatedAnalyticsEventFactory& analyticsEventFactory() override { return analyticsEventFactory_; }
  SimulatedAnalyticsLogger& analyticsLogger() override { return analyticsLogger_; }
  SimulatedCompressor& compressor() override { return compressor_; }
  SimulatedTextEngine& textEngine() override { return textEngine_; }
  SimulatedImageSource& imageSource() override { return imageSource_; }
  SimulatedInterfaceSettings& interfaceSettings() override { return interfaceSettings_; }
  ui::NotificationCenter& notificationCenter() override { return notificationCenter_; }

  std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) override;
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override;
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override;
  std::shared_ptr<IconManager> makeIconManager() override;
  std::shared_ptr<ShieldManager> makeShieldManager() override;

 private:
  SimulatedPlatform(SharedBackstage backstage, std::shared_ptr<PreferencesStorage> preferences);

  SharedBackstage backstage_;
  std::shared_ptr<PreferencesStorage> preferences_;
  SimulatedLog log_;
  SimulatedRandomSource randomSource_;
  SimulatedLocalization localization_;
  SimulatedIncidentStringProvider incidentStringProvider_;
  SimulatedKeyedArchiver keyedArchiver_;
  SimulatedTransitService transitService_;
  SimulatedUserSession userSession_;
  SimulatedMapURLBuilder mapURLBuilder_;
  SimulatedSystemController systemController_;
  SimulatedDevice device_;
  SimulatedUsageRecorder usageRecorder_;
  SimulatedAnalyticsEventFactory analyticsEventFactory_;
  SimulatedAnalyticsLogger analyticsLogger_;
  SimulatedCompressor compressor_;
  SimulatedTextEngine textEngine_;
  SimulatedImageSource imageSource_;
  SimulatedInterfaceSettings interfaceSettings_;
  ui::NotificationCenter notificationCenter_;
  std::shared_ptr<SimulatedExtensionContext> extensionContext_;
};

}  // namespace linewatch::simulation
