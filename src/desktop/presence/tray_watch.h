#pragma once

#include <functional>
#include <memory>

class QDBusConnection;

namespace linewatch::desktop {

/// Whether the desktop has a tray: a host of StatusNotifierItems on the session bus, or the older tray of an
/// X11 display. Qt decides once per process which of them it uses, so no tray icon may be made before there
/// is one. Needs a QGuiApplication; main thread.
class TrayWatch {
 public:
  /// `changed` is called when a tray appears or the last one goes, also for the one that is there at the
  /// start, but not before this returns.
  TrayWatch(const QDBusConnection& bus, std::function<void()> changed);
  ~TrayWatch();
  TrayWatch(const TrayWatch&) = delete;
  TrayWatch& operator=(const TrayWatch&) = delete;

  bool hasTray() const;

 private:
  class Watch;
  std::unique_ptr<Watch> watch_;
};

}  // namespace linewatch::desktop
