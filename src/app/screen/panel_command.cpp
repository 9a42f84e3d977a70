#include "app/screen/panel_command.h"

#include <QApplication>
#include <QDesktopServices>
#include <algorithm>
#include <memory>
#include <utility>

#include "desktop/drawing/drawing_screen.h"
#include "desktop/roles/background_queue.h"
#include "desktop/window/companion.h"
#include "desktop/window/network_watch.h"
#include "desktop/window/panel_window.h"
#include "platform/ui/notification_center.h"

namespace linewatch::app {

namespace {

using desktop::TransitFeeds;

/// The panel, what a row of it opens, and what both of them need of the program. What has to wait for feeds
/// is done on another thread.
class Panel {
 public:
  Panel(Session& session, desktop::DrawingScreen& screen, const desktop::UserLocale& locale,
        const PanelCommand& command, std::uint64_t maxRows)
      : session_(session),
        screen_(screen),
        texts_(std::make_shared<const desktop::WindowTexts>(locale)),
        companion_(texts_, QString::fromStdString(command.companion), detailsServices(), favoritesServices()),
        window_(texts_, panelServices(), maxRows) {
    desktop::watchNetwork(window_, [this] { window_.connectionDidReturn(); });
  }
  ~Panel() { queue_.finish(); }
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;

  void show() { window_.show(); }
  desktop::Companion& companion() { return companion_; }

 private:
  desktop::DesktopPlatform& platform() { return session_.platform(); }

  /// Does `work` on the queue and hands what it gave to `done` on the main thread.
  template <class Work, class Done>
  void inBackground(Work work, Done done) {
    queue_.post([&mainLoop = platform().mainLoop(), work = std::move(work), done = std::move(done)] {
      mainLoop.dispatchAsync([result = work(), done] { done(result); });
    });
  }

  desktop::DetailsServices detailsServices() {
    return {.findLines =
                [this](std::vector<std::uint64_t> muids, desktop::DetailsServices::LinesFound found) {
                  inBackground([&feeds = platform().feeds(),
                                muids = std::move(muids)] { return feeds.linesWithIncidents(muids); },
                               std::move(found));
                },
            .openLink = [](const QUrl& url) { QDesktopServices::openUrl(url); }};
  }

  desktop::FavoritesServices favoritesServices() {
    desktop::FavoritesServices services{
        .favorites = [this] { return platform().favoriteLines(); },
        .loadLines =
            [this](std::function<void(const desktop::FavoritesServices::Lines&)> done) {
              inBackground([&feeds = platform().feeds()] { return feeds.lines(); }, std::move(done));
            },
        .didChange = [this] { window_.favoritesDidChange(); }};
    if (platform().state()) {
      services.change = [this](const desktop::StoredFavorite& favorite, bool isAdded) {
        return platform().changeFavorite(favorite, isAdded);
      };
    }
    return services;
  }

  desktop::PanelServices panelServices() {
    return {.openURL = [this](const URL& url,
                              const std::function<void(bool)>& done) { companion_.openURL(url, done); },
            .showFavorites = [this] { companion_.showFavorites(); },
            .setTextSize =
                [this](ui::TextSizeCategory category) {
                  screen_.settings().category = category;
                  platform().notificationCenter().post(ui::kTextSizeDidChangeNotification);
                },
            .dataNote = [this] { return dataNote(); }};
  }

  /// How old what is shown is: as old as the oldest of it.
  QString dataNote() {
    if (platform().showsSampleCity()) return (*texts_)("SampleCity");
    const auto states = platform().feeds().alertsStates();
    if (states.empty()) return {};
    const auto& oldest = std::ranges::min(states, {}, &TransitFeeds::AlertsState::written);
    if (!oldest.written) return (*texts_)("AlertsOfUnknownAge");
    const QString when = texts_->dateAndTime(*oldest.written, platform().mainLoop().now());
    return (*texts_)("AlertsWritten", {when.toStdString()});
  }

  Session& session_;
  desktop::DrawingScreen& screen_;
  desktop::BackgroundQueue queue_;
  desktop::SharedWindowTexts texts_;
  desktop::Companion companion_;
  desktop::PanelWindow window_;
};

desktop::ScreenSettings screenSettings(const QApplication& application, const desktop::UserLocale& locale) {
  desktop::ScreenSettings settings;
  settings.scale = application.devicePixelRatio();
  if (locale.isRightToLeft()) settings.direction = ui::LayoutDirection::rightToLeft;
  return settings;
}

}  // namespace

Report panel(const CommonOptions& options, const PanelCommand& command) {
  const auto locale = localeOf(options);
  if (!locale) return refused(locale.error());
  static char name[] = "linewatch";
  static char* arguments[] = {name, nullptr};
  int count = 1;
  QApplication application(count, arguments);
  QApplication::setLayoutDirection(locale->isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  const auto screen = std::make_shared<desktop::DrawingScreen>(screenSettings(application, *locale));
  std::unique_ptr<Panel> shown;
  auto session = Session::open(options, [&](desktop::DesktopSettings& adjusted) {
    adjusted.screen = screen;
    adjusted.openActivity = [&shown](const UserActivity& activity, const OpenHandler& done) {
      shown->companion().openActivity(activity, done);
    };
  });
  if (!session) return refused(session.error());
  shown = std::make_unique<Panel>(**session, *screen, *locale, command, options.maxRows);
  shown->show();
  QApplication::exec();
  shown = nullptr;
  return {};
}

}  // namespace linewatch::app
