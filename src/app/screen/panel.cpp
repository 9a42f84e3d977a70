#include "app/screen/panel.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "desktop/loop/clock_watch.h"
#include "desktop/loop/folder_watch.h"
#include "desktop/loop/network_watch.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/panel_network.h"
#include "ui/notification_center.h"

namespace linewatch::app {

namespace {

QStringList qtWords(const std::vector<std::string>& words) {
  QStringList list;
  for (const std::string& word : words) list.append(QString::fromStdString(word));
  return list;
}

/// Collects the facts from the last fetch. Reads no files and asks no server.
desktop::FoundIncidents foundIncidents(TransitFeeds& feeds, const std::vector<std::uint64_t>& muids) {
  desktop::FoundIncidents found;
  for (auto& [muid, lines] : feeds.linesWithIncidents(muids)) found[muid].lines = std::move(lines);
  for (auto& [muid, details] : feeds.detailsOfIncidents(muids)) {
    desktop::FoundIncident& incident = found[muid];
    incident.severity = details.severity;
    incident.effect = details.effect;
    incident.cause = details.cause;
    for (IncidentStop& stop : details.stops) {
      if (!stop.name.empty()) incident.stops.push_back(std::move(stop.name));
    }
    incident.isOneDirectionOnly = details.directions.size() == 1;
  }
  return found;
}

}  // namespace

Panel::Panel(Session& session, desktop::DrawingScreen& screen, const UserLocale& locale,
             const std::vector<std::string>& command, const desktop::PanelOptions& options,
             PanelRecording* recording)
    : session_(session),
      screen_(screen),
      texts_(std::make_shared<const desktop::WindowTexts>(locale)),
      companion_(texts_, qtWords(command), detailsServices(), favoritesServices()),
      window_(texts_, panelServices(recording), options) {
  desktop::watchNetwork(window_, [this] { window_.connectionDidReturn(); });
  desktop::watchClock(window_, [this] { window_.checkClock(); });
  desktop::watchMetering(window_, [this](bool isMetered) { window_.setMetered(isMetered); });
  desktop::followDesktopColorScheme(window_);
  desktop::followDesktopContrast(window_);
  desktop::followDesktopMotion(window_, [this](bool isReduced) { window_.setMotionReduced(isReduced); });
  if (isStateHeld()) {
    loadWindowOnceStateIsFree();
  } else {
    loadWindow();
  }
}

// Work that is still running ends here. Its results are dispatched to the main thread but never handled.
Panel::~Panel() {
  ending_.request_stop();
  platform().stopFetching();
  queue_.finish();
}

/// Runs `work` on the queue, and `done` with its result on the main thread.
template <class Work, class Done>
void Panel::inBackground(Work work, Done done) {
  queue_.post([&mainLoop = platform().mainLoop(), work = std::move(work), done = std::move(done)] {
    mainLoop.dispatchAsync([result = work(), done] { done(result); });
  });
}

bool Panel::isStateHeld() { return platform().saved() && platform().saved()->isHeld(); }

void Panel::loadWindow() {
  window_.loadWidget();
  followChoice();
}

/// Waits on the queue. A widget that cannot read its last list would start with an empty one, and save that.
void Panel::loadWindowOnceStateIsFree() {
  inBackground(
      [saved = platform().saved(), ending = ending_.get_token()] {
        while (!ending.stop_requested() && saved->isHeld()) {
        }
        return true;
      },
      [this, window = QPointer(&window_)](bool) {
        if (window) loadWindow();
      });
}

desktop::DetailsServices Panel::detailsServices() {
  return {.findIncidents =
              [this](std::vector<std::uint64_t> muids, desktop::DetailsServices::IncidentsFound found) {
                inBackground([&feeds = platform().feeds(),
                              muids = std::move(muids)] { return foundIncidents(feeds, muids); },
                             std::move(found));
              },
          .openLink = [](const QUrl& url) { return QDesktopServices::openUrl(url); }};
}

desktop::FavoritesServices Panel::favoritesServices() {
  desktop::FavoritesServices services{
      .favorites = [this] { return platform().favorites().lines(); },
      .loadLines =
          [this](std::function<void(const FeedLines&)> done) {
            inBackground([&feeds = platform().feeds()] { return feeds.lines(); }, std::move(done));
          },
      .didChange =
          [this] {
            if (platform().saved()) rememberChoice(choiceIn(platform()));
            window_.favoritesDidChange();
          }};
  if (platform().saved()) {
    services.change = [this](const StoredFavorite& favorite, bool isAdded) {
      return platform().favorites().change(favorite, isAdded);
    };
    services.choose = [this](const StoredFavorite& favorite) -> Outcome<bool> {
      const auto changed = platform().favorites().addWithChoice({favorite});
      if (!changed) return changed.error();
      return changed->front();
    };
  }
  return services;
}

desktop::PanelServices Panel::panelServices(PanelRecording* recording) {
  desktop::PanelServices services{
      .openURL = [this](const URL& url,
                        const std::function<void(bool)>& done) { companion_.openURL(url, done); },
      .showFavorites = [this] { companion_.showFavorites(); },
      .setTextSize =
          [this](ui::TextSizeCategory category) {
            screen_.settings().category = category;
            platform().notificationCenter().post(ui::kTextSizeDidChangeNotification);
          },
      .dataNote = [this] { return dataNote(); },
      .feedNews =
          [this] {
            TransitFeeds& feeds = platform().feeds();
            return desktop::FeedNews{.states = feeds.states(), .unknownLines = feeds.unknownLines()};
          }};
  if (recording) {
    services.observer = recording->recorder();
    services.saveRecording = [this, recording] { saveRecording(*recording); };
  }
  return services;
}

void Panel::saveRecording(PanelRecording& recording) {
  const QString file =
      QFileDialog::getSaveFileName(&window_, (*texts_)("SaveWhatHappened"), QStringLiteral("linewatch.json"));
  if (file.isEmpty()) return;
  const auto error = recording.save(QFile::encodeName(file).toStdString());
  if (!error) return;
  QMessageBox box(QMessageBox::Warning, (*texts_)("Title"), QString::fromStdString(sentenceOf(*error)),
                  QMessageBox::Ok, &window_);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

std::optional<Panel::Choice> Panel::choiceIn(desktop::DesktopPlatform& platform) {
  auto feeds = platform.saved()->feeds().list();
  if (!feeds) return std::nullopt;
  auto favorites = platform.favorites().lines();
  if (!favorites) return std::nullopt;
  return Choice{std::move(*feeds), std::move(*favorites)};
}

/// The command line and other panels change favourites and feeds too. Every write to the state database
/// changes its log file, or creates and deletes a journal file beside it.
void Panel::followChoice() {
  if (!platform().saved()) return;
  rememberChoice(choiceIn(platform()));
  const DatabaseFile file(platform().saved()->database()->file());
  // Without the folder there are no changes to follow.
  static_cast<void>(file.makeFolder());
  desktop::watchFolder(window_, file.path().parent_path(), {file.logName()}, [this] {
    inBackground([&platform = platform()] { return choiceIn(platform); },
                 [this, window = QPointer(&window_)](const std::optional<Choice>& now) {
                   if (!window || !rememberChoice(now)) return;
                   window->favoritesDidChange();
                   companion_.favoritesDidChange();
                 });
  });
}

/// Whether the choice has changed. A choice that cannot be read counts as unchanged.
bool Panel::rememberChoice(std::optional<Choice> now) {
  if (!now || knownChoice_ == now) return false;
  knownChoice_ = std::move(now);
  return true;
}

/// The age of the list, which is the age of the oldest feed.
QString Panel::dataNote() {
  if (platform().showsSampleCity()) return (*texts_)("SampleCity");
  const auto states = platform().feeds().states();
  if (states.empty()) return {};
  const auto& oldest = std::ranges::min(states, {}, &FeedState::written);
  const std::optional<Date>& dated = oldest.written ? oldest.written : oldest.received;
  if (!dated) return (*texts_)("AlertsOfUnknownAge");
  const QString when = texts_->dateAndTime(*dated, platform().mainLoop().now(), QLocale::ShortFormat);
  return (*texts_)(oldest.written ? "AlertsWritten" : "AlertsReceived", {when.toStdString()});
}

}  // namespace linewatch::app
