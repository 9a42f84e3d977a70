#pragma once

#include <QObject>
#include <QString>
#include <functional>

namespace linewatch::desktop {

/// Receives the signals of a notification server.
class NotificationSignals final : public QObject {
  Q_OBJECT

 public:
  std::function<void(uint id, const QString& action)> actionInvoked;
  std::function<void(uint id)> closed;
  /// With the token, a window that an action opens may take the focus.
  std::function<void(uint id, const QString& token)> tokenGiven;

 public Q_SLOTS:  // NOLINT(readability-redundant-access-specifiers): the moc needs this section
  void takeAction(uint id, const QString& action) const { actionInvoked(id, action); }
  void takeEnd(uint id, uint /*reason*/) const { closed(id); }
  void takeToken(uint id, const QString& token) const { tokenGiven(id, token); }
};

}  // namespace linewatch::desktop
