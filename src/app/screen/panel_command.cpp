#include "app/screen/panel_command.h"

#include <QApplication>
#include <QIcon>
#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include <sys/eventfd.h>
#include <unistd.h>

#include "app/link/panel_link.h"
#include "app/rider_texts.h"
#include "app/screen/panel.h"
#include "app/screen/panel_presence.h"
#include "app/screen/panel_recording.h"
#include "app/screen/panel_tray.h"
#include "desktop/bus_name.h"
#include "desktop/presence/bus_presence.h"
#include "desktop/presence/first_draw.h"
#include "desktop/presence/lock_watch.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "settings/user_settings.h"
#include "shared/environment.h"
#include "shared/failure.h"
#include "shared/file_contents.h"
#include "simulation/recording/recording_platform.h"

namespace linewatch::app {

namespace {

constexpr std::array kEndingSignals = {SIGTERM, SIGINT, SIGHUP};

// Global, because a signal handler has no arguments of its own.
volatile std::sig_atomic_t endingDescriptor = -1;

/// Installs the handler. A signal that was ignored at the program's start stays ignored.
void handleUnlessIgnored(int signal, void (*handler)(int)) {
  if (std::signal(signal, handler) == SIG_IGN) std::signal(signal, SIG_IGN);
}

/// After the first signal, Ctrl+C ends the program at once, because an orderly end may take a while.
void endAtOnceAtInterrupt() { handleUnlessIgnored(SIGINT, SIG_DFL); }

void askForEnd(int) {
  const int error = errno;
  const std::uint64_t once = 1;
  // Fails only if the end has been requested before.
  [[maybe_unused]] const ssize_t written = ::write(endingDescriptor, &once, sizeof once);
  endAtOnceAtInterrupt();
  errno = error;
}

/// Quits the application in an orderly way on SIGTERM, SIGINT and SIGHUP, so that the widget disappears and
/// saves its list. It handles the signals and does not block them, because child processes inherit blocked
/// signals. One per process.
class EndOnSignals {
 public:
  EndOnSignals() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    endingDescriptor = descriptor_;
    handle();
  }
  ~EndOnSignals() {
    for (const int signal : kEndingSignals) handleUnlessIgnored(signal, SIG_DFL);
    close(descriptor_);
  }
  EndOnSignals(const EndOnSignals&) = delete;
  EndOnSignals& operator=(const EndOnSignals&) = delete;

  /// Installs the handlers, again after the application has quit.
  void handle() const {
    for (const int signal : kEndingSignals) handleUnlessIgnored(signal, askForEnd);
  }
  void watch(QApplication& application) const {
    auto* const notifier = new QSocketNotifier(descriptor_, QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [notifier] {
      notifier->setEnabled(false);
      // Unlike quit(), this asks no window for its consent: a panel that stays in the tray would refuse.
      QApplication::exit();
    });
    QObject::connect(&application, &QApplication::aboutToQuit, endAtOnceAtInterrupt);
  }

 private:
  int descriptor_;
};

desktop::ScreenSettings settingsOfDisplay(const QApplication& application, const UserLocale& locale) {
  desktop::ScreenSettings settings;
  settings.scale = application.devicePixelRatio();
  settings.language = locale.language();
  if (locale.isRightToLeft()) settings.direction = ui::LayoutDirection::rightToLeft;
  return settings;
}

/// The state that a panel in a new language inherits from the panel before.
struct Inheritance {
  /// Whether the panel ended because the user has chosen another language.
  bool isReplaced = false;
  Panel::OpenWindows windows = {};
  std::optional<PanelPresence::Told> told = {};
};

/// The platform that the widget uses: the recorder hears what it asks, and so does the presence.
struct WidgetPlatform {
  WidgetPlatform(std::shared_ptr<Platform> platform, std::shared_ptr<simulation::SessionRecorder> recorder)
      : heard(std::move(platform)), recording(*heard, std::move(recorder)) {}

  static std::shared_ptr<Platform> make(std::shared_ptr<Platform> heard,
                                        std::shared_ptr<simulation::SessionRecorder> recorder) {
    const auto all = std::make_shared<WidgetPlatform>(std::move(heard), std::move(recorder));
    return {all, &all->recording};
  }

  std::shared_ptr<Platform> heard;
  simulation::RecordingPlatform recording;
};

/// Connects the panel with what the rest of the desktop asks and says. `makeTray` makes the icon in the tray,
/// which takes a moment.
void bePresent(Panel& panel, desktop::DesktopPlatform& platform, desktop::BusPresence& bus,
               const std::function<void()>& makeTray) {
  bus.setRequests({.show = [&panel](const std::string& token) { panel.present(token); },
                   .refresh = [&panel] { panel.refreshNews(); }});
  desktop::afterFirstDraw(panel.window(), [&panel, &platform, makeTray] {
    // To draw the icon takes longer than to connect to the system bus.
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/presence/icon.svg")));
    desktop::watchLock(panel.window(), [&platform](bool isLocked) { platform.device().setLocked(isLocked); });
    makeTray();
  });
  panel.followNews();
}

/// Shows the panel until it is closed or another language is chosen. The texts of all windows and feeds are
/// in one language, so that another one needs another session.
Report runPanel(const CommonOptions& options, const PanelCommand& command, QApplication& application,
                Inheritance& inheritance, desktop::BusPresence& bus) {
  const auto locale = localeOf(options);
  QApplication::setLayoutDirection(locale.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  const auto screen = std::make_shared<desktop::DrawingScreen>(settingsOfDisplay(application, locale));
  std::unique_ptr<Panel> shown;
  auto session = Session::open(options, [&](desktop::DesktopSettings& adjusted) {
    adjusted.screen = screen;
    adjusted.isInteractive = true;
    adjusted.openActivity = [&shown](const UserActivity& activity, const OpenHandler& done) {
      shown->companion().openActivity(activity, done);
    };
  });
  if (!session) return refused(session.error());
  // The panel shows this error, until it has passed.
  static_cast<void>((*session)->platform().feeds().follow());
  PanelRecording recording(command.isAnonymous);
  recording.recorder()->setLocale(locale.tag());
  if (!command.record.empty()) recording.keepIn(command.record);
  desktop::DesktopPlatform& platform = (*session)->platform();
  const Seconds refresh = platform.settings().withoutRemembered().refresh;
  PanelPresence presence(platform, locale, refresh, bus);
  // The next answer may take a while.
  if (inheritance.told) presence.tell(*inheritance.told);
  installPlatform(WidgetPlatform::make(presence.news().platform(), recording.recorder()));
  shown = std::make_unique<Panel>(**session, *screen, locale,
                                  Panel::Options{.window = {.maxRows = options.maxRows, .refresh = refresh},
                                                 .showsExample = command.showsExample,
                                                 .stateFolder = options.stateDir,
                                                 .news = &presence.news()},
                                  &recording);
  shown->languageDidChange = [&inheritance, &shown, &presence] {
    inheritance = {.isReplaced = true, .windows = shown->openWindows(), .told = presence.told()};
    // Unlike quit(), this leaves the windows open until the panel ends.
    QApplication::exit();
  };
  shown->open(inheritance.windows);
  std::unique_ptr<PanelTray> tray;
  bePresent(*shown, platform, bus,
            [&] { tray = std::make_unique<PanelTray>(*shown, platform, presence, locale); });
  inheritance.isReplaced = false;
  QApplication::exec();
  bus.setRequests({});
  tray = nullptr;
  shown = nullptr;
  const auto error = inheritance.isReplaced ? std::optional<Error>() : recording.finish();
  return error ? refused(*error) : Report();
}

desktop::BusPresence presenceOnBus(const CommonOptions& options) {
  const auto nameFor = [](const std::optional<std::string>& stateFolder) {
    return desktop::busNameFor(stateFolder, processEnvironment);
  };
  const std::string name = isWithoutSavedState(options) ? std::string() : nameFor(options.stateDir);
  return {name, name == nameFor(std::nullopt)};
}

/// Qt waits without a limit for a session bus that does not answer, so the panel does without such a bus.
void leaveHangingBus() {
  const auto link = connectToPanel(desktop::kApplicationId, processEnvironment);
  if (!link || link->follow() >= 0) return;
  logError("the session bus does not answer; tray icon and notifications are off");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

/// A panel that is just ending may still have the name.
constexpr int kAttemptsToRaise = 3;

/// Lets the panel that is already open show its window, unless this one was to be hidden. Absent if this
/// process has to show one.
std::optional<Report> raiseOpenPanel(desktop::BusPresence& bus, const CommonOptions& options,
                                     const PanelCommand& command, const std::string& activationToken) {
  using Standing = desktop::BusPresence::Standing;
  for (int attempt = 0; attempt < kAttemptsToRaise && bus.takeName() == Standing::second; ++attempt) {
    if (!command.record.empty())
      return refused(failure(command.record, "", "nothing is recorded, because a panel is already open"));
    if (command.isHidden) return Report();
    if (bus.raiseOther(activationToken))
      return Report{.output = {}, .complaint = RiderTexts(localeOf(options))("AlreadyOpen")};
  }
  return std::nullopt;
}

}  // namespace

Report panel(const CommonOptions& options, const PanelCommand& command) {
  // A recording of an hour must not be lost to a mistyped name.
  if (!command.record.empty()) {
    if (const auto error = whyNotWritable(command.record)) return refused(*error);
  }
  EndOnSignals endOnSignals;
  static char name[] = "linewatch";
  static char* arguments[] = {name, nullptr};
  int count = 1;
  const std::string activationToken = desktop::activationTokenOfStart();
  QGuiApplication::setDesktopFileName(QString::fromLatin1(desktop::kApplicationId));
  leaveHangingBus();
  QApplication application(count, arguments);
  endOnSignals.watch(application);
  desktop::BusPresence bus = presenceOnBus(options);
  if (auto report = raiseOpenPanel(bus, options, command, activationToken)) return *std::move(report);
  Inheritance inheritance{.windows = {.showsPanel = !command.isHidden || !bus.hasName()}};
  Report report = runPanel(options, command, application, inheritance, bus);
  while (inheritance.isReplaced) {
    endOnSignals.handle();
    report = runPanel(options, command, application, inheritance, bus);
  }
  return report;
}

}  // namespace linewatch::app
