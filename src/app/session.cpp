#include "app/session.h"

#include <QEventLoop>
#include <utility>

#include "app/feed_sources.h"
#include "incidents/transit_incident_fetcher.h"
#include "platform/log.h"
#include "settings/user_settings.h"
#include "shared/environment.h"
#include "shared/failure.h"
#include "shared/installation.h"

namespace linewatch::app {

namespace {

using desktop::DesktopPlatform;
using desktop::DesktopSettings;

Outcome<DesktopSettings> settingsFrom(const CommonOptions& options) {
  DesktopSettings settings{.sampleCity = installedSampleCity(),
                           .now = options.now,
                           .locale = localeOf(options),
                           .verbose = options.verbose,
                           .preferences = options.preferences,
                           .user = options.settings};
  if (options.stateDir) settings.stateFolder = *options.stateDir;
  const FeedOptions& feed = options.feed;
  if (!isWithoutSavedState(options)) return settings;
  if (feed.gtfs.empty())
    return failure("--gtfs is missing", "", "a run without saved state needs a timetable");
  if (feed.alerts.empty())
    return failure("--alerts is missing", "", "a run without saved state needs service alerts");
  auto given = feedFrom(RiderTexts(settings.locale), feed, std::string(kGivenFeedName));
  if (!given) return given.error();
  settings.given = {std::move(given->gtfs), std::move(given->alerts), options.favorites};
  return settings;
}

}  // namespace

Outcome<std::unique_ptr<Session>> Session::open(const CommonOptions& options, const Adjustment& adjust) {
  Outcome<DesktopSettings> settings = settingsFrom(options);
  if (!settings) return settings.error();
  if (adjust) adjust(*settings);
  const UserLocale locale = settings->locale;
  auto platform = DesktopPlatform::make(std::move(*settings));
  if (!platform) return platform.error();
  std::unique_ptr<Session> session(new Session(std::move(*platform), locale));
  for (const std::string& fault : session->platform().settings().faults(session->texts().localization()))
    logError("%@", {fault});
  return session;
}

Outcome<std::unique_ptr<Session>> Session::openWithFeeds(const CommonOptions& options,
                                                         const Adjustment& adjust) {
  auto session = open(options, [&adjust](DesktopSettings& settings) {
    settings.isTimeFrozen = true;
    if (adjust) adjust(settings);
  });
  if (!session) return session;
  if (auto error = (*session)->platform().feeds().follow()) return *std::move(error);
  return session;
}

Session::Session(std::shared_ptr<DesktopPlatform> platform, const UserLocale& locale)
    : platform_(std::move(platform)), locale_(locale), texts_(locale) {
  installPlatform(platform_);
}

Session::~Session() {
  platform_->finishBackgroundWork();
  installPlatform(nullptr);
}

std::shared_ptr<const RVResult> Session::fetch() {
  std::shared_ptr<const RVResult> fetched;
  QEventLoop loop;
  const auto request =
      RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
          [&](const std::shared_ptr<RVResult>& result) {
            fetched = result;
            loop.quit();
          });
  loop.exec();
  return fetched;
}

std::optional<Error> Session::unusedFeedError() {
  const auto favorites = platform_->favorites().lines();
  if (platform_->saved() || !favorites || !favorites->empty()) return std::nullopt;
  for (const StoredFeed& feed : platform_->feeds().feeds()) {
    if (const auto lines = platform_->documents().lineIndexOf(feed); !lines) return lines.error();
    if (auto alerts = platform_->documents().alertsOf(feed, {}); alerts.failure) return alerts.failure;
  }
  return std::nullopt;
}

UserLocale localeOf(const CommonOptions& options) {
  // The settings know the option too, and that it no longer counts after another choice.
  const auto chosen = options.settings ? options.settings->withoutRemembered().language : options.locale;
  return chosen.value_or(UserLocale::fromEnvironment(processEnvironment));
}

}  // namespace linewatch::app
