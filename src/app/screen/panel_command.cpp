#include "app/screen/panel_command.h"

#include <QApplication>
#include <QSocketNotifier>
#include <csignal>
#include <memory>

#include <sys/signalfd.h>
#include <unistd.h>

#include "app/screen/panel.h"

namespace linewatch::app {

namespace {

/// Ends the application in good order when the desktop session ends, or at Ctrl+C: the widget disappears, and
/// saves what it shows. Made before any thread, so that all of them leave these signals alone.
class EndOnSignals {
 public:
  EndOnSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&ending, signal);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    descriptor_ = signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
  }
  ~EndOnSignals() { close(descriptor_); }
  EndOnSignals(const EndOnSignals&) = delete;
  EndOnSignals& operator=(const EndOnSignals&) = delete;

  void watch(QApplication& application) const {
    auto* const notifier = new QSocketNotifier(descriptor_, QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [notifier] {
      notifier->setEnabled(false);
      QApplication::quit();
    });
  }

 private:
  int descriptor_ = -1;
};

desktop::ScreenSettings settingsOfDisplay(const QApplication& application,
                                          const desktop::UserLocale& locale) {
  desktop::ScreenSettings settings;
  settings.scale = application.devicePixelRatio();
  if (locale.isRightToLeft()) settings.direction = ui::LayoutDirection::rightToLeft;
  return settings;
}

}  // namespace

Report panel(const CommonOptions& options, const PanelCommand& command) {
  const auto locale = localeOf(options);
  if (!locale) return refused(locale.error());
  EndOnSignals endOnSignals;
  static char name[] = "linewatch";
  static char* arguments[] = {name, nullptr};
  int count = 1;
  QApplication application(count, arguments);
  endOnSignals.watch(application);
  QApplication::setLayoutDirection(locale->isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  const auto screen = std::make_shared<desktop::DrawingScreen>(settingsOfDisplay(application, *locale));
  std::unique_ptr<Panel> shown;
  auto session = Session::open(options, [&](desktop::DesktopSettings& adjusted) {
    adjusted.screen = screen;
    adjusted.openActivity = [&shown](const UserActivity& activity, const OpenHandler& done) {
      shown->companion().openActivity(activity, done);
    };
  });
  if (!session) return refused(session.error());
  shown = std::make_unique<Panel>(**session, *screen, *locale, command.companion, options.maxRows);
  shown->window().show();
  QApplication::exec();
  shown = nullptr;
  return {};
}

}  // namespace linewatch::app
