#include "storage/saved_state.h"

#include <string>
#include <utility>

#include "platform/companion_application.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

// In the companion application's suite: false keeps all analytics off.
constexpr std::string_view kAnalyticsKey = "Rova.LineWatch.recordAnalytics";

}  // namespace

SavedState::SavedState(const StateDirectories& folders, Log& log, std::shared_ptr<GivenPreferences> given)
    : database_(makeStateDatabase(folders, log)),
      feedCache_(std::make_shared<FeedCache>(makeCacheDatabase(folders, log))),
      given_(std::move(given)) {}

std::shared_ptr<PreferencesStore> SavedState::preferences(std::string_view suite) const {
  return given_->inFrontOf(std::make_shared<StoredPreferences>(database_, std::string(suite), remembered_),
                           suite);
}

bool SavedState::recordsAnalytics() const {
  const auto store = preferences(kCompanionAppGroupSuite);
  return !store->objectForKey(kAnalyticsKey) || store->boolForKey(kAnalyticsKey);
}

// NOLINTNEXTLINE(readability-make-member-function-const): what it changes is this object's, if on a disk.
std::optional<Error> SavedState::setRecordsAnalytics(bool isOn) {
  auto error = StoredPreferences(database_, std::string(kCompanionAppGroupSuite), remembered_)
                   .keep(isOn, kAnalyticsKey);
  if (!error) given_->forget(kAnalyticsKey, kCompanionAppGroupSuite);
  return error;
}

}  // namespace linewatch
