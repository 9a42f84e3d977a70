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

namespace linewatch::desktop {

namespace {

/// Decides on the saved state what is told, so that no other program tells it too. An error goes to the log;
/// the next answer leads to the same notices.
notices::NoticeUpdate claimNotices(StoredNotices stored, const TransitStatus& status,
                                   const std::optional<notices::WeeklyHours>& quietHours,
                                   const notices::Moment& now) {
  const auto rules = stored.rules();
  auto update = rules ? stored.update(quietHours, newsOf(rules->subscriptions, status), now)
                      : Outcome<notices::NoticeUpdate>(rules.error());
  if (update) return *std::move(update);
  logError("no notifications for now: %@", {sentenceOf(update.error())});
  return {};
}

}  // namespace

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
      sender_(bus, {.open = [this](const std::string& tag, const std::string& token) { open(tag, token); },
                    .mute = [this](const std::string& tag) { mute(tag); }}) {}

RiderNotices::~RiderNotices() = default;

void RiderNotices::setQuietHours(std::optional<notices::WeeklyHours> quietHours) {
  quietHours_ = std::move(quietHours);
}

void RiderNotices::take(const TransitStatus& status) {
  services_.inBackground([status, stored = stored_, quietHours = quietHours_, now = momentAt(mainLoop_.now()),
                          &mainLoop = mainLoop_, self = std::weak_ptr(self_)] {
    auto update = claimNotices(stored, status, quietHours, now);
    mainLoop.dispatchAsync([update = std::move(update), self] {
      if (const auto alive = self.lock()) (*alive)->send(update);
    });
  });
}

void RiderNotices::send(const notices::NoticeUpdate& update) {
  for (const std::string& tag : update.withdrawn) {
    sender_.withdraw(tag);
    sent_.erase(tag);
  }
  for (const notices::Notice& notice : update.notices) {
    sender_.send(notificationOf(notice, *texts_));
    sent_.insert_or_assign(notice.tag, notice);
  }
}

void RiderNotices::open(const std::string& tag, const std::string& activationToken) {
  const auto sent = sent_.find(tag);
  if (sent != sent_.end()) services_.open(sent->second, activationToken);
}

void RiderNotices::mute(const std::string& tag) {
  const auto sent = sent_.find(tag);
  if (sent == sent_.end()) return;
  std::vector<notices::Mute> mutes;
  const Date until = mainLoop_.now() + kMuteByAction;
  for (const notices::Notice::Entry& entry : sent->second.entries) {
    for (const notices::IncidentNews& incident : entry.incidents)
      mutes.push_back({.subject = notices::MutedIncident{incident.muid, contentOf(incident), incident.title},
                       .until = until});
  }
  sender_.withdraw(tag);
  services_.inBackground([stored = stored_, mutes = std::move(mutes), now = mainLoop_.now()]() mutable {
    for (const notices::Mute& mute : mutes) {
      if (const auto error = stored.mute(mute, now)) logError("not muted: %@", {sentenceOf(*error)});
    }
  });
}

}  // namespace linewatch::desktop
