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
/// to the log, and what was sent waits for a server. Needs a QCoreApplication; main thread.
class NotificationSender {
 public:
  /// Called on the main thread; `tag` is that of a notification.
  struct Handlers {
    /// Called once at the start and whenever another server has started or the server has ended. `server`
    /// names this run of the server, because its numbers mean nothing to another; empty without one.
    std::function<void(const std::string& server)> serverDidChange;
    /// The server shows the notification under this number.
    std::function<void(const std::string& tag, std::uint32_t id)> shown;
    /// The notification has gone from the screen.
    std::function<void(const std::string& tag)> closed;
    /// The user has activated the notification. `activationToken` may be empty.
    std::function<void(const std::string& tag, const std::string& activationToken)> open;
    std::function<void(const std::string& tag)> mute;
  };

  NotificationSender(const QDBusConnection& bus, Handlers handlers);
  ~NotificationSender();
  NotificationSender(const NotificationSender&) = delete;
  NotificationSender& operator=(const NotificationSender&) = delete;

  /// Whether a server has answered and still runs.
  bool hasServer() const;
  /// Calls `done` with whether a server answers, which starts it if the bus can.
  void findServer(std::function<void(bool isThere)> done);

  void send(Notification notification);
  /// Replaces the notification with the tag `from` if it is still shown, and does nothing otherwise.
  void rewrite(const std::string& from, Notification notification);
  /// Closes the notification with that tag if it is still shown.
  void withdraw(const std::string& tag);
  /// Takes over a notification that an earlier run sent to this server. The user may have closed it since, so
  /// it is not rewritten.
  void adopt(const std::string& tag, std::uint32_t id);
  /// Sends what still waits for an answer of the server, without waiting. To be called at the end.
  void flush();

 private:
  class Server;
  std::unique_ptr<Server> server_;
};

}  // namespace linewatch::desktop
