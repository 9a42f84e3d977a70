#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <utility>
#include <vector>

namespace linewatch::desktop {

/// A notification server that shows nothing. It has the name on the bus while it exists.
class NotificationServer final : public QDBusVirtualObject {
 public:
  /// The arguments of a Notify call, and the id of its answer.
  struct Shown {
    uint id = 0;
    uint replaces = 0;
    QString title;
    QString body;
    QStringList actions;
    int urgency = -1;
    int timeout = 0;
  };

  NotificationServer(QDBusConnection connection, QStringList capabilities)
      : connection_(std::move(connection)), capabilities_(std::move(capabilities)) {
    connection_.registerVirtualObject(kPath, this);
    connection_.registerService(kName);
  }
  ~NotificationServer() override {
    connection_.unregisterService(kName);
    connection_.unregisterObject(kPath);
  }

  const std::vector<Shown>& shown() const { return shown_; }
  const std::vector<uint>& closed() const { return closed_; }

  /// The user activates an action of the notification.
  void invoke(uint id, const QString& action, const QString& token = {}) {
    if (!token.isEmpty()) emitSignal("ActivationToken", {id, token});
    emitSignal("ActionInvoked", {id, action});
  }

  /// The user closes the notification.
  void close(uint id) { emitSignal("NotificationClosed", {id, 2U}); }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() == "GetCapabilities")
      return connection.send(message.createReply(QVariant(capabilities_)));
    if (message.member() == "Notify") return connection.send(message.createReply(show(message.arguments())));
    if (message.member() != "CloseNotification") return false;
    closed_.push_back(message.arguments().at(0).toUInt());
    emitSignal("NotificationClosed", {closed_.back(), 3U});
    return connection.send(message.createReply());
  }

 private:
  static constexpr const char* kName = "org.freedesktop.Notifications";
  static constexpr const char* kPath = "/org/freedesktop/Notifications";

  uint show(const QVariantList& arguments) {
    Shown shown{.replaces = arguments.at(1).toUInt(),
                .title = arguments.at(3).toString(),
                .body = arguments.at(4).toString(),
                .actions = arguments.at(5).toStringList(),
                .timeout = arguments.at(7).toInt()};
    const QVariant urgency = qdbus_cast<QVariantMap>(arguments.at(6)).value("urgency");
    if (urgency.typeId() == QMetaType::UChar) shown.urgency = urgency.toInt();
    shown.id = shown.replaces ? shown.replaces : ++lastId_;
    shown_.push_back(shown);
    return shown.id;
  }

  void emitSignal(const QString& name, const QVariantList& arguments) {
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kName, name);
    signal.setArguments(arguments);
    connection_.send(signal);
  }

  QDBusConnection connection_;
  QStringList capabilities_;
  uint lastId_ = 40;
  std::vector<Shown> shown_;
  std::vector<uint> closed_;
};

}  // namespace linewatch::desktop
