#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "notices/line_news.h"
#include "notices/notice_rules.h"
#include "notices/notice_state.h"
#include "notices/notice_update.h"
#include "notices/shown_notices.h"
#include "notices/weekly_hours.h"
#include "shared/outcome.h"
#include "storage/state_database.h"

namespace linewatch {

/// Subscriptions, mutes and the news that the user was told, in the state database. A subscription stays when
/// its line is no favourite any more, because the line may become one again. Any thread.
class StoredNotices {
 public:
  explicit StoredNotices(SharedDatabase database) : database_(std::move(database)) {}

  /// The subscriptions by line, and all mutes that have not been removed. Has no quiet hours.
  Outcome<notices::NoticeRules> rules() const;
  /// What the user was told.
  Outcome<notices::NoticeState> state() const;

  /// Adds or replaces the subscription of its line. The incidents of the next answer count as known. False if
  /// nothing changes.
  Outcome<bool> subscribe(const notices::Subscription& subscription);
  /// False if the line has no subscription.
  Outcome<bool> unsubscribe(const notices::LineKey& line);
  /// Adds the mute, or changes its end. Mutes that end before `now` are removed.
  std::optional<Error> mute(const notices::Mute& mute, Date now);
  /// Removes all mutes of the line, or of the incident by its id or its content; false if there is none.
  Outcome<bool> unmute(const notices::Mute& mute);

  /// Updates what the user was told by an answer. The notices of the result may be sent: no other program has
  /// sent them or will. After an error nothing has changed, and the next answer leads to the same notices.
  /// Writes nothing if nothing changes. `canTell`: see notices::update.
  Outcome<notices::NoticeUpdate> update(const std::optional<notices::WeeklyHours>& quietHours,
                                        std::span<const notices::LineNews> news, const notices::Moment& now,
                                        bool canTell = true);

  /// The notices on the screen, in the order of their tags. `server`: the run of the notification server.
  Outcome<std::vector<notices::ShownNotice>> shown(const std::string& server) const;
  /// Replaces the notices on the screen of this server; they need ids.
  std::optional<Error> setShown(const std::string& server, std::span<const notices::ShownNotice> shown,
                                Date now);

 private:
  SharedDatabase database_;
};

}  // namespace linewatch
