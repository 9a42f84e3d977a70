#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "simulation/simulated_platform.h"

namespace linewatch {

/// A simulated platform in which a test overrides single roles.
class ForwardingPlatform : public Platform {
 public:
  explicit ForwardingPlatform(simulation::World world = {})
      : simulated_(simulation::SimulatedPlatform::make(std::move(world))) {}

  simulation::SimulatedPlatform& simulated() { return *simulated_; }

  Log& log() override { return simulated_->log(); }
  MainLoop& mainLoop() override { return simulated_->mainLoop(); }
  RandomSource& randomSource() override { return simulated_->randomSource(); }
  Localization& localization() override { return simulated_->localization(); }
  IncidentStringProvider& incidentStringProvider() override { return simulated_->incidentStringProvider(); }
  KeyedArchiver& keyedArchiver() override { return simulated_->keyedArchiver(); }
  Compressor& compressor() override { return simulated_->compressor(); }
  TransitService& transitService() override { return simulated_->transitService(); }
  UserSession& userSession() override { return simulated_->userSession(); }
  MapURLBuilder& mapURLBuilder() override { return simulated_->mapURLBuilder(); }
  SystemController& systemController() override { return simulated_->systemController(); }
  Device& device() override { return simulated_->device(); }
  UsageRecorder& usageRecorder() override { return simulated_->usageRecorder(); }
  AnalyticsEventFactory& analyticsEventFactory() override { return simulated_->analyticsEventFactory(); }
  AnalyticsLogger& analyticsLogger() override { return simulated_->analyticsLogger(); }
  ui::TextEngine& textEngine() override { return simulated_->textEngine(); }
  ui::ImageSource& imageSource() override { return simulated_->imageSource(); }
  ui::InterfaceSettings& interfaceSettings() override { return simulated_->interfaceSettings(); }
  ui::NotificationCenter& notificationCenter() override { return simulated_->notificationCenter(); }
  std::shared_ptr<IconManager> makeIconManager() override { return simulated_->makeIconManager(); }
  std::shared_ptr<ShieldManager> makeShieldManager() override { return simulated_->makeShieldManager(); }
  std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) override {
    return simulated_->makePreferencesStore(suite);
  }
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override {
    return simulated_->makeRemoteFavoritesPersister();
  }
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override {
    return simulated_->makeFavoritesContainer(std::move(persister));
  }

 private:
  std::shared_ptr<simulation::SimulatedPlatform> simulated_;
};

}  // namespace linewatch
