#include "desktop/desktop_platform.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stop_token>
#include <string>
#include <system_error>
#include <utility>

#include "activity/line_activity.h"
#include "companion/companion_session.h"
#include "desktop/remembered_in_state.h"
#include "feeds/alerts/desktop_incident_string_provider.h"
#include "feeds/background_favorites.h"
#include "feeds/background_queue.h"
#include "feeds/http/http_fetcher.h"
#include "localization/icu_localization.h"
#include "machine/connection_diagnosis.h"
#include "machine/key_command.h"
#include "machine/system_random_source.h"
#include "platform/log.h"
#include "settings/user_settings.h"
#include "storage/stored_analytics.h"
#include "wire/archive/cbor_keyed_archiver.h"
#include "wire/compression_memo.h"
#include "wire/compressor.h"

namespace linewatch::desktop {

namespace {

Outcome<StateDirectories> directoriesFor(const DesktopSettings& settings) {
  if (settings.stateFolder) return StateDirectories::under(*settings.stateFolder);
  return StateDirectories::fromEnvironment(processEnvironment);
}

StoredDatabase::Options savingOptions(const DesktopSettings& settings) {
  StoredDatabase::Options options;
  if (settings.isInteractive) options = {.busyTimeout = std::chrono::milliseconds(100), .defersSaves = true};
  return options;
}

Outcome<std::string> runKeyCommand(const std::string& command, const std::stop_token& stop) {
  return keyFromCommand(command, stop);
}

/// For a run without saved state, which records nothing.
class UnrecordedUse final : public UsageRecorder, public AnalyticsLogger {
 public:
  void captureUserAction(std::string_view, std::int64_t, const std::optional<std::string>&) override {}
  void captureEvent(const WidgetInteractionEvent&, const UserSessionSnapshot&) override {}
};

std::unique_ptr<UsageRecorder> makeUsageRecorder(const SavedState* saved, std::function<bool()> records,
                                                 std::function<Date()> now) {
  if (!saved) return std::make_unique<UnrecordedUse>();
  return std::make_unique<StoredUsageRecorder>(saved->database(), std::move(records), std::move(now));
}

std::unique_ptr<AnalyticsLogger> makeAnalyticsLogger(const SavedState* saved, std::function<bool()> records) {
  if (!saved) return std::make_unique<UnrecordedUse>();
  return std::make_unique<StoredAnalyticsLogger>(saved->database(), std::move(records));
}

}  // namespace

/// Makes the roles. May use only the members that are declared before `roles_`.
struct DesktopPlatform::Roles {
  Roles(DesktopPlatform& platform, const UserLocale& locale)
      : localization(locale),
        feeds(std::make_shared<TransitFeeds>([shown = platform.shownFeeds()] { return shown.read(); },
                                             platform.documents_,
                                             IncidentLanguage{locale.fallbacks(), feedTexts()})),
        transitService(feeds, platform.mainLoop_, recordPreparation(platform.settings_.isInteractive)),
        favorites(platform.chosenFavorites()),
        favoritesQueue(std::make_shared<BackgroundQueue>()),
        usageRecorder(makeUsageRecorder(
            platform.saved_.get(), [&platform] { return platform.recordsAnalytics(); },
            [&platform] { return platform.mainLoop_.now(); })),
        analyticsLogger(makeAnalyticsLogger(platform.saved_.get(),
                                            [&platform] { return platform.recordsAnalytics(); })) {}
  ~Roles() { favoritesQueue->finish(); }

  FeedTexts feedTexts() const {
    return FeedTexts::lookedUp([this](std::string_view key, std::string_view english) {
      return localization.feedString(key, english);
    });
  }

  /// Compresses the records that the rows of an answer will need, so that building the list does not hold up
  /// the windows. Without windows nobody is held up.
  FeedTransitService::Preparation recordPreparation(bool isInteractive) {
    if (!isInteractive) return {};
    return [this](const TransitLineItems& lines) { preparedRecords.remember(activityRecordsOfRows(lines)); };
  }

  SystemRandomSource randomSource;
  IcuLocalization localization;
  DesktopIncidentStringProvider incidentStringProvider;
  CborKeyedArchiver keyedArchiver;
  LibraryCompressor compressor;
  /// Used in a run with windows.
  CompressionMemo preparedRecords{compressor};
  std::shared_ptr<TransitFeeds> feeds;
  FeedTransitService transitService;
  UserFavorites favorites;
  CompanionSession userSession;
  CompanionURLBuilder mapURLBuilder;
  std::shared_ptr<BackgroundQueue> favoritesQueue;
  std::unique_ptr<UsageRecorder> usageRecorder;
  PlainEventFactory analyticsEventFactory;
  std::unique_ptr<AnalyticsLogger> analyticsLogger;
};

Outcome<std::shared_ptr<DesktopPlatform>> DesktopPlatform::make(DesktopSettings settings) {
  std::shared_ptr<DesktopPlatform> platform(new DesktopPlatform(std::move(settings)));
  if (auto error = platform->open()) return *error;
  return platform;
}

DesktopPlatform::DesktopPlatform(DesktopSettings settings)
    : detail::PlatformLog{StderrLog(settings.verbose)},
      settings_(std::move(settings)),
      mainLoop_(settings_.now,
                settings_.isTimeFrozen ? QtMainLoop::Clock::frozen : QtMainLoop::Clock::running),
      systemController_(settings_.openActivity,
                        [this](std::function<void()> action) { device_.whenUnlocked(std::move(action)); }),
      device_([this] { return diagnose(); }),
      givenPreferences_(std::make_shared<GivenPreferences>(settings_.preferences)) {
  if (!settings_.user) settings_.user = std::make_shared<UserSettings>(std::filesystem::path());
}

DesktopPlatform::~DesktopPlatform() { settings().setRemembered(nullptr); }

std::optional<Error> DesktopPlatform::open() {
  if (!settings_.given) {
    const auto directories = directoriesFor(settings_);
    if (!directories) return directories.error();
    saved_ = std::make_unique<SavedState>(*directories, log_, givenPreferences_, savingOptions(settings_));
    settings().setRemembered(std::make_unique<RememberedInState>(*saved_));
  }
  documents_ = std::make_shared<FeedDocuments>(
      saved_ ? saved_->feedCache() : nullptr, [this] { return mainLoop_.now(); }, loadHttpFetcher,
      runKeyCommand);
  if (settings_.isInteractive) documents_->renewInBackground();
  roles_ = std::make_unique<Roles>(*this, settings_.locale);
  return std::nullopt;
}

std::shared_ptr<KeptCatalogue> DesktopPlatform::catalogue() {
  static_assert(kPublicCatalogue == std::string_view(kCatalogueUrl));
  const std::string location = settings().withoutRemembered().catalogue;
  if (!catalogue_ || catalogue_->location() != location)
    catalogue_ = std::make_shared<KeptCatalogue>(location, saved_ ? saved_->feedCache() : nullptr,
                                                 [this] { return mainLoop_.now(); });
  return catalogue_;
}

std::optional<FeedAdding::Environment> DesktopPlatform::addingEnvironment() {
  if (!saved_) return std::nullopt;
  return FeedAdding::Environment{.feeds = saved_->feeds(),
                                 .cache = saved_->feedCache(),
                                 .now = [this] { return mainLoop_.now(); },
                                 .runKeyCommand = runKeyCommand};
}

ShownFeeds DesktopPlatform::shownFeeds() const {
  if (saved_) return {saved_->database(), settings_.sampleCity};
  return ShownFeeds({std::string(kGivenFeedName), settings_.given->gtfs, settings_.given->alerts});
}

UserFavorites DesktopPlatform::chosenFavorites() const {
  if (!saved_) return UserFavorites(settings_.given->favorites);
  return {saved_->database(), settings_.sampleCity};
}

/// The connection is diagnosed only if a feed is on a server: local files do not need it.
ConnectionFailureDiagnosis DesktopPlatform::diagnose() const {
  const auto feeds = roles_->feeds->feeds();
  const bool asksServers = std::ranges::any_of(feeds, [](const StoredFeed& feed) {
    return std::ranges::any_of(feed.gtfs.locations, isHttpURL) ||
           std::ranges::any_of(feed.alerts.locations, isHttpURL);
  });
  return asksServers ? diagnoseConnection() : ConnectionFailureDiagnosis::unknown;
}

void DesktopPlatform::finishBackgroundWork() {
  // Favourites are read on this queue, and the transit service looks their lines up. So the queue ends before
  // the service.
  roles_->favoritesQueue->finish();
  roles_->transitService.finish();
}

bool DesktopPlatform::recordsAnalytics() const {
  return settings_.user->find(kAnalyticsSetting).text == "true";
}

bool DesktopPlatform::showsSampleCity() const { return isSampleCity(roles_->feeds->feeds()); }
TransitFeeds& DesktopPlatform::feeds() { return *roles_->feeds; }
const UserFavorites& DesktopPlatform::favorites() const { return roles_->favorites; }
RandomSource& DesktopPlatform::randomSource() { return roles_->randomSource; }
IcuLocalization& DesktopPlatform::localization() { return roles_->localization; }
IncidentStringProvider& DesktopPlatform::incidentStringProvider() { return roles_->incidentStringProvider; }
KeyedArchiver& DesktopPlatform::keyedArchiver() { return roles_->keyedArchiver; }
Compressor& DesktopPlatform::compressor() {
  if (settings_.isInteractive) return roles_->preparedRecords;
  return roles_->compressor;
}
TransitService& DesktopPlatform::transitService() { return roles_->transitService; }
UserSession& DesktopPlatform::userSession() { return roles_->userSession; }
MapURLBuilder& DesktopPlatform::mapURLBuilder() { return roles_->mapURLBuilder; }
UsageRecorder& DesktopPlatform::usageRecorder() { return *roles_->usageRecorder; }
AnalyticsEventFactory& DesktopPlatform::analyticsEventFactory() { return roles_->analyticsEventFactory; }
AnalyticsLogger& DesktopPlatform::analyticsLogger() { return *roles_->analyticsLogger; }

DesktopScreen& DesktopPlatform::screen() {
  if (!settings_.screen) {
    logError("views were asked for in a run without a screen");
    std::abort();
  }
  return *settings_.screen;
}

ui::TextEngine& DesktopPlatform::textEngine() { return screen().textEngine(); }
ui::ImageSource& DesktopPlatform::imageSource() { return screen().imageSource(); }
ui::InterfaceSettings& DesktopPlatform::interfaceSettings() { return screen().interfaceSettings(); }
std::shared_ptr<IconManager> DesktopPlatform::makeIconManager() { return screen().makeIconManager(); }
std::shared_ptr<ShieldManager> DesktopPlatform::makeShieldManager() { return screen().makeShieldManager(); }

std::shared_ptr<PreferencesStore> DesktopPlatform::makePreferencesStore(std::string_view suite) {
  if (saved_) return saved_->preferences(suite);
  return givenPreferences_->inFrontOf(nullptr, suite);
}

std::shared_ptr<RemoteFavoritesPersister> DesktopPlatform::makeRemoteFavoritesPersister() {
  return std::make_shared<UserFavoritesPersister>(roles_->favorites);
}

std::shared_ptr<FavoritesContainer> DesktopPlatform::makeFavoritesContainer(
    std::shared_ptr<RemoteFavoritesPersister> persister) {
  return std::make_shared<BackgroundFavoritesContainer>(roles_->favoritesQueue, std::move(persister));
}

}  // namespace linewatch::desktop
