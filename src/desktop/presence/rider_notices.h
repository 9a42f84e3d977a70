#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/presence/notification_sender.h"
#include "desktop/window/window_texts.h"
#include "notices/line_news.h"
#include "notices/notice.h"
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

/// Tells the user of news by notifications, as the saved subscriptions want it. Main thread.
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

 private:
  void send(const notices::NoticeUpdate& update);
  void open(const std::string& tag, const std::string& activationToken);
  void mute(const std::string& tag);

  SharedWindowTexts texts_;
  StoredNotices stored_;
  MainLoop& mainLoop_;
  Services services_;
  std::optional<notices::WeeklyHours> quietHours_;
  /// The last notice of each tag.
  std::map<std::string, notices::Notice> sent_;
  NotificationSender sender_;
  /// Expires with this object, for work that ends later.
  std::shared_ptr<RiderNotices*> self_ = std::make_shared<RiderNotices*>(this);
};

/// The moment in the machine's time zone.
notices::Moment momentAt(Date date);

}  // namespace linewatch::desktop
