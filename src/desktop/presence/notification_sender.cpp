#include "desktop/presence/notification_sender.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <utility>

#include "desktop/presence/notification_signals.h"
#include "platform/log.h"

namespace linewatch::desktop {

namespace {

const QString kNotifications = QStringLiteral("org.freedesktop.Notifications");
const QString kNotificationsPath = QStringLiteral("/org/freedesktop/Notifications");
// The action of a click on the notification itself.
const QString kOpenAction = QStringLiteral("default");
const QString kDetailsAction = QStringLiteral("details");
const QString kMuteAction = QStringLiteral("mute");
/// The server decides how long a notification is shown; or it is shown until the user closes it.
constexpr int kUsualTimeout = -1;
constexpr int kNoTimeout = 0;

QDBusMessage notificationCall(const QString& method) {
  return QDBusMessage::createMethodCall(kNotifications, kNotificationsPath, kNotifications, method);
}

}  // namespace

/// The server, as far as it is known.
class NotificationSender::Server final : public QObject {
 public:
  Server(const QDBusConnection& bus, Handlers handlers);

  void send(Notification notification);
  void withdraw(const std::string& tag);

 private:
  void listenToSignals();
  void forget();
  void sendNext();
  void askCapabilities();
  void notify(const Notification& notification);
  void close(const std::string& tag);
  template <class Reply, class Done>
  void call(const QDBusMessage& message, Done done);
  void logMissingServer(const QString& why);

  bool can(const char* capability) const { return capabilities_->contains(QLatin1String(capability)); }
  QStringList actionsOf(const Notification& notification) const;
  QVariantMap hintsOf(const Notification& notification) const;
  QString bodyOf(const Notification& notification) const;
  std::string tagOf(uint id) const;
  void invoke(uint id, const QString& action);

  QDBusConnection bus_;
  Handlers handlers_;
  NotificationSignals signals_;
  QDBusServiceWatcher watcher_;
  /// Absent until the server has answered.
  std::optional<QStringList> capabilities_;
  /// What to send; an absent notification withdraws the one with the tag.
  std::deque<std::pair<std::string, std::optional<Notification>>> waiting_;
  bool isCalling_ = false;
  bool hasLogged_ = false;
  /// The server's ids of the notifications that are shown.
  std::map<std::string, uint> ids_;
  std::map<uint, std::string> tokens_;
};

NotificationSender::Server::Server(const QDBusConnection& bus, Handlers handlers)
    : bus_(bus),
      handlers_(std::move(handlers)),
      watcher_(kNotifications, bus, QDBusServiceWatcher::WatchForOwnerChange) {
  signals_.actionInvoked = [this](uint id, const QString& action) { invoke(id, action); };
  signals_.closed = [this](uint id) {
    std::erase_if(ids_, [id](const auto& shown) { return shown.second == id; });
    tokens_.erase(id);
  };
  signals_.tokenGiven = [this](uint id, const QString& token) {
    if (!tagOf(id).empty()) tokens_[id] = token.toStdString();
  };
  // A new server knows none of the ids, and may be able to show other things.
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { forget(); });
}

/// The signals of the server alone, as the ids of another program would be mistaken for its own.
void NotificationSender::Server::listenToSignals() {
  const std::pair<const char*, const char*> kSignals[] = {
      {"ActionInvoked", SLOT(takeAction(uint, QString))},
      {"NotificationClosed", SLOT(takeEnd(uint, uint))},
      {"ActivationToken", SLOT(takeToken(uint, QString))}};
  for (const auto& [name, slot] : kSignals)
    bus_.connect(kNotifications, kNotificationsPath, kNotifications, QLatin1String(name), &signals_, slot);
}

void NotificationSender::Server::forget() {
  capabilities_.reset();
  ids_.clear();
  tokens_.clear();
  hasLogged_ = false;
}

void NotificationSender::Server::send(Notification notification) {
  std::string tag = notification.tag;
  waiting_.emplace_back(std::move(tag), std::move(notification));
  sendNext();
}

void NotificationSender::Server::withdraw(const std::string& tag) {
  waiting_.emplace_back(tag, std::nullopt);
  sendNext();
}

void NotificationSender::Server::sendNext() {
  while (!isCalling_ && !waiting_.empty()) {
    const bool isNotification = waiting_.front().second.has_value();
    if (isNotification && !capabilities_) return askCapabilities();
    const auto [tag, notification] = std::move(waiting_.front());
    waiting_.pop_front();
    if (notification)
      notify(*notification);
    else
      close(tag);
  }
}

/// Calls `done` with the answer, also if it is an error, and then goes on with what is waiting.
template <class Reply, class Done>
void NotificationSender::Server::call(const QDBusMessage& message, Done done) {
  isCalling_ = true;
  auto* const answer = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, done = std::move(done)] {
    answer->deleteLater();
    const Reply reply = *answer;
    isCalling_ = false;
    done(reply);
    sendNext();
  });
}

void NotificationSender::Server::askCapabilities() {
  listenToSignals();
  call<QDBusPendingReply<QStringList>>(notificationCall(QStringLiteral("GetCapabilities")),
                                       [this](const QDBusPendingReply<QStringList>& reply) {
                                         if (!reply.isError()) {
                                           capabilities_ = reply.value();
                                           return;
                                         }
                                         logMissingServer(reply.error().message());
                                         waiting_.clear();
                                       });
}

void NotificationSender::Server::notify(const Notification& notification) {
  const auto shown = ids_.find(notification.tag);
  const bool staysShown = notification.urgency == Notification::Urgency::critical && !can("persistence");
  QDBusMessage message = notificationCall(QStringLiteral("Notify"));
  message << QStringLiteral("LineWatch") << (shown == ids_.end() ? 0U : shown->second)
          << QStringLiteral("org.linewatch.LineWatch") << QString::fromStdString(notification.title)
          << bodyOf(notification) << actionsOf(notification) << hintsOf(notification)
          << (staysShown ? kNoTimeout : kUsualTimeout);
  call<QDBusPendingReply<uint>>(message,
                                [this, tag = notification.tag](const QDBusPendingReply<uint>& reply) {
                                  if (reply.isError()) return logMissingServer(reply.error().message());
                                  ids_[tag] = reply.value();
                                });
}

void NotificationSender::Server::close(const std::string& tag) {
  const auto shown = ids_.find(tag);
  if (shown == ids_.end()) return;
  QDBusMessage message = notificationCall(QStringLiteral("CloseNotification"));
  message << shown->second;
  ids_.erase(shown);
  // The server answers with an error if the user has closed it in the meantime.
  call<QDBusPendingReply<>>(message, [](const QDBusPendingReply<>&) {});
}

void NotificationSender::Server::logMissingServer(const QString& why) {
  if (!std::exchange(hasLogged_, true)) logError("notifications are not shown: %@", {why.toStdString()});
}

// ---- What the server can show ----

QStringList NotificationSender::Server::actionsOf(const Notification& notification) const {
  QStringList actions;
  if (!can("actions")) return actions;
  if (!notification.details.empty()) {
    const QString label = QString::fromStdString(notification.details);
    actions << kOpenAction << label << kDetailsAction << label;
  }
  if (!notification.mute.empty()) actions << kMuteAction << QString::fromStdString(notification.mute);
  return actions;
}

QVariantMap NotificationSender::Server::hintsOf(const Notification& notification) const {
  // The hint must be a byte.
  return {{QStringLiteral("urgency"), QVariant::fromValue(static_cast<uchar>(notification.urgency))},
          {QStringLiteral("desktop-entry"), QStringLiteral("org.linewatch.LineWatch")}};
}

QString NotificationSender::Server::bodyOf(const Notification& notification) const {
  if (!can("body")) return {};
  const QString body = QString::fromStdString(notification.body);
  return can("body-markup") ? body.toHtmlEscaped() : body;
}

// ---- What the user does ----

std::string NotificationSender::Server::tagOf(uint id) const {
  const auto shown = std::ranges::find_if(ids_, [id](const auto& other) { return other.second == id; });
  return shown == ids_.end() ? std::string() : shown->first;
}

void NotificationSender::Server::invoke(uint id, const QString& action) {
  const std::string tag = tagOf(id);
  if (tag.empty()) return;
  if (action == kMuteAction) return handlers_.mute(tag);
  const auto token = tokens_.find(id);
  handlers_.open(tag, token == tokens_.end() ? std::string() : token->second);
}

NotificationSender::NotificationSender(const QDBusConnection& bus, Handlers handlers)
    : server_(std::make_unique<Server>(bus, std::move(handlers))) {}

NotificationSender::~NotificationSender() = default;

void NotificationSender::send(Notification notification) { server_->send(std::move(notification)); }

void NotificationSender::withdraw(const std::string& tag) { server_->withdraw(tag); }

}  // namespace linewatch::desktop
