#pragma once

#include <memory>
#include <utility>

#include "desktop/drawing/drawing_source.h"
#include "desktop/drawing/line_shield.h"
#include "desktop/drawing/mode_icon.h"
#include "desktop/drawing/qt_text_engine.h"
#include "desktop/recording_log.h"
#include "platform/preferences_store.h"
#include "simulation/simulated_platform.h"

namespace linewatch::desktop {

/// A simulated platform that shapes and draws as the desktop does.
class DrawnPlatform final : public Platform {
 public:
  explicit DrawnPlatform(simulation::World world = {})
      : simulated_(simulation::SimulatedPlatform::make(std::move(world))) {}

  simulation::SimulatedPlatform& simulated() { return *simulated_; }
  /// Then no preference can be written.
  bool diskIsFull = false;

  Log& log() override { return simulated_->log(); }
  MainLoop& mainLoop() override { return simulated_->mainLoop(); }
  RandomSource& randomSource() override { return simulated_->randomSource(); }
  Localization& localization() override { return simulated_->localization(); }
  IncidentStringProvider& incidentStringProvider() override { return simulated_->incidentStringProvider(); }
  KeyedArchiver& keyedArchiver() override { return simulated_->keyedArchiver(); }
  TransitService& transitService() override { return simulated_->transitService(); }
  UserSession& userSession() override { return simulated_->userSession(); }
  MapURLBuilder& mapURLBuilder() override { return simulated_->mapURLBuilder(); }
  SystemController& systemController() override { return simulated_->systemController(); }
  Device& device() override { return simulated_->device(); }
  UsageRecorder& usageRecorder() override { return simulated_->usageRecorder(); }
  AnalyticsEventFactory& analyticsEventFactory() override { return simulated_->analyticsEventFactory(); }
  AnalyticsLogger& analyticsLogger() override { return simulated_->analyticsLogger(); }
  ui::TextEngine& textEngine() override { return textEngine_; }
  ui::ImageSource& imageSource() override { return *drawings_; }
  ui::InterfaceSettings& interfaceSettings() override { return simulated_->interfaceSettings(); }
  ui::NotificationCenter& notificationCenter() override { return simulated_->notificationCenter(); }

  std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) override {
    auto store = simulated_->makePreferencesStore(suite);
    if (diskIsFull) return std::make_shared<FullStore>(std::move(store));
    return store;
  }
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override {
    return simulated_->makeRemoteFavoritesPersister();
  }
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override {
    return simulated_->makeFavoritesContainer(std::move(persister));
  }
  std::shared_ptr<IconManager> makeIconManager() override {
    return std::make_shared<ModeIconManager>(drawings_);
  }
  std::shared_ptr<ShieldManager> makeShieldManager() override {
    return std::make_shared<LineShieldManager>();
  }

 private:
  class FullStore final : public PreferencesStore {
   public:
    explicit FullStore(std::shared_ptr<PreferencesStore> store) : store_(std::move(store)) {}

    std::optional<Value> objectForKey(std::string_view key) const override {
      return store_->objectForKey(key);
    }
    bool setObject(Value, std::string_view) override { return false; }
    void removeObject(std::string_view) override {}

   private:
    std::shared_ptr<PreferencesStore> store_;
  };

  std::shared_ptr<simulation::SimulatedPlatform> simulated_;
  QtTextEngine textEngine_;
  std::shared_ptr<DrawingSource> drawings_ =
      std::make_shared<DrawingSource>(std::make_shared<RecordingLog>());
};

}  // namespace linewatch::desktop
