#include "app/screen/panel.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <string_view>
#include <utility>

#include "app/run_settings.h"
#include "desktop/loop/clock_watch.h"
#include "desktop/loop/file_watch.h"
#include "desktop/loop/folder_watch.h"
#include "desktop/loop/network_watch.h"
#include "desktop/setup/welcome_card.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/panel_network.h"
#include "notices/notice_rules.h"
#include "platform/log.h"
#include "platform/preferences_store.h"
#include "settings/user_settings.h"
#include "shared/environment.h"
#include "storage/program_preferences.h"
#include "storage/sqlite_database.h"
#include "ui/notification_center.h"

namespace linewatch::app {

namespace {

QStringList qtWords(const std::vector<std::string>& words) {
  QStringList list;
  for (const std::string& word : words) list.append(QString::fromStdString(word));
  return list;
}

/// Two capital letters; the usual one of the language when the locale names none.
std::string regionOf(const UserLocale& locale) {
  return QLocale::territoryToCode(QLocale(QString::fromStdString(locale.tag())).territory()).toStdString();
}

constexpr int kChoiceRetryMilliseconds = 500;

/// Set once the user has chosen the example at the first start.
constexpr std::string_view kExampleChosenKey = "exampleChosen";

std::shared_ptr<PreferencesStore> programPreferences(desktop::DesktopPlatform& platform) {
  return platform.makePreferencesStore(kProgramSuite);
}

/// For the next window that is activated. Qt reads the token from the environment.
void useActivationToken(const std::string& token) {
  if (!token.empty()) qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(token));
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
             const Options& options, PanelRecording* recording)
    : session_(session),
      screen_(screen),
      locale_(locale),
      showsExample_(options.showsExample),
      autostart_(processEnvironment, options.stateFolder),
      news_(options.news),
      texts_(std::make_shared<const desktop::WindowTexts>(locale)),
      shown_(session.platform().settings().withoutRemembered()),
      companion_(texts_, qtWords(shown_.companion), detailsServices(), favoritesServices(),
                 platform().saved() ? [this] { setUp(); } : std::function<void()>()),
      window_(texts_, panelServices(recording), options.window) {
  followMachine();
  desktop::followDesktopColorScheme(window_, [this](desktop::ColorScheme colors) {
    desktopColors_ = colors;
    applyColors();
  });
  applyColors();
  window_.setStaysOnTop(shown_.staysOnTop);
  window_.setFrameless(shown_.isFrameless);
  followSettings();
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
  // The window is hidden when it is deleted, which is no reason to ask.
  news_ = nullptr;
  platform().stopFetching();
  setup_ = nullptr;
  feeds_ = nullptr;
  serverQueue_.finish();
  queue_.finish();
}

void Panel::followMachine() {
  desktop::watchNetwork(window_, [this] {
    window_.connectionDidReturn();
    if (news_) news_->connectionDidReturn();
  });
  desktop::watchClock(window_, [this] {
    window_.checkClock();
    if (news_) news_->checkClock();
  });
  desktop::watchMetering(window_, [this](bool isMetered) {
    window_.setMetered(isMetered);
    if (news_) news_->setMetered(isMetered);
  });
}

void Panel::present(const std::string& activationToken) {
  useActivationToken(activationToken);
  window_.setWindowState(window_.windowState() & ~Qt::WindowMinimized);
  window_.show();
  window_.raise();
  window_.activateWindow();
}

bool Panel::showIncidents(const StoredIncidents& incidents, const std::string& activationToken) {
  useActivationToken(activationToken);
  return companion_.showIncidents(incidents);
}

void Panel::refreshNews() {
  if (isWindowShown())
    window_.requestUpdate();
  else if (news_)
    news_->refresh();
}

void Panel::followNews() {
  isFollowingNews_ = true;
  visibilityDidChange();
}

/// At the first start there is no news: the card asks for a city, and the made-up one is not the user's.
void Panel::visibilityDidChange() {
  if (news_ && isFollowingNews_ && isWindowLoaded_) news_->setPanelShown(isWindowShown());
}

/// Runs `work` on the queue, and `done` with its result on the main thread.
template <class Work, class Done>
void Panel::inBackground(Work work, Done done, BackgroundQueue* queue) {
  (queue ? *queue : queue_)
      .post([&mainLoop = platform().mainLoop(), work = std::move(work), done = std::move(done)] {
        mainLoop.dispatchAsync([result = work(), done] { done(result); });
      });
}

bool Panel::isStateHeld() { return platform().saved() && platform().saved()->isHeld(); }

bool Panel::isFirstStart() {
  if (!platform().saved() || showsExample_) return false;
  const auto feeds = platform().shownFeeds().read();
  return feeds && isSampleCity(*feeds) && !programPreferences(platform())->boolForKey(kExampleChosenKey);
}

void Panel::loadWindow() {
  // Only now can the saved state be read, which may remember a text size.
  shown_ = platform().settings().values();
  screen_.settings().category = shown_.textSize;
  // Before the widget asks: a change after its question is noticed then.
  followChoice();
  if (isFirstStart()) {
    showWelcome();
  } else {
    loadWidget();
  }
}

void Panel::loadWidget() {
  isWindowLoaded_ = true;
  window_.loadWidget();
  showTitle();
}

bool Panel::showsMadeUpCity() {
  if (!platform().saved()) return false;
  return knownChoice_ ? isSampleCity(knownChoice_->feeds) : platform().showsSampleCity();
}

/// The removed feeds of the user's favourites, each once.
std::vector<std::string> Panel::removedFeeds() const {
  std::vector<std::string> removed;
  if (!knownChoice_) return removed;
  for (const StoredFavorite& favorite : knownChoice_->favorites) {
    const auto& feeds = knownChoice_->feeds;
    const bool isListed = std::ranges::find(feeds, favorite.feed, &StoredFeed::name) != feeds.end();
    if (!isListed && std::ranges::find(removed, favorite.feed) == removed.end())
      removed.push_back(favorite.feed);
  }
  return removed;
}

void Panel::showTitle() { window_.setShowsExample(isWindowLoaded_ && showsMadeUpCity()); }

void Panel::showWelcome() {
  window_.showCard(new desktop::WelcomeCard(*texts_, {.chooseCity = [this] { setupWindow().findCity(); },
                                                      .showExample = [this] { showExample(); }}));
}

void Panel::showExample() {
  programPreferences(platform())->setObject(true, kExampleChosenKey);
  loadWidget();
}

/// Waits on the queue. A widget that cannot read its last list would start with an empty one, and save that.
void Panel::loadWindowOnceStateIsFree() {
  inBackground(
      [saved = platform().saved(), &feeds = platform().feeds(), ending = ending_.get_token()] {
        while (!ending.stop_requested() && saved->isHeld()) {
        }
        static_cast<void>(feeds.follow());
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
      .didChange = [this] { favoritesDidChange(); }};
  services.loadStops = [this](const StoredFavorite& favorite,
                              std::function<void(const Outcome<LineStops>&)> done) {
    inBackground(
        [this, favorite]() -> Outcome<LineStops> {
          for (const StoredFeed& feed : platform().feeds().feeds()) {
            if (feed.name == favorite.feed) return platform().documents().lineStopsOf(feed, favorite.subject);
          }
          return LineStops();
        },
        std::move(done), &serverQueue_);
  };
  if (platform().saved()) {
    services.isExample = [this] { return showsMadeUpCity(); };
    services.removedFeeds = [this] { return removedFeeds(); };
    services.chooseCity = [this] { setupWindow().findCity(); };
    services.change = [this](const StoredFavorite& favorite, bool isAdded) {
      return platform().favorites().change(favorite, isAdded);
    };
    services.choose = [this](const StoredFavorite& favorite) -> Outcome<bool> {
      const auto changed = platform().favorites().addWithChoice({favorite});
      if (!changed) return changed.error();
      return changed->front();
    };
    services.subscription = [this](const StoredFavorite& line) { return subscriptionOf(line); };
    services.subscribe = [this](const StoredFavorite& line,
                                const std::optional<notices::Subscription>& wanted) -> std::optional<Error> {
      StoredNotices stored = platform().saved()->notices();
      const auto changed = wanted ? stored.subscribe(*wanted) : stored.unsubscribe({line.feed, line.subject});
      return changed ? std::nullopt : std::optional(changed.error());
    };
    services.reorder = [this](const std::vector<StoredFavorite>& order) {
      return platform().favorites().reorder(order);
    };
  }
  return services;
}

Outcome<std::optional<notices::Subscription>> Panel::subscriptionOf(const StoredFavorite& line) {
  const auto rules = platform().saved()->notices().rules();
  if (!rules) return rules.error();
  const notices::LineKey key{line.feed, line.subject};
  const auto found = std::ranges::find(rules->subscriptions, key, &notices::Subscription::line);
  return found == rules->subscriptions.end() ? std::nullopt : std::optional(*found);
}

desktop::PanelServices Panel::panelServices(PanelRecording* recording) {
  desktop::PanelServices services{
      .openURL = [this](const URL& url,
                        const std::function<void(bool)>& done) { companion_.openURL(url, done); },
      .showFavorites = [this] { companion_.showFavorites(); },
      .showFeeds = platform().saved() ? [this] { showFeeds(); } : std::function<void()>(),
      .showSettings = [this] { showSettings(); },
      .setTextSize = [this](ui::TextSizeCategory category) { setTextSize(category); },
      .dataNote = [this] { return dataNote(); },
      .feedNews = [this] { return feedNews(); },
      .visibilityDidChange = [this] { visibilityDidChange(); }};
  if (platform().saved()) services.addCity = [this] { setupWindow().findCity(); };
  if (recording) {
    services.observer = recording->recorder();
    services.saveRecording = [this, recording] { saveRecording(*recording); };
  }
  return services;
}

desktop::FeedNews Panel::feedNews() {
  TransitFeeds& feeds = platform().feeds();
  desktop::FeedNews news{.states = feeds.states(), .unknownLines = feeds.unknownLines()};
  news.removedFeeds = removedFeedsOf(news.unknownLines, feeds.feeds());
  // Before the first look-up only the saved choice tells.
  if (news.states.empty() && news.unknownLines.empty()) news.removedFeeds = removedFeeds();
  return news;
}

void Panel::saveRecording(PanelRecording& recording) {
  const QString file =
      QFileDialog::getSaveFileName(&window_, (*texts_)("SaveWhatHappened"), QStringLiteral("linewatch.json"));
  if (file.isEmpty()) return;
  const auto error = recording.save(QFile::encodeName(file).toStdString());
  if (!error) return;
  QMessageBox box(QMessageBox::Warning, (*texts_)("Title"), QString::fromStdString(texts_->reason(*error)),
                  QMessageBox::Ok, &window_);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

// ---- The set-up ----

desktop::SetupServices Panel::setupServices() {
  desktop::SetupServices services{.language = locale_.language(), .region = regionOf(locale_)};
  services.readCatalogue = [this](desktop::SetupServices::CatalogueRead done) {
    inBackground(
        [catalogue = platform().catalogue(), stop = ending_.get_token()] { return catalogue->read(stop); },
        std::move(done), &serverQueue_);
  };
  services.feeds = [this] { return platform().saved()->feeds().list(); };
  services.startAdding = [this](FeedProposal proposal, FeedAdding::Observer observer) {
    return std::make_shared<FeedAdding>(std::move(proposal), *platform().addingEnvironment(),
                                        std::move(observer));
  };
  services.discard = [this](std::shared_ptr<FeedAdding> adding) {
    serverQueue_.post([adding = std::move(adding)]() mutable { adding.reset(); });
  };
  services.states = [this] { return platform().feeds().states(); };
  services.check = [this](desktop::SetupServices::StatesRead done) {
    inBackground(
        [&feeds = platform().feeds(), now = platform().mainLoop().now()] {
          const auto states = feeds.check(now);
          return states ? *states : std::vector<FeedState>();
        },
        std::move(done), &serverQueue_);
  };
  services.changeFeed = [this](const StoredFeed& feed) -> std::optional<Error> {
    const auto changed = platform().saved()->feeds().change(feed);
    if (!changed) return changed.error();
    // Cached documents came with the old key, so the new one is tried at once.
    platform().saved()->feedCache()->expire(feed.name);
    return std::nullopt;
  };
  services.removeFeed = [this](const std::string& name) -> std::optional<Error> {
    const auto removed = platform().saved()->feeds().remove(name);
    if (!removed) return removed.error();
    platform().saved()->feedCache()->remove(name);
    return std::nullopt;
  };
  services.now = [this] { return platform().mainLoop().now(); };
  services.openLink = [](const QUrl& url) { return QDesktopServices::openUrl(url); };
  services.feedsDidChange = [this] { feedsDidChange(); };
  services.favorites = favoritesServices();
  return services;
}

/// A window that is not visible is made again, because the text size may have changed.
desktop::SetupWindow& Panel::setupWindow() {
  if (!setup_ || !setup_->isVisible()) setup_ = makeSetup();
  return *setup_;
}

std::unique_ptr<desktop::SetupWindow> Panel::makeSetup() {
  return std::make_unique<desktop::SetupWindow>(texts_, setupServices(), [this] { present(); });
}

std::unique_ptr<desktop::FeedsWindow> Panel::makeFeedsWindow() {
  return std::make_unique<desktop::FeedsWindow>(texts_, setupServices(),
                                                [this] { setupWindow().findCity(); });
}

void Panel::makeFeeds() {
  if (!feeds_ || !feeds_->isVisible()) feeds_ = makeFeedsWindow();
}

void Panel::showFeeds() {
  makeFeeds();
  feeds_->present();
}

void Panel::setUp() {
  const auto feeds = platform().saved()->feeds().list();
  if (feeds && !feeds->empty()) {
    setupWindow().chooseLines();
  } else {
    setupWindow().findCity();
  }
}

void Panel::feedsDidChange() {
  rememberChoice(choiceIn(platform()));
  choiceDidChange();
}

void Panel::favoritesDidChange() {
  const auto feeds = knownChoice_ ? knownChoice_->feeds : std::vector<StoredFeed>();
  if (platform().saved()) rememberChoice(choiceIn(platform()));
  // Without feeds, the sample city is shown after the last favourite of a removed feed is gone.
  if (knownChoice_ && knownChoice_->feeds != feeds) return choiceDidChange();
  window_.favoritesDidChange();
  if (news_) news_->favoritesDidChange();
}

/// The user's first feed takes the place of the first start's card.
void Panel::choiceDidChange() {
  if (!isWindowLoaded_ && knownChoice_ && !isSampleCity(knownChoice_->feeds)) {
    loadWidget();
  }
  showTitle();
  window_.favoritesDidChange();
  if (news_) news_->favoritesDidChange();
  companion_.favoritesDidChange();
  if (setup_ && setup_->isVisible()) setup_->followChanges();
  if (feeds_ && feeds_->isVisible()) feeds_->followChanges();
}

Outcome<Panel::Choice> Panel::choiceIn(desktop::DesktopPlatform& platform) {
  auto feeds = platform.shownFeeds().read();
  if (!feeds) return feeds.error();
  auto favorites = platform.favorites().lines();
  if (!favorites) return favorites.error();
  return Choice{std::move(*feeds), std::move(*favorites)};
}

/// The command line and other panels change favourites and feeds too. Every write to the state database
/// changes its log file, or creates and deletes a journal file beside it.
void Panel::followChoice() {
  if (!platform().saved()) return;
  const DatabaseFile file(platform().saved()->database()->file());
  // Without the folder there are no changes to follow.
  static_cast<void>(file.makeFolder());
  desktop::watchFolder(window_, file.path().parent_path(), {file.logName()}, [this] { readChoice(); });
  rememberChoice(choiceIn(platform()));
}

void Panel::readChoice() {
  inBackground([&platform = platform()] { return choiceIn(platform); },
               [this, window = QPointer(&window_)](const Outcome<Choice>& now) {
                 if (window && rememberChoice(now)) choiceDidChange();
               });
}

/// Whether the choice has changed. A choice that cannot be read counts as unchanged, and is read again if
/// another program holds the file: no later event may tell of its change.
bool Panel::rememberChoice(Outcome<Choice> now) {
  if (!now && isBusy(now.error()) && !std::exchange(isChoiceRetryPending_, true)) {
    QTimer::singleShot(kChoiceRetryMilliseconds, &window_, [this] {
      isChoiceRetryPending_ = false;
      readChoice();
    });
  }
  if (!now || knownChoice_ == *now) return false;
  knownChoice_ = *std::move(now);
  return true;
}

// ---- Another language ----

Panel::OpenWindows Panel::openWindows() const {
  OpenWindows windows{.showsPanel = window_.isVisible(),
                      .panel = desktop::WindowPlace{window_.pos(), window_.size()},
                      .companion = companion_.openWindows()};
  if (feeds_ && feeds_->isVisible()) windows.feeds = feeds_->place();
  if (setup_ && setup_->isVisible()) windows.setup = setup_->state();
  if (showsSettings()) windows.settings = settingsWindow_->state();
  return windows;
}

/// The settings come last, and so in front, because the language is chosen there.
void Panel::open(const OpenWindows& windows) {
  if (windows.panel) {
    window_.resize(windows.panel->size.width(), window_.height());
    window_.setCorner(windows.panel->corner);
  }
  if (windows.showsPanel) window_.show();
  companion_.reopen(windows.companion);
  if (windows.feeds) {
    makeFeeds();
    feeds_->setPlace(*windows.feeds);
    feeds_->present();
  }
  if (windows.setup) setupWindow().restore(*windows.setup);
  if (!windows.settings) return;
  makeSettings();
  settingsWindow_->restore(*windows.settings);
}

// ---- Settings ----

/// The size is applied before it is saved, and also if that fails.
void Panel::setTextSize(ui::TextSizeCategory category) {
  screen_.settings().category = category;
  platform().notificationCenter().post(ui::kTextSizeDidChangeNotification);
  // A card's fonts are those of the text size at which it was made.
  if (window_.showsCard()) showWelcome();
  const bool isChosen = std::exchange(shown_.textSize, category) != category;
  if (isChosen) {
    const auto error = platform().settings().set(kTextSizeSetting, std::string(ui::nameOf(category)));
    if (error) logError("the text size is not saved: %@", {sentenceOf(*error)});
  }
  if (isChosen) textSizeDidChange();
  if (showsSettings()) settingsWindow_->followChanges();
}

/// A set-up that is adding a feed stays as it is, and so do feeds whose removal can still be undone.
void Panel::textSizeDidChange() {
  companion_.textSizeDidChange();
  if (setup_ && setup_->isVisible() && !setup_->isAdding()) {
    desktop::SetupWindow::State state = setup_->state();
    auto window = makeSetup();
    window->takeOverFrom(*setup_);
    state.place = window->place();
    setup_ = std::move(window);
    setup_->restore(state);
  }
  if (!feeds_ || !feeds_->isVisible() || feeds_->canUndo()) return;
  auto window = makeFeedsWindow();
  window->takeOverFrom(*feeds_);
  feeds_ = std::move(window);
  feeds_->present();
}

void Panel::followSettings() {
  const std::filesystem::path& file = platform().settings().file();
  if (file.empty()) return;
  desktop::watchFile(window_, file, [this] { settingsFileDidChange(); });
}

void Panel::settingsFileDidChange() {
  if (!rereadSettings(platform().settings())) return;
  const bool startedAtLogin = shown_.startsAtLogin;
  applySettings();
  // Only a change is the user's choice. At the start, what was chosen in the desktop holds.
  if (shown_.startsAtLogin != startedAtLogin) {
    if (const auto error = autostart_.apply(shown_.startsAtLogin)) logError("%@", {sentenceOf(*error)});
  }
  if (showsSettings()) settingsWindow_->followChanges();
}

void Panel::applySettings() {
  const Settings before = std::exchange(shown_, platform().settings().values());
  if (shown_.textSize != before.textSize) window_.setTextSize(shown_.textSize);
  if (shown_.appearance != before.appearance) applyColors();
  if (shown_.staysOnTop != before.staysOnTop) window_.setStaysOnTop(shown_.staysOnTop);
  if (shown_.isFrameless != before.isFrameless) window_.setFrameless(shown_.isFrameless);
  if (shown_.refresh != before.refresh) {
    window_.setRefresh(shown_.refresh);
    if (news_) news_->setRefresh(shown_.refresh);
  }
  if (shown_.companion != before.companion) companion_.setCommand(qtWords(shown_.companion));
  settingsDidChange();
  if (shown_.language != before.language) languageDidChange();
}

void Panel::applyColors() {
  switch (shown_.appearance) {
    case AppearanceChoice::automatic:
      return desktop::applyColorScheme(desktopColors_);
    case AppearanceChoice::light:
      return desktop::applyColorScheme(desktop::ColorScheme::light);
    case AppearanceChoice::dark:
      return desktop::applyColorScheme(desktop::ColorScheme::dark);
  }
}

desktop::SettingsServices Panel::settingsServices() {
  UserSettings& settings = platform().settings();
  desktop::SettingsServices services{
      .find = [this, &settings](const Setting& setting) { return autostart_.find(settings, setting); },
      .faults = [&settings, texts = texts_] { return settings.faults(texts->localization()); },
      .file = settings.file().string()};
  if (settings.file().empty()) return services;
  services.set = [this](const Setting& setting, const std::string& text) {
    return setBySettingsWindow(setting, text);
  };
  return services;
}

std::optional<Error> Panel::setBySettingsWindow(const Setting& setting, const std::string& text) {
  if (&setting == &kAutostartSetting) {
    if (auto error = autostart_.apply(text == "true")) return error;
  }
  auto error = platform().settings().set(setting, text);
  if (!error) applySettings();
  return error;
}

void Panel::makeSettings() {
  if (!settingsWindow_)
    settingsWindow_ = std::make_unique<desktop::SettingsWindow>(texts_, settingsServices());
}

void Panel::showSettings() {
  makeSettings();
  settingsWindow_->present();
}

/// The age of the list, which is the age of the oldest feed.
desktop::PanelHeader::Note Panel::dataNote() {
  // Without favourites no feed is read, so the platform still has the feeds of before.
  if (knownChoice_ && knownChoice_->favorites.empty() && !showsMadeUpCity()) return {};
  if (platform().showsSampleCity()) return {(*texts_)("SampleCity")};
  const auto states = platform().feeds().states();
  if (states.empty()) return {};
  const auto& oldest = std::ranges::min(states, {}, &FeedState::written);
  const std::optional<Date>& dated = oldest.written ? oldest.written : oldest.received;
  if (!dated) return {(*texts_)("AlertsOfUnknownAge")};
  const std::string when =
      texts_->dateAndTime(*dated, platform().mainLoop().now(), QLocale::ShortFormat).toStdString();
  if (oldest.written) return {(*texts_)("AlertsWritten", {when})};
  return {(*texts_)("AlertsReceived", {when}), (*texts_)("AlertsReceivedDetails", {when})};
}

}  // namespace linewatch::app
