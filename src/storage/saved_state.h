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
#include "storage/stored_notices.h"
#include "storage/stored_preferences.h"

namespace linewatch {

/// Everything that a run of the program keeps on this machine. A run without saved state has none.
class SavedState {
 public:
  /// Opens nothing yet; `log` must outlive this. `given` overrides the preferences for this run.
  SavedState(const StateDirectories& folders, Log& log, std::shared_ptr<GivenPreferences> given,
             StoredDatabase::Options options = {});

  /// Any thread, as the feed cache and the feeds.
  const SharedDatabase& database() const { return database_; }
  const std::shared_ptr<FeedCache>& feedCache() const { return feedCache_; }
  /// The user's own feeds.
  StoredFeeds feeds() const { return StoredFeeds(database_); }
  StoredNotices notices() const { return StoredNotices(database_); }
  /// Whether the state cannot be read because another program holds it. Unlike other errors this one passes.
  /// Waits for the busy timeout. Any thread.
  bool isHeld() const;
  /// Main thread, because of the given preferences.
  std::shared_ptr<PreferencesStore> preferences(std::string_view suite) const;

  /// True until the user switches recording off; false while it cannot be read. While another program uses
  /// the file, the last value that was read holds. Main thread.
  bool recordsAnalytics() const;
  /// Forgets the switch, so that recording is on, unless a setting switches it off. Main thread.
  void forgetAnalyticsSwitch();

 private:
  StoredPreferences stored(std::string_view suite) const { return {database_, std::string(suite), pending_}; }

  SharedDatabase database_;
  std::shared_ptr<FeedCache> feedCache_;
  std::shared_ptr<GivenPreferences> given_;
  mutable bool recordsAnalytics_ = false;
  std::shared_ptr<PendingPreferences> pending_ = std::make_shared<PendingPreferences>();
};

}  // namespace linewatch
