#include "storage/saved_state.h"

#include <string>
#include <utility>

#include "platform/companion_application.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

// In the companion application's suite; false switches recording off.
constexpr std::string_view kAnalyticsKey = "Rova.LineWatch.recordAnalytics";

}  // namespace

SavedState::SavedState(const StateDirectories& folders, Log& log, std::shared_ptr<GivenPreferences> given,
                       StoredDatabase::Options options)
    : database_(makeStateDatabase(folders, log, options)),
      feedCache_(std::make_shared<FeedCache>(makeCacheDatabase(folders, log))),
      given_(std::move(given)) {}

bool SavedState::isHeld() const {
  const auto error = database_->read([](SqliteDatabase&) { return std::nullopt; });
  database_->report(error);
  return error && isBusy(*error);
}

std::shared_ptr<PreferencesStore> SavedState::preferences(std::string_view suite) const {
  return given_->inFrontOf(std::make_shared<StoredPreferences>(stored(suite)), suite);
}

bool SavedState::recordsAnalytics() const {
  const auto isKnown = stored(kCompanionAppGroupSuite).read(kAnalyticsKey);
  if (!isKnown) {
    database_->report(isKnown.error());
    return isBusy(isKnown.error()) && recordsAnalytics_;
  }
  const auto store = preferences(kCompanionAppGroupSuite);
  recordsAnalytics_ = !store->objectForKey(kAnalyticsKey) || store->boolForKey(kAnalyticsKey);
  return recordsAnalytics_;
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the object's state, if on a disk.
void SavedState::forgetAnalyticsSwitch() {
  preferences(kCompanionAppGroupSuite)->removeObject(kAnalyticsKey);
}

}  // namespace linewatch
