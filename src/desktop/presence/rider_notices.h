#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/presence/notification_sender.h"
#include "desktop/window/window_texts.h"
#include "notices/line_news.h"
#include "notices/notice.h"
#include "notices/notice_update.h"
#include "notices/shown_notices.h"
#include "notices/weekly_hours.h"
#include "shared/date.h"
#include "status/transit_status.h"
#include "storage/stored_notices.h"

class QDBusConnection;

namespace linewatch {
class MainLoop;
}

namespace linewatch::desktop {

/// How long the action Mute silences the incidents of a notification.
inline constexpr Seconds kMuteByAction{24.0 * 3600};

/// Tells the user of news by notifications, as the saved subscriptions want it. News is claimed in the saved
/// state before it is sent, and only while a notification server answers. What is on the screen is saved too,
/// so that its actions work after a restart. Main thread.
class RiderNotices {
 public:
  struct Services {
    /// Runs the work, which waits for the disk, on another thread, one at a time. Work that is left when this
    /// object is destroyed may still run.
    std::function<void(std::function<void()> work)> inBackground;
    /// Shows what a notification is about. The token may be empty.
    std::function<void(const notices::Notice& notice, const std::string& activationToken)> open;
  };

  /// `mainLoop` must outlive this object and the work.
  RiderNotices(const QDBusConnection& bus, SharedWindowTexts texts, StoredNotices stored, MainLoop& mainLoop,
               Services services);
  ~RiderNotices();
  RiderNotices(const RiderNotices&) = delete;
  RiderNotices& operator=(const RiderNotices&) = delete;

  void setQuietHours(std::optional<notices::WeeklyHours> quietHours);
  /// To be called after each answer about the lines, also if it says the same as the one before.
  void take(const TransitStatus& status);
  /// Sends what was claimed meanwhile. To be called at the end, when no work runs any more.
  void finish();

 private:
  /// The results of the work in the background, which wait for the main thread.
  class Inbox;

  void serverDidChange(const std::string& server);
  void adopt(const std::vector<notices::ShownNotice>& shown);
  void claim(bool canTell);
  void post(std::function<std::function<void()>()> work);
  void send(const notices::NoticeUpdate& update, const TransitStatus& status);
  void saveShown();
  void open(const std::string& tag, const std::string& activationToken);
  void mute(const std::string& tag);

  SharedWindowTexts texts_;
  StoredNotices stored_;
  MainLoop& mainLoop_;
  Services services_;
  std::optional<notices::WeeklyHours> quietHours_;
  /// The run of the notification server; empty without one, absent until that is known.
  std::optional<std::string> server_;
  /// The last answer; null before the first one and at the end.
  std::shared_ptr<const TransitStatus> status_;
  notices::ShownNotices shown_;
  NotificationSender sender_;
  std::shared_ptr<Inbox> inbox_;
};

/// The moment in the machine's time zone.
notices::Moment momentAt(Date date);

}  // namespace linewatch::desktop
