#include "desktop/presence/notification_sender.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "desktop/presence/bus_call.h"
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

/// A call to the server with this name or connection.
QDBusMessage notificationCall(const QString& server, const QString& method) {
  return QDBusMessage::createMethodCall(server, kNotificationsPath, kNotifications, method);
}

}  // namespace

/// The server, as far as it is known.
class NotificationSender::Server final : public QObject {
 public:
  Server(const QDBusConnection& bus, Handlers handlers);

  bool hasServer() const { return capabilities_.has_value(); }
  void findServer(std::function<void(bool)> done);
  void send(Notification notification);
  void rewrite(const std::string& from, Notification notification);
  void withdraw(const std::string& tag);
  void adopt(const std::string& tag, uint id);
  void flush();

 private:
  struct Shown {
    uint id = 0;
    /// Whether an earlier run sent it.
    bool isAdopted = false;
  };
  /// A notification to send, or a tag to close.
  struct Waiting {
    std::string tag;
    std::optional<Notification> notification;
  };

  void askForServer();
  void followServer();
  void ownerDidChange(const QString& owner);
  void abandonCall();
  void sendLater(Notification notification);
  void listenToSignals();
  void put(Waiting waiting);
  void sendNext();
  void askCapabilities();
  void answerQuestions();
  void notify(Notification notification);
  void close(const std::string& tag);
  void call(const QDBusMessage& message, std::function<bool(const QDBusMessage& answer)> done);
  void logMissingServer(const QString& why);

  bool can(const char* capability) const {
    return capabilities_ && capabilities_->contains(QLatin1String(capability));
  }
  QDBusMessage messageOf(const Notification& notification) const;
  QStringList actionsOf(const Notification& notification) const;
  QVariantMap hintsOf(const Notification& notification) const;
  QString bodyOf(const Notification& notification) const;
  std::string tagOf(uint id) const;
  void invoke(uint id, const QString& action);

  QDBusConnection bus_;
  Handlers handlers_;
  NotificationSignals signals_;
  QDBusServiceWatcher watcher_;
  /// Names this run of the bus; absent until the bus has answered.
  std::optional<std::string> busId_;
  bool isListening_ = false;
  /// The server's connection to the bus; empty without a server, absent until the bus has answered.
  std::optional<QString> owner_;
  /// Absent until the server has answered.
  std::optional<QStringList> capabilities_;
  std::deque<Waiting> waiting_;
  /// Callers that wait to hear whether a server answers.
  std::vector<std::function<void(bool)>> questions_;
  bool isCalling_ = false;
  /// The number of calls. An answer to another call than the last one comes from a server that has ended.
  std::uint64_t calls_ = 0;
  /// The notification of the call that waits for its answer.
  std::optional<Notification> sending_;
  bool hasLogged_ = false;
  std::map<std::string, Shown> shown_;
  std::map<uint, std::string> tokens_;
};

NotificationSender::Server::Server(const QDBusConnection& bus, Handlers handlers)
    : bus_(bus),
      handlers_(std::move(handlers)),
      watcher_(kNotifications, bus, QDBusServiceWatcher::WatchForOwnerChange) {
  signals_.actionInvoked = [this](uint id, const QString& action) { invoke(id, action); };
  signals_.closed = [this](uint id) {
    tokens_.erase(id);
    const std::string tag = tagOf(id);
    if (shown_.erase(tag) > 0) handlers_.closed(tag);
  };
  signals_.tokenGiven = [this](uint id, const QString& token) {
    if (!tagOf(id).empty()) tokens_[id] = token.toStdString();
  };
  askForServer();
}

/// The names of the connections begin anew with every run of the bus, so its own name is needed too.
void NotificationSender::Server::askForServer() {
  callBus(bus_, *this, busDaemonCall(QStringLiteral("GetId")), [this](const QDBusMessage& answer) {
    busId_ = valueIn(answer).toString().toStdString();
    followServer();
  });
}

void NotificationSender::Server::followServer() {
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) { ownerDidChange(owner); });
  callBus(bus_, *this, busDaemonCall(QStringLiteral("GetNameOwner"), {kNotifications}),
          [this](const QDBusMessage& answer) {
            // A change that was announced meanwhile is newer.
            if (!owner_) ownerDidChange(valueIn(answer).toString());
          });
}

/// A new server knows none of the ids, and may be able to show other things. Nothing waits for an answer of
/// the one before: it may never come.
void NotificationSender::Server::ownerDidChange(const QString& owner) {
  if (owner_ == owner) return;
  const bool isFirst = !owner_;
  owner_ = owner;
  capabilities_.reset();
  shown_.clear();
  tokens_.clear();
  hasLogged_ = false;
  abandonCall();
  handlers_.serverDidChange(owner.isEmpty() ? std::string() : *busId_ + " " + owner.toStdString());
  if (owner.isEmpty() && !isFirst)
    answerQuestions();
  else
    sendNext();
}

void NotificationSender::Server::abandonCall() {
  ++calls_;
  isCalling_ = false;
  if (sending_) sendLater(*std::exchange(sending_, std::nullopt));
}

/// Puts the notification first, unless what waits for its tag has replaced it.
void NotificationSender::Server::sendLater(Notification notification) {
  if (std::ranges::find(waiting_, notification.tag, &Waiting::tag) != waiting_.end()) return;
  std::string tag = notification.tag;
  waiting_.push_front({std::move(tag), std::move(notification)});
}

/// The signals of the server alone, as the ids of another program would be mistaken for its own.
void NotificationSender::Server::listenToSignals() {
  if (std::exchange(isListening_, true)) return;
  const std::pair<const char*, const char*> kSignals[] = {
      {"ActionInvoked", SLOT(takeAction(uint, QString))},
      {"NotificationClosed", SLOT(takeEnd(uint, uint))},
      {"ActivationToken", SLOT(takeToken(uint, QString))}};
  for (const auto& [name, slot] : kSignals)
    bus_.connect(kNotifications, kNotificationsPath, kNotifications, QLatin1String(name), &signals_, slot);
}

void NotificationSender::Server::findServer(std::function<void(bool)> done) {
  questions_.push_back(std::move(done));
  sendNext();
}

void NotificationSender::Server::send(Notification notification) {
  std::string tag = notification.tag;
  put({std::move(tag), std::move(notification)});
}

void NotificationSender::Server::withdraw(const std::string& tag) { put({tag, std::nullopt}); }

void NotificationSender::Server::rewrite(const std::string& from, Notification notification) {
  const auto unsent = std::ranges::find(waiting_, from, &Waiting::tag);
  const bool isUnsent = unsent != waiting_.end() && unsent->notification;
  if (isUnsent) waiting_.erase(unsent);
  auto shown = shown_.extract(from);
  if (!shown && !isUnsent) return;
  const bool isAdopted = shown && shown.mapped().isAdopted;
  if (shown) {
    shown.key() = notification.tag;
    shown_.insert(std::move(shown));
  }
  if (!isAdopted) send(std::move(notification));
}

void NotificationSender::Server::adopt(const std::string& tag, uint id) {
  listenToSignals();
  shown_.emplace(tag, Shown{id, true});
}

/// The new entry replaces one with the same tag that was not sent yet.
void NotificationSender::Server::put(Waiting waiting) {
  std::erase_if(waiting_, [&waiting](const Waiting& other) { return other.tag == waiting.tag; });
  waiting_.push_back(std::move(waiting));
  sendNext();
}

void NotificationSender::Server::sendNext() {
  while (owner_ && !isCalling_) {
    if (capabilities_) answerQuestions();
    if (waiting_.empty() && questions_.empty()) return;
    const bool isNotification = waiting_.empty() || waiting_.front().notification;
    if (isNotification && !capabilities_) return askCapabilities();
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    if (next.notification)
      notify(*std::move(next.notification));
    else
      close(next.tag);
  }
}

void NotificationSender::Server::answerQuestions() {
  for (const auto& answer : std::exchange(questions_, {})) answer(capabilities_.has_value());
}

/// Calls `done` with the answer, also if it is an error, and goes on with what is waiting if it returns true.
void NotificationSender::Server::call(const QDBusMessage& message,
                                      std::function<bool(const QDBusMessage& answer)> done) {
  isCalling_ = true;
  callBus(bus_, *this, message,
          [this, number = ++calls_, done = std::move(done)](const QDBusMessage& answer) {
            if (number != calls_) return;
            isCalling_ = false;
            if (done(answer)) sendNext();
          });
}

void NotificationSender::Server::askCapabilities() {
  listenToSignals();
  call(notificationCall(kNotifications, QStringLiteral("GetCapabilities")),
       [this](const QDBusMessage& answer) {
         if (answer.type() == QDBusMessage::ReplyMessage)
           capabilities_ = valueIn(answer).toStringList();
         else
           logMissingServer(answer.errorMessage());
         answerQuestions();
         return capabilities_.has_value();
       });
}

/// A notification that no server has taken waits for the next one. One that the server may have taken is not
/// sent again.
void NotificationSender::Server::notify(Notification notification) {
  const QDBusMessage message = messageOf(notification);
  sending_ = std::move(notification);
  call(message, [this](const QDBusMessage& answer) {
    Notification sent = *std::exchange(sending_, std::nullopt);
    if (answer.type() == QDBusMessage::ReplyMessage) {
      const uint id = valueIn(answer).toUInt();
      shown_[sent.tag] = {id, false};
      handlers_.shown(sent.tag, id);
      return true;
    }
    logMissingServer(answer.errorMessage());
    if (QDBusError(answer).type() != QDBusError::ServiceUnknown) return true;
    capabilities_.reset();
    sendLater(std::move(sent));
    return false;
  });
}

void NotificationSender::Server::close(const std::string& tag) {
  const auto shown = shown_.find(tag);
  if (shown == shown_.end()) return;
  QDBusMessage message = notificationCall(*owner_, QStringLiteral("CloseNotification"));
  message << shown->second.id;
  shown_.erase(shown);
  // The server answers with an error if the user has closed it in the meantime.
  call(message, [](const QDBusMessage&) { return true; });
}

void NotificationSender::Server::flush() {
  for (const Waiting& waiting : std::exchange(waiting_, {})) {
    if (waiting.notification && capabilities_) bus_.send(messageOf(*waiting.notification));
  }
}

void NotificationSender::Server::logMissingServer(const QString& why) {
  if (!std::exchange(hasLogged_, true)) logError("notifications are not shown: %@", {why.toStdString()});
}

// ---- What the server can show ----

QDBusMessage NotificationSender::Server::messageOf(const Notification& notification) const {
  const auto shown = shown_.find(notification.tag);
  const bool staysShown = notification.urgency == Notification::Urgency::critical && !can("persistence");
  // The ids mean nothing to another server, which may have the name by now.
  QDBusMessage message = notificationCall(*owner_, QStringLiteral("Notify"));
  message << QStringLiteral("LineWatch") << (shown == shown_.end() ? 0U : shown->second.id)
          << QStringLiteral("org.linewatch.LineWatch") << QString::fromStdString(notification.title)
          << bodyOf(notification) << actionsOf(notification) << hintsOf(notification)
          << (staysShown ? kNoTimeout : kUsualTimeout);
  return message;
}

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
  const auto shown = std::ranges::find_if(shown_, [id](const auto& other) { return other.second.id == id; });
  return shown == shown_.end() ? std::string() : shown->first;
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

bool NotificationSender::hasServer() const { return server_->hasServer(); }

void NotificationSender::findServer(std::function<void(bool isThere)> done) {
  server_->findServer(std::move(done));
}

void NotificationSender::send(Notification notification) { server_->send(std::move(notification)); }

void NotificationSender::rewrite(const std::string& from, Notification notification) {
  server_->rewrite(from, std::move(notification));
}

void NotificationSender::withdraw(const std::string& tag) { server_->withdraw(tag); }

void NotificationSender::adopt(const std::string& tag, std::uint32_t id) { server_->adopt(tag, id); }

void NotificationSender::flush() { server_->flush(); }

}  // namespace linewatch::desktop
