#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "app/autostart.h"
#include "app/screen/panel_recording.h"
#include "app/session.h"
#include "companion/opened_content.h"
#include "desktop/drawing/drawing_screen.h"
#include "desktop/presence/news_watch.h"
#include "desktop/setup/feeds_window.h"
#include "desktop/setup/setup_window.h"
#include "desktop/window/color_scheme.h"
#include "desktop/window/companion.h"
#include "desktop/window/panel_window.h"
#include "desktop/window/settings_window.h"
#include "feeds/background_queue.h"
#include "settings/settings.h"

namespace linewatch::app {

/// The panel and its companion, with the services that both need. Work that waits for feeds or files is done
/// on a background queue. Main thread, under a QApplication. Session, screen and recording must outlive it.
class Panel {
 public:
  struct Options {
    desktop::PanelOptions window;
    /// Whether the made-up city is shown until the user adds a feed, also at the first start.
    bool showsExample = false;
    /// The folder of the saved state; absent for the user's usual one.
    std::optional<std::string> stateFolder = {};
    /// Asks for the news while the window is hidden. May be null.
    desktop::NewsWatch* news = nullptr;
  };

  /// `recording` may be null.
  Panel(Session& session, desktop::DrawingScreen& screen, const UserLocale& locale, const Options& options,
        PanelRecording* recording = nullptr);
  ~Panel();
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;

  desktop::PanelWindow& window() { return window_; }
  /// Shows the window in front. With the token of the desktop it may take the focus; may be empty.
  void present(const std::string& activationToken = {});
  /// Shows the incidents in the details window; false if the user has a command for rows instead.
  bool showIncidents(const StoredIncidents& incidents, const std::string& activationToken);
  /// Fetches the news now, also while the window is hidden.
  void refreshNews();
  /// Begins to tell the news watch whether the window is shown. To be called after the window is shown, or
  /// stays hidden, at the start.
  void followNews();
  /// Shows the settings window.
  void showSettings();
  /// The open windows and what they show, for a panel in another language.
  struct OpenWindows {
    /// Whether the panel is not hidden, e.g. in the tray.
    bool showsPanel = true;
    std::optional<desktop::WindowPlace> panel = {};
    desktop::Companion::OpenWindows companion = {};
    std::optional<desktop::WindowPlace> feeds = {};
    std::optional<desktop::SetupWindow::State> setup = {};
    std::optional<desktop::SettingsWindow::State> settings = {};
  };
  OpenWindows openWindows() const;
  /// Shows these windows.
  void open(const OpenWindows& windows);
  /// Whether the settings window is open.
  bool showsSettings() const { return settingsWindow_ && settingsWindow_->isVisible(); }
  /// Called after the user has chosen another language, which needs another panel.
  std::function<void()> languageDidChange = [] {};
  /// Called after any other setting has changed.
  std::function<void()> settingsDidChange = [] {};
  desktop::Companion& companion() { return companion_; }

 private:
  desktop::DesktopPlatform& platform() { return session_.platform(); }
  desktop::DetailsServices detailsServices();
  desktop::FavoritesServices favoritesServices();
  /// The notifications that the user wants of the line; absent if there are none. Needs saved state.
  Outcome<std::optional<notices::Subscription>> subscriptionOf(const StoredFavorite& line);
  desktop::PanelServices panelServices(PanelRecording* recording);
  desktop::SettingsServices settingsServices();
  std::optional<Error> setBySettingsWindow(const Setting& setting, const std::string& text);
  /// Follows the settings file, which the user or another program may change.
  void followSettings();
  /// Follows the network and the clocks, which are reasons to ask for the news.
  void followMachine();
  void visibilityDidChange();
  bool isWindowShown() const { return window_.isVisible() && !window_.isMinimized(); }
  void settingsFileDidChange();
  /// Makes everything as the settings in force say.
  void applySettings();
  void applyColors();
  void setTextSize(ui::TextSizeCategory category);
  desktop::SetupServices setupServices();
  void saveRecording(PanelRecording& recording);
  /// The shown feeds and the favourites in them.
  struct Choice {
    std::vector<StoredFeed> feeds;
    std::vector<StoredFavorite> favorites;
    bool operator==(const Choice&) const = default;
  };
  /// Needs saved state. Any thread.
  static Outcome<Choice> choiceIn(desktop::DesktopPlatform& platform);
  /// Whether another program locks the saved state.
  bool isStateHeld();
  /// Whether the user has no feed, no favourite of a removed feed, and has not asked for the example.
  bool isFirstStart();
  void showWelcome();
  void showExample();
  void loadWindow();
  void loadWidget();
  void loadWindowOnceStateIsFree();
  void followChoice();
  void readChoice();
  bool rememberChoice(Outcome<Choice> now);
  /// The set-up, or its page with the lines if there are feeds.
  void setUp();
  desktop::SetupWindow& setupWindow();
  void makeFeeds();
  std::unique_ptr<desktop::SetupWindow> makeSetup();
  std::unique_ptr<desktop::FeedsWindow> makeFeedsWindow();
  void textSizeDidChange();
  void showFeeds();
  void makeSettings();
  void feedsDidChange();
  void favoritesDidChange();
  void choiceDidChange();
  bool showsMadeUpCity();
  std::vector<std::string> removedFeeds() const;
  void showTitle();
  desktop::PanelHeader::Note dataNote();
  desktop::FeedNews feedNews();

  template <class Work, class Done>
  void inBackground(Work work, Done done, BackgroundQueue* queue = nullptr);

  Session& session_;
  desktop::DrawingScreen& screen_;
  UserLocale locale_;
  bool showsExample_;
  Autostart autostart_;
  /// Null when nobody follows the news.
  desktop::NewsWatch* news_;
  bool isFollowingNews_ = false;
  bool isWindowLoaded_ = false;
  BackgroundQueue queue_;
  /// For work that waits for servers, so that other work need not wait for it.
  BackgroundQueue serverQueue_;
  std::stop_source ending_;
  desktop::SharedWindowTexts texts_;
  /// The settings that the panel shows.
  Settings shown_;
  desktop::ColorScheme desktopColors_ = desktop::ColorScheme::any;
  desktop::Companion companion_;
  desktop::PanelWindow window_;
  /// Made on first use.
  std::unique_ptr<desktop::SettingsWindow> settingsWindow_;
  /// Made when it is first shown.
  std::unique_ptr<desktop::SetupWindow> setup_;
  std::unique_ptr<desktop::FeedsWindow> feeds_;
  /// The choice at the last update of the widget; absent until it can be read.
  std::optional<Choice> knownChoice_;
  bool isChoiceRetryPending_ = false;
};

}  // namespace linewatch::app
