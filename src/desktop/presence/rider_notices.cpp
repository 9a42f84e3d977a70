#include "desktop/presence/rider_notices.h"

#include <QDBusConnection>
#include <QDateTime>
#include <cmath>
#include <utility>

#include "desktop/presence/notification_texts.h"
#include "desktop/presence/rider_news.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "shared/failure.h"
#include "shared/mutex.h"
#include "status/status_texts.h"

namespace linewatch::desktop {

namespace {

/// Decides on the saved state what is told, so that no other program tells it too. An error goes to the log;
/// the next answer leads to the same notices.
notices::NoticeUpdate claimNotices(StoredNotices stored, const TransitStatus& status,
                                   const std::optional<notices::WeeklyHours>& quietHours,
                                   const notices::Moment& now, bool canTell) {
  const auto rules = stored.rules();
  auto update = rules ? stored.update(quietHours, newsOf(rules->subscriptions, status), now, canTell)
                      : Outcome<notices::NoticeUpdate>(rules.error());
  if (update) return *std::move(update);
  logError("no notifications for now: %@", {sentenceOf(update.error())});
  return {};
}

std::vector<notices::ShownNotice> savedNotices(const StoredNotices& stored, const std::string& server) {
  auto shown = stored.shown(server);
  if (shown) return *std::move(shown);
  logError("notifications of before have no actions: %@", {sentenceOf(shown.error())});
  return {};
}

}  // namespace

class RiderNotices::Inbox {
 public:
  void add(std::function<void()> action) LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    actions_.push_back(std::move(action));
  }
  /// Main thread.
  void run() LINEWATCH_EXCLUDES(mutex_) {
    for (const auto& action : taken()) action();
  }

 private:
  std::vector<std::function<void()>> taken() LINEWATCH_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    return std::exchange(actions_, {});
  }

  Mutex mutex_;
  std::vector<std::function<void()>> actions_ LINEWATCH_GUARDED_BY(mutex_);
};

notices::Moment momentAt(Date date) {
  const auto seconds = static_cast<qint64>(std::floor(secondsOf(date)));
  return {.date = date,
          .utcOffset = Seconds(static_cast<double>(QDateTime::fromSecsSinceEpoch(seconds).offsetFromUtc()))};
}

RiderNotices::RiderNotices(const QDBusConnection& bus, SharedWindowTexts texts, StoredNotices stored,
                           MainLoop& mainLoop, Services services)
    : texts_(std::move(texts)),
      stored_(std::move(stored)),
      mainLoop_(mainLoop),
      services_(std::move(services)),
      sender_(bus, {.serverDidChange = [this](const std::string& server) { serverDidChange(server); },
                    .shown =
                        [this](const std::string& tag, std::uint32_t id) {
                          if (shown_.setId(tag, id)) saveShown();
                        },
                    .closed =
                        [this](const std::string& tag) {
                          if (shown_.remove(tag)) saveShown();
                        },
                    .open = [this](const std::string& tag, const std::string& token) { open(tag, token); },
                    .mute = [this](const std::string& tag) { mute(tag); }}),
      inbox_(std::make_shared<Inbox>()) {}

RiderNotices::~RiderNotices() = default;

void RiderNotices::setQuietHours(std::optional<notices::WeeklyHours> quietHours) {
  quietHours_ = std::move(quietHours);
}

/// Runs `work` in the background, and then its result on the main thread, unless this object is gone.
void RiderNotices::post(std::function<std::function<void()>()> work) {
  services_.inBackground([work = std::move(work), &mainLoop = mainLoop_, inbox = std::weak_ptr(inbox_)] {
    std::function<void()> result = work();
    const auto alive = inbox.lock();
    if (!alive) return;
    alive->add(std::move(result));
    mainLoop.dispatchAsync([inbox] {
      if (const auto still = inbox.lock()) still->run();
    });
  });
}

// ---- The server ----

/// The notices on the screen are read before any others are sent, because those may replace them.
void RiderNotices::serverDidChange(const std::string& server) {
  server_ = server;
  shown_.clear();
  if (!server.empty()) {
    post([this, stored = stored_, server] {
      return [this, server, shown = savedNotices(stored, server)] {
        if (server_ == server) adopt(shown);
      };
    });
  }
  claim(false);
}

void RiderNotices::adopt(const std::vector<notices::ShownNotice>& shown) {
  for (const notices::ShownNotice& notice : shown) {
    if (notice.id && shown_.adopt(notice)) sender_.adopt(notice.notice.tag, *notice.id);
  }
}

void RiderNotices::saveShown() {
  if (!server_ || server_->empty()) return;
  services_.inBackground(
      [stored = stored_, server = *server_, shown = shown_.withIds(), now = mainLoop_.now()]() mutable {
        if (const auto error = stored.setShown(server, shown, now))
          logError("notifications on the screen are not saved: %@", {sentenceOf(*error)});
      });
}

// ---- News ----

void RiderNotices::take(const TransitStatus& status) {
  status_ = std::make_shared<const TransitStatus>(status);
  if (server_) claim(false);
}

/// Without a server, nothing is claimed. The server is only looked for when there is something to tell,
/// because the bus may start it.
void RiderNotices::claim(bool canTell) {
  if (!status_) return;
  post([this, canTell = canTell || sender_.hasServer(), status = status_, stored = stored_,
        quietHours = quietHours_, now = momentAt(mainLoop_.now())] {
    return [this, status, update = claimNotices(stored, *status, quietHours, now, canTell)] {
      send(update, *status);
      if (!update.isHeldBack || !status_) return;
      sender_.findServer([this](bool isThere) {
        if (isThere) claim(true);
      });
    };
  });
}

void RiderNotices::send(const notices::NoticeUpdate& update, const TransitStatus& status) {
  const auto marked = [this, &status](const notices::Notice& notice) {
    Notification notification = notificationOf(notice, *texts_);
    notification.title = markedIfSample(status, std::move(notification.title), texts_->localization());
    return notification;
  };
  const auto changes = shown_.take(update);
  for (const notices::ShownNotices::Change& change : changes) {
    if (change.to)
      sender_.rewrite(change.from, marked(*change.to));
    else
      sender_.withdraw(change.from);
  }
  for (const notices::Notice& notice : update.notices) sender_.send(marked(notice));
  if (!changes.empty()) saveShown();
}

void RiderNotices::finish() {
  status_ = nullptr;
  inbox_->run();
  sender_.flush();
}

// ---- Actions ----

void RiderNotices::open(const std::string& tag, const std::string& activationToken) {
  if (const notices::ShownNotice* const shown = shown_.find(tag))
    services_.open(shown->notice, activationToken);
}

void RiderNotices::mute(const std::string& tag) {
  const notices::ShownNotice* const shown = shown_.find(tag);
  if (!shown) return;
  std::vector<notices::Mute> mutes;
  const Date until = mainLoop_.now() + kMuteByAction;
  for (const notices::Notice::Entry& entry : shown->notice.entries) {
    for (const notices::IncidentNews& incident : entry.incidents)
      mutes.push_back({.subject = notices::MutedIncident{incident.muid, contentOf(incident), incident.title},
                       .until = until});
  }
  services_.inBackground([stored = stored_, mutes = std::move(mutes), now = mainLoop_.now()]() mutable {
    for (const notices::Mute& mute : mutes) {
      if (const auto error = stored.mute(mute, now)) logError("not muted: %@", {sentenceOf(*error)});
    }
  });
  sender_.withdraw(tag);
  shown_.remove(tag);
  saveShown();
}

}  // namespace linewatch::desktop
