#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "platform/platform.h"

namespace linewatch {

/// Forwards every role to another platform, except the roles that a subclass overrides. The other platform
/// must outlive it.
class PlatformWrapper : public Platform {
 public:
  explicit PlatformWrapper(Platform& wrapped) : wrapped_(wrapped) {}

  Log& log() override { return wrapped_.log(); }
  MainLoop& mainLoop() override { return wrapped_.mainLoop(); }
  RandomSource& randomSource() override { return wrapped_.randomSource(); }
  Localization& localization() override { return wrapped_.localization(); }
  IncidentStringProvider& incidentStringProvider() override { return wrapped_.incidentStringProvider(); }
  KeyedArchiver& keyedArchiver() override { return wrapped_.keyedArchiver(); }
  Compressor& compressor() override { return wrapped_.compressor(); }
  TransitService& transitService() override { return wrapped_.transitService(); }
  UserSession& userSession() override { return wrapped_.userSession(); }
  MapURLBuilder& mapURLBuilder() override { return wrapped_.mapURLBuilder(); }
  SystemController& systemController() override { return wrapped_.systemController(); }
  Device& device() override { return wrapped_.device(); }
  UsageRecorder& usageRecorder() override { return wrapped_.usageRecorder(); }
  AnalyticsEventFactory& analyticsEventFactory() override { return wrapped_.analyticsEventFactory(); }
  AnalyticsLogger& analyticsLogger() override { return wrapped_.analyticsLogger(); }
  ui::TextEngine& textEngine() override { return wrapped_.textEngine(); }
  ui::ImageSource& imageSource() override { return wrapped_.imageSource(); }
  ui::InterfaceSettings& interfaceSettings() override { return wrapped_.interfaceSettings(); }
  ui::NotificationCenter& notificationCenter() override { return wrapped_.notificationCenter(); }
  std::shared_ptr<IconManager> makeIconManager() override { return wrapped_.makeIconManager(); }
  std::shared_ptr<ShieldManager> makeShieldManager() override { return wrapped_.makeShieldManager(); }
  std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) override {
    return wrapped_.makePreferencesStore(suite);
  }
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override {
    return wrapped_.makeRemoteFavoritesPersister();
  }
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override {
    return wrapped_.makeFavoritesContainer(std::move(persister));
  }

 protected:
  Platform& wrapped() { return wrapped_; }

 private:
  Platform& wrapped_;
};

}  // namespace linewatch
