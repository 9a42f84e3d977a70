#pragma once

#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <functional>
#include <memory>

#include "desktop/window/companion_command.h"
#include "desktop/window/details_window.h"
#include "desktop/window/favorites_window.h"
#include "desktop/window/window_texts.h"
#include "platform/system_controller.h"
#include "platform/url.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

/// The companion application on the desktop: windows of this program, or a command of the user's. Needs an
/// installed platform. Main thread.
class Companion {
 public:
  using URLHandler = std::function<void(bool success)>;

  /// `command`: the words of the user's command, as CompanionCommand takes them; empty: none.
  Companion(SharedWindowTexts texts, QStringList command, DetailsServices details,
            FavoritesServices favorites);

  /// Opens a URL of the companion application. Both of its URLs lead to the favourites. Without a command any
  /// other URL fails.
  void openURL(const URL& url, const URLHandler& done);
  /// Decodes the activity's content on a thread of its own, since a record may be large; `done` is then
  /// called on the main thread, once the content is shown.
  void openActivity(const UserActivity& activity, const OpenHandler& done);
  /// Shows the favourites in a window of this program, even with a command.
  void showFavorites();
  /// To be called after another program or window has changed favourites or feeds.
  void favoritesDidChange();

 private:
  void show(const OpenedContent& content);
  std::optional<Error> open(const URL& url);

  SharedWindowTexts texts_;
  CompanionCommand command_;
  DetailsServices detailsServices_;
  FavoritesServices favoritesServices_;
  /// Made on first use. The favourites window is made again when the text size changes.
  std::unique_ptr<DetailsWindow> details_;
  std::unique_ptr<FavoritesWindow> favorites_;
  ui::TextSizeCategory favoritesTextSize_ = ui::kDefaultTextSizeCategory;
  /// Gets the decoded contents on the main thread; those that come later are dropped.
  QObject receiver_;
  /// One thread, so that contents are shown in the order asked. Waits at its end for the thread.
  QThreadPool decoding_;
};

}  // namespace linewatch::desktop
