#include "desktop/presence/tray_watch.h"

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <QVariant>
#include <cstdint>
#include <utility>

#include <xcb/xcb.h>

#include "desktop/presence/bus_call.h"
#include "desktop/window/x11_selection.h"

namespace linewatch::desktop {

namespace {

const QString kTrayWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kTrayWatcherPath = QStringLiteral("/StatusNotifierWatcher");

QDBusMessage questionForHost() {
  QDBusMessage call = QDBusMessage::createMethodCall(kTrayWatcher, kTrayWatcherPath,
                                                     QStringLiteral("org.freedesktop.DBus.Properties"),
                                                     QStringLiteral("Get"));
  call << kTrayWatcher << QStringLiteral("IsStatusNotifierHostRegistered");
  call.setAutoStartService(false);
  return call;
}

}  // namespace

/// The tray of an X11 display owns a selection.
class X11Tray final : public QAbstractNativeEventFilter {
 public:
  explicit X11Tray(std::function<void()> changed) : changed_(std::move(changed)) {
    if (!connection_) return;
    manager_ = x11Atom(connection_, "MANAGER");
    // Qt's windows are on the first screen.
    selection_ = x11Atom(connection_, "_NET_SYSTEM_TRAY_S0");
    QCoreApplication::instance()->installNativeEventFilter(this);
    findOwner();
  }

  bool isThere() const { return owner_ != XCB_WINDOW_NONE; }

  /// A new owner tells all programs by a message; the end of its window ends the ownership.
  bool nativeEventFilter(const QByteArray& kind, void* message, qintptr*) override {
    if (kind != "xcb_generic_event_t") return false;
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    const int type = event->response_type & 0x7F;
    if (type == XCB_CLIENT_MESSAGE) {
      const auto* const client = static_cast<const xcb_client_message_event_t*>(message);
      if (client->type == manager_ && client->data.data32[1] == selection_) findOwner();
    } else if (type == XCB_DESTROY_NOTIFY && isThere()) {
      if (static_cast<const xcb_destroy_notify_event_t*>(message)->window == owner_) findOwner();
    }
    return false;
  }

 private:
  void findOwner() {
    owner_ = x11SelectionOwner(connection_, selection_);
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    if (isThere()) xcb_change_window_attributes(connection_, owner_, XCB_CW_EVENT_MASK, &events);
    changed_();
  }

  std::function<void()> changed_;
  /// Null if the display is not of X11.
  xcb_connection_t* connection_ = x11Connection();
  xcb_atom_t manager_ = XCB_ATOM_NONE;
  xcb_atom_t selection_ = XCB_ATOM_NONE;
  xcb_window_t owner_ = XCB_WINDOW_NONE;
};

class TrayWatch::Watch final : public QObject {
 public:
  Watch(const QDBusConnection& bus, std::function<void()> changed)
      : bus_(bus),
        changed_(std::move(changed)),
        watcher_(kTrayWatcher, bus, QDBusServiceWatcher::WatchForOwnerChange),
        x11_([this] { telling_.start(); }) {
    asking_.setSingleShot(true);
    connect(&asking_, &QTimer::timeout, this, [this] { askForHost(); });
    telling_.setSingleShot(true);
    connect(&telling_, &QTimer::timeout, this, [this] { tell(); });
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { asking_.start(); });
    for (const char* const signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
      bus_.connect(kTrayWatcher, kTrayWatcherPath, kTrayWatcher, QLatin1String(signal), &asking_,
                   SLOT(start()));
    asking_.start();
    telling_.start();
  }

  bool hasTray() const { return hasHost_ || x11_.isThere(); }

 private:
  /// A watcher may be there before a host, which shows the icons.
  void askForHost() {
    callBus(bus_, *this, questionForHost(), [this](const QDBusMessage& answer) {
      hasHost_ = valueIn(answer).toBool();
      tell();
    });
  }

  void tell() {
    if (std::exchange(hadTray_, hasTray()) != hasTray()) changed_();
  }

  QDBusConnection bus_;
  std::function<void()> changed_;
  QDBusServiceWatcher watcher_;
  /// Their intervals are 0.
  QTimer asking_;
  QTimer telling_;
  X11Tray x11_;
  bool hasHost_ = false;
  bool hadTray_ = false;
};

TrayWatch::TrayWatch(const QDBusConnection& bus, std::function<void()> changed)
    : watch_(std::make_unique<Watch>(bus, std::move(changed))) {}

TrayWatch::~TrayWatch() = default;

bool TrayWatch::hasTray() const { return watch_->hasTray(); }

}  // namespace linewatch::desktop
