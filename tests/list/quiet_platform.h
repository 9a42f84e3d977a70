#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "simulation/simulated_platform.h"

namespace linewatch {

/// A session that nobody watches.
class QuietSession final : public UserSession {
 public:
  void sessionEntity(bool, bool) override {}
  URL sharedSessionPunchOutURL(const std::string& absoluteString) override { return {absoluteString}; }
  Dictionary sharedSessionPunchOutUserInfo(Dictionary userInfo) override { return userInfo; }
  UserSessionSnapshot snapshot() override { return {}; }
};

/// Counts what is to be compressed and gives a few bytes that tell one record from another.
class CountingCompressor final : public Compressor {
 public:
  std::optional<Bytes> bzip2(const Bytes& data) override {
    ++count;
    const std::size_t length = std::min<std::size_t>(data.size(), 64);
    return Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length));
  }
  std::size_t count = 0;
};

/// Archives everything as one byte.
class QuietArchiver final : public KeyedArchiver {
 public:
  std::optional<Bytes> archivedData(const ArchivedObject&, bool) override { return Bytes{1}; }
  std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes&) override { return nullptr; }
};

/// A simulated platform that keeps no transcript of the session and makes no bytes: what is left of building
/// a list is the building.
class QuietPlatform final : public Platform {
 public:
  Log& log() override { return real_->log(); }
  MainLoop& mainLoop() override { return real_->mainLoop(); }
  RandomSource& randomSource() override { return real_->randomSource(); }
  Localization& localization() override { return real_->localization(); }
  IncidentStringProvider& incidentStringProvider() override { return real_->incidentStringProvider(); }
  KeyedArchiver& keyedArchiver() override { return archiver_; }
  TransitService& transitService() override { return real_->transitService(); }
  UserSession& userSession() override { return session_; }
  MapURLBuilder& mapURLBuilder() override { return real_->mapURLBuilder(); }
  SystemController& systemController() override { return real_->systemController(); }
  Device& device() override { return real_->device(); }
  UsageRecorder& usageRecorder() override { return real_->usageRecorder(); }
  AnalyticsEventFactory& analyticsEventFactory() override { return real_->analyticsEventFactory(); }
  AnalyticsLogger& analyticsLogger() override { return real_->analyticsLogger(); }
  CountingCompressor& compressor() override { return compressor_; }
  ui::TextEngine& textEngine() override { return real_->textEngine(); }
  ui::ImageSource& imageSource() override { return real_->imageSource(); }
  ui::InterfaceSettings& interfaceSettings() override { return real_->interfaceSettings(); }
  ui::NotificationCenter& notificationCenter() override { return real_->notificationCenter(); }
  std::shared_ptr<IconManager> makeIconManager() override { return real_->makeIconManager(); }
  std::shared_ptr<ShieldManager> makeShieldManager() override { return real_->makeShieldManager(); }
  std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) override {
    return real_->makePreferencesStore(suite);
  }
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override {
    return real_->makeRemoteFavoritesPersister();
  }
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override {
    return real_->makeFavoritesContainer(std::move(persister));
  }

 private:
  std::shared_ptr<simulation::SimulatedPlatform> real_ = simulation::SimulatedPlatform::make();
  QuietSession session_;
  QuietArchiver archiver_;
  CountingCompressor compressor_;
};

}  // namespace linewatch
