#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "shared/error.h"
#include "storage/feed_cache.h"
#include "storage/overlaid_preferences.h"
#include "storage/state_database.h"
#include "storage/state_directories.h"
#include "storage/stored_feeds.h"
#include "storage/stored_preferences.h"

namespace linewatch {

/// What a run of the program reads from this machine and keeps on it. A run without saved state has none.
class SavedState {
 public:
  /// Opens nothing yet; `log` must outlive this. `given` is what stands in front of the preferences for this
  /// run.
  SavedState(const StateDirectories& folders, Log& log, std::shared_ptr<GivenPreferences> given);

  /// Any thread, as what is made of it below.
  const SharedDatabase& database() const { return database_; }
  const std::shared_ptr<FeedCache>& feedCache() const { return feedCache_; }
  /// The user's own feeds.
  StoredFeeds feeds() const { return StoredFeeds(database_); }
  /// Reads them all, so that they are known also while another program keeps them from being read.
  std::optional<Error> rememberPreferences() const { return remembered_->read(*database_); }
  /// Main thread, because of what is given in front.
  std::shared_ptr<PreferencesStore> preferences(std::string_view suite) const;

  /// Whether analytics are recorded, which they are until the user switches them off. Main thread.
  bool recordsAnalytics() const;
  /// For this run and all later ones. Main thread.
  std::optional<Error> setRecordsAnalytics(bool isOn);

 private:
  SharedDatabase database_;
  std::shared_ptr<FeedCache> feedCache_;
  std::shared_ptr<GivenPreferences> given_;
  std::shared_ptr<RememberedPreferences> remembered_ = std::make_shared<RememberedPreferences>();
};

}  // namespace linewatch
