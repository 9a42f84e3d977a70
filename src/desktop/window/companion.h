#pragma once

#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "desktop/window/companion_command.h"
#include "desktop/window/details_window.h"
#include "desktop/window/favorites_window.h"
#include "desktop/window/window_texts.h"
#include "platform/system_controller.h"
#include "platform/url.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

/// The companion application on the desktop: windows of this program, or the user's command. Needs an
/// installed platform. Main thread.
class Companion {
 public:
  using URLHandler = std::function<void(bool success)>;

  /// `command`: the words of the user's command; empty when there is none.
  /// `setUp`: called for the row without favourites; empty to show the favourites.
  Companion(SharedWindowTexts texts, QStringList command, DetailsServices details,
            FavoritesServices favorites, std::function<void()> setUp = {});

  /// Replaces the user's command.
  void setCommand(QStringList command) { command_.setWords(std::move(command)); }
  /// Opens a URL of the companion application: the favourites, or the set-up if there are none. Without a
  /// command all other URLs fail.
  void openURL(const URL& url, const URLHandler& done);
  /// Decodes the activity on another thread, because a record may be large. Calls `done` on the main thread,
  /// after the content is on screen.
  void openActivity(const UserActivity& activity, const OpenHandler& done);
  /// Shows the incidents in the details window, like a row's; false if the user has a command instead.
  bool showIncidents(const StoredIncidents& incidents);
  /// Shows the favourites window, even if the user has a command.
  void showFavorites();
  /// The open windows and what they show, for a companion in another language.
  struct OpenWindows {
    std::optional<DetailsWindow::State> details;
    std::optional<FavoritesWindow::State> favorites;
  };
  OpenWindows openWindows() const;
  void reopen(const OpenWindows& windows);
  /// To be called after another program or window has changed favourites or feeds.
  void favoritesDidChange();
  /// Makes the open windows again for another text size.
  void textSizeDidChange();

 private:
  DetailsWindow& details();
  void makeFavorites();
  void show(const OpenedContent& content);
  void markExample();
  std::optional<Error> open(const URL& url);

  SharedWindowTexts texts_;
  CompanionCommand command_;
  DetailsServices detailsServices_;
  FavoritesServices favoritesServices_;
  std::function<void()> setUp_;
  /// Made on first use. The favourites window is made again after the text size has changed.
  std::unique_ptr<DetailsWindow> details_;
  std::unique_ptr<FavoritesWindow> favorites_;
  ui::TextSizeCategory favoritesTextSize_ = ui::kDefaultTextSizeCategory;
  /// Receives decoded content on the main thread. Content that arrives after its end is dropped.
  QObject receiver_;
  /// One thread, so that content is shown in the order of the calls. The destructor waits for the thread.
  QThreadPool decoding_;
};

}  // namespace linewatch::desktop
