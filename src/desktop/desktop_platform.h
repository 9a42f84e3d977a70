#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "companion/companion_controller.h"
#include "desktop/desktop_screen.h"
#include "desktop/desktop_settings.h"
#include "desktop/loop/qt_main_loop.h"
#include "feeds/catalogue/feed_adding.h"
#include "feeds/catalogue/kept_catalogue.h"
#include "feeds/feed_transit_service.h"
#include "feeds/shown_feeds.h"
#include "feeds/transit_feeds.h"
#include "feeds/user_favorites.h"
#include "localization/icu_localization.h"
#include "localization/user_locale.h"
#include "machine/desktop_device.h"
#include "machine/stderr_log.h"
#include "platform/platform.h"
#include "storage/overlaid_preferences.h"
#include "storage/saved_state.h"
#include "ui/notification_center.h"

namespace linewatch::desktop {

namespace detail {

/// The log of a platform. It is a base class in front of `Platform`, so that it is destroyed last: objects in
/// `Platform::once` write their last changes, and lines of the log, in their destructors.
struct PlatformLog {
  StderrLog log_;
};

}  // namespace detail

/// The real platform: Qt's main loop, open feeds, SQLite and ICU. Made on the main thread, after a
/// QCoreApplication.
class DesktopPlatform final : private detail::PlatformLog, public Platform {
 public:
  /// An error when the folder for saved state is unknown. Does not yet read saved state or feeds.
  static Outcome<std::shared_ptr<DesktopPlatform>> make(DesktopSettings settings);
  ~DesktopPlatform() override;

  /// Waits for the background threads, which then start nothing new. They may use the installed platform, so
  /// another platform must be installed only after this call.
  void finishBackgroundWork();
  /// Stops running downloads, because their results are no longer needed.
  void stopFetching() { documents_->stopFetching(); }

  TransitFeeds& feeds();
  const UserFavorites& favorites() const;
  /// Reads which feeds are shown.
  ShownFeeds shownFeeds() const;
  /// Null in a run without saved state.
  SavedState* saved() { return saved_.get(); }
  /// The user's settings, also those that the state database remembers.
  UserSettings& settings() { return *settings_.user; }
  /// Whether the last look-up used the sample city, because the user has added no feed.
  bool showsSampleCity() const;
  FeedDocuments& documents() { return *documents_; }
  /// The catalogue of feeds that the settings name, which nothing reads before it is first searched. Any
  /// thread may use it. Main thread.
  std::shared_ptr<KeptCatalogue> catalogue();
  /// For adding a feed. Absent in a run without saved state. An adding must end before the platform does.
  std::optional<FeedAdding::Environment> addingEnvironment();

  Log& log() override { return log_; }
  QtMainLoop& mainLoop() override { return mainLoop_; }
  RandomSource& randomSource() override;
  IcuLocalization& localization() override;
  IncidentStringProvider& incidentStringProvider() override;
  KeyedArchiver& keyedArchiver() override;
  Compressor& compressor() override;
  TransitService& transitService() override;
  UserSession& userSession() override;
  MapURLBuilder& mapURLBuilder() override;
  SystemController& systemController() override { return systemController_; }
  DesktopDevice& device() override { return device_; }
  UsageRecorder& usageRecorder() override;
  AnalyticsEventFactory& analyticsEventFactory() override;
  AnalyticsLogger& analyticsLogger() override;
  ui::TextEngine& textEngine() override;
  ui::ImageSource& imageSource() override;
  ui::InterfaceSettings& interfaceSettings() override;
  ui::NotificationCenter& notificationCenter() override { return notificationCenter_; }

  std::shared_ptr<PreferencesStore> makePreferencesStore(std::string_view suite) override;
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override;
  std::shared_ptr<IconManager> makeIconManager() override;
  std::shared_ptr<ShieldManager> makeShieldManager() override;
  std::shared_ptr<FavoritesContainer> makeFavoritesContainer(
      std::shared_ptr<RemoteFavoritesPersister> persister) override;

 private:
  struct Roles;
  explicit DesktopPlatform(DesktopSettings settings);
  std::optional<Error> open();
  UserFavorites chosenFavorites() const;
  DesktopScreen& screen();
  ConnectionFailureDiagnosis diagnose() const;
  bool recordsAnalytics() const;

  DesktopSettings settings_;
  QtMainLoop mainLoop_;
  ui::NotificationCenter notificationCenter_;
  CompanionController systemController_;
  DesktopDevice device_;
  std::shared_ptr<GivenPreferences> givenPreferences_;
  /// Null in a run without saved state.
  std::unique_ptr<SavedState> saved_;
  std::shared_ptr<FeedDocuments> documents_;
  std::shared_ptr<KeptCatalogue> catalogue_;
  std::unique_ptr<Roles> roles_;
};

}  // namespace linewatch::desktop
