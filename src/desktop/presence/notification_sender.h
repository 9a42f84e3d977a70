#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

class QDBusConnection;

namespace linewatch::desktop {

/// A notification. All texts are plain; they are never markup.
struct Notification {
  enum class Urgency : std::uint8_t { low, normal, critical };

  /// A notification replaces the one with the same tag.
  std::string tag;
  std::string title;
  /// May be empty.
  std::string body = {};
  Urgency urgency = Urgency::normal;
  /// Labels of the actions; without a label there is no such action.
  std::string details = {};
  std::string mute = {};

  bool operator==(const Notification&) const = default;
};

/// Sends notifications to the desktop's notification server (org.freedesktop.Notifications), one call at a
/// time, and without waiting for it. What the server cannot show is left out. Without a server one line goes
/// to the log. Needs a QCoreApplication; main thread.
class NotificationSender {
 public:
  struct Handlers {
    /// The user has activated the notification. `activationToken` may be empty.
    std::function<void(const std::string& tag, const std::string& activationToken)> open;
    std::function<void(const std::string& tag)> mute;
  };

  NotificationSender(const QDBusConnection& bus, Handlers handlers);
  ~NotificationSender();
  NotificationSender(const NotificationSender&) = delete;
  NotificationSender& operator=(const NotificationSender&) = delete;

  void send(Notification notification);
  /// Closes the notification with that tag if it is still shown.
  void withdraw(const std::string& tag);

 private:
  class Server;
  std::unique_ptr<Server> server_;
};

}  // namespace linewatch::desktop
